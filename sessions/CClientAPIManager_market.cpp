// Symbols, prices, positions and pending orders of an account session.

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "sessions/CClientAPIManager.h"

namespace tutti {
namespace {

// What lies beyond is no trade of any account, but a damaged record.
constexpr double largest_lots = 1e6;
constexpr double largest_price = 1e9;
constexpr double largest_money = 1e12;

bool usable(const OpenPosition& p) {
  // Not "greater than", so that what is no number is refused too.
  const auto within = [](double most, auto... values) { return ((std::fabs(values) <= most) && ...); };
  return p.amount >= 0.0 && within(largest_lots, p.amount) &&
         within(largest_price, p.open_price, p.current_price, p.stop_loss, p.take_profit) &&
         within(largest_money, p.commission, p.interest, p.floating_pl);
}

// Both in one test, since it is made for every price: what is not finite, less itself, is no number.
bool has_good_prices(const Symbol& symbol) {
  return symbol.bid - symbol.bid + symbol.ask - symbol.ask == 0.0;
}

bool usable(const PendingOrder& o) {
  return std::isfinite(o.amount) && std::isfinite(o.price) && std::isfinite(o.stop_loss) &&
         std::isfinite(o.take_profit);
}

}  // namespace

void CClientAPIManager::SymbolsLoaded() {
  const std::uint64_t names_before = symbols_.names_stamp();
  symbol_ids_.clear();
  const int count = client_->SymbolCount();
  for (int index = 1; index <= count; ++index) {
    const Symbol* symbol = client_->SymbolItem(index);
    if (symbol == nullptr) continue;
    if (!symbol_ids_.usable(symbols_.find(symbol->name), symbol->id)) {
      refuse_symbol(*symbol);
      continue;
    }
    Symbol shown = *symbol;
    if (!std::isfinite(shown.bid + shown.ask + shown.high + shown.low)) {
      refuse("The prices of " + shown.name);
      shown.bid = shown.ask = shown.high = shown.low = 0.0;
    }
    const SymbolHandle handle = symbols_.add(shown);
    symbol_ids_.add(handle, symbol->id);
    desk_.market_watch->symbol(handle, shown, general_.short_time_text(shown.quote_time));
  }
  if (symbols_.names_stamp() == names_before) return;
  desk_.market_order->symbols_changed();
  desk_.entry_order->symbols_changed();
}

void CClientAPIManager::LoadMWPprices() {
  desk_.market_watch->clear();
  for (int index = 1; index <= client_->SymbolCount(); ++index) {
    const Symbol* symbol = client_->SymbolItem(index);
    const SymbolHandle handle = symbol == nullptr ? no_symbol : symbols_.find(symbol->name);
    if (handle == no_symbol) continue;
    desk_.market_watch->symbol(handle, *symbol, general_.short_time_text(symbol->quote_time));
  }
}

void CClientAPIManager::refuse_symbol(const Symbol& symbol) {
  const std::string what = symbol.name + " came with the identifier " + std::to_string(symbol.id);
  if (!refused_.insert(what).second) return;
  log(what + ", which can't be used; the account does not trade it");
}

void CClientAPIManager::SymbolPricesChanged(const Symbol& symbol) {
  const SymbolHandle handle = symbol_ids_.symbol_of(symbol.id);
  if (handle == no_symbol) return;
  // The last good price stays.
  if (!has_good_prices(symbol)) return refuse("A price of " + symbol.name);
  symbols_.set_prices(handle, symbol);
  if (!row_connected()) return;
  desk_.market_watch->prices(handle, symbol);
  desk_.entry_order->prices(handle, symbol);
  desk_.close_positions->prices(handle, symbol);
}

void CClientAPIManager::SymbolHighLowChanged(const Symbol& symbol) {
  const SymbolHandle handle = symbol_ids_.symbol_of(symbol.id);
  if (handle == no_symbol) return;
  if (!std::isfinite(symbol.high) || !std::isfinite(symbol.low))
    return refuse("A day's range of " + symbol.name);
  symbols_.set_high_low(handle, symbol);
  if (!row_connected()) return;
  desk_.market_watch->prices(handle, symbol);
  if (!has_good_prices(symbol)) return;
  desk_.entry_order->prices(handle, symbol);
  desk_.close_positions->prices(handle, symbol);
}

void CClientAPIManager::OpenPositionsLoaded() {
  for (int index = 1; index <= client_->OpenPositionCount(); ++index) {
    if (const OpenPosition* position = client_->OpenPositionItem(index)) NewOpenPosition(*position);
  }
}

void CClientAPIManager::NewOpenPosition(const OpenPosition& position) {
  if (!usable(position)) return refuse("Position #" + std::to_string(position.ticket));
  lists_account_ = true;
  desk_.positions->position(position);
  desk_.close_positions->position_opened(position);
}

void CClientAPIManager::UpdateOpenPosition(const OpenPosition& position) {
  NewOpenPosition(position);
}

void CClientAPIManager::DeleteOpenPosition(const OpenPosition& position) {
  desk_.positions->remove_position(position.ticket, position.account);
  desk_.close_positions->position_closed(position.ticket, position.account);
}

const OpenPosition* CClientAPIManager::open_position(std::int64_t ticket) const {
  for (int index = 1; index <= client_->OpenPositionCount(); ++index) {
    const OpenPosition* position = client_->OpenPositionItem(index);
    if (position != nullptr && position->ticket == ticket) return position;
  }
  return nullptr;
}

void CClientAPIManager::refresh_position(std::int64_t ticket) {
  if (const OpenPosition* position = open_position(ticket)) return NewOpenPosition(*position);
  desk_.positions->remove_position(ticket, account_);
  desk_.close_positions->position_closed(ticket, account_);
}

void CClientAPIManager::PosFloatingPLChanged(const OpenPosition& position) {
  if (!usable(position)) return refuse("The profit of position #" + std::to_string(position.ticket));
  desk_.positions->floating_changed(position);
  std::string profit = number_text(position.floating_pl);
  const auto point = profit.find('.');
  if (point != std::string::npos && general_.locale != nullptr && general_.locale->LocalDecimal() == ",")
    profit[point] = ',';
  desk_.net->floating_changed(position, profit);
}

void CClientAPIManager::PendingOrdersLoaded() {
  for (int index = 1; index <= client_->PendingOrderCount(); ++index) {
    if (const PendingOrder* order = client_->PendingOrderItem(index)) NewPendingOrder(*order);
  }
}

void CClientAPIManager::NewPendingOrder(const PendingOrder& order) {
  if (!usable(order)) return refuse("Order #" + std::to_string(order.order));
  lists_account_ = true;
  desk_.pending->order(order);
}

void CClientAPIManager::DeletePendingOrder(const PendingOrder& order) {
  desk_.pending->remove_order(order.order, order.account);
}

const PendingOrder* CClientAPIManager::pending_order(std::int64_t order) const {
  for (int index = 1; index <= client_->PendingOrderCount(); ++index) {
    const PendingOrder* item = client_->PendingOrderItem(index);
    if (item != nullptr && item->order == order) return item;
  }
  return nullptr;
}

void CClientAPIManager::refresh_pending(std::int64_t order) {
  if (const PendingOrder* item = pending_order(order)) NewPendingOrder(*item);
}

}  // namespace tutti
