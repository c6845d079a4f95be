#include "views/CNetPos.h"

#include <algorithm>

#include "core/numbers.h"

namespace tutti {

// Symbols are few, and their places are looked up once per position.
std::uint32_t CNetPos::symbol_place(std::string_view name) {
  const auto at =
      std::find_if(symbols_.begin(), symbols_.end(), [&](const auto& s) { return s.name == name; });
  const auto place = static_cast<std::uint32_t>(at - symbols_.begin());
  if (at == symbols_.end()) {
    symbols_.push_back(
        {.name = std::string{name}, .sum = {}, .by_account = std::vector<NetSum>(accounts_.size())});
  }
  return place;
}

std::uint32_t CNetPos::account_place(std::int32_t number) {
  const auto [at, is_new] = place_of_account_.emplace(number, static_cast<std::uint32_t>(accounts_.size()));
  if (is_new) {
    accounts_.push_back({.number = number, .sum = {}});
    for (OfSymbol& symbol : symbols_)
      symbol.by_account.emplace_back();
  }
  return at->second;
}

void CNetPos::touch(const Held& held) {
  ++stamp_;
  symbols_[held.symbol].stamp = stamp_;
  accounts_[held.account].stamp = stamp_;
}

void CNetPos::put(const Held& held) {
  OfSymbol& symbol = symbols_[held.symbol];
  OfAccount& account = accounts_[held.account];
  NetSum& both = symbol.by_account[held.account];
  if (both.positions() == 0) ++symbol.accounts;
  if (account.sum.positions() == 0) ++accounts_in_market_;
  for (NetSum* sum : {&symbol.sum, &account.sum, &both})
    sum->add(held.side, held.lots, held.price, held.profit);
  touch(held);
}

void CNetPos::take(const Held& held) {
  OfSymbol& symbol = symbols_[held.symbol];
  OfAccount& account = accounts_[held.account];
  NetSum& both = symbol.by_account[held.account];
  for (NetSum* sum : {&symbol.sum, &account.sum, &both})
    sum->take(held.side, held.lots, held.price, held.profit);
  if (both.positions() == 0) --symbol.accounts;
  if (account.sum.positions() == 0) --accounts_in_market_;
  touch(held);
}

void CNetPos::position_added(const PositionBook::Record& position) {
  if (position.slot >= held_.size()) held_.resize(position.slot + std::size_t{1});
  remove_position(position);
  Held& held = held_[position.slot];
  held = {symbol_place(position.symbol),
          account_place(position.account),
          position.side,
          position.amount,
          position.open_price,
          position.floating_pl};
  put(held);
}

void CNetPos::remove_position(const PositionBook::Record& position) {
  Held& held = held_[position.slot];
  if (held.symbol == nothing) return;
  take(held);
  held = {};
}

void CNetPos::floating_changed(const PositionBook::Record& position) {
  Held& held = held_[position.slot];
  const NetSum::Change change{held.profit, position.floating_pl};
  OfSymbol& symbol = symbols_[held.symbol];
  for (NetSum* sum : {&symbol.sum, &symbol.by_account[held.account], &accounts_[held.account].sum})
    sum->change_floating(change);
  held.profit = position.floating_pl;
  touch(held);
}

NetSum CNetPos::total() const {
  NetSum out;
  for (const OfAccount& account : accounts_)
    out.add(account.sum);
  return out;
}

std::string CNetPos::profit_text(double profit) const {
  std::string text = number_text(profit);
  const auto point = text.find('.');
  if (point != std::string::npos && locale_.LocalDecimal() == ",") text[point] = ',';
  return text;
}

}  // namespace tutti
