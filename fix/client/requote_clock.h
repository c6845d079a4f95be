#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "sessions/contract/codes.h"
#include "sessions/contract/requote.h"

namespace tutti {

// Counts down the new prices that wait for the operator of one account. Times are those of Clock::elapsed.
class RequoteClock {
 public:
  // A new price, or the same once more. False when it is known already.
  bool offer(const Requote& requote, std::chrono::milliseconds now);
  // The next tick that is due; nothing while none is.
  std::optional<Requote> tick(std::chrono::milliseconds now);
  std::optional<std::chrono::milliseconds> next_due() const;
  // What answering it gives: taken while it stands, timer_expired once it ran out, else invalid_order_id.
  RequestCode answer(std::int64_t order, bool accept, std::chrono::milliseconds now);
  // The order has come to its end.
  void end(std::int64_t order);
  const Requote* find(std::int64_t order) const;
  void clear();

 private:
  struct Offer {
    Requote requote;
    std::chrono::milliseconds end{0};  // when no second is left
  };

  std::vector<Offer> offers_;
  std::set<std::int64_t> expired_;
};

}  // namespace tutti
