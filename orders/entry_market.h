#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "books/symbol_collection.h"
#include "orders/price_conditions.h"
#include "sessions/CClientAPIManagers.h"

namespace tutti {

// The chosen symbol of the entry order window and its market: prices, as all accounts are told the same, and
// distances, the widest of all accounts.
class EntryMarket {
 public:
  // Keeps a reference.
  explicit EntryMarket(const SymbolCollection& symbols) : symbols_(symbols) {}

  void choose(std::string_view symbol);
  // Another one, or accounts that came or went: the distances are asked for anew.
  void outdate() { outdated_ = true; }
  // Whether take() would find something else.
  bool moved() const;
  // Takes over prices and distances as they are now.
  void take(CClientAPIManagers& sessions);
  const MarketDistances& distances() const { return distances_; }

  SymbolHandle symbol() const { return symbol_; }
  bool chosen() const { return symbol_ != no_symbol; }
  // To be asked only while one is chosen.
  const SymbolCollection::Entry& now() const { return symbols_.entry(symbol_); }
  int digits(int of_none) const { return chosen() ? now().digits : of_none; }
  // What one lot bought at a price brings at another, in account currency, as the first session reckons;
  // nothing where it can't say. `tag` as in ClientAPI::EvaluateSLTPPrice.
  std::optional<double> brings(CClientAPIManagers& sessions, std::string_view tag, double from,
                               double to) const;

 private:
  const SymbolCollection& symbols_;
  std::string name_;
  SymbolHandle symbol_ = no_symbol;
  MarketDistances distances_;
  bool outdated_ = true;
};

}  // namespace tutti
