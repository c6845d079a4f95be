#pragma once

#include <limits>

#include "dealer/market/quote.h"
#include "sessions/contract/pending_order.h"

namespace tutti {

// The prices at which an order that waits is set off: one side of the market at or below the one price, or at
// or above the other.
struct Trigger {
  bool ask = false;  // looks at the ask, not the bid
  double below = 0.0;
  double above = std::numeric_limits<double>::infinity();

  bool reached(const Quote& quote) const {
    const double price = ask ? quote.ask : quote.bid;
    return quote.known() && (price <= below || price >= above);
  }
};

// Of what is in dealing nothing is ever reached. An SL/TP order looks at the price at which its position
// closes.
Trigger trigger_of(const PendingOrder& order);

}  // namespace tutti
