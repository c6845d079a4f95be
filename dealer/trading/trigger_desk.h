#pragma once

#include <cstdint>
#include <vector>

#include "core/clock.h"
#include "dealer/config/dealer_config.h"
#include "dealer/market/market.h"
#include "dealer/market/price_watch.h"
#include "dealer/trading/answer_desk.h"
#include "dealer/trading/fault_script.h"
#include "dealer/trading/trade_execution.h"
#include "dealer/trading/trade_recorder.h"
#include "dealer/trading/trade_rules.h"
#include "dealer/trading/trading_account.h"

namespace tutti {

// Sets off what waits for a price: entry orders, and the stop loss and take profit of positions.
class TriggerDesk {
 public:
  // Keeps references to all five.
  TriggerDesk(const DealerConfig& config, const Market& market, FaultScript& faults, TradeRecorder& recorder,
              AnswerDesk& answers);

  // Sets off what waits for the prices that the market has now, whether somebody is logged in or not.
  void run(std::vector<TradingAccount>& accounts, PriceWatch& watch, TimePoint at);

 private:
  // A waiting order whose price has come. It stays where it can't be executed for now.
  void set_off(TradingAccount& account, std::int64_t number, TimePoint at);
  // Executes or cancels it, as the report on it says.
  void carry_out(TradingAccount& account, const PendingOrder& order, const TradeRequest& request,
                 const OrderReport& report, TimePoint at);

  const Market& market_;
  FaultScript& faults_;
  TradeRecorder& recorder_;
  AnswerDesk& answers_;
  TradeRules rules_;
  TradeExecution execution_;
};

}  // namespace tutti
