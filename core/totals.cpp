#include "core/totals.h"

#include "core/numbers.h"

namespace tutti {

std::string totals_text(const Totals& totals, TotalsForm form) {
  if (form == TotalsForm::summaries_changed) {
    return "Balance:" + summary_text(totals.balance) + "  Flt P/L:" + summary_text(totals.floating_pl) +
           "   Credit:" + summary_text(totals.credit) + "  Equity:" + summary_text(totals.equity) +
           "  Used Margin:" + summary_text(totals.used_margin) +
           "  Free Margin:" + summary_text(totals.free_margin) +
           "  Margin Level:" + summary_text(totals.margin_level) + " %";
  }
  return "Balance:" + summary_text(totals.balance) + "   Flt P/L:" + summary_text(totals.floating_pl) +
         "   Credit:" + summary_text(totals.credit) + "   Equity:" + summary_text(totals.equity) +
         "   Used Margin:" + summary_text(totals.used_margin) +
         "   Free Margin:" + summary_text(totals.free_margin) +
         "   Margin Level:" + summary_text(totals.margin_level) + " %";
}

}  // namespace tutti
