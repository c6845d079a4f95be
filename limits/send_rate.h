#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>

namespace tutti {

// How many requests have left within the last second. Times are of a clock that never steps.
class SendRate {
 public:
  void left(std::chrono::milliseconds now);
  // When the next may leave; nothing: at once.
  std::optional<std::chrono::milliseconds> next(std::optional<double> per_second,
                                                std::chrono::milliseconds now) const;

 private:
  struct Moment {
    std::chrono::milliseconds time{0};
    std::size_t count = 0;  // that left then
  };
  std::deque<Moment> left_;  // within a second before the last one
};

}  // namespace tutti
