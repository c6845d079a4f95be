#pragma once

#include <cstdint>
#include <string>

#include "sessions/contract/codes.h"

namespace tutti {

// One order that waits on an account from the start.
struct EntryOrderConfig {
  std::int32_t account = 0;
  Operation operation{};  // operation:: code, buy_stop and sell_stop for stop orders
  std::string symbol;
  double amount = 0.0;  // lots
  double price = 0.0;
  double stop_loss = 0.0;    // 0: none
  double take_profit = 0.0;  // 0: none
  std::int64_t ticket = 0;  // above 0: the stop loss and take profit of this position, which the order closes
};

}  // namespace tutti
