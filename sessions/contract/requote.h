#pragma once

#include <cstdint>
#include <string>

#include "sessions/contract/codes.h"

namespace tutti {

// One tick of the countdown of a market request that the dealer answered with a new price.
struct Requote {
  std::int64_t order = 0;
  std::int32_t account = 0;
  Operation operation{};
  double amount = 0.0;  // lots
  std::string symbol;
  double price = 0.0;      // asked for
  double new_price = 0.0;  // offered
  std::int16_t seconds_left = 0;
  std::int16_t seconds_all = 0;
};

}  // namespace tutti
