#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/clock.h"

namespace tutti {

// Times as machines read them (ISO 8601).

// "2026-11-21T05:15:16.250Z"
std::string utc_text(TimePoint time);
// The moment that is meant by such a text, which may end behind its day, minute or second; nothing when it is
// none. With `end` a day alone means its end.
std::optional<TimePoint> utc_moment(std::string_view text, bool end = false);

// Gives wall clock texts, "2026-11-21 05:15:16", their zone: "2026-11-21T05:15:16+03:30". In the hour that
// comes twice a year it means the one after the clock was set back. What is no such text stays as it is.
class LocalTimes {
 public:
  explicit LocalTimes(const Clock& clock) : clock_(clock) {}

  std::string text(std::string_view wall);

 private:
  std::string zone_of(std::string_view wall) const;

  const Clock& clock_;
  // Of the minute that was asked about last: in a journal the next line has it most often.
  std::string minute_;
  std::string zone_;
};

}  // namespace tutti
