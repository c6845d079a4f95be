#pragma once

#include <chrono>
#include <functional>

#include "core/clock.h"

namespace tutti {

// A timer of a form: runs on_tick when it is polled and its interval has gone by. Never catches up on ticks
// that were missed, and does not wait for a clock that was set back to come round again.
class Timer {
 public:
  explicit Timer(std::chrono::milliseconds interval) : interval_(interval) {}

  void poll(TimePoint now) {
    if (now < next_ && next_ - now <= interval_) return;
    next_ = now + interval_;
    if (on_tick) on_tick();
  }
  std::function<void()> on_tick;

 private:
  std::chrono::milliseconds interval_;
  TimePoint next_{};
};

}  // namespace tutti
