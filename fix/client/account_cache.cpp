#include "fix/client/account_cache.h"

#include <algorithm>
#include <utility>

#include "pricing/money.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

std::int64_t number_of(const AccountCache::Position& position) {
  return position.record.ticket;
}
std::int64_t number_of(const AccountCache::Order& order) {
  return order.record.order;
}
template <class Rows>
auto place_for(Rows& rows, std::int64_t number) {
  return std::lower_bound(rows.begin(), rows.end(), number,
                          [](const auto& row, std::int64_t key) { return number_of(row) < key; });
}

}  // namespace

void AccountCache::fill(line::Ready ready) {
  clear();
  for (news::SymbolEntry& entry : ready.symbols)
    add_symbol(std::move(entry));
  summary_ = ready.summary;
  std::vector<CurrencyPair> pairs;
  for (const news::SymbolEntry& entry : symbols_)
    pairs.push_back({entry.symbol.base, entry.symbol.profit});
  rates_.emplace(std::move(pairs));
  currency_ = rates_->add_currency(summary_.info.currency);
  for (OpenPosition& position : ready.positions)
    set_position(position, false);
  for (news::Order& order : ready.orders)
    set_order(order);
  stale_ = true;
  update_rates();
}

void AccountCache::add_symbol(news::SymbolEntry entry) {
  if (places_.contains(entry.symbol.name)) return;
  const std::size_t place = symbols_.size();
  places_.emplace(entry.symbol.name, place);
  if (entry.carried) {
    carried_.push_back(place);
    entry.symbol.id = static_cast<std::int32_t>(place + 1);
  }
  symbols_.push_back(std::move(entry));
}

std::optional<std::size_t> AccountCache::place_of(std::string_view name) const {
  const auto at = places_.find(std::string{name});
  if (at == places_.end()) return std::nullopt;
  return at->second;
}

const news::SymbolEntry* AccountCache::symbol_of_id(std::int32_t id) const {
  if (id < 1 || static_cast<std::size_t>(id) > symbols_.size()) return nullptr;
  const news::SymbolEntry& entry = symbols_[static_cast<std::size_t>(id - 1)];
  return entry.carried ? &entry : nullptr;
}

std::int32_t AccountCache::id_of(std::string_view symbol) const {
  const auto place = place_of(symbol);
  return place ? symbols_[*place].symbol.id : 0;
}

std::optional<AccountCache::Moved> AccountCache::set_price(const news::Price& price) {
  const auto place = place_of(price.symbol);
  if (!place) return std::nullopt;
  Symbol& symbol = symbols_[*place].symbol;
  Moved moved{*place, false};
  if (price.bid > 0.0) symbol.bid = price.bid;
  if (price.ask > 0.0) symbol.ask = price.ask;
  symbol.quote_time = price.time;
  if (price.high > 0.0 && price.low > 0.0) {
    moved.high_low = price.high != symbol.high || price.low != symbol.low;
    symbol.high = price.high;
    symbol.low = price.low;
  }
  stale_ = true;
  return moved;
}

void AccountCache::update_rates() {
  stale_ = false;
  if (!rates_) return;
  std::vector<double> middles;
  middles.reserve(symbols_.size());
  for (const news::SymbolEntry& entry : symbols_) {
    const Symbol& symbol = entry.symbol;
    middles.push_back(symbol.bid > 0.0 && symbol.ask > 0.0 ? (symbol.bid + symbol.ask) / 2.0 : 0.0);
  }
  rates_->update(std::move(middles));
}

double AccountCache::profit(std::size_t place, double from, double to) {
  if (stale_) update_rates();
  const double rate = rates_ ? rates_->profit(currency_, place) : 0.0;
  return pricing::profit(operation::buy, 1.0, symbols_[place].symbol.contract_size, from, to, rate);
}

// What the server told stays where there is no rate.
bool AccountCache::value(Position& position) {
  OpenPosition& record = position.record;
  const Symbol& symbol = symbols_[position.symbol].symbol;
  const double price = record.side == operation::buy ? symbol.bid : symbol.ask;
  const double rate = rates_->profit(currency_, position.symbol);
  if (price <= 0.0 || rate <= 0.0) return false;
  const double worth =
      pricing::profit(record.side, record.amount, symbol.contract_size, record.open_price, price, rate);
  const bool moved = price != record.current_price || worth != record.floating_pl;
  record.current_price = price;
  record.floating_pl = worth;
  return moved;
}

AccountCache::Position* AccountCache::find_position(std::int64_t ticket) {
  const auto at = place_for(positions_, ticket);
  return at == positions_.end() || at->record.ticket != ticket ? nullptr : &*at;
}

AccountCache::Change AccountCache::set_position(OpenPosition& record, bool gone) {
  const auto at = place_for(positions_, record.ticket);
  const bool known = at != positions_.end() && at->record.ticket == record.ticket;
  if (gone) {
    if (!known) return Change::none;
    record = at->record;
    positions_.erase(at);
    return Change::closed;
  }
  const auto place = place_of(record.symbol);
  if (!place) return Change::none;
  record.symbol_id = id_of(record.symbol);
  if (known) {
    at->record = record;
    return Change::changed;
  }
  positions_.insert(at, {record, *place});
  return Change::opened;
}

const AccountCache::Order* AccountCache::find_order(std::int64_t number) const {
  const auto at = place_for(orders_, number);
  return at == orders_.end() || at->record.order != number ? nullptr : &*at;
}

const AccountCache::Order* AccountCache::find_order(std::int64_t number, OrderKind kind) const {
  const Order* found = find_order(number);
  return found != nullptr && found->record.kind == kind ? found : nullptr;
}

AccountCache::Change AccountCache::set_order(news::Order& news) {
  PendingOrder& record = news.order;
  const auto at = place_for(orders_, record.order);
  const bool known = at != orders_.end() && at->record.order == record.order;
  if (news.gone) {
    if (!known) return Change::none;
    record = at->record;
    orders_.erase(at);
    return Change::closed;
  }
  record.symbol_id = id_of(record.symbol);
  if (known) {
    if (!news.id_text.empty()) at->id_text = news.id_text;
    at->record = record;
    return Change::changed;
  }
  orders_.insert(at, {record, news.id_text});
  return Change::opened;
}

void AccountCache::note_accepted(std::int64_t number, const std::string& id_text) {
  const auto at = place_for(orders_, number);
  if (at != orders_.end() && at->record.order == number) at->id_text = id_text;
}

}  // namespace tutti
