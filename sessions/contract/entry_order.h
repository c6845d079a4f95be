#pragma once

#include <cstdint>

#include "sessions/contract/codes.h"

namespace tutti {

enum class EntryKind : std::uint8_t { limit, stop };

// The data of a new entry order.
struct EntryOrder {
  Operation side{};  // operation::buy or operation::sell
  EntryKind kind = EntryKind::limit;
  std::int32_t symbol_id = 0;
  double amount = 0.0;  // lots
  double price = 0.0;
  double stop_loss = 0.0;  // counts when has_stop_loss
  double take_profit = 0.0;
  bool has_stop_loss = false;
  bool has_take_profit = false;
};

// New prices of an entry order or of a position's SL/TP. A side that is not set is taken away.
struct StopPrices {
  double stop_loss = 0.0;
  double take_profit = 0.0;
  bool has_stop_loss = false;
  bool has_take_profit = false;
};

}  // namespace tutti
