#pragma once

#include <optional>

#include "core/clock.h"
#include "orders/frmPriceChanged.h"

namespace tutti {

// Whether something came under the pointer so short ago that a click is not aimed at it. `since` is of the
// clock's elapsed time.
inline bool in_dead_time(const Clock& clock, const std::optional<std::chrono::milliseconds>& since) {
  return since && clock.elapsed() - *since < frmPriceChanged::dead_time;
}

}  // namespace tutti
