#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "sessions/RequestGate.h"
#include "sessions/sent_requests.h"
#include "sessions/session_records.h"

namespace tutti {

// What an account session is answered: into the request book, the journal and the row of the order that was
// meant.
//
// An event answers whether it meant a request of this session that was still open. One that did not is
// journaled and writes no order row; what the account has is then to be read again.
class SessionRequests {
 public:
  SessionRequests(SessionScope& scope, SessionRecords& records, RequestBook& book, RequestGate& gate,
                  OrderOperations& operations)
      : scope_(scope),
        records_(records),
        gate_(gate),
        sender_(gate.join(identity(scope.record), operations, scope.client)),
        sent_(scope, records, book, gate.ledger(), sender_) {}

  Sender sender() const { return sender_; }
  SentRequests& sent() { return sent_; }
  // Who a session's account is in the ledger.
  static LedgerAccount identity(const AccountEntry& record);
  // The session is over: nothing goes out any more.
  void leave() { gate_.leave(sender_); }

  bool new_order(const OrderReport& report);
  bool market_order_accepted(const OrderReport& report);
  bool market_order_rejected(const OrderReport& report);
  bool close_result(const OrderReport& report);
  bool new_entry(std::int64_t order, ResultCode code, RequestId id);
  bool update_entry(std::int64_t order, ResultCode code, RequestId id);
  bool delete_entry(std::int64_t order, ResultCode code, RequestId id);
  bool new_stops(std::int64_t order, ResultCode code, RequestId id);
  bool update_stops(std::int64_t order, ResultCode code, RequestId id);
  bool delete_stops(std::int64_t order, ResultCode code, RequestId id);
  // What prices set off; no request is meant.
  void entry_executed(const OrderReport& report);
  void entry_cancelled(std::int64_t order, std::int32_t account, std::string_view why);
  // The countdown of a requote: the dealer has the order.
  void requote_tick(const Requote& requote) { sent_.dealer_has(requote.order); }

 private:
  // Journal, messages, and the position's row in the close positions window when the close is `ours`.
  void tell_close(const OrderReport& report, bool ours);

  SessionScope& scope_;
  SessionRecords& records_;
  RequestGate& gate_;
  Sender sender_;
  SentRequests sent_;
};

}  // namespace tutti
