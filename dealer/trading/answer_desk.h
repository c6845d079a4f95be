#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "core/clock.h"
#include "dealer/trading/answer_news.h"
#include "dealer/trading/mishap.h"
#include "dealer/trading/trade_request.h"
#include "dealer/trading/trading_account.h"
#include "sessions/contract/codes.h"

namespace tutti {

// The event that ends a request, or makes it pending.
AnswerNews::Event answer_to(const TradeRequest& request, bool succeeded);
OrderReport report_on(const TradeRequest& request, ResultCode result, double price, TimePoint at);

// Hands answers to the listener of an account, as the fault script will have it: never,
// twice, or late.
class AnswerDesk {
 public:
  // False when nobody is or will be told.
  bool tell(TradingAccount& account, const Mishap& mishap, const AnswerNews& answer, TimePoint now);
  // Everything that can be said of a number, about one that is nobody's, as the fault script sends it behind
  // an answer: behind this report.
  void tell_unknown(TradingAccount& account, OrderReport report, std::int64_t number, TimePoint now);

  std::optional<TimePoint> next_due() const;
  // Hands out the late answers that are due at `at`; those that nobody hears by then are lost.
  void run(TimePoint at);

 private:
  struct Late {
    TradingAccount* account = nullptr;
    AnswerNews answer;
  };

  std::multimap<TimePoint, Late> late_;
};

}  // namespace tutti
