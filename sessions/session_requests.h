#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "sessions/RequestGate.h"
#include "sessions/session_records.h"

namespace tutti {

// What an account session sends, and what comes of it: from an answer into the request book, the journal and
// the row of the order that was meant.
//
// An event answers whether it meant a request of this session that was still open. One that did not is
// journaled and writes no order row; what the account has is then to be read again.
class SessionRequests {
 public:
  SessionRequests(SessionScope& scope, SessionRecords& records, RequestBook& book, RequestGate& gate,
                  OrderOperations& operations)
      : scope_(scope),
        records_(records),
        book_(book),
        gate_(gate),
        sender_(gate.join(scope.account, operations)) {}

  Sender sender() const { return sender_; }
  // The session is over: nothing goes out any more.
  void leave() { gate_.leave(sender_); }
  std::int64_t stops_order_of(std::int64_t ticket) const { return records_.stops_order_of(ticket); }

  bool new_order(const OrderReport& report);
  bool market_order_accepted(const OrderReport& report);
  bool market_order_rejected(const OrderReport& report);
  bool close_result(const OrderReport& report);
  bool new_entry(std::int64_t order, std::int32_t code, RequestId id);
  bool update_entry(std::int64_t order, std::int32_t code, RequestId id);
  bool delete_entry(std::int64_t order, std::int32_t code, RequestId id);
  bool new_stops(std::int64_t order, std::int32_t code, RequestId id);
  bool update_stops(std::int64_t order, std::int32_t code, RequestId id);
  bool delete_stops(std::int64_t order, std::int32_t code, RequestId id);
  // What prices set off; no request is meant.
  void entry_executed(const OrderReport& report);
  void entry_cancelled(std::int64_t order, std::int32_t account, std::string_view why);
  // The countdown of a requote: the dealer has the order.
  void requote_tick(const Requote& requote);

  // Gives up waiting for it, journaled: its outcome is unknown.
  void give_up(SentOrder& request);
  void give_up_all();
  // The same for one that no word came for in too long while the connection stands: its row says so.
  void overdue(SentOrder& request);

 private:
  // Of the request that the answer means; false when it means none that is open.
  bool settle(SentOrder* meant, std::int32_t code, SentOrder::Outcome outcome, std::int64_t order = 0);
  bool settle(RequestKind kind, std::int64_t number, std::int32_t code, SentOrder::Outcome outcome,
              RequestId id);
  // Of a report on a market order or close, with what it says was filled.
  bool settle(SentOrder* meant, const OrderReport& report, std::int32_t code, SentOrder::Outcome outcome);
  SentOrder* meant_by(const OrderReport& report);
  SentOrder* dealt_by(const OrderReport& report);
  SentOrder* close_of(const OrderReport& report);
  void end_requote(std::int64_t order);
  SentOrder* entry_of(std::int64_t order, std::int32_t code);
  SentOrder* stops_of(std::int64_t order, std::int32_t code);
  SentOrder::Outcome outcome_of(const OrderReport& report) const;
  // Journal, messages, and the position's row in the close positions window when the close is `ours`.
  void tell_close(const OrderReport& report, bool ours);

  SessionScope& scope_;
  SessionRecords& records_;
  RequestBook& book_;
  RequestGate& gate_;
  Sender sender_;
};

}  // namespace tutti
