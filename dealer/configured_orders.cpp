#include "dealer/configured_orders.h"

#include <utility>

namespace tutti {

void place_configured_orders(const DealerConfig& config, OrderDesk& desk, TradingAccount& account,
                             TimePoint now) {
  for (const EntryOrderConfig& configured : config.entry_orders) {
    if (configured.account != account.config().number) continue;
    PendingOrder order;
    order.order = desk.numbers().take();
    order.kind = configured.ticket > 0 ? "ST" : "LO";
    order.reference = configured.ticket;
    order.operation = configured.operation;
    order.symbol = configured.symbol;
    order.amount = configured.amount;
    order.price = configured.price;
    order.stop_loss = configured.stop_loss;
    order.take_profit = configured.take_profit;
    order.time = now;
    account.add_order(std::move(order));
  }
}

}  // namespace tutti
