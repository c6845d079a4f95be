#pragma once

#include <cstdint>

#include "sessions/contract/codes.h"

namespace tutti {

// The seven values of an account, in the server's order and signs, in account currency.
struct AccountSummary {
  double balance = 0.0;
  double floating_pl = 0.0;
  double credit = 0.0;
  double equity = 0.0;
  double used_margin = 0.0;   // reported negative
  double margin_level = 0.0;  // equity over used margin as a fraction: 0.153 means 15.3 %
  double free_margin = 0.0;

  // As the operator sees them: what is used above 0, the level in percent.
  double shown_used_margin() const { return 0.0 - used_margin; }
  double shown_margin_level() const { return margin_level * 100.0; }
};

// Answer of GetAccountSummary. The values count only when result is result::succeeded.
struct SummaryAnswer {
  AccountSummary values;
  ResultCode result{};
};

}  // namespace tutti
