#include "orders/entry_draft.h"

#include <string>

#include "sessions/contract/codes.h"

namespace tutti {

std::optional<double> EntryDraft::typed(const TextBox& box) const {
  return box.text().empty() ? std::nullopt : std::optional{number(box)};
}

StopPrices EntryDraft::stops() const {
  return {.stop_loss = stop_loss().value_or(0.0),
          .take_profit = take_profit().value_or(0.0),
          .has_stop_loss = stop_loss().has_value(),
          .has_take_profit = take_profit().has_value()};
}

EntryOrder EntryDraft::order() const {
  const bool limit = type() == EntryType::buy_limit || type() == EntryType::sell_limit;
  const StopPrices prices = stops();
  return {.side = buys() ? operation::buy : operation::sell,
          .kind = limit ? EntryKind::limit : EntryKind::stop,
          .price = price().value_or(0.0),
          .stop_loss = prices.stop_loss,
          .take_profit = prices.take_profit,
          .has_stop_loss = prices.has_stop_loss,
          .has_take_profit = prices.has_take_profit};
}

EntryDraft::Fault EntryDraft::fault() const {
  // Texts by their characters' codes, as they stand in the boxes: "10.5" comes before "9.8". Only the take
  // profit of a Sell Limit is a number.
  const std::string &at = price_.text(), &sl = stop_loss_.text(), &tp = take_profit_.text();
  if (!sl.empty() && !(buys() ? sl < at : sl > at)) return Fault::stop_loss;
  if (tp.empty()) return Fault::none;
  const bool good = buys()                            ? tp > at
                    : type() == EntryType::sell_limit ? number(take_profit_) <= number(price_)
                                                      : tp < at;
  return good ? Fault::none : Fault::take_profit;
}

}  // namespace tutti
