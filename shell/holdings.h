#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "books/position_book.h"
#include "sessions/CClientAPIManagers.h"
#include "views/lot_sums.h"

namespace tutti {

// What accounts hold at a moment: their open positions, and their orders and requests that wait for an
// answer. For the questions that are asked before they are left alone.
class Holdings {
 public:
  // `accounts`: their numbers; nothing for all accounts there are.
  Holdings(const PositionBook& positions, const CClientAPIManagers& sessions,
           const std::optional<std::set<std::int32_t>>& accounts = {});

  int positions() const { return sums_.count(); }
  int on_their_way() const { return on_their_way_; }
  // A line each: positions, lots per symbol, floating profit, orders on their way.
  std::string text() const;

 private:
  LotSums sums_{"open position"};
  int on_their_way_ = 0;
};

}  // namespace tutti
