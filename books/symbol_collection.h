#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <tsl/robin_map.h>

#include "core/clock.h"
#include "sessions/contract/symbol.h"

namespace tutti {

// Dense number of a symbol name within the application, 0 and up; -1 means none. Good for the whole run.
using SymbolHandle = std::int32_t;
inline constexpr SymbolHandle no_symbol = -1;

// The application's symbols with their latest prices, keyed by "S" and the name. Sessions fill and feed it:
// the names of all accounts share one entry, so a name is looked up once at login and is a number from then
// on.
class SymbolCollection {
 public:
  struct Entry {
    std::string name;
    std::int32_t digits = 5;
    double bid = 0.0;
    double ask = 0.0;
    double high = 0.0;
    double low = 0.0;
    TimePoint quote_time{};
    std::uint64_t stamp = 0;  // raised with every price
    bool listed = false;      // false before a session brought it and after its removal
  };

  // "S" & name, the key of the entry.
  static std::string key(std::string_view name) { return "S" + std::string{name}; }

  SymbolHandle add(const Symbol& symbol);
  void remove(std::string_view name);
  // Handle of a listed symbol.
  SymbolHandle find(std::string_view name) const;
  const Entry& entry(SymbolHandle handle) const { return entries_[static_cast<std::size_t>(handle)]; }
  const std::vector<Entry>& entries() const { return entries_; }
  std::vector<std::string> names() const;
  // Decimals of a symbol's prices; 5 for one that is not listed.
  int digits(std::string_view name) const {
    const SymbolHandle handle = find(name);
    return handle == no_symbol ? 5 : entry(handle).digits;
  }

  void set_prices(SymbolHandle handle, const Symbol& symbol) {
    Entry& entry = entries_[static_cast<std::size_t>(handle)];
    entry.bid = symbol.bid;
    entry.ask = symbol.ask;
    entry.quote_time = symbol.quote_time;
    entry.stamp = ++stamp_;
  }
  void set_high_low(SymbolHandle handle, const Symbol& symbol);

  std::uint64_t stamp() const { return stamp_; }
  // Raised when a symbol comes or goes.
  std::uint64_t names_stamp() const { return names_stamp_; }

 private:
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };

  std::vector<Entry> entries_;
  tsl::robin_map<std::string, SymbolHandle, TextHash, std::equal_to<>> by_name_;
  std::uint64_t stamp_ = 0;
  std::uint64_t names_stamp_ = 0;
};

}  // namespace tutti
