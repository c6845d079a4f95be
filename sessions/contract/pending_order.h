#pragma once

#include <cstdint>
#include <string>

#include "core/clock.h"
#include "sessions/contract/codes.h"

namespace tutti {

// One order that waits: a market order or close in dealing, an entry order, or the SL/TP of a position.
struct PendingOrder {
  std::int64_t order = 0;  // unique over all accounts of the server, tickets included
  std::int32_t account = 0;
  OrderKind kind{};
  std::int64_t reference = 0;  // ticket that a close or SL/TP belongs to
  Operation operation{};
  std::int32_t symbol_id = 0;
  std::string symbol;
  double amount = 0.0;  // lots
  double price = 0.0;
  double stop_loss = 0.0;    // 0 when none
  double take_profit = 0.0;  // 0 when none
  TimePoint time{};
};

}  // namespace tutti
