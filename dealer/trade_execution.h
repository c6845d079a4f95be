#pragma once

#include <cstdint>

#include "core/clock.h"
#include "dealer/market.h"
#include "dealer/trade_request.h"
#include "dealer/trading_account.h"
#include "sessions/contract/pending_order.h"

namespace tutti {

// Changes an account as a request demands, and tells the lists of its session.
class TradeExecution {
 public:
  // Keeps a reference.
  explicit TradeExecution(const Market& market) : market_(market) {}

  // `price` of a market order or close. The request must have been judged good just before.
  void execute(const TradeRequest& request, TradingAccount& account, double price, TimePoint at) const;

  // The line of a market order, close or entry order among what waits.
  static PendingOrder row_of(const TradeRequest& request, TimePoint at);
  static void add_row(TradingAccount& account, const PendingOrder& order);
  // Nothing happens when there is no such order.
  static void remove_row(TradingAccount& account, std::int64_t order);

 private:
  void open_position(const TradeRequest& request, TradingAccount& account, double price, TimePoint at) const;
  static void close_position(const TradeRequest& request, TradingAccount& account, double price);

  const Market& market_;
};

}  // namespace tutti
