#include "pricing/rate_table.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace tutti {

std::optional<RateTable::Path> RateTable::find_path(const std::vector<CurrencyPair>& symbols,
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
  Row row{currency, {}, {}, {}, {}};
  for (const CurrencyPair& symbol : symbols_) {
    row.profit_paths.push_back(find_path(symbols_, symbol.profit, currency));
    row.base_paths.push_back(find_path(symbols_, symbol.base, currency));
  }
  row.profit.resize(symbols_.size());
  row.base.resize(symbols_.size());
  update(row);
  rows_.push_back(std::move(row));
  return rows_.size() - 1;
}

void RateTable::update(std::vector<double> middles) {
  assert(middles.size() == symbols_.size());
  middles_ = std::move(middles);
  for (Row& row : rows_)
    update(row);
}

void RateTable::update(Row& row) const {
  for (std::size_t s = 0; s < symbols_.size(); ++s) {
    row.profit[s] = rate(row.profit_paths[s]);
    row.base[s] = rate(row.base_paths[s]);
  }
}

double RateTable::rate(const std::optional<Path>& path) const {
  if (!path) return 0.0;
  double rate = 1.0;
  for (const Step& step : *path) {
    const double middle = middles_[step.symbol];
    if (middle <= 0.0) return 0.0;
    rate *= step.inverse ? 1.0 / middle : middle;
  }
  return rate;
}

}  // namespace tutti
