#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/clock.h"
#include "sessions/contract/request_id.h"

// How values stand in messages. What is read is read whole or not at all.
namespace tutti {

// The shortest decimal text that reads as the value, without an exponent; it must be finite.
std::string wire_number(double value);
// Digits with a sign and a point; nothing for other texts, for one of more than 32 characters, and for a
// value beyond 10^15.
std::optional<double> read_wire_number(std::string_view text);
std::optional<std::int64_t> read_wire_integer(std::string_view text);

// "20260131-23:59:59.999", UTC.
std::string wire_time(TimePoint time);
// With any number of digits behind the second up to nine, or none.
std::optional<TimePoint> read_wire_time(std::string_view text);

// The name of a request: 13 characters of 0-9 and A-Z.
std::string wire_id(RequestId id);
// Nothing for a text that no id of ours has.
std::optional<RequestId> read_wire_id(std::string_view text);

}  // namespace tutti
