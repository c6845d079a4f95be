#pragma once

#include <any>
#include <cassert>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "core/cell.h"
#include "core/row_key.h"

namespace tutti {

// One row of a RowList. Rows are made by their list, keep their address while they live, and stamp
// themselves on every change so that a window can pull just what differs.
class Row {
 public:
  // What the rows of one list share; the list's.
  struct Shared {
    std::uint64_t stamp = 0;
    // Makes the cells of an outdated row.
    std::function<void(Row&)> make_cells;
    // First of the columns that alone are others in a row that was outdated, unless its maker says more.
    std::size_t moving_from = 0;
  };

  // Frees a row together with its cells.
  struct Deleter {
    void operator()(Row* row) const;
  };
  using Owner = std::unique_ptr<Row, Deleter>;

  // A row with its cells right behind it in one block, since whoever touches the one touches the other.
  static Owner make(RowKey key, std::size_t columns, Shared* shared);
  Row(const Row&) = delete;
  Row& operator=(const Row&) = delete;

  RowKey key() const { return key_; }
  std::uint64_t stamp() const { return stamp_; }
  // Of the last change of more than the list's moving columns; known once the cells are made.
  std::uint64_t standing_stamp() const { return standing_stamp_; }
  bool checked() const { return checked_; }
  bool selected() const { return selected_; }
  std::size_t columns() const { return columns_; }

  const Cell& cell(std::size_t column) const {
    assert(column < columns_);
    if (age_ == Age::outdated) make_cells();
    return cells()[column];
  }
  std::string text(std::size_t column) const { return cell(column).text(); }
  bool reads(std::size_t column, std::string_view text) const { return cell(column).reads(text); }

  void set_text(std::size_t column, std::string_view text) { edit(column).set_text(text); }
  void set_text(std::size_t column, std::string_view text, Ink ink) {
    Cell& cell = edit(column);
    cell.set_text(text);
    cell.set_ink(ink);
  }
  void set_ink(std::size_t column, Ink ink) { edit(column).set_ink(ink); }
  void set_ground(std::size_t column, Rgb ground) { edit(column).set_ground(ground); }
  void set_number(std::size_t column, double number, NumberFormat format = NumberFormat::general) {
    edit(column).set_number(number, format);
  }
  void set_whole(std::size_t column, std::int64_t number) { edit(column).set_whole(number); }
  void set_fixed(std::size_t column, double number, int decimals) {
    edit(column).set_fixed(number, decimals);
  }
  // The same for a price that may be missing: 0 leaves the cell empty.
  void set_fixed_or_empty(std::size_t column, double number, int decimals) {
    if (number == 0.0) {
      set_text(column, "");
    } else {
      set_fixed(column, number, decimals);
    }
  }
  // The record that the row shows has changed: the row counts as changed, and its cells are made anew, by
  // what the list has for it, when somebody reads or edits one.
  void outdate() {
    age_ = Age::outdated;
    stamp_ = ++shared_->stamp;
    if (shared_->moving_from == 0) standing_stamp_ = stamp_;
  }
  // Whoever makes the cells has written others than those of the moving columns.
  void standing_changed() { standing_stamp_ = stamp_; }
  // Several cells in a row under one stamp, from `first` on. The pointer is good until the row goes.
  Cell* edit_from(std::size_t first, std::size_t count) {
    assert(first + count <= columns_);
    (void)count;
    about_to_edit();
    return cells() + first;
  }
  void clear_cells(std::size_t first, std::size_t last) {
    for (std::size_t column = first; column <= last; ++column)
      set_text(column, "");
  }
  void set_checked(bool checked) {
    checked_ = checked;
    touch();
  }
  void set_selected(bool selected) {
    selected_ = selected;
    touch();
  }

  // Hidden data of the row's own; each list keeps one type here.
  template <class T>
  T& data() {
    if (data_.type() != typeid(T)) data_ = T{};
    return *std::any_cast<T>(&data_);
  }
  template <class T>
  const T* data_if() const {
    return std::any_cast<T>(&data_);
  }

 private:
  friend class RowList;

  // While the cells are being made the row does not count as changed once more.
  enum class Age : std::uint8_t { current, outdated, being_made };

  Row(RowKey key, std::size_t columns, Shared* shared)
      : key_(key), shared_(shared), columns_(static_cast<std::uint32_t>(columns)) {
    touch();
  }
  ~Row() = default;

  Cell* cells() { return std::launder(reinterpret_cast<Cell*>(this + 1)); }
  const Cell* cells() const { return std::launder(reinterpret_cast<const Cell*>(this + 1)); }
  Cell& edit(std::size_t column) {
    assert(column < columns_);
    about_to_edit();
    return cells()[column];
  }
  void about_to_edit() {
    if (age_ == Age::outdated) make_cells();
    if (age_ == Age::current) touch();
  }
  // Cells that are read are made on the way: to who reads them they were never others.
  void make_cells() const;
  void touch() { stamp_ = standing_stamp_ = ++shared_->stamp; }

  RowKey key_;
  std::uint64_t stamp_ = 0;
  std::uint64_t standing_stamp_ = 0;
  Shared* shared_;
  std::int64_t place_ = 0;  // index within the list plus the list's first place
  std::uint32_t columns_;
  bool checked_ = false;
  bool selected_ = false;
  mutable Age age_ = Age::current;
  std::any data_;
};
static_assert(sizeof(Row) % alignof(Cell) == 0);

}  // namespace tutti
