#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tsl/robin_map.h>

#include "core/row.h"

namespace tutti {

struct Column {
  std::string header;
  double width = 0.0;  // share of the list's width, in percent
  std::string tip;     // what the header does not say; empty: nothing
};

// The state of every list and grid: ordered rows, each with an optional unique key.
//
// Find is one hash look-up. Insertion at either end is cheap, elsewhere it costs as much as the rows behind.
// Removal is cheap; the places of what is left are counted anew when somebody asks for one.
// Every change raises stamp(); a change in which rows there are, or in their order, also raises
// structure_stamp(). What a program does is silent; tick, select and activate are the operator's and run the
// handler. Indices run from 0.
class RowList {
 public:
  RowList() = default;
  explicit RowList(std::vector<std::string> headers);
  RowList(const RowList&) = delete;
  RowList& operator=(const RowList&) = delete;

  const std::vector<Column>& columns() const { return columns_; }
  // Other columns, of even width while there are more or fewer than before. Only while the list is empty,
  // since rows are made for the columns that there are.
  void set_headers(std::vector<std::string> headers);
  void set_column_width(std::size_t column, double percent);
  // Widths in percent from a text of numbers separated by ","; more numbers than columns are not used, and an
  // empty text spreads the columns evenly.
  void set_column_widths(std::string_view percents);
  void set_column_tip(std::size_t column, std::string_view tip);

  std::size_t size() const { return rows_.size() - holes_; }
  bool empty() const { return rows_.empty(); }
  Row& row(std::size_t index) { return *without_holes()[index]; }
  const Row& row(std::size_t index) const { return *without_holes()[index]; }
  std::size_t index_of(const Row& row) const {
    without_holes();
    return static_cast<std::size_t>(row.place_ - first_place_);
  }

  // nullptr when no row has the key.
  Row* find(RowKey key) const {
    const auto at = by_key_.find(key);
    return at == by_key_.end() ? nullptr : at->second;
  }

  // nullptr when the key is taken. An empty key is never taken.
  Row* insert(std::size_t index, RowKey key = {});
  Row* add(RowKey key = {}) { return insert(size(), key); }
  void remove(Row& row);
  void clear();
  // Removes all rows for which `gone` holds, in one pass; answers how many.
  std::size_t remove_if(const std::function<bool(const Row&)>& gone);
  // False when another row has the key.
  bool rekey(Row& row, RowKey key);
  // Takes all rows out, in order, and puts such rows back in front of what stands there now.
  std::deque<Row::Owner> take_all();
  void put_back(std::deque<Row::Owner> rows);

  Row* current() const { return current_; }
  void set_current(Row* row) { current_ = row; }
  std::vector<Row*> selected() const;
  std::size_t checked_count() const;

  std::uint64_t stamp() const { return shared_.stamp; }
  std::uint64_t structure_stamp() const { return structure_stamp_; }
  // Of the last change other than rows that came or went at one of the ends. While there is none, every row
  // keeps its place, and places run without a gap from first_place() up to end_place().
  std::uint64_t rearranged_stamp() const { return rearranged_stamp_; }
  std::int64_t first_place() const { return first_place_; }
  std::int64_t end_place() const { return first_place_ + static_cast<std::int64_t>(rows_.size()); }
  static std::int64_t place(const Row& row) { return row.place_; }

  // The operator ticks a row's box, picks a row alone, or double-clicks one.
  void tick(Row& row, bool checked);
  void select(Row& row);
  void activate(Row& row);
  // Set once by whoever owns a list whose rows show records: writes the cells of a row that was outdated,
  // from its record, and nothing else. Where most changes are of the last columns alone, `moving_from` is the
  // first of these, and the maker says when it has written others.
  void set_make_cells(std::function<void(Row&)> make, std::size_t moving_from = 0) {
    shared_.make_cells = std::move(make);
    shared_.moving_from = moving_from;
  }
  std::size_t moving_from() const { return shared_.moving_from; }

  std::function<void(Row&)> on_tick;
  std::function<void(Row&)> on_select;
  std::function<void(Row&)> on_activate;

  // Good until a row comes or goes.
  auto begin() const { return Iterator{without_holes().begin()}; }
  auto end() const { return Iterator{without_holes().end()}; }

 private:
  using Rows = std::deque<Row::Owner>;

  struct Iterator {
    using iterator_category = std::forward_iterator_tag;
    using value_type = Row;
    using difference_type = std::ptrdiff_t;
    using pointer = Row*;
    using reference = Row&;

    Rows::const_iterator at;
    Row& operator*() const { return **at; }
    Iterator& operator++() {
      ++at;
      return *this;
    }
    bool operator==(const Iterator&) const = default;
  };

  void structure_changed() { structure_stamp_ = ++shared_.stamp; }
  void rearranged() {
    structure_changed();
    rearranged_stamp_ = structure_stamp_;
  }

  std::vector<Column> columns_;
  // Closes the holes, to nobody's notice, and answers the rows.
  const Rows& without_holes() const {
    if (holes_ > 0) close_holes();
    return rows_;
  }
  void close_holes() const;
  void number_from(Rows::iterator first, std::int64_t place) const;

  mutable Rows rows_;  // with holes where rows were removed, but at neither end
  mutable std::size_t holes_ = 0;
  tsl::robin_map<RowKey, Row*, RowKey::Hash> by_key_;
  mutable std::int64_t first_place_ = 0;
  Row* current_ = nullptr;
  Row::Shared shared_;
  std::uint64_t structure_stamp_ = 0;
  std::uint64_t rearranged_stamp_ = 0;
};

}  // namespace tutti
