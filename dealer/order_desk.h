#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "core/clock.h"
#include "dealer/dealer_config.h"
#include "dealer/market.h"
#include "dealer/market_request.h"
#include "dealer/trading_account.h"

namespace tutti {

// Takes market orders and closes, and answers each one exactly once after the execution latency.
//
// A request passes two gates: `open` and `close` answer a request code at once, `run` decides the result when
// the request is due and tells it to the session that is then logged in on the account.
class OrderDesk {
 public:
  // Keeps references to both.
  OrderDesk(const DealerConfig& config, const Market& market);

  // A symbol that the account does not carry, or that has no price, is given as nothing or answers
  // request::invalid_price. A taken request gets the next order number.
  std::int32_t open(TradingAccount& account, std::int32_t side, std::optional<std::size_t> symbol,
                    double amount, TimePoint now);
  std::int32_t close(TradingAccount& account, std::int64_t ticket, double amount, TimePoint now);

  std::optional<TimePoint> next_due() const;
  // Executes what is due at `at` or before.
  void run(TimePoint at);

  std::size_t in_flight() const { return requests_.size(); }
  std::vector<MarketRequest> requests() const;
  // Takes a request up again that an earlier run had taken.
  void resume(TradingAccount& account, const MarketRequest& request, TimePoint now);

  std::int64_t next_number() const { return next_number_; }
  void set_next_number(std::int64_t number) { next_number_ = number; }
  // Grows with every request taken or answered.
  std::uint64_t revision() const { return revision_; }

 private:
  struct InFlight {
    TradingAccount* account = nullptr;
    MarketRequest request;
  };

  void take(TradingAccount& account, MarketRequest request, TimePoint now);
  void execute_open(TradingAccount& account, const MarketRequest& request, TimePoint at);
  void execute_close(TradingAccount& account, const MarketRequest& request);
  std::int32_t judge_open(const TradingAccount& account, const MarketRequest& request,
                          std::size_t symbol) const;
  // What the state of the symbol allows, whatever the order.
  std::int32_t trading_result(const TradingAccount& account, std::size_t symbol) const;
  bool tradable(double amount) const;

  const DealerConfig& config_;
  const Market& market_;
  std::multimap<TimePoint, InFlight> requests_;
  std::int64_t next_number_;
  std::uint64_t revision_ = 0;
};

}  // namespace tutti
