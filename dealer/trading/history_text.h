#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "dealer/trading/request_record.h"
#include "sessions/contract/execution.h"

namespace tutti::history_text {

// Requests and fills as texts of one line without quotes: fields with a blank between them. Nothing when a
// text can't be read.
std::string of(const RequestRecord& record);
std::string of(const Execution& fill);
std::optional<RequestRecord> request(std::string_view text);
std::optional<Execution> fill(std::string_view text);

}  // namespace tutti::history_text
