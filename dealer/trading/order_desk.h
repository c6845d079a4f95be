#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "core/clock.h"
#include "dealer/config/dealer_config.h"
#include "dealer/market/market.h"
#include "dealer/market/price_watch.h"
#include "dealer/trading/answer_desk.h"
#include "dealer/trading/fault_script.h"
#include "dealer/trading/instruction.h"
#include "dealer/trading/order_numbers.h"
#include "dealer/trading/outcome_log.h"
#include "dealer/trading/request_history.h"
#include "dealer/trading/trade_execution.h"
#include "dealer/trading/trade_request.h"
#include "dealer/trading/trade_rules.h"
#include "dealer/trading/trading_account.h"

namespace tutti {

// Takes requests and brings each one to its end.
//
// send() answers a request code at once. A taken request gets the next order number and is executed
// after the latency; a market order or close may on its way become pending, and there be requoted. What waits
// for a price is executed as the price comes. Answers go to whoever then listens to the
// account.
class OrderDesk {
 public:
  // Keeps references to all four.
  OrderDesk(const DealerConfig& config, const Market& market, FaultScript& faults, RequestHistory& history);

  // Refuses an instruction or sends it on its way; the request code.
  std::int32_t send(TradingAccount& account, const Instruction& wanted, TimePoint now);
  // `order` as in OrderTimer.
  std::int32_t answer_requote(TradingAccount& account, std::int64_t order, bool accept, TimePoint now);

  std::optional<TimePoint> next_due() const;
  // Does what is due at `at` or before.
  void run(TimePoint at);
  // Sets off what waits for the prices that the market has now, whether somebody is logged in or not.
  void run_triggers(std::vector<TradingAccount>& accounts, PriceWatch& watch, TimePoint at);

  std::size_t in_flight() const { return flights_.size(); }
  // In the order in which they fall due.
  std::vector<TradeRequest> requests() const;
  // Takes a request up again that an earlier run had taken. It keeps its time; if that is over, it is due
  // now, or once the replay has brought what it lacks a price for.
  void resume(TradingAccount& account, const TradeRequest& request, TimePoint now);
  // While it is shut, every request is refused without a text, and so is every answer to a requote.
  void set_shut(bool shut) { shut_ = shut; }

  OrderNumbers& numbers() { return numbers_; }
  // Something of this account has changed that the book holds.
  void note_change(TradingAccount& account) {
    account.touch();
    ++revision_;
  }
  // Grows with every change and every number given.
  std::uint64_t revision() const { return revision_ + history_.revision(); }
  const std::vector<Outcome>& outcomes() const { return log_.all(); }
  // As DealingServer::take_untold.
  std::vector<Outcome> take_untold() { return std::exchange(untold_, {}); }

 private:
  struct Flight {
    TradingAccount* account = nullptr;
    TradeRequest request;
    Mishap mishap;
    std::chrono::milliseconds latency{0};
    bool resumed = false;  // sent in an earlier run
    // Counts while the request is requoted.
    bool requoted = false;
    double new_price = 0.0;
    std::int16_t seconds_left = 0;
    TimePoint deadline{};  // from here on the new price can't be accepted
  };
  using Flights = std::multimap<TimePoint, Flight>;

  // What the request says of itself is filled in.
  const Outcome& log(const TradeRequest& request, Outcome outcome, TimePoint at);
  // When a request that lacks a price is looked at again: nothing where none can come, or it must not wait.
  std::optional<TimePoint> next_price(const Flight& flight) const;
  // The price agreed on, or else the market's.
  double price(const TradeRequest& request) const;
  // The dealer's last word.
  std::int32_t verdict(const Flight& flight) const;

  // Stations of a request.
  void arrive(Flight flight, TimePoint at);
  void enter_dealing(Flight flight, std::chrono::milliseconds wait, TimePoint at);
  void deal(Flight flight, TimePoint at);
  void tick(Flight flight, TimePoint at);
  Flights::iterator find_requote(const TradingAccount& account, std::int64_t order);
  std::int32_t no_requote(const TradingAccount& account, std::int64_t order) const;
  void leave_dealing(Flights::iterator at, TradeRequest::Stage stage, TimePoint now);
  void finish(const Flight& flight, std::int32_t result, TimePoint at);

  // A waiting order whose price has come. It stays where it can't be executed for now.
  void set_off(TradingAccount& account, std::int64_t number, TimePoint at);
  // Executes or cancels it, as the report on it says.
  void carry_out(TradingAccount& account, const PendingOrder& order, const TradeRequest& request,
                 const OrderReport& report, TimePoint at);

  // All of a request was filled: the report on it says so, and the log of fills.
  void note_fill(const TradeRequest& request, std::int64_t execution, OrderReport& report);

  // What the fault script sends behind an answer.
  void tell_unknown(TradingAccount& account, OrderReport report, TimePoint at);

  const DealerConfig& config_;
  FaultScript& faults_;
  RequestHistory& history_;
  TradeRules rules_;
  TradeExecution execution_;
  const Market& market_;
  AnswerDesk answers_;
  OutcomeLog log_;
  std::vector<Outcome> untold_;
  Flights flights_;
  OrderNumbers numbers_;
  std::uint64_t revision_ = 0;
  bool shut_ = false;
};

}  // namespace tutti
