#pragma once

#include <cstddef>
#include <map>
#include <optional>

#include "core/clock.h"
#include "dealer/event_queue.h"
#include "dealer/mishap.h"
#include "dealer/trading_account.h"

namespace tutti {

// Hands answers to the session that is logged in on an account, as the fault script will have it: never,
// twice, or late.
class AnswerDesk {
 public:
  // False when nobody is or will be told.
  bool tell(TradingAccount& account, const Mishap& mishap, const AnswerNews& answer, TimePoint now);

  std::optional<TimePoint> next_due() const;
  // Hands out the late answers that are due at `at`; those without a session by then are lost.
  void run(TimePoint at);

 private:
  struct Late {
    TradingAccount* account = nullptr;
    AnswerNews answer;
  };

  std::multimap<TimePoint, Late> late_;
};

}  // namespace tutti
