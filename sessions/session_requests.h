#pragma once

#include <chrono>
#include <cstdint>
#include <span>
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
  // Asks what became of those that nobody knows the outcome of. To be called once the account's data are
  // there.
  void ask_for_unknown();
  // What the broker answers to that.
  void told(RequestId id, RequestState state, double lots);
  // Reads back what was filled of late and brings no report with it. What comes twice is kept once.
  void read_fills(std::chrono::milliseconds of_late);
  void fills_told(std::span<const Execution> fills);
  // How many of these answers are still to come.
  int asked() const { return asked_; }
  // The countdown of a requote: the dealer has the order.
  void requote_tick(const Requote& requote) { sent_.dealer_has(requote.order); }

  // Gives up waiting for it, journaled: its outcome is unknown. `reason`: "late" or "lost", for the ledger.
  void give_up(SentOrder& request, std::string_view reason);
  // The same for all that have left; the others are dropped.
  void give_up_all(std::string_view reason);
  // The same for one that no word came for in too long while the connection stands: its row says so.
  void overdue(SentOrder& request);

 private:
  // Journal, messages, and the position's row in the close positions window when the close is `ours`.
  void tell_close(const OrderReport& report, bool ours);

  SessionScope& scope_;
  SessionRecords& records_;
  RequestGate& gate_;
  Sender sender_;
  int asked_ = 0;
  SentRequests sent_;
};

}  // namespace tutti
