#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "books/symbol_collection.h"
#include "core/displayable.h"
#include "core/row_list.h"
#include "sessions/desk.h"

namespace tutti {

// Market watch: one row per symbol with its live prices. Rows are keyed "S" and the symbol's handle.
class frmMW final : public MarketWatchDesk, public Displayable {
 public:
  enum Column : std::size_t { symbol_name, bid, ask, spread, high, low, time };

  explicit frmMW(const SymbolCollection& symbols);

  // Bid and Ask are green after a rise and red after a fall, until they move the next time. The spread is a
  // whole number of points, one point being a unit of the price's last decimal.
  RowList lvwMW{{"Symbol", "Bid", "Ask", "Spread", "High", "Low", "Time"}};

  const std::string& ColumnWidthsPer() const { return column_widths_; }
  void ColumnWidthsPer(std::string widths);

  // Hand a symbol over to the order windows; set by start-up. A double-click on a row is for the market
  // order.
  std::function<void(std::string_view symbol)> to_market_order;
  std::function<void(std::string_view symbol)> to_entry_order;
  const std::string& symbol_of(const Row& row) const {
    return symbols_.entry(static_cast<SymbolHandle>(row.key().number())).name;
  }

  // MarketWatchDesk. The values shown are those of the symbol collection, which has sorted out what is no
  // price.
  void clear() override;
  void symbol(SymbolHandle handle, const Symbol& symbol, std::string_view time_text) override;
  // Called for every price event of every session: a row is touched only when a value of it changed.
  void prices(SymbolHandle handle, const Symbol& symbol) override;

 private:
  struct Shown {
    Row* row = nullptr;
    std::int64_t minute = 0;  // of the quote whose time the row shows, since the clock's epoch
  };

  static void write(Row& row, const SymbolCollection::Entry& now);

  const SymbolCollection& symbols_;
  std::string column_widths_;
  std::vector<Shown> shown_;  // by handle
};

}  // namespace tutti
