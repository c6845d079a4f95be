#pragma once

#include <cstdint>
#include <string_view>

#include "core/row_list.h"

namespace tutti {

// What distribution uses of an order window: its rows (number 0 the account, 1 the amount, 2 the result;
// ticked rows take part), its buttons, and what it says of an account without equity.
class OrderWindow {
 public:
  virtual ~OrderWindow() = default;
  virtual RowList& account_rows() = 0;
  virtual void updateAmount(std::int32_t account, double amount, RowKey key) = 0;
  virtual std::string_view no_balance_text() const = 0;
  // Distribute available and what sends not, or the other way round, in a window where one excludes the
  // other.
  virtual void Enableds(bool /*distribute*/) {}
  // No account could take part.
  virtual void clear_all_accounts_box() {}
};

}  // namespace tutti
