#pragma once

#include <cstddef>
#include <vector>

#include "dealer/market/market.h"
#include "dealer/market/trigger.h"

namespace tutti {

// The nearest prices at which something that waits in a symbol is set off, over all accounts, so that a step
// of the market costs four comparisons while nothing is.
class PriceWatch {
 public:
  // Keeps a reference.
  explicit PriceWatch(const Market& market) : market_(market), bids_(market.count()), asks_(market.count()) {}

  // Something waits for this. What goes away need not be told: reached() may then be true for nothing once.
  void expect(std::size_t symbol, const Trigger& trigger);
  bool reached(std::size_t symbol) const;
  // Nothing is expected until it is told again.
  void forget(std::size_t symbol);

 private:
  const Market& market_;
  std::vector<Trigger> bids_, asks_;  // by place in the market; the nearest of all
};

}  // namespace tutti
