#pragma once

#include <cstdint>

#include "dealer/trading/answer_news.h"
#include "dealer/trading/told_news.h"
#include "sessions/contract/open_position.h"
#include "sessions/contract/pending_order.h"
#include "sessions/contract/requote.h"

namespace tutti {

enum class PositionChange : std::uint8_t { opened, changed, closed };

// Whoever is told what happens on an account, at most one at a time. Nothing of the account changes within a
// call.
class AccountListener {
 public:
  virtual ~AccountListener() = default;

  virtual void tell_position(PositionChange change, const OpenPosition& position) = 0;
  virtual void tell_order(bool gone, const PendingOrder& order) = 0;
  virtual void tell_requote(const Requote& requote) = 0;
  virtual void tell_answer(const AnswerNews& answer) = 0;
  virtual void tell_request(const RequestTold& told) = 0;
  virtual void tell_fills(FillsTold told) = 0;
  // `anew`: behind everything that was told before, even if a summary is on its way already.
  virtual void tell_summary(bool anew) = 0;
  // Positions that moved say so themselves.
  virtual void tell_floating() = 0;
};

}  // namespace tutti
