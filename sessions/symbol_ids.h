#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <tsl/robin_map.h>

#include "books/symbol_collection.h"

namespace tutti {

// The identifiers under which one account trades its symbols: any number above 0, each for one symbol.
//
// Every price event looks its symbol up. Servers number from 1, so small identifiers are places in a table;
// large ones would only blow it up.
class SymbolIds {
 public:
  void clear() {
    ids_.clear();
    small_.clear();
    large_.clear();
  }
  // False for an identifier that is none or another symbol's, and for a symbol that has another one.
  bool usable(SymbolHandle symbol, std::int32_t id) const {
    if (id <= 0) return false;
    const std::int32_t held = id_of(symbol);
    return held == id || (held == 0 && symbol_of(id) == no_symbol);
  }
  // Only what is usable.
  void add(SymbolHandle symbol, std::int32_t id) {
    const auto at = static_cast<std::size_t>(symbol);
    if (at >= ids_.size()) ids_.resize(at + 1, 0);
    ids_[at] = id;
    if (id > largest_small) {
      large_[id] = symbol;
      return;
    }
    const auto place = static_cast<std::size_t>(id);
    if (place >= small_.size()) small_.resize(place + 1, no_symbol);
    small_[place] = symbol;
  }
  // 0 when the account does not carry the symbol; no_symbol when it has none with the identifier.
  std::int32_t id_of(SymbolHandle symbol) const {
    const auto at = static_cast<std::size_t>(symbol);
    return symbol >= 0 && at < ids_.size() ? ids_[at] : 0;
  }
  SymbolHandle symbol_of(std::int32_t id) const {
    const auto place = static_cast<std::size_t>(id);
    if (place < small_.size()) return small_[place];
    if (id <= largest_small) return no_symbol;
    const auto at = large_.find(id);
    return at == large_.end() ? no_symbol : at->second;
  }

 private:
  static constexpr std::int32_t largest_small = 65'535;

  std::vector<std::int32_t> ids_;    // by symbol
  std::vector<SymbolHandle> small_;  // by identifier
  tsl::robin_map<std::int32_t, SymbolHandle> large_;
};

}  // namespace tutti
