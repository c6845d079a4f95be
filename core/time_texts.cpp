#include "core/time_texts.h"

#include <fmt/chrono.h>

namespace tutti {
namespace {

// Calendar and clock of a moment as it stands. The formatter would add the machine's zone to a moment itself.
std::tm broken_down(TimePoint time) {
  return fmt::gmtime(std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count());
}

}  // namespace

std::string full_time_text(TimePoint time) {
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", broken_down(time));
}

std::string short_time_text(TimePoint time) {
  return fmt::format("{:%H:%M}", broken_down(time));
}

std::string now_text(const Clock& clock) {
  const TimePoint now = clock.now();
  return full_time_text(now + clock.utc_offset(now));
}

}  // namespace tutti
