#pragma once

#include <cstdint>

#include "core/clock.h"
#include "dealer/market/market.h"
#include "dealer/trading/trade_request.h"
#include "dealer/trading/trading_account.h"
#include "sessions/contract/pending_order.h"

namespace tutti {

// Changes an account as a request demands, and tells its listener how the lists change.
class TradeExecution {
 public:
  // Keeps a reference.
  explicit TradeExecution(const Market& market) : market_(market) {}

  // `price` of a market order or close. The request must have been judged good just before.
  void execute(const TradeRequest& request, TradingAccount& account, double price, TimePoint at) const;

  // The line of a market order, close or entry order among what waits.
  static PendingOrder row_of(const TradeRequest& request, TimePoint at);
  static void add_row(TradingAccount& account, const PendingOrder& order);
  // Nothing happens when there is no such order. The stops of its position are left as they are.
  static void remove_row(TradingAccount& account, std::int64_t order);

 private:
  void open_position(const TradeRequest& request, TradingAccount& account, double price, TimePoint at) const;
  static void close_position(const TradeRequest& request, TradingAccount& account, double price);
  // The same number with another content, told anew.
  static void replace_row(TradingAccount& account, PendingOrder order);
  static void update_entry(const TradeRequest& request, TradingAccount& account);
  static void set_stops(const TradeRequest& request, TradingAccount& account, TimePoint at);
  static void cancel_stops(TradingAccount& account, std::int64_t order);
  // What the position itself says of its stops; told when it changes.
  static void note_stops(TradingAccount& account, std::int64_t ticket, double stop_loss, double take_profit);

  const Market& market_;
};

}  // namespace tutti
