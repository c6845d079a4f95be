#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "core/clock.h"
#include "dealer/config/fault_config.h"
#include "dealer/trading/mishap.h"

namespace tutti {

// Plays the fault script: counts what happens on each account and says what goes wrong with it.
class FaultScript {
 public:
  // Keeps a reference to the faults.
  FaultScript(const std::vector<FaultConfig>& faults, TimePoint start);

  // Counts one login or request of an account. A drop that it brings falls due at `now`.
  Mishap strike(std::int32_t account, FaultPoint point, TimePoint now);
  // Counts one thing that an account is told at time(); the number that a spoilt copy of it is filled with.
  std::optional<double> garbage(std::int32_t account, FaultPoint point);

  // Sessions to be ended.
  struct Drop {
    std::vector<std::int32_t> accounts;  // none: all
  };
  std::optional<TimePoint> next_drop() const;
  // The next drop that is due at time(); nothing when none is.
  std::optional<Drop> take_drop();

  TimePoint time() const { return time_; }
  void set_time(TimePoint time) { time_ = time; }

 private:
  struct Count {
    std::int64_t seen = 0;
    std::int64_t struck = 0;
  };

  // Counts; true when the fault strikes.
  bool strikes(std::size_t fault, std::int32_t account, FaultPoint point, TimePoint now);

  const std::vector<FaultConfig>& faults_;
  const TimePoint start_;
  TimePoint time_;
  bool has_garbage_;
  std::multimap<TimePoint, Drop> drops_;
  std::map<std::pair<std::size_t, std::int32_t>, Count> counts_;  // by fault and account
};

}  // namespace tutti
