#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "dealer/config/dealer_config.h"
#include "dealer/market/market.h"
#include "dealer/trading/instruction.h"
#include "dealer/trading/trade_request.h"
#include "dealer/trading/trading_account.h"
#include "sessions/contract/codes.h"

namespace tutti {

// What the dealer allows. Decides, and changes nothing.
class TradeRules {
 public:
  // Keeps references to both.
  TradeRules(const DealerConfig& config, const Market& market) : config_(config), market_(market) {}

  // Request code, answered while the client calls.
  RequestCode admit(const TradingAccount& account, const Instruction& wanted) const;

  // Result code of a request at the market as it is. Market orders and closes are judged at `price`.
  ResultCode judge(const TradingAccount& account, const TradeRequest& request, double price) const;
  // The result code an account is configured to end such a request with; 0 when none.
  static ResultCode configured_result(const TradingAccount& account, TradeKind kind);

  // Whether it can't be done only because its symbol, or a rate for it, has no price yet.
  bool lacks_price(const TradingAccount& account, const TradeRequest& request) const;

  // Price at which a market order or close is done now; 0 while the symbol has none.
  double price(const TradeRequest& request) const;
  // The price made worse for the client by so many points.
  double worse_price(const TradeRequest& request, double price, double points) const;
  // How long market orders and closes of the account stay in dealing.
  std::chrono::milliseconds dealing_time(const TradingAccount& account, const TradeRequest& request) const;

 private:
  RequestCode admit_open(const TradingAccount& account, const Instruction& wanted) const;
  RequestCode admit_close(const TradingAccount& account, const Instruction& wanted) const;
  RequestCode admit_entry(const TradingAccount& account, const Instruction& wanted) const;
  RequestCode admit_update(const TradingAccount& account, const Instruction& wanted) const;
  RequestCode admit_stops(const TradingAccount& account, const Instruction& wanted) const;
  ResultCode judge_open(const TradingAccount& account, const TradeRequest& request, double price) const;
  ResultCode judge_close(const TradingAccount& account, const TradeRequest& request) const;
  ResultCode judge_update(const TradingAccount& account, const TradeRequest& request) const;
  ResultCode judge_stops(const TradingAccount& account, const TradeRequest& request) const;
  // What the state of the symbol allows, whatever the order.
  ResultCode judge_symbol(const TradingAccount& account, std::size_t symbol) const;
  // Whether an entry order's prices are on their sides, and the order far enough from the market.
  bool well_priced(const TradingAccount& account, const Instruction& order, std::size_t symbol) const;
  double scaled(std::size_t symbol, double points) const;  // as a price difference
  bool priced(const TradingAccount& account, std::size_t symbol) const {
    return market_.quote(symbol).known() && account.rates_known(symbol);
  }
  bool orderable(double amount) const;  // what the book can hold, and within the largest lot
  bool tradable(double amount) const;   // not below the smallest lot, and a multiple of the step
  std::size_t place(const TradeRequest& request) const { return *market_.find(request.symbol); }
  // Whether a market order or close buys.
  static bool buys_in_market(const TradeRequest& request);

  const DealerConfig& config_;
  const Market& market_;
};

}  // namespace tutti
