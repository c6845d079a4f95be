#include "books/account_totals.h"

#include "core/numbers.h"

namespace tutti {

std::string AccountTotals::text() const {
  if (form == TotalsForm::summaries_changed) {
    return "Balance:" + summary_text(balance) + "  Flt P/L:" + summary_text(floating_pl) +
           "   Credit:" + summary_text(credit) + "  Equity:" + summary_text(equity) +
           "  Used Margin:" + summary_text(shown_used_margin()) +
           "  Free Margin:" + summary_text(free_margin) +
           "  Margin Level:" + summary_text(shown_margin_level()) + " %";
  }
  return "Balance:" + summary_text(balance) + "   Flt P/L:" + summary_text(floating_pl) +
         "   Credit:" + summary_text(credit) + "   Equity:" + summary_text(equity) +
         "   Used Margin:" + summary_text(shown_used_margin()) +
         "   Free Margin:" + summary_text(free_margin) +
         "   Margin Level:" + summary_text(shown_margin_level()) + " %";
}

}  // namespace tutti
