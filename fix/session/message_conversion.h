#pragma once

#include <optional>

#include "fix/session/fix_message.h"
#include "fix/session/quickfix_headers.h"

namespace tutti {

// Between the library's messages and plain values. The one way back fails, and answers the tag, where a group
// does not have as many entries as its count says.
FIX::Message library_message(const FixMessage& message);
std::optional<int> read_message(const FIX::Message& message, FixMessage& out);

}  // namespace tutti
