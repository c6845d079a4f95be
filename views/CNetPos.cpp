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
  for (NetSum* sum : {&symbol.sum, &account.sum, &both, &total_})
    sum->add(held.side, held.lots, held.price, held.profit);
  touch(held);
}

void CNetPos::take(const Held& held) {
  OfSymbol& symbol = symbols_[held.symbol];
  OfAccount& account = accounts_[held.account];
  NetSum& both = symbol.by_account[held.account];
  for (NetSum* sum : {&symbol.sum, &account.sum, &both, &total_})
    sum->take(held.side, held.lots, held.price, held.profit);
  if (both.positions() == 0) --symbol.accounts;
  if (account.sum.positions() == 0) --accounts_in_market_;
  touch(held);
}

void CNetPos::position_added(const OpenPosition& position) {
  const Held now{symbol_place(position.symbol),
                 account_place(position.account),
                 position.side,
                 position.amount,
                 position.open_price,
                 position.floating_pl};
  const auto [at, is_new] = held_.emplace(ticket_key(position.ticket, position.account), now);
  if (!is_new) {
    take(at->second);
    at.value() = now;
  }
  put(now);
}

void CNetPos::remove_position(std::int64_t ticket, std::int32_t account) {
  const auto at = held_.find(ticket_key(ticket, account));
  if (at == held_.end()) return;
  take(at->second);
  held_.erase(at);
}

void CNetPos::remove_account(std::int32_t number, const Numbers& kept) {
  const auto place = place_of_account_.find(number);
  if (place == place_of_account_.end() || accounts_[place->second].sum.positions() == 0) return;
  for (auto at = held_.begin(); at != held_.end();) {
    if (at->first.account() != number || kept.contains(at->first.number())) {
      ++at;
    } else {
      take(at->second);
      at = held_.erase(at);
    }
  }
}

void CNetPos::floating_changed(const OpenPosition& position, std::string_view profit) {
  const auto at = held_.find(ticket_key(position.ticket, position.account));
  if (at == held_.end()) return;
  Held& held = at.value();
  const double now =
      general_.locale != nullptr ? general_.locale->StringToNumber(profit) : read_number(profit);
  OfSymbol& symbol = symbols_[held.symbol];
  for (NetSum* sum : {&symbol.sum, &symbol.by_account[held.account], &accounts_[held.account].sum, &total_})
    sum->change_floating(held.profit, now);
  held.profit = now;
  touch(held);
}

}  // namespace tutti
