#include "dealer/config/tick.h"

#include <fmt/format.h>

#include <cmath>
#include <optional>
#include <string_view>

#include "core/clock.h"
#include "core/numbers.h"
#include "core/texts.h"
#include "dealer/config/bounds.h"

namespace tutti {
namespace {

constexpr double longest_replay = 1e9;  // seconds

// "yyyy-mm-dd hh:nn:ss" with or without decimals of the second.
std::optional<TimePoint> parse_moment(std::string_view text) {
  if (text.size() < 19 || text[4] != '-' || text[7] != '-' || text[10] != ' ' || text[13] != ':' ||
      text[16] != ':')
    return std::nullopt;
  const auto year = parse_int32(text.substr(0, 4)), month = parse_int32(text.substr(5, 2)),
             day = parse_int32(text.substr(8, 2)), hour = parse_int32(text.substr(11, 2)),
             minute = parse_int32(text.substr(14, 2));
  const auto second = parse_number(text.substr(17));
  if (!year || !month || !day || !hour || !minute || !second) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year{*year},
                                         std::chrono::month{static_cast<unsigned>(*month)},
                                         std::chrono::day{static_cast<unsigned>(*day)}};
  if (!date.ok() || *hour < 0 || *hour > 23 || *minute < 0 || *minute > 59 || *second < 0.0 ||
      *second >= 60.0)
    return std::nullopt;
  return TimePoint{std::chrono::sys_days{date}} + std::chrono::hours{*hour} + std::chrono::minutes{*minute} +
         std::chrono::milliseconds{std::llround(*second * 1000.0)};
}

// Reads the lines of one file in turn.
class TickReader {
 public:
  // Empty when the line was good.
  std::string_view take(std::string_view line) {
    const auto fields = split(line, ",");
    if (fields.size() != 4) return "must have the four fields time,symbol,bid,ask";
    Tick tick;
    const std::string_view time = trim(fields[0]);
    if (const auto seconds = parse_number(time); seconds && !start_) {
      if (*seconds < 0.0 || *seconds > longest_replay) return "has a time out of range";
      tick.at = std::chrono::milliseconds{std::llround(*seconds * 1000.0)};
    } else if (const auto moment = parse_moment(time); moment && (start_ || ticks_.empty())) {
      if (!start_) start_ = *moment;
      tick.at = *moment - *start_;
    } else {
      return "has a time that is neither seconds nor a moment like those before";
    }
    const auto bid = parse_number(fields[2]), ask = parse_number(fields[3]);
    if (!bid || !ask || *bid <= 0.0 || *ask < *bid || *ask > bounds::highest_price)
      return "must have a bid above 0 and an ask not below it";
    tick.symbol = trim(fields[1]);
    tick.bid = *bid;
    tick.ask = *ask;
    if (!ticks_.empty() && tick.at < ticks_.back().at) return "is earlier than the line before";
    ticks_.push_back(std::move(tick));
    return {};
  }

  std::vector<Tick> ticks() { return std::move(ticks_); }

 private:
  std::optional<TimePoint> start_;  // set when the file counts in moments
  std::vector<Tick> ticks_;
};

}  // namespace

tl::expected<std::vector<Tick>, FileError> load_ticks(const std::filesystem::path& file) {
  const auto content = read_file(file);
  if (!content) return tl::unexpected(content.error());
  TickReader reader;
  int number = 0;
  for (std::string_view line : split(*content, "\n")) {
    ++number;
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = trim(line);
    if (line.empty() || line.starts_with('#') || (number == 1 && folded(line).starts_with("time"))) continue;
    if (const auto why = reader.take(line); !why.empty())
      return tl::unexpected(FileError{file, fmt::format("line {}: {}", number, why)});
  }
  return reader.ticks();
}

}  // namespace tutti
