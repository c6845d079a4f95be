#pragma once

#include <string>

#include "sessions/contract/account_summary.h"

namespace tutti {

// The totals line comes in two forms that differ in blanks only; which one shows depends on the last event.
enum class TotalsForm { summaries_changed, disconnected };

// The seven account values summed over the connected sessions, and the line that shows them.
struct AccountTotals : AccountSummary {
  TotalsForm form = TotalsForm::summaries_changed;

  // What one session contributes has changed: the old values go out, then the new ones come in. In this order
  // a large value that goes does not take the decimals of the one that comes with it.
  void replace(const AccountSummary& old_part, const AccountSummary& new_part, TotalsForm by) {
    balance = balance - old_part.balance + new_part.balance;
    floating_pl = floating_pl - old_part.floating_pl + new_part.floating_pl;
    credit = credit - old_part.credit + new_part.credit;
    equity = equity - old_part.equity + new_part.equity;
    used_margin = used_margin - old_part.used_margin + new_part.used_margin;
    margin_level = margin_level - old_part.margin_level + new_part.margin_level;
    free_margin = free_margin - old_part.free_margin + new_part.free_margin;
    form = by;
  }
  std::string text() const;
};

}  // namespace tutti
