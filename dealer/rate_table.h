#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dealer/market.h"

namespace tutti {

// Exchange rates into the currencies of the accounts, made from the market's middle prices over as few
// symbols as possible.
class RateTable {
 public:
  struct Step {
    std::size_t symbol = 0;
    bool inverse = false;
  };
  using Path = std::vector<Step>;

  explicit RateTable(const Market& market);

  // Index of an account currency, for the two look-ups below.
  std::size_t add_currency(const std::string& currency);
  // Account currency per unit of the symbol's profit currency (base); 0 while a price on the way is unknown.
  double profit(std::size_t currency, std::size_t symbol) const { return rows_[currency].profit[symbol]; }
  double base(std::size_t currency, std::size_t symbol) const { return rows_[currency].base[symbol]; }

  // Reads the market anew; called after prices moved.
  void update();

  // Shortest chain of symbols that turns one currency into another, empty for the same; nothing when none.
  static std::optional<Path> find_path(const std::vector<SymbolConfig>& symbols, std::string_view from,
                                       std::string_view to);

 private:
  struct Row {
    std::string currency;
    std::vector<Path> profit_paths, base_paths;
    std::vector<double> profit, base;
  };
  double rate(const Path& path) const;
  void update(Row& row) const;

  const Market& market_;
  std::vector<Row> rows_;
};

}  // namespace tutti
