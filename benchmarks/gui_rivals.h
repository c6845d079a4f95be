#pragma once

#include <QMainWindow>
#include <QStandardItemModel>
#include <QTableView>
#include <cstddef>
#include <memory>
#include <vector>

#include "benchmarks/gui_windows.h"

namespace tutti::bench {

// The accounts list as a standard item model of the toolkit's, in its own view. What changed is written into
// the items once a frame, when its screen is refreshed.
class CoalescedRival {
 public:
  explicit CoalescedRival(RowListView& like);

  // The row of the list at this place changes.
  void changed(std::size_t place) { dirty_[place] = true; }
  Screen& screen() { return screen_; }
  const PaintCount& paints() const { return *paints_; }

 private:
  void write(std::size_t place);

  RowListModel& list_;
  QMainWindow window_;
  Screen screen_;
  QTableView* view_;
  QStandardItemModel model_;
  std::unique_ptr<PaintCount> paints_;
  std::vector<bool> dirty_;
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
