#pragma once

#include <cstdint>

#include "core/clock.h"
#include "dealer/trading/trade_request.h"
#include "sessions/contract/codes.h"

namespace tutti {

// How one request of a client ended at the server, or what became of an order that a price set off, whatever
// the client was told of it.
struct Outcome {
  TimePoint time{};
  std::int32_t account = 0;
  // TradeKind::entry or set_stops for an entry order or an SL/TP order that was set off.
  TradeKind kind = TradeKind::open;
  // As the client knows it: order number, ticket of a close, order of a change or cancellation; of stops the
  // SL/TP order that the answer names, or the ticket when there is no answer. 0 for a refused new order.
  std::int64_t number = 0;
  RequestCode request{};  // above `taken` the request was never taken
  // result:: code; 0 when refused, swallowed, or rejected by the operator or by time.
  ResultCode result{};
  bool updated = false;  // of stops: an SL/TP order was there already, UpdateSLTPOrderResult is the answer
  bool set_off = false;  // by a price, not a request; a result above 1 has cancelled the order
  bool dealt = false;    // was pending first
  bool expired = false;  // a requote that nobody answered in time
  bool told = false;     // an answer was sent to a session
  bool resumed = false;  // the request was sent in an earlier run
};

}  // namespace tutti
