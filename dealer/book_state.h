#pragma once

#include <cstdint>
#include <vector>

#include "dealer/market_request.h"
#include "sessions/contract/open_position.h"

namespace tutti {

// What the dealing server keeps from one run to the next. Prices and floating values are not part of it.
struct BookState {
  struct Account {
    std::int32_t number = 0;
    double balance = 0.0;
    double credit = 0.0;
    std::vector<OpenPosition> positions;
  };

  std::int64_t next_number = 0;  // above every order number and ticket ever given
  std::vector<Account> accounts;
  std::vector<MarketRequest> requests;
};

}  // namespace tutti
