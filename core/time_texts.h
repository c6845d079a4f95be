#pragma once

#include <string>
#include <string_view>

#include "core/clock.h"

namespace tutti {

// Tooltip of a column with times that the dealing server tells.
inline constexpr std::string_view server_time_tip = "As the dealing server tells it, in UTC";

// "yyyy-mm-dd hh:nn:ss" and "hh:nn" of a server time, in UTC whatever the zone of this machine.
std::string full_time_text(TimePoint time);
std::string short_time_text(TimePoint time);
// "yyyy-mm-dd hh:nn:ss" of this moment on the operator's clock.
std::string now_text(const Clock& clock);

}  // namespace tutti
