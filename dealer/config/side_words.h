#pragma once

#include "core/table_reader.h"
#include "sessions/contract/codes.h"

namespace tutti {

inline constexpr Word<Operation> side_words[] = {
    {"buy", operation::buy},
    {"sell", operation::sell},
    {"buy_stop", operation::buy_stop},
    {"sell_stop", operation::sell_stop},
};

}  // namespace tutti
