#include "fix/client/login_gathering.h"

#include <algorithm>

namespace tutti {

std::vector<WireAsk> LoginGathering::take_asks() {
  if (!asked_symbols_) {
    asked_symbols_ = true;
    return {ask::Symbols{}};
  }
  if (!symbols_ || asked_rest_) return {};
  asked_rest_ = true;
  std::vector<WireAsk> asks;
  ask::Prices prices;
  for (const news::SymbolEntry& entry : ready_.symbols)
    if (entry.carried) prices.symbols.push_back(entry.symbol.name);
  // The answers come in this order, so that prices are there before the login is complete.
  if (!prices.symbols.empty()) asks.emplace_back(std::move(prices));
  asks.emplace_back(ask::Positions{});
  if (tells_orders_) asks.emplace_back(ask::Orders{});
  asks.emplace_back(ask::Summary{});
  return asks;
}

bool LoginGathering::take(const WireNews& news) {
  const bool taken = std::visit([&](const auto& each) { return add(each); }, news);
  if (!taken) later_.push_back(news);
  return taken;
}

bool LoginGathering::complete() const {
  return symbols_ && positions_left_ == 0 && orders_ && summary_;
}

std::string LoginGathering::missing() const {
  if (!symbols_) return "symbols";
  if (positions_left_ != 0) return "positions";
  if (!orders_) return "pending orders";
  return "account values";
}

bool LoginGathering::add(const news::Symbols& symbols) {
  if (symbols_) return false;
  ready_.symbols.insert(ready_.symbols.end(), symbols.entries.begin(), symbols.entries.end());
  symbols_ = symbols.last;
  return true;
}

bool LoginGathering::add(const news::Price& price) {
  const auto at = std::find_if(ready_.symbols.begin(), ready_.symbols.end(),
                               [&](const auto& entry) { return entry.symbol.name == price.symbol; });
  if (at == ready_.symbols.end()) return true;
  at->symbol.bid = price.bid;
  at->symbol.ask = price.ask;
  at->symbol.high = price.high;
  at->symbol.low = price.low;
  at->symbol.quote_time = price.time;
  return true;
}

bool LoginGathering::add(const news::PositionList& list) {
  if (positions_left_) return false;
  positions_left_ = std::max<std::int64_t>(list.count, 0);
  return true;
}

bool LoginGathering::add(const news::Position& position) {
  if (position.listed && !positions_left_ && position.count > 0) positions_left_ = position.count;
  if (!position.listed || positions_left_.value_or(0) == 0) return false;
  --*positions_left_;
  ready_.positions.push_back(position.position);
  return true;
}

bool LoginGathering::add(const news::Order& order) {
  if (!order.listed || orders_) return false;
  if (order.count > 0) ready_.orders.push_back(order);
  orders_ = order.last;
  return true;
}

// One that comes by itself counts as well: it is no older.
bool LoginGathering::add(const news::Summary& summary) {
  ready_.summary = summary;
  summary_ = asked_rest_;
  return true;
}

}  // namespace tutti
