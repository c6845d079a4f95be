#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/clock.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/realised.h"
#include "sessions/contract/request_id.h"

namespace tutti {

// What the server says about a market order, a close or an executed entry order.
struct OrderReport {
  std::int64_t number = 0;  // order number of a new order, ticket of a position that is closed
  std::int32_t account = 0;
  ResultCode result{};           // unused by accepted and rejected events
  OrderState state{};            // NewOrderResult and CloseOrderResult
  MarketRequest request_kind{};  // MarketOrderAccepted and MarketOrderRejected
  Operation operation{};
  double amount = 0.0;  // lots
  std::string symbol;
  double price = 0.0;                  // of this fill
  RequestId id = 0;                    // request that is answered
  std::string execution{};             // the server's name for this fill; empty when nothing was filled
  double filled = 0.0;                 // lots of this fill
  double filled_all = 0.0;             // lots of the request filled so far
  double left = 0.0;                   // lots of the request that are still alive
  std::optional<Realised> realised{};  // by this fill; nothing where it isn't told
  TimePoint time{};                    // the server's; the epoch when it tells none
  std::string text{};                  // the broker's own words, empty when there are none
};

}  // namespace tutti
