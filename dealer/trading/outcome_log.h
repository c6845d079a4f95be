#pragma once

#include <cstddef>
#include <vector>

#include "dealer/trading/outcome.h"

namespace tutti {

// The outcomes of the run in order of time, the oldest forgotten once there are too many.
class OutcomeLog {
 public:
  void add(const Outcome& outcome) {
    if (outcomes_.size() == 2 * kept) outcomes_.erase(outcomes_.begin(), outcomes_.begin() + kept);
    outcomes_.push_back(outcome);
  }
  const std::vector<Outcome>& all() const { return outcomes_; }

 private:
  static constexpr std::ptrdiff_t kept = 100'000;  // at least the last so many

  std::vector<Outcome> outcomes_;
};

}  // namespace tutti
