#pragma once

#include <cstdint>
#include <string>

namespace tutti {

// What the server says about a market order, a close or an executed entry order.
struct OrderReport {
  std::int64_t number = 0;  // order number of a new order, ticket of a position that is closed
  std::int32_t account = 0;
  std::int32_t result = 0;        // result:: code; unused by accepted and rejected events
  std::int32_t state = 0;         // order_state::, NewOrderResult and CloseOrderResult
  std::int32_t request_kind = 0;  // request_kind::, MarketOrderAccepted and MarketOrderRejected
  std::int32_t operation = 0;     // operation:: code
  double amount = 0.0;            // lots
  std::string symbol;
  double price = 0.0;
};

}  // namespace tutti
