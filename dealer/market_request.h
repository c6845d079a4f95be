#pragma once

#include <cstdint>
#include <string>

namespace tutti {

// A market order or close that the server has taken and not yet answered.
struct MarketRequest {
  std::int64_t number = 0;  // order number; the position it opens gets the same number as its ticket
  std::int32_t account = 0;
  std::int64_t ticket = 0;  // position to close; 0 for a new order
  std::int32_t side = 0;    // operation::buy or operation::sell, of the order or of the position to close
  std::string symbol;
  double amount = 0.0;  // lots

  bool closes() const { return ticket != 0; }
};

}  // namespace tutti
