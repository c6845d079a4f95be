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

  // One value out, another in: what one account contributed to a sum over accounts.
  void replace(const Totals& old_part, const Totals& new_part) {
    balance += new_part.balance - old_part.balance;
    floating_pl += new_part.floating_pl - old_part.floating_pl;
    credit += new_part.credit - old_part.credit;
    equity += new_part.equity - old_part.equity;
    used_margin += new_part.used_margin - old_part.used_margin;
    margin_level += new_part.margin_level - old_part.margin_level;
    free_margin += new_part.free_margin - old_part.free_margin;
  }
};

// The totals line comes in two forms that differ in blanks only; which one shows depends on the last event.
enum class TotalsForm { summaries_changed, disconnected };

std::string totals_text(const Totals& totals, TotalsForm form);

}  // namespace tutti
