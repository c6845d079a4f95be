#pragma once

#include <string>

namespace tutti {

// The two sides of a symbol's price: it is counted in `profit` currency per unit of `base`.
struct CurrencyPair {
  std::string base;    // currency or thing that is bought, "EUR"
  std::string profit;  // currency in which profit arises, "USD"
};

}  // namespace tutti
