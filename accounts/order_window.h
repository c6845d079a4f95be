#pragma once

#include <cstdint>
#include <string_view>

#include "core/row_list.h"

namespace tutti {

// What the accounts list uses of the market order window: its rows (number 0 the account, 1 the amount, 2 the
// result; ticked rows take part) and the state of its buttons.
class OrderWindow {
 public:
  virtual ~OrderWindow() = default;
  virtual RowList& account_rows() = 0;
  virtual void updateAmount(std::int32_t account, double amount, RowKey key) = 0;
  // Distribute available and Buy and Sell not, or the other way round.
  virtual void Enableds(bool distribute) = 0;
  virtual void clear_all_accounts_box() = 0;
};

}  // namespace tutti
