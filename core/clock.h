#pragma once

#include <chrono>

namespace tutti {

// A moment in UTC, to the millisecond.
using TimePoint = std::chrono::sys_time<std::chrono::milliseconds>;

// Port to the machine's clock. Everything that depends on time asks one of these, so tests turn it by hand.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual TimePoint now() const = 0;
  // What to add to a UTC moment for the operator's wall clock.
  virtual std::chrono::seconds utc_offset(TimePoint moment) const = 0;
  // Time gone by since a moment of the clock's own choosing: for how long to wait. It never steps, while
  // `now` does when the machine's clock is set.
  virtual std::chrono::milliseconds elapsed() const = 0;
};

// The machine's own clock and time zone.
class SystemClock final : public Clock {
 public:
  TimePoint now() const override;
  std::chrono::seconds utc_offset(TimePoint moment) const override;
  std::chrono::milliseconds elapsed() const override;
};

// Stands still until it is moved. Wall clock is UTC unless it is told a zone.
class ManualClock final : public Clock {
 public:
  explicit ManualClock(TimePoint start = TimePoint{std::chrono::seconds{1'767'225'600}}) : now_(start) {}
  TimePoint now() const override { return now_; }
  std::chrono::seconds utc_offset(TimePoint) const override { return utc_offset_; }
  void set_utc_offset(std::chrono::seconds offset) { utc_offset_ = offset; }
  std::chrono::milliseconds elapsed() const override { return elapsed_; }
  // Lets time go by.
  void advance(std::chrono::milliseconds step) {
    now_ += step;
    elapsed_ += step;
  }
  // Sets the clock, forward or back, without any time going by.
  void set_by(std::chrono::milliseconds step) { now_ += step; }

 private:
  TimePoint now_;
  std::chrono::seconds utc_offset_{0};
  std::chrono::milliseconds elapsed_{0};
};

}  // namespace tutti
