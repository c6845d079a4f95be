#include "dealer/trading/configured_orders.h"

#include <utility>

namespace tutti {

void place_configured_orders(const DealerConfig& config, OrderNumbers& numbers, TradingAccount& account,
                             TimePoint now) {
  for (const EntryOrderConfig& configured : config.entry_orders) {
    if (configured.account != account.config().number) continue;
    PendingOrder order{.order = numbers.take(),
                       .account = account.config().number,
                       .kind = configured.ticket > 0 ? OrderKind::stops : OrderKind::entry,
                       .reference = configured.ticket,
                       .operation = configured.operation,
                       .symbol_id = 0,
                       .symbol = configured.symbol,
                       .amount = configured.amount,
                       .price = configured.price,
                       .stop_loss = configured.stop_loss,
                       .take_profit = configured.take_profit,
                       .time = now};
    account.add_order(std::move(order));
  }
}

}  // namespace tutti
