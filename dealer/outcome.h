#pragma once

#include <cstdint>

#include "core/clock.h"
#include "dealer/trade_request.h"

namespace tutti {

// How one request of a client ended at the server, whatever the client was told of it.
struct Outcome {
  TimePoint time{};
  std::int32_t account = 0;
  TradeKind kind = TradeKind::open;
  std::int64_t number = 0;   // as the client knows it: order number, ticket of a close, order of a
                             // cancellation; 0 for a refused new order
  std::int32_t request = 0;  // request:: code; above 1 the request was never taken
  std::int32_t result =
      0;                 // result:: code; 0 when refused, swallowed, or rejected by the operator or by time
  bool dealt = false;    // was pending first
  bool expired = false;  // a requote that nobody answered in time
  bool told = false;     // an answer was sent to a session
};

}  // namespace tutti
