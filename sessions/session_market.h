#pragma once

#include <cstdint>

#include "sessions/session_scope.h"
#include "sessions/symbol_ids.h"

namespace tutti {

// The symbols of an account session and their prices: into the application's collection, and from there to
// the windows.
class SessionMarket {
 public:
  explicit SessionMarket(SessionScope& scope) : scope_(scope) {}

  // Identifier of a symbol for this account's order calls; 0 when the account does not carry it.
  std::int32_t id_of(SymbolHandle symbol) const { return ids_.id_of(symbol); }
  // Refills the market watch from this account's symbols.
  void fill_market_watch() const;

  // The account's events, whose order is that of the library.
  void symbols_loaded();
  void prices_changed(const Symbol& symbol);
  void high_low_changed(const Symbol& symbol);

 private:
  SessionScope& scope_;
  SymbolIds ids_;
};

}  // namespace tutti
