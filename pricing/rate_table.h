#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pricing/currency_pair.h"

namespace tutti {

// Exchange rates into the currencies of accounts, made from the middle prices of a market's symbols over as
// few of them as possible. Symbols are addressed by their place in the list that the table was made with.
class RateTable {
 public:
  struct Step {
    std::size_t symbol = 0;
    bool inverse = false;

    bool operator==(const Step&) const = default;
  };
  using Path = std::vector<Step>;

  explicit RateTable(std::vector<CurrencyPair> symbols)
      : symbols_(std::move(symbols)), middles_(symbols_.size(), 0.0) {}

  // Index of an account currency, for the two look-ups below.
  std::size_t add_currency(const std::string& currency);
  // Account currency per unit of the symbol's profit currency (base); 0 while a price on the way is unknown,
  // or when no symbols lead there.
  double profit(std::size_t currency, std::size_t symbol) const { return rows_[currency].profit[symbol]; }
  double base(std::size_t currency, std::size_t symbol) const { return rows_[currency].base[symbol]; }

  // Middle prices of all symbols as they are now; 0 for one that has no price yet.
  void update(std::vector<double> middles);

  // Shortest chain of symbols that turns one currency into another, empty for the same; nothing when none.
  static std::optional<Path> find_path(const std::vector<CurrencyPair>& symbols, std::string_view from,
                                       std::string_view to);

 private:
  struct Row {
    std::string currency;
    std::vector<std::optional<Path>> profit_paths, base_paths;
    std::vector<double> profit, base;
  };
  double rate(const std::optional<Path>& path) const;
  void update(Row& row) const;

  std::vector<CurrencyPair> symbols_;
  std::vector<double> middles_;
  std::vector<Row> rows_;
};

}  // namespace tutti
