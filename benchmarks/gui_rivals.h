#pragma once

#include <QMainWindow>
#include <QTableView>
#include <QTableWidget>
#include <cstddef>
#include <vector>

#include "benchmarks/gui_windows.h"
#include "sessions/contract/account_summary.h"

namespace tutti::bench {

// The accounts list as a table of the toolkit's own items.
class TableRival {
 public:
  explicit TableRival(const RowListView& like);

  // One row's seven numbers after the other.
  void rows(std::size_t count);
  const PaintCount& paints() const { return paints_; }

 private:
  QMainWindow window_;
  QTableWidget* table_;
  PaintCount paints_;
  std::vector<AccountSummary> values_;
  int row_ = 0;
  std::size_t next_ = 0;
};

// The accounts list's model in the toolkit's own view with its own delegate, as large as the accounts list.
class StockView {
 public:
  explicit StockView(RowListView& like);

  QTableView& view() { return *view_; }

 private:
  QMainWindow window_;
  QTableView* view_;
};

}  // namespace tutti::bench
