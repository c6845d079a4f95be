#include "views/lot_sums.h"

#include "core/numbers.h"

namespace tutti {

void LotSums::add(const std::string& symbol, double lots) {
  ++count_;
  lots_[symbol] += lots;
}

std::string LotSums::text() const {
  constexpr int money_decimals = 2;
  std::string out = std::to_string(count_) + " " + one_ + (count_ == 1 ? "" : "s");
  const char* before = "\n";
  for (const auto& [symbol, lots] : lots_) {
    out += before + symbol + " " + number_text(lots_of_sum(lots)) + " lots";
    before = ", ";
  }
  if (profit_) out += "\nFloating P/L " + fixed_text(*profit_, money_decimals);
  return out;
}

}  // namespace tutti
