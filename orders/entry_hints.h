#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/label.h"
#include "orders/entry_draft.h"
#include "orders/entry_edit.h"
#include "orders/entry_market.h"
#include "orders/price_conditions.h"

namespace tutti {

// What the entry order window tells beside the prices that are typed: where they must lie, and what one close
// at the stop loss and the take profit brings. Works on the form's labels.
class EntryHints {
 public:
  struct Labels {
    Label &price_sign, &price_limit;
    Label &stop_loss_sign, &stop_loss_bound, &stop_loss_brings;
    Label &take_profit_sign, &take_profit_bound, &take_profit_brings;
  };
  using Edit = std::optional<EntryEdit>;

  // Keeps references to all.
  EntryHints(const EntryDraft& draft, const EntryMarket& market, const Labels& labels)
      : draft_(draft), market_(market), labels_(labels) {}

  // By the market as it was taken last; what stands there stays where nothing can be told.
  void tell_bounds(const Edit& edit);
  void tell_no_bounds() { write({}); }
  // For the amount typed; empty where it is not known.
  void tell_profits(CClientAPIManagers& sessions, const Edit& edit);
  PriceSketch sketch(const Edit& edit) const;

 private:
  std::optional<PriceConditions> conditions(const Edit& edit) const;
  void write(const PriceConditions& shown);
  std::string profit(CClientAPIManagers& sessions, const Edit& edit, std::string_view tag,
                     std::optional<double> price) const;
  // From which price on it counts: of the order, or at which the position was opened.
  double start(const Edit& edit) const {
    return edit && edit->stops() ? edit->request.price : draft_.price().value_or(0.0);
  }

  const EntryDraft& draft_;
  const EntryMarket& market_;
  Labels labels_;
};

}  // namespace tutti
