#include "benchmarks/position_floor.h"

namespace tutti::bench {

PositionFloor::PositionFloor(std::size_t accounts, std::size_t symbols)
    : by_symbol_(symbols),
      by_account_(accounts),
      by_both_(accounts * symbols),
      dirty_symbols_(symbols / 64 + 1),
      dirty_accounts_(accounts / 64 + 1) {}

void PositionFloor::add(const OpenPosition& position, std::size_t account, std::size_t symbol) {
  place_of_.emplace(position.ticket, static_cast<std::uint32_t>(held_.size()));
  held_.push_back(
      {.account = static_cast<std::uint32_t>(account), .symbol = static_cast<std::uint32_t>(symbol)});
  dirty_positions_.resize(held_.size() / 64 + 1);
  changed(position);
}

void PositionFloor::changed(const OpenPosition& event) {
  const auto at = place_of_.find(event.ticket);
  if (at == place_of_.end()) return;
  Held& held = held_[at->second];
  const double change = event.floating_pl - held.profit;
  held.current_price = event.current_price;
  held.commission = event.commission;
  held.interest = event.interest;
  held.profit = event.floating_pl;
  by_symbol_[held.symbol] += change;
  by_account_[held.account] += change;
  by_both_[held.symbol * by_account_.size() + held.account] += change;
  total_ += change;
  mark(dirty_positions_, at->second);
  mark(dirty_symbols_, held.symbol);
  mark(dirty_accounts_, held.account);
}

}  // namespace tutti::bench
