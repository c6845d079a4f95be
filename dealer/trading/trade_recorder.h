#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/clock.h"
#include "dealer/config/dealer_config.h"
#include "dealer/trading/order_numbers.h"
#include "dealer/trading/outcome_log.h"
#include "dealer/trading/request_history.h"
#include "dealer/trading/trade_request.h"
#include "dealer/trading/trading_account.h"

namespace tutti {

// What the desks do goes on record here: numbers given, accounts changed, fills, and how it all ended. The
// book keeper reads what is to be stored, the server what its operator is told.
class TradeRecorder {
 public:
  // Keeps a reference. The log of fills begins at `start`.
  TradeRecorder(const DealerConfig& config, TimePoint start) : history_(start), numbers_(config) {}

  OrderNumbers& numbers() { return numbers_; }
  RequestHistory& history() { return history_; }
  const RequestHistory& history() const { return history_; }

  // Something of this account has changed that the book holds.
  void note_change(TradingAccount& account) {
    account.touch();
    ++changes_;
  }
  // All of a request is filled now, as the report on it says: that gets the fill, and so does the log of
  // fills. To be called before the account is changed by it.
  void note_fill(const TradeRequest& request, std::int64_t execution, TradingAccount& account,
                 OrderReport& report);
  // In order of time.
  void note_outcome(const Outcome& outcome);

  // Grows with every change of an account and of the history, a number given with one included.
  std::uint64_t revision() const { return changes_ + history_.revision(); }
  const std::vector<Outcome>& outcomes() const { return log_.all(); }
  // As DealingServer::take_untold.
  std::vector<Outcome> take_untold() { return std::exchange(untold_, {}); }

 private:
  RequestHistory history_;
  OrderNumbers numbers_;
  OutcomeLog log_;
  std::vector<Outcome> untold_;
  std::uint64_t changes_ = 0;
};

}  // namespace tutti
