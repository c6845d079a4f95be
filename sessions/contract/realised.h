#pragma once

namespace tutti {

// What a fill has changed in the balance of its account, in the account's currency.
struct Realised {
  double profit = 0.0;      // interest included, commission not
  double commission = 0.0;  // charged, so below 0 mostly

  bool operator==(const Realised&) const = default;
};

}  // namespace tutti
