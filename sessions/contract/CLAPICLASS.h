#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "core/clock.h"
#include "sessions/contract/account_summary.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/execution.h"
#include "sessions/contract/open_position.h"
#include "sessions/contract/order_report.h"
#include "sessions/contract/pending_order.h"
#include "sessions/contract/request_id.h"
#include "sessions/contract/request_state.h"
#include "sessions/contract/requote.h"
#include "sessions/contract/symbol.h"

namespace tutti {

// Event sink of one trading client: everything the dealing server tells an account's session.
//
// Events are queued by the client and delivered one at a time on the GUI thread, never inside a call of an
// operation and never inside another handler. Records are lent for the call only. A handler may call the
// client's operations. Events arrive between Login and the end of the connection. Results bring back the id
// of the request they answer, 0 where the broker can't.
class CLAPICLASS {
 public:
  virtual ~CLAPICLASS() = default;

  // The initial data of a login (symbols, positions, orders, summary) are complete.
  virtual void AllDataAreLoaded() {}
  virtual void CloseOrderResult(const OrderReport&) {}
  virtual void DeleteLimitOrderResult(std::int64_t /*order*/, ResultCode /*result*/, RequestId = 0) {}
  virtual void DeleteOpenPosition(const OpenPosition&) {}
  virtual void DeletePendingOrder(const PendingOrder&) {}
  virtual void DeleteSLTPOrderResult(std::int64_t /*order*/, ResultCode /*result*/, RequestId = 0) {}
  // The login was refused.
  virtual void InvalidUsernamePassword() {}
  // An entry order was executed.
  virtual void LimitOrderAccepted(const OrderReport&) {}
  virtual void LimitOrderCanceledCannotHdg(std::int64_t /*order*/, std::int32_t /*account*/) {}
  virtual void LimitOrderCanceledNoMoney(std::int64_t /*order*/, std::int32_t /*account*/) {}
  // A market order or close that was pending is accepted (rejected).
  virtual void MarketOrderAccepted(const OrderReport&) {}
  virtual void MarketOrderRejected(const OrderReport&) {}
  virtual void NewLimitOrderResult(std::int64_t /*order*/, ResultCode /*result*/, RequestId = 0) {}
  virtual void NewOpenPosition(const OpenPosition&) {}
  // Outcome of a market order: executed at once, taken into dealing (pending), or refused.
  virtual void NewOrderResult(const OrderReport&) {}
  virtual void NewPendingOrder(const PendingOrder&) {}
  virtual void NewSLTPOrderResult(std::int64_t /*order*/, ResultCode /*result*/, RequestId = 0) {}
  // Once a second while a requoted request waits for the operator.
  virtual void OrderTimer(const Requote&) {}
  virtual void PendingOrdersLoaded() {}
  // Only the floating profit and the current price of the position differ from before.
  virtual void PosFloatingPLChanged(const OpenPosition&) {}
  virtual void ServerRouted(std::string_view /*address*/, std::string_view /*port*/) {}
  virtual void ServerTime(TimePoint) {}
  virtual void SessionDisconnected() {}
  virtual void SlTpOrderAccepted(std::int64_t /*order*/) {}
  virtual void SlTpOrderCanceledNoMoney(std::int64_t /*order*/) {}
  virtual void SymbolHighLowChanged(const Symbol&) {}
  virtual void SymbolPricesChanged(const Symbol&) {}
  virtual void SymbolsLoaded() {}
  virtual void UpdateLimitOrderResult(std::int64_t /*order*/, ResultCode /*result*/, RequestId = 0) {}
  virtual void UpdateOpenPosition(const OpenPosition&) {}
  virtual void UpdateSLTPOrderResult(std::int64_t /*order*/, ResultCode /*result*/, RequestId = 0) {}
  virtual void WaitingMode(ConnectionMode /*mode*/) {}
  virtual void ConnectionState(bool /*connected*/) {}
  virtual void OpenPositionsLoaded() {}
  virtual void SummariesChanged(const AccountSummary&) {}
  // What became of a request that AskRequest asked for; `lots` is how much of it was executed.
  virtual void RequestTold(RequestId, RequestState, double /*lots*/) {}
  // A request that was taken at once was refused later, by a server that is far away.
  virtual void RequestRefused(RequestId, RequestCode, std::string_view /*text*/) {}
  // A request that was taken at once has never left: the connection was gone, or it was stopped. It may be
  // sent again.
  virtual void RequestUnsent(RequestId) {}
  // What AskExecutions asked for, oldest first; not `complete` when the broker keeps only the newest.
  virtual void ExecutionsTold(std::span<const Execution>, bool /*complete*/) {}
};

}  // namespace tutti
