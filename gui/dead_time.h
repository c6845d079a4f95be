#pragma once

#include <optional>

#include "core/clock.h"
#include "orders/frmPriceChanged.h"

namespace tutti {

// Whether something came under the pointer so short ago that a click is not aimed at it.
inline bool in_dead_time(const Clock& clock, const std::optional<TimePoint>& since) {
  if (!since) return false;
  const auto passed = clock.now() - *since;
  return passed >= passed.zero() && passed < frmPriceChanged::dead_time;
}

}  // namespace tutti
