#include "core/clock.h"

#include <ctime>

namespace tutti {

TimePoint SystemClock::now() const {
  return std::chrono::time_point_cast<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

std::chrono::seconds SystemClock::utc_offset(TimePoint moment) const {
  const std::time_t utc = std::chrono::system_clock::to_time_t(moment);
  // Reading the broken-down local time as if it were UTC needs no platform's extension.
  const std::tm* local = std::localtime(&utc);
  if (local == nullptr) return std::chrono::seconds{0};
  const auto days = std::chrono::sys_days{std::chrono::year{local->tm_year + 1900} /
                                          std::chrono::month{static_cast<unsigned>(local->tm_mon + 1)} /
                                          std::chrono::day{static_cast<unsigned>(local->tm_mday)}};
  const auto wall = days + std::chrono::hours{local->tm_hour} + std::chrono::minutes{local->tm_min} +
                    std::chrono::seconds{local->tm_sec};
  return wall.time_since_epoch() - std::chrono::floor<std::chrono::seconds>(moment).time_since_epoch();
}

std::chrono::milliseconds SystemClock::elapsed() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace tutti
