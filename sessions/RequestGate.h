#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "books/books.h"
#include "books/request_book.h"
#include "books/request_ids.h"
#include "core/MGeneral.h"
#include "core/stop_sign.h"
#include "ledger/ledger.h"
#include "limits/send_rate.h"
#include "sessions/admission.h"
#include "sessions/asked_requests.h"
#include "sessions/order_ways.h"
#include "sessions/waiting_ticket.h"

namespace tutti {

// The only way out: it alone has the ways to send. Every request gets its id here, is in the request book and
// stored in the ledger before it leaves, and noted once more as it leaves.
//
// What the operator asks for has left, or was dropped, when the call returns: it waits for the ledger, so
// long at most. Of a large ticket that is its first part; the others leave one after the other with the calls
// of send_stored, so that nobody waits for all of them. What is asked for in a handler, which never waits, is
// queued and leaves once it is stored. What can't be stored is dropped, and the operator is told so once.
//
// Limits and the stop are judged before a ticket is stored and as each request leaves. What too many requests
// within a second keep waiting leaves when its turn comes; closes and cancels don't wait.
//
// A sender is one account session. Records live as long as the book.
class RequestGate {
 public:
  // So long a click waits for the ledger.
  static constexpr std::chrono::milliseconds store_within{250};

  using Then = AskedRequests::Then;

  // Takes the unknown requests of earlier runs into the book.
  RequestGate(RequestBook& book, MGeneral& general, const Books& books, Ledger& ledger, StopSign& stop);

  // A new session of this account; `operations` sends for it until it leaves. It takes over what is unknown
  // of the account's earlier requests.
  Sender join(const LedgerAccount& account, OrderOperations& operations, const AccountClient& client);
  // Whatever it is asked to send from now on is refused with request::invalid_account.
  void leave(Sender sender) { ways_.close(sender); }

  // What `ask` asks for is one ticket: stored together, then sent in that order, before this returns. `about`
  // tells the prices at the click where they count; the rest the requests say.
  void as_one_ticket(const std::function<void()>& ask, const LedgerTicket& about = {});

  // What `ask` asks for sends a request again that had no effect.
  void as_retry_of(RequestId request, const std::function<void()>& ask);

  // Asks for one request; `fill` gives the new record what is asked for, amounts in lots.
  template <class Fill>
  const SentOrder& request(Sender sender, RequestKind kind, Then&& then, Fill&& fill) {
    SentOrder& request = make(sender, kind);
    fill(request);
    return ask(request, std::move(then));
  }
  // Sends what an earlier run stored and never sent, under the id it has; `as` is what it asks for, with the
  // sender and the account's number of the symbol of this run. Limits and the stop are judged as it leaves.
  const SentOrder& send_stored(const SentOrder& as, Then&& then = {});

  // Sends what was asked for in handlers and is stored by now, and what waited for its turn; drops what waits
  // when trading is stopped. To be called outside of handlers.
  void send_stored();
  // The same for all of it, once it is stored, for who has nothing else to do.
  void wait_for_stored();
  // When to call send_stored again, by the clock's elapsed time; nothing while nothing waits.
  std::optional<std::chrono::milliseconds> next_turn() const;
  // Sends a held ticket after all; see Admission::let_go.
  void send_held(int number, std::string_view reason);
  // The session's connection is over: what has not left for it is dropped.
  void drop_waiting(Sender sender);

  Ledger& ledger() { return ledger_; }
  Admission& admission() { return admission_; }
  const Admission& admission() const { return admission_; }

 private:
  SentOrder& make(Sender sender, RequestKind kind);
  const SentOrder& ask(SentOrder& request, Then&& then);
  void submit(LedgerTicket about, AskedRequests& asked);
  void store_and_send(LedgerTicket about, AskedRequests& asked);
  // Of what can't be stored, closes and cancels may go all the same, when the operator says so.
  void not_stored(WaitingTicket& ticket, bool late, const std::string& why);
  void send_unstored(WaitingTicket ticket, const std::string& why);
  void send_part(WaitingTicket& ticket);
  // False when nothing more may leave, for want of a note of it.
  bool send(SentOrder& request, const Then& then, bool unrecorded);
  // Stops at what waits for its turn.
  void send_up_to(WaitingTicket& ticket, std::size_t end);
  bool waits_for_turn(const SentOrder& request) const;
  // `since`: when what waits for its turn began to wait.
  void queue(WaitingTicket& ticket, std::size_t end, std::chrono::milliseconds since, bool in_front);
  void send_queued();
  // What of it has not left.
  void drop(WaitingTicket& ticket, NotSent why, const std::string& because);
  void drop(SentOrder& request, const Then& then, NotSent why);
  void note(const SentOrder& request, LedgerState state, std::string_view reason, LedgerEvidence evidence);

  RequestBook& book_;
  MGeneral& general_;
  const Books& books_;
  Ledger& ledger_;
  RequestIds ids_;
  OrderWays ways_;
  RequestId retry_of_ = 0;  // of what is asked for now
  bool collecting_ = false;
  AskedRequests collected_;
  AskedRequests spare_;                // room for the next ticket
  std::deque<WaitingTicket> waiting_;  // asked for in handlers, and what is left of large tickets
  std::deque<WaitingTicket> queue_;    // stored, and waits for its turn
  SendRate rate_;
  Admission admission_;
};

}  // namespace tutti
