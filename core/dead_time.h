#pragma once

#include <chrono>
#include <optional>

#include "core/clock.h"

namespace tutti {

// How long what has just come under the pointer takes no click, so that nobody answers what he has not read.
inline constexpr std::chrono::milliseconds dead_time{300};

// Whether something came there so short ago. `since` is of the clock's elapsed time.
inline bool in_dead_time(const Clock& clock, const std::optional<std::chrono::milliseconds>& since) {
  return since && clock.elapsed() - *since < dead_time;
}

}  // namespace tutti
