#pragma once

#include <QItemSelection>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace tutti {

// Puts a selection together from cells, of as few ranges as they need: whoever asks about a selection goes
// through all of its ranges. Cells are added row by row from the top, those of a row from the left.
class SelectionBuilder {
 public:
  explicit SelectionBuilder(const QAbstractItemModel& model) : model_(model) {}

  // The cells of a row from one column to another.
  void add(int place, int left, int right);
  QItemSelection selection();

 private:
  struct Block {
    int top = -1;
    int bottom = -1;
    int left = -1;
    int right = -1;
  };

  void finish_run();

  const QAbstractItemModel& model_;
  Block run_;                                          // in the last row; none while its top is -1
  std::vector<Block> blocks_;                          // of runs below each other
  std::map<std::pair<int, int>, std::size_t> lowest_;  // index of the lowest block of these columns
};

}  // namespace tutti
