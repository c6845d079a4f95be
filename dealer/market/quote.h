#pragma once

#include "core/clock.h"

namespace tutti {

// Prices of one symbol at the dealing server. All 0 until the first quote.
struct Quote {
  double bid = 0.0;
  double ask = 0.0;
  double high = 0.0;  // of the bid, since midnight UTC
  double low = 0.0;
  TimePoint time{};

  bool known() const { return bid > 0.0; }
  double middle() const { return (bid + ask) / 2.0; }
};

}  // namespace tutti
