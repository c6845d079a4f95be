#include "sessions/session_market.h"

#include <cmath>

#include "core/time_texts.h"

namespace tutti {
namespace {

// Both in one test, since it is made for every price: what is not finite, less itself, is no number.
bool has_good_prices(const Symbol& symbol) {
  return symbol.bid - symbol.bid + symbol.ask - symbol.ask == 0.0;
}

}  // namespace

void SessionMarket::symbols_loaded() {
  const std::uint64_t names_before = scope_.symbols.names_stamp();
  ids_.clear();
  const int count = scope_.client.SymbolCount();
  for (int index = 1; index <= count; ++index) {
    const Symbol* symbol = scope_.client.SymbolItem(index);
    if (symbol == nullptr) continue;
    if (!ids_.usable(scope_.symbols.find(symbol->name), symbol->id)) {
      scope_.refuse(symbol->name, " came with the identifier " + std::to_string(symbol->id),
                    ", which can't be used; the account does not trade it");
      continue;
    }
    Symbol shown = *symbol;
    if (!std::isfinite(shown.bid + shown.ask + shown.high + shown.low)) {
      scope_.refuse("The prices of ", shown.name);
      shown.bid = shown.ask = shown.high = shown.low = 0.0;
    }
    const SymbolHandle handle = scope_.symbols.add(shown);
    ids_.add(handle, symbol->id);
    scope_.desk.market_watch->symbol(handle, shown, short_time_text(shown.quote_time));
  }
  if (scope_.symbols.names_stamp() == names_before) return;
  scope_.desk.market_order->symbols_changed();
  scope_.desk.entry_order->symbols_changed();
}

void SessionMarket::fill_market_watch() const {
  scope_.desk.market_watch->clear();
  for (int index = 1; index <= scope_.client.SymbolCount(); ++index) {
    const Symbol* symbol = scope_.client.SymbolItem(index);
    const SymbolHandle handle = symbol == nullptr ? no_symbol : scope_.symbols.find(symbol->name);
    if (handle == no_symbol) continue;
    scope_.desk.market_watch->symbol(handle, *symbol, short_time_text(symbol->quote_time));
  }
}

void SessionMarket::prices_changed(const Symbol& symbol) {
  const SymbolHandle handle = ids_.symbol_of(symbol.id);
  if (handle == no_symbol) return;
  // The last good price stays.
  if (!has_good_prices(symbol)) return scope_.refuse("A price of ", symbol.name);
  scope_.symbols.set_prices(handle, symbol);
  if (!scope_.record.connected()) return;
  scope_.desk.market_watch->prices(handle, symbol);
  scope_.desk.entry_order->prices(handle, symbol);
  scope_.desk.close_positions->prices(handle, symbol);
}

void SessionMarket::high_low_changed(const Symbol& symbol) {
  const SymbolHandle handle = ids_.symbol_of(symbol.id);
  if (handle == no_symbol) return;
  if (!std::isfinite(symbol.high) || !std::isfinite(symbol.low))
    return scope_.refuse("A day's range of ", symbol.name);
  scope_.symbols.set_high_low(handle, symbol);
  if (!scope_.record.connected()) return;
  scope_.desk.market_watch->prices(handle, symbol);
  if (!has_good_prices(symbol)) return;
  scope_.desk.entry_order->prices(handle, symbol);
  scope_.desk.close_positions->prices(handle, symbol);
}

}  // namespace tutti
