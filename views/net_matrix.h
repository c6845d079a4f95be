#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "core/combo_box.h"
#include "core/row_list.h"
#include "views/CNetPos.h"
#include "views/position_block.h"

namespace tutti {

// Accounts and symbols: what every account holds of every symbol, net lots or profit, with the totals of
// both.
class NetMatrix final {
 public:
  // Columns; the symbols follow in the order in which their first positions came, so that none ever moves.
  enum Column : std::size_t { account, total, first_symbol };

  explicit NetMatrix(const CNetPos& book);

  // Ordered by number, keyed "C" and the account number; the total row at the end has no key. A cell without
  // positions is empty.
  RowList lvwNetMatrix{{"Account", "Total"}};
  ComboBox shown;  // net lots, or profit in account currency

  // Brings the list up to date; to be called before it is shown, once a frame at most.
  void refresh();

  // A cell that the operator has picked. The Account and Total columns stand for all symbols, and cells that
  // are empty in the list for nothing. Wherever several are given, they are ordered by account and column.
  struct Picked {
    std::int32_t account = 0;
    std::size_t column = 0;
  };
  // What picked cells hold together.
  struct Summary {
    std::size_t accounts = 0;
    std::size_t symbols = 0;
    double sum = 0.0;  // of what the list shows, lots or profit
  };
  Summary summary(const std::vector<Picked>& cells) const;
  bool can_close(const std::vector<Picked>& cells) const { return summary(cells).accounts > 0; }
  // Hands what the picked cells hold over to be closed, a block per symbol.
  void close_picked(const std::vector<Picked>& cells) const;
  // Takes what is to be closed; set by start-up.
  std::function<void(std::vector<PositionBlock>)> close;

  bool shows_profit() const { return shown.index() == profit_item; }

 private:
  static constexpr int profit_item = 1;

  void follow_symbols();
  template <class Take>
  void each_held(const std::vector<Picked>& cells, Take take) const;
  void write(Row& row, const NetSum& sum, std::size_t column) const;

  const CNetPos& book_;
  std::uint64_t seen_ = 0;  // stamp of the book that the list shows
};

}  // namespace tutti
