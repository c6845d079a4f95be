#include "apps/times.h"

#include <fmt/chrono.h>

#include <array>
#include <charconv>
#include <cstdlib>

namespace tutti {

namespace {

constexpr std::string_view pattern = "dddd-dd-dd dd:dd:dd";
constexpr std::size_t minute_length = 16;

bool is_wall(std::string_view text) {
  if (text.size() != pattern.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (pattern[i] == 'd' ? !digit : text[i] != pattern[i]) return false;
  }
  return true;
}

// Up to the separator behind it.
int number_at(std::string_view text, std::size_t place) {
  int out = 0;
  std::from_chars(text.data() + place, text.data() + text.size(), out);
  return out;
}

// The moment at which a clock in UTC shows the text.
TimePoint as_if_utc(std::string_view wall) {
  using namespace std::chrono;
  const year_month_day date{year{number_at(wall, 0)}, month{static_cast<unsigned>(number_at(wall, 5))},
                            day{static_cast<unsigned>(number_at(wall, 8))}};
  return sys_days{date} + hours{number_at(wall, 11)} + minutes{number_at(wall, 14)};
}

}  // namespace

std::string utc_text(TimePoint time) {
  const auto second = std::chrono::floor<std::chrono::seconds>(time);
  return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", fmt::gmtime(std::chrono::system_clock::to_time_t(second)),
                     (time - second).count());
}

std::optional<TimePoint> utc_moment(std::string_view text, bool end) {
  using namespace std::chrono;
  if (text.ends_with('Z')) text.remove_suffix(1);
  constexpr std::string_view form = "dddd-dd-ddTdd:dd:dd";
  constexpr std::size_t day_length = 10;
  const bool day_alone = text.size() == day_length;
  if (!day_alone && text.size() != minute_length && text.size() != form.size()) return std::nullopt;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (form[i] == 'd' ? !digit : text[i] != form[i]) return std::nullopt;
  }
  const year_month_day date{year{number_at(text, 0)}, month{static_cast<unsigned>(number_at(text, 5))},
                            day{static_cast<unsigned>(number_at(text, 8))}};
  if (!date.ok()) return std::nullopt;
  if (day_alone) return sys_days{date} + days{end ? 1 : 0};
  const int hour = number_at(text, 11);
  const int minute = number_at(text, 14);
  const int second = text.size() == form.size() ? number_at(text, 17) : 0;
  if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return sys_days{date} + hours{hour} + minutes{minute} + seconds{second};
}

std::string LocalTimes::zone_of(std::string_view wall) const {
  const TimePoint shown = as_if_utc(wall);
  // The zone is asked for a moment; the first guess lies within a day of the right one.
  const TimePoint guess = shown - clock_.utc_offset(shown);
  const auto offset = std::chrono::duration_cast<std::chrono::minutes>(clock_.utc_offset(guess)).count();
  return fmt::format("{}{:02}:{:02}", offset < 0 ? '-' : '+', std::abs(offset) / 60, std::abs(offset) % 60);
}

std::string LocalTimes::text(std::string_view wall) {
  if (!is_wall(wall)) return std::string{wall};
  if (wall.substr(0, minute_length) != minute_) {
    minute_ = wall.substr(0, minute_length);
    zone_ = zone_of(wall);
  }
  std::string out{wall};
  out[10] = 'T';
  return out += zone_;
}

}  // namespace tutti
