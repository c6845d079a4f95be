#include "orders/entry_market.h"

#include <utility>

namespace tutti {

void EntryMarket::choose(std::string_view symbol) {
  name_ = symbol;
  symbol_ = symbols_.find(symbol);
  outdate();
}

bool EntryMarket::moved() const {
  return outdated_ || now().bid != distances_.bid || now().ask != distances_.ask;
}

void EntryMarket::take(CClientAPIManagers& sessions) {
  distances_.bid = now().bid;
  distances_.ask = now().ask;
  if (!std::exchange(outdated_, false)) return;
  distances_.limit_offset = sessions.Limit_Offset(name_);
  distances_.stop_offset = sessions.Stop_Offset(name_);
}

std::optional<double> EntryMarket::brings(CClientAPIManagers& sessions, std::string_view tag, double from,
                                          double to) const {
  const CClientAPIManager* first = sessions.Item(1);
  if (from <= 0.0 || first == nullptr || !chosen()) return std::nullopt;
  // What is not known is not 0.
  const std::int32_t id = first->symbol_id(symbol_);
  if (!first->ClientAPIF().LoggedIn() || id == 0) return std::nullopt;
  double out = 0.0;
  first->ClientAPIF().EvaluateSLTPPrice(id, from, tag, to, out);
  return out;
}

}  // namespace tutti
