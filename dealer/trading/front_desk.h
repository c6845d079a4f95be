#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/clock.h"
#include "dealer/market/market.h"
#include "dealer/trading/instruction.h"
#include "dealer/trading/order_desk.h"
#include "dealer/trading/request_history.h"
#include "sessions/contract/codes.h"

namespace tutti {

// Where instructions come in. What comes with an id is done once, however often it comes: a repetition is
// answered with what became of the first.
class FrontDesk {
 public:
  // Keeps references to all three.
  FrontDesk(const Market& market, OrderDesk& desk, RequestHistory& history)
      : market_(market), desk_(desk), history_(history) {}

  // The two answer a request code.
  RequestCode send(TradingAccount& account, const Instruction& wanted, TimePoint now);
  RequestCode answer_requote(TradingAccount& account, std::int64_t order, bool accept, RequestId id,
                             TimePoint now);

  // Tells the account's listener what became of a request that was sent to the server's present book, or to
  // another. One that is not known, and was sent to this book, has not come and is refused should it still
  // come.
  void ask(const TradingAccount& account, RequestId id, bool this_book);
  // Tells the account's listener its fills since a moment.
  void ask_fills(const TradingAccount& account, TimePoint since) const;

 private:
  RequestCode once(RequestRecord record, TradingAccount& account, RequestState taken,
                   const std::function<RequestCode()>& act);
  static RequestCode repeat(const TradingAccount& account, const RequestRecord& known,
                            const std::string& digest);

  const Market& market_;
  OrderDesk& desk_;
  RequestHistory& history_;
};

}  // namespace tutti
