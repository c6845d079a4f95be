#pragma once

#include <cstddef>
#include <vector>

#include "benchmarks/bench_terminal.h"
#include "core/row_list.h"

namespace tutti::bench {

// The close positions window on show, with `positions` rows of one symbol under those of `accounts`, half of
// them bought; and a list with the same rows and texts that nobody owns.
class CloseGrid {
 public:
  CloseGrid(const BenchMarket& market, std::size_t accounts, std::size_t positions);

  // Each answers nanoseconds per change of the symbol's price.
  double prices();
  // A number written into one cell of every position's row, and nothing asked before.
  double rows();

 private:
  void check() const;

  std::size_t positions_;
  Symbol symbol_;
  BenchTerminal terminal_;
  RowList list_{{"Account", "Status", "Amount", "Action"}};
  std::vector<Row*> rows_;  // those of positions in it
};

}  // namespace tutti::bench
