#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/row_list.h"

namespace tutti {

// The rows of a list that show records with dense numbers. A record that changes a thousand times before
// somebody reads its row outdates the row once: what has not been read since can't be shown wrongly.
class RecordRows {
 public:
  // nullptr when the record has none.
  Row* of(std::size_t record) const { return record < rows_.size() ? rows_[record] : nullptr; }
  void put(std::size_t record, Row& row) {
    if (record >= rows_.size()) {
      rows_.resize(record + 1);
      read_.resize(record + 1);
    }
    rows_[record] = &row;
    read_[record] = 1;
  }
  // Forgets the row of a record that has one.
  Row& take(std::size_t record) { return *std::exchange(rows_[record], nullptr); }
  // The record has changed. One without a row is ignored.
  void outdate(std::size_t record) {
    if (record >= read_.size() || std::exchange(read_[record], std::uint8_t{0}) == 0) return;
    if (rows_[record] != nullptr) rows_[record]->outdate();
  }
  // The row's cells have been made. To be called last by what makes them.
  void made(std::size_t record) { read_[record] = 1; }

 private:
  std::vector<Row*> rows_;
  std::vector<std::uint8_t> read_;  // beside the rows: these few bytes are all that most changes touch
};

}  // namespace tutti
