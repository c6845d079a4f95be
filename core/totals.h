#pragma once

#include <string>

namespace tutti {

// The seven account values, as the terminal shows them: used margin with its sign reversed, margin level in
// percent. Account currency but for the level.
struct Totals {
  double balance = 0.0;
  double floating_pl = 0.0;
  double credit = 0.0;
  double equity = 0.0;
  double used_margin = 0.0;
  double margin_level = 0.0;
  double free_margin = 0.0;

  // What one account contributed to a sum over accounts: the old values go out, then the new ones come in. In
  // this order a large value that goes does not take the decimals of the one that comes with it.
  void replace(const Totals& old_part, const Totals& new_part) {
    balance = balance - old_part.balance + new_part.balance;
    floating_pl = floating_pl - old_part.floating_pl + new_part.floating_pl;
    credit = credit - old_part.credit + new_part.credit;
    equity = equity - old_part.equity + new_part.equity;
    used_margin = used_margin - old_part.used_margin + new_part.used_margin;
    margin_level = margin_level - old_part.margin_level + new_part.margin_level;
    free_margin = free_margin - old_part.free_margin + new_part.free_margin;
  }
};

// The totals line comes in two forms that differ in blanks only; which one shows depends on the last event.
enum class TotalsForm { summaries_changed, disconnected };

std::string totals_text(const Totals& totals, TotalsForm form);

}  // namespace tutti
