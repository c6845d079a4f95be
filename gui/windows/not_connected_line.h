#pragma once

#include <cstdint>

#include "books/account_book.h"
#include "gui/kit/elided_label.h"

namespace tutti {

class Screen;

// Beside sums over all accounts: how many accounts are not connected, whose share the sums do without. Not
// there while all are.
class NotConnectedLine final : public ElidedLabel {
 public:
  // `accounts` must live as long as the line.
  NotConnectedLine(const AccountBook& accounts, Screen& screen);

 private:
  void follow();

  const AccountBook& accounts_;
  std::uint64_t seen_stamp_ = ~std::uint64_t{0};  // of the accounts
};

}  // namespace tutti
