#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "books/request_book.h"
#include "books/request_ids.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/order_operations.h"

namespace tutti {

// The only way out: the one holder of what sends. Every request gets its id here and is in the request book
// before it leaves, and the code it was answered stands there when this returns.
//
// A sender is one account session. Records live as long as the book.
class RequestGate {
 public:
  RequestGate(RequestBook& book, const Clock& clock) : book_(book), clock_(clock), ids_(clock) {}

  // A new session of this account; `operations` sends for it until it leaves.
  Sender join(std::int32_t account, OrderOperations& operations);
  // Whatever it is asked to send from now on is refused with request::invalid_account.
  void leave(Sender sender) { senders_[sender - 1].operations = nullptr; }

  // Amounts in lots, `side` an operation:: code. `symbol_id` is the account's own number of the symbol.
  const SentOrder& market_order(Sender sender, Operation side, SymbolHandle symbol, std::int32_t symbol_id,
                                double amount);
  const SentOrder& close(Sender sender, std::int64_t ticket, double amount);
  // `stops_of_position`: the order is the SL/TP of a position, not an entry order.
  const SentOrder& cancel(Sender sender, std::int64_t order, bool stops_of_position);
  // `round`: the caller's own mark.
  const SentOrder& place_entry(Sender sender, const EntryOrder& order, SymbolHandle symbol, int round);
  const SentOrder& update_entry(Sender sender, std::int64_t order, double price, const StopPrices& stops,
                                int round);
  // `stops_order`: the SL/TP order that the position has already, 0 when none.
  const SentOrder& set_stops(Sender sender, std::int64_t ticket, const StopPrices& stops,
                             std::int64_t stops_order, int round);
  const SentOrder& answer_requote(Sender sender, std::int64_t order, bool accept);

 private:
  struct Way {
    std::int32_t account = 0;
    OrderOperations* operations = nullptr;
  };

  template <class Call>
  const SentOrder& send(Sender sender, SentOrder&& request, Call&& call);

  RequestBook& book_;
  const Clock& clock_;
  RequestIds ids_;
  std::vector<Way> senders_;  // sender n at n - 1
};

}  // namespace tutti
