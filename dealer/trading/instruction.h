#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "dealer/trading/ledger_tag.h"
#include "dealer/trading/trade_request.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/entry_order.h"
#include "sessions/contract/request_id.h"

namespace tutti {

// What a client asks for, in its own words: nothing of it is judged yet.
struct Instruction {
  TradeKind kind = TradeKind::open;
  RequestId id = 0;
  std::int64_t reference = 0;  // ticket or order that it is about; 0 for a new order
  Operation side{};            // of a new order
  EntryKind entry = EntryKind::limit;
  // Of a new order; nothing when the account does not carry it.
  std::optional<std::size_t> symbol = std::nullopt;
  double amount = 0.0;  // lots, of a new order or a close
  double price = 0.0;   // of an entry order
  StopPrices stops{};
  LedgerTag ledger = 0;  // of the terminal that asks
};

}  // namespace tutti
