#include "dealer/rate_table.h"

#include <algorithm>

namespace tutti {

RateTable::RateTable(const Market& market) : market_(market) {}

std::optional<RateTable::Path> RateTable::find_path(const std::vector<SymbolConfig>& symbols,
                                                    std::string_view from, std::string_view to) {
  struct Reached {
    std::string_view currency;
    Path path;
  };
  // Breadth first: the list grows while it is read, and every currency enters once.
  std::vector<Reached> reached{{from, {}}};
  for (std::size_t i = 0; i < reached.size(); ++i) {
    const Reached here = reached[i];
    if (here.currency == to) return here.path;
    for (std::size_t s = 0; s < symbols.size(); ++s) {
      const bool inverse = symbols[s].profit == here.currency;
      if (!inverse && symbols[s].base != here.currency) continue;
      const std::string_view next = inverse ? symbols[s].base : symbols[s].profit;
      if (std::any_of(reached.begin(), reached.end(), [&](const Reached& r) { return r.currency == next; }))
        continue;
      Path path = here.path;
      path.push_back({s, inverse});
      reached.push_back({next, std::move(path)});
    }
  }
  return std::nullopt;
}

std::size_t RateTable::add_currency(const std::string& currency) {
  for (std::size_t i = 0; i < rows_.size(); ++i)
    if (rows_[i].currency == currency) return i;
  const std::vector<SymbolConfig>& symbols = market_.symbols();
  Row row{currency, {}, {}, {}, {}};
  for (const SymbolConfig& symbol : symbols) {
    row.profit_paths.push_back(find_path(symbols, symbol.profit, currency).value_or(Path{}));
    row.base_paths.push_back(find_path(symbols, symbol.base, currency).value_or(Path{}));
  }
  row.profit.resize(symbols.size());
  row.base.resize(symbols.size());
  update(row);
  rows_.push_back(std::move(row));
  return rows_.size() - 1;
}

void RateTable::update() {
  for (Row& row : rows_)
    update(row);
}

void RateTable::update(Row& row) const {
  for (std::size_t s = 0; s < market_.count(); ++s) {
    row.profit[s] = rate(row.profit_paths[s]);
    row.base[s] = rate(row.base_paths[s]);
  }
}

double RateTable::rate(const Path& path) const {
  double rate = 1.0;
  for (const Step& step : path) {
    const Quote& quote = market_.quote(step.symbol);
    if (!quote.known()) return 0.0;
    rate *= step.inverse ? 1.0 / quote.middle() : quote.middle();
  }
  return rate;
}

}  // namespace tutti
