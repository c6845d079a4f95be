#include "dealer/market/trigger.h"

#include "sessions/contract/codes.h"

namespace tutti {
namespace {

// A tenth of the smallest point there is: a price that was reckoned meets the market where its digits say so.
constexpr double slack = 1e-9;

}  // namespace

Trigger trigger_of(const PendingOrder& order) {
  Trigger trigger;
  const bool bought = buys(order.operation);
  trigger.ask = bought;
  const auto at_or_below = [&](double price) { trigger.below = price + slack; };
  const auto at_or_above = [&](double price) { trigger.above = price - slack; };
  if (order.kind == OrderKind::entry) {
    const bool limit = order.operation == operation::buy || order.operation == operation::sell;
    if (bought == limit)
      at_or_below(order.price);
    else
      at_or_above(order.price);
  } else if (order.kind == OrderKind::stops) {
    // Buying closes what was sold, whose loss lies above.
    const double low = bought ? order.take_profit : order.stop_loss;
    const double high = bought ? order.stop_loss : order.take_profit;
    if (low > 0.0) at_or_below(low);
    if (high > 0.0) at_or_above(high);
  }
  return trigger;
}

}  // namespace tutti
