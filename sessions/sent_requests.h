#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include <tsl/robin_set.h>

#include "books/request_book.h"
#include "ledger/ledger.h"
#include "sessions/contract/request_state.h"
#include "sessions/session_records.h"

namespace tutti {

// An account session's own in the request book: which request an answer means, and what became of it.
//
// An id names the request. Without one its figures do, where they fit one alone; then and where nothing is
// meant the answer is nullptr.
class SentRequests {
 public:
  // Keeps references to the first four. `sender`: what the gate knows the session by.
  SentRequests(SessionScope& scope, const SessionRecords& records, RequestBook& book, Ledger& ledger,
               Sender sender)
      : scope_(scope), records_(records), book_(book), ledger_(ledger), sender_(sender) {}

  // Of the first report on a market order, and of what is told of one that went through dealing.
  SentOrder* opening(const OrderReport& report);
  SentOrder* dealt(const OrderReport& report);
  SentOrder* closing(const OrderReport& report);
  // Of the answers that tell no more than an order number and a result code.
  SentOrder* entry(std::int64_t order, ResultCode code, RequestId id);
  SentOrder* change(RequestKind kind, std::int64_t order, RequestId id);
  SentOrder* named(RequestId id) { return book_.named(scope_.account, id); }
  // An id of another kind of request names none.
  SentOrder* named(RequestId id, RequestKind kind);

  // What became of it; `order` as in RequestBook::settle. False, and nothing changed, where nothing is meant
  // or the outcome is known already: a word that comes again or too late. What was given up it settles after
  // all; what contradicts a final outcome is taken over as a conflict, and false as well. The entry order
  // window is told of its requests.
  // `id`: as the answer names the request, 0 where it doesn't; only a named one is contradicted.
  bool settle(SentOrder* meant, ResultCode code, SentOrder::Outcome outcome, std::int64_t order = 0,
              RequestId id = 0);
  // No more is waited for; `reason` is the ledger's.
  void give_up(SentOrder& request, std::string_view reason);
  bool settle(SentOrder* meant, ResultCode code, RequestId id) {
    return settle(meant, code, SentOrder::outcome_of(code), 0, id);
  }
  // The same of the stops that the answer means, which names their order.
  bool settle_stops(std::int64_t order, ResultCode code, RequestId id);
  // The same with what the report says was filled; a fill that is told again changes nothing.
  bool settle(SentOrder* meant, const OrderReport& report);
  bool settle(SentOrder* meant, const OrderReport& report, ResultCode code, SentOrder::Outcome outcome);
  // The order that the answer to a requote was for has ended, and with it the answer.
  void end_requote(std::int64_t order);
  // What the broker says of one that was unknown; false where that changes nothing.
  bool told(SentOrder& request, RequestState state, double lots);
  // Those that nobody knows the outcome of, oldest first.
  std::vector<SentOrder*> unknown() const { return book_.unknown(sender_); }
  // Entry orders that work as far as is known, and that the account does not list.
  std::vector<SentOrder*> gone() const;
  // What is known of such a one without asking: it has become the position of its number, or else nobody
  // knows.
  void note_gone(SentOrder& request);
  // The position of this number shows that a market order was executed, and nobody else says so.
  void settle_by_position(SentOrder& request, std::int64_t ticket);
  const SentOrder* last(RequestKind kind, std::int64_t number) const {
    return book_.last(sender_, kind, number);
  }
  // A fill that was read back. Only the ledger is told, which knows whether it has it.
  void fill_told(const Execution& fill);
  // What prices set off: an entry order was executed, or is no more. Only the ledger is told.
  void entry_executed(const OrderReport& report);
  void entry_cancelled(std::int64_t order, std::string_view reason);
  // The dealer has what is known by this number.
  void dealer_has(std::int64_t number);

  // Nothing was sent since from the window that shows it: its row is this one's.
  bool has_row(const SentOrder* meant) const { return meant != nullptr && book_.is_last(*meant); }

  // Those without a result, oldest first.
  std::vector<SentOrder*> open() const { return book_.open(sender_); }

  // Told when an answer contradicts what was known for good: the book has what it says.
  std::function<void(const SentOrder&)> on_conflict;

 private:
  // What a word about a request comes to.
  enum class Word : std::uint8_t { nothing, news, contradiction };
  Word take(SentOrder* meant, ResultCode code, SentOrder::Outcome outcome, std::int64_t order, RequestId id);
  // `order`: as the answer names it where that is not the request's own number, else 0.
  bool told_of(SentOrder* meant, Word word, const OrderReport* report, std::int64_t order = 0);
  bool told_of_gone(SentOrder& request, RequestState state, double lots, LedgerState stored);
  void note_asked(const SentOrder& request, LedgerState state);
  void note_position(const SentOrder& request);
  void note(const SentOrder& request, std::string_view reason, LedgerEvidence evidence,
            const OrderReport* report, std::int64_t order = 0);
  SentOrder* unnamed_entry(std::int64_t order, ResultCode code);
  SentOrder* unnamed_stops(std::int64_t order, ResultCode code);

  SessionScope& scope_;
  const SessionRecords& records_;
  RequestBook& book_;
  Ledger& ledger_;
  Sender sender_;
  tsl::robin_set<std::int64_t> stops_told_;  // orders of stops that were answered
};

}  // namespace tutti
