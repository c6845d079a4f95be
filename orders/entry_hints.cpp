#include "orders/entry_hints.h"

#include "core/numbers.h"

namespace tutti {

std::optional<PriceConditions> EntryHints::conditions(const Edit& edit) const {
  if (edit && edit->stops()) return position_conditions(edit->side, market_.distances());
  return entry_conditions(draft_.type(), market_.distances(), draft_.price());
}

void EntryHints::tell_bounds(const Edit& edit) {
  if (const auto told = conditions(edit)) write(*told);
}

void EntryHints::write(const PriceConditions& shown) {
  const int digits = market_.digits(0);
  const auto price = [digits](std::string_view sign, double bound) {
    return sign.empty() ? std::string{} : bound_text(bound, digits);
  };
  labels_.price_sign.set_text(shown.price_sign);
  labels_.price_limit.set_text(price(shown.price_sign, shown.price_limit));
  labels_.stop_loss_sign.set_text(shown.stop_loss_sign);
  labels_.take_profit_sign.set_text(shown.take_profit_sign);
  labels_.stop_loss_bound.set_text(price(shown.stop_loss_sign, shown.stop_loss_bound));
  labels_.take_profit_bound.set_text(price(shown.take_profit_sign, shown.take_profit_bound));
}

void EntryHints::tell_profits(CClientAPIManagers& sessions, const Edit& edit) {
  labels_.stop_loss_brings.set_text(profit(sessions, edit, evaluate::stop_loss, draft_.stop_loss()));
  labels_.take_profit_brings.set_text(profit(sessions, edit, evaluate::take_profit, draft_.take_profit()));
}

std::string EntryHints::profit(CClientAPIManagers& sessions, const Edit& edit, std::string_view tag,
                               std::optional<double> price) const {
  if (!price) return {};
  const auto of_one_lot = market_.brings(sessions, tag, start(edit), *price);
  if (!of_one_lot) return {};
  const bool sold = edit && edit->stops() ? edit->side == "Sell" : draft_.sells();
  return summary_text(*of_one_lot * draft_.lots() * (sold ? -1.0 : 1.0));
}

PriceSketch EntryHints::sketch(const Edit& edit) const {
  PriceSketch out;
  if (!market_.chosen()) return out;
  const auto known = [](double price) { return price > 0.0 ? std::optional{price} : std::nullopt; };
  const SymbolCollection::Entry& now = market_.now();
  out.digits = now.digits;
  out.bid = known(now.bid);
  out.ask = known(now.ask);
  out.entry = known(start(edit));
  out.stop_loss = known(draft_.stop_loss().value_or(0.0));
  out.take_profit = known(draft_.take_profit().value_or(0.0));
  const auto told = conditions(edit);
  if (!told || !out.bid || !out.ask) return out;
  out.price_sign = told->price_sign;
  if (!told->price_sign.empty()) out.price_limit = told->price_limit;
  out.stop_loss_bound = told->stop_loss_bound;
  out.take_profit_bound = told->take_profit_bound;
  return out;
}

}  // namespace tutti
