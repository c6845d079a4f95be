#include "dealer/market/price_watch.h"

#include <algorithm>

namespace tutti {

void PriceWatch::expect(std::size_t symbol, const Trigger& trigger) {
  Trigger& nearest = (trigger.ask ? asks_ : bids_)[symbol];
  nearest.ask = trigger.ask;
  nearest.below = std::max(nearest.below, trigger.below);
  nearest.above = std::min(nearest.above, trigger.above);
}

bool PriceWatch::reached(std::size_t symbol) const {
  const Quote& quote = market_.quote(symbol);
  return bids_[symbol].reached(quote) || asks_[symbol].reached(quote);
}

void PriceWatch::forget(std::size_t symbol) {
  bids_[symbol] = {};
  asks_[symbol] = {};
}

}  // namespace tutti
