#include "core/clock.h"

#include <ctime>

namespace tutti {
namespace {

std::chrono::seconds zone_offset(TimePoint moment) {
  const std::time_t utc = std::chrono::system_clock::to_time_t(moment);
  std::tm local{};
  // The zone may be another one by now.
  ::tzset();
  if (::localtime_r(&utc, &local) == nullptr) return std::chrono::seconds{0};
  // Reading the broken-down local time as if it were UTC needs no platform's extension.
  const auto days = std::chrono::sys_days{std::chrono::year{local.tm_year + 1900} /
                                          std::chrono::month{static_cast<unsigned>(local.tm_mon + 1)} /
                                          std::chrono::day{static_cast<unsigned>(local.tm_mday)}};
  const auto wall = days + std::chrono::hours{local.tm_hour} + std::chrono::minutes{local.tm_min} +
                    std::chrono::seconds{local.tm_sec};
  return wall.time_since_epoch() - std::chrono::floor<std::chrono::seconds>(moment).time_since_epoch();
}

}  // namespace

TimePoint SystemClock::now() const {
  return std::chrono::time_point_cast<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

std::chrono::seconds SystemClock::utc_offset(TimePoint moment) const {
  // Lines come by the hundred, and each has its time: the zone is looked up once for the lines of a minute.
  struct Known {
    std::chrono::sys_time<std::chrono::minutes> minute{std::chrono::minutes::min()};
    std::chrono::seconds offset{0};
  };
  thread_local Known known;
  const auto minute = std::chrono::floor<std::chrono::minutes>(moment);
  if (minute != known.minute) known = {minute, zone_offset(moment)};
  return known.offset;
}

std::chrono::milliseconds SystemClock::elapsed() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace tutti
