#include "books/symbol_collection.h"

namespace tutti {

SymbolHandle SymbolCollection::add(const Symbol& symbol) {
  auto at = by_name_.find(std::string_view{symbol.name});
  if (at == by_name_.end()) {
    at = by_name_.emplace(symbol.name, static_cast<SymbolHandle>(entries_.size())).first;
    entries_.push_back({});
  }
  const SymbolHandle handle = at->second;
  Entry& entry = entries_[static_cast<std::size_t>(handle)];
  if (!entry.listed) ++names_stamp_;
  entry.name = symbol.name;
  entry.digits = symbol.digits;
  entry.listed = true;
  set_prices(handle, symbol);
  set_high_low(handle, symbol);
  return handle;
}

void SymbolCollection::remove(std::string_view name) {
  const SymbolHandle handle = find(name);
  if (handle == no_symbol) return;
  entries_[static_cast<std::size_t>(handle)].listed = false;
  ++names_stamp_;
}

SymbolHandle SymbolCollection::find(std::string_view name) const {
  const auto at = by_name_.find(name);
  if (at == by_name_.end() || !entry(at->second).listed) return no_symbol;
  return at->second;
}

std::vector<std::string> SymbolCollection::names() const {
  std::vector<std::string> out;
  for (const Entry& entry : entries_) {
    if (entry.listed) out.push_back(entry.name);
  }
  return out;
}

void SymbolCollection::set_high_low(SymbolHandle handle, const Symbol& symbol) {
  Entry& entry = entries_[static_cast<std::size_t>(handle)];
  entry.high = symbol.high;
  entry.low = symbol.low;
  entry.stamp = ++stamp_;
}

}  // namespace tutti
