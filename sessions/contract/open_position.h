#pragma once

#include <cstdint>
#include <string>

#include "core/clock.h"
#include "sessions/contract/codes.h"

namespace tutti {

// One open position of an account.
struct OpenPosition {
  std::int64_t ticket = 0;  // unique over all accounts of the server
  std::int32_t account = 0;
  Operation side{};  // operation::buy or operation::sell
  // What changes with every price, beside the names by which the position is found.
  double current_price = 0.0;  // closing side: bid for a buy, ask for a sell
  double commission = 0.0;     // account currency
  double interest = 0.0;       // account currency
  double floating_pl = 0.0;    // account currency, without commission and interest
  std::int32_t symbol_id = 0;
  std::string symbol;
  double amount = 0.0;  // lots, above 0
  double open_price = 0.0;
  double stop_loss = 0.0;    // 0 when none
  double take_profit = 0.0;  // 0 when none
  TimePoint open_time{};
};

}  // namespace tutti
