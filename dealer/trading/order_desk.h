#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "core/clock.h"
#include "dealer/config/dealer_config.h"
#include "dealer/market/market.h"
#include "dealer/trading/answer_desk.h"
#include "dealer/trading/fault_script.h"
#include "dealer/trading/instruction.h"
#include "dealer/trading/trade_execution.h"
#include "dealer/trading/trade_recorder.h"
#include "dealer/trading/trade_request.h"
#include "dealer/trading/trade_rules.h"
#include "dealer/trading/trading_account.h"
#include "sessions/contract/codes.h"

namespace tutti {

// Takes requests and brings each one to its end.
//
// send() answers a request code at once. A taken request gets the next order number and is executed
// after the latency; a market order or close may on its way become pending, and there be requoted. Answers
// go to whoever then listens to the account.
class OrderDesk {
 public:
  // Keeps references to all five.
  OrderDesk(const DealerConfig& config, const Market& market, FaultScript& faults, TradeRecorder& recorder,
            AnswerDesk& answers);

  // Refuses an instruction or sends it on its way; the request code.
  RequestCode send(TradingAccount& account, const Instruction& wanted, TimePoint now);
  // `order` as in OrderTimer.
  RequestCode answer_requote(TradingAccount& account, std::int64_t order, bool accept, TimePoint now);

  std::optional<TimePoint> next_due() const;
  // Does what is due at `at` or before.
  void run(TimePoint at);

  std::size_t in_flight() const { return flights_.size(); }
  // In the order in which they fall due.
  std::vector<TradeRequest> requests() const;
  // Takes a request up again that an earlier run had taken. It keeps its time; if that is over, it is due
  // now, or once the replay has brought what it lacks a price for.
  void resume(TradingAccount& account, const TradeRequest& request, TimePoint now);
  // While it is shut, every request is refused without a text, and so is every answer to a requote.
  void set_shut(bool shut) { shut_ = shut; }

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
  void log(const TradeRequest& request, Outcome outcome, TimePoint at);
  // When a request that lacks a price is looked at again: nothing where none can come, or it must not wait.
  std::optional<TimePoint> next_price(const Flight& flight) const;
  // The price agreed on, or else the market's.
  double price(const TradeRequest& request) const;
  // The dealer's last word.
  ResultCode verdict(const Flight& flight) const;

  // Stations of a request.
  void arrive(Flight flight, TimePoint at);
  void enter_dealing(Flight flight, std::chrono::milliseconds wait, TimePoint at);
  void deal(Flight flight, TimePoint at);
  void tick(Flight flight, TimePoint at);
  Flights::iterator find_requote(const TradingAccount& account, std::int64_t order);
  RequestCode no_requote(const TradingAccount& account, std::int64_t order) const;
  void leave_dealing(Flights::iterator at, TradeRequest::Stage stage, TimePoint now);
  void finish(const Flight& flight, ResultCode result, TimePoint at);

  const DealerConfig& config_;
  const Market& market_;
  FaultScript& faults_;
  TradeRecorder& recorder_;
  AnswerDesk& answers_;
  TradeRules rules_;
  TradeExecution execution_;
  Flights flights_;
  bool shut_ = false;
};

}  // namespace tutti
