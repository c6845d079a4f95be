#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <tsl/robin_map.h>

#include "sessions/contract/symbol.h"

namespace tutti::bench {

// The symbols of all bench accounts: twenty of them, found by name in one hash look-up.
struct BenchMarket {
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  using Identifiers = tsl::robin_map<std::string, std::int32_t, TextHash, std::equal_to<>>;

  BenchMarket();
  const Symbol* find(std::string_view name) const {
    const auto at = by_name.find(name);
    return at == by_name.end() ? nullptr : &symbols[static_cast<std::size_t>(at->second) - 1];
  }

  std::vector<Symbol> symbols;
  Identifiers by_name;  // the identifiers run from 1
};

}  // namespace tutti::bench
