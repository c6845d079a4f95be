#pragma once

#include <cstdint>
#include <deque>
#include <functional>

#include "core/row_list.h"
#include "gui/list/shown_rows.h"

namespace tutti {

// The one adapter between row lists and views. Order and filter are its own; the list's order stays what the
// form needs it to be.
//
// Which rows there are is taken over by settle(), which must run after the list has changed and before the
// next paint or click; until then no row is given out, so that nobody works on one that has gone. Values are
// read when painted: refresh() only tells the view which of its visible rows changed.
class RowListModel final : public ShownRows {
 public:
  using Filter = std::function<bool(const Row&)>;

  // `ticks`: rows carry a check box.
  explicit RowListModel(RowList& list, bool ticks = false, QObject* parent = nullptr);

  RowList& list() const { return list_; }
  bool ticks() const { return ticks_; }
  bool settled() const { return seen_structure_ == list_.structure_stamp(); }
  // The row shown at a place; nullptr outside, and while not settled.
  Row* row_at(int place) const {
    const auto at = static_cast<std::size_t>(place);
    return settled() && place >= 0 && at < shown().size() ? shown()[at] : nullptr;
  }
  // Place of a row; -1 while it is not shown.
  int place_of(const Row* row) const;

  // Shows only rows for which the filter holds; an empty one shows all. It is asked again when a row changes,
  // or, where it goes by more than the row and not by its values, by whoever sets it again. Where rows never
  // change it is asked once: then a row that comes costs as much however many there are.
  enum class Asked : std::uint8_t { by_changes, by_owner, once };
  void set_filter(Filter filter, Asked asked = Asked::by_changes);
  bool filtered() const { return static_cast<bool>(filter_); }
  // Orders the rows once by what a column holds, numbers by value; new rows come last until the next sort.
  // Column -1 is the list's own order.
  void sort(int column, Qt::SortOrder order) override;
  // The same as before once more, for what the operator does that lets other rows in.
  void sort_again() {
    if (sort_column_ >= 0 && !keeps_sorted_) sort(sort_column_, sort_order_);
  }
  // Until the next sort the rows stand by what a column holds, upwards, and new ones among them; for a column
  // whose values never change.
  void keep_sorted(int column);
  // For lists whose rows belong to the head above them: the groups stand by what a column of their heads
  // holds, upwards, and the rows within one as the list has them. A click on a header must not sort then.
  void keep_groups_sorted(int column, Filter is_head);
  int sort_column() const { return sort_column_; }
  // Whether the rows still stand as they were sorted last. Those from place `first` to `last` are looked at
  // with every call, all of them when rows have come or been let in, and else now and then: positions change
  // by the thousand.
  bool in_order() const { return in_order_; }
  void check_order(int first, int last);
  Qt::SortOrder sort_order() const { return sort_order_; }

  void settle();
  // Tells of the rows from place `first` to `last` that changed since the last call.
  void refresh(int first, int last);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  void take_columns();
  Rows wanted();
  Rows by_group(const Rows& rows) const;
  void show(Rows wanted);
  void note_places();
  bool own_order() const { return sort_column_ < 0 && group_column_ < 0; }
  bool take_ends();
  void drop(std::size_t first, std::size_t end);

  RowList& list_;
  bool ticks_;
  Filter filter_;
  Asked asked_ = Asked::by_changes;
  int sort_column_ = -1;
  int group_column_ = -1;
  Filter is_head_;
  Qt::SortOrder sort_order_ = Qt::AscendingOrder;
  bool in_order_ = false;
  std::uint64_t ordered_stamp_ = 0;      // of the list when all rows were seen to be in order
  std::uint64_t ordered_structure_ = 0;  // and which rows there were
  unsigned order_checks_ = 0;
  bool keeps_sorted_ = false;
  std::deque<std::int64_t> places_;  // of the rows shown in the list, while they stand in its order
  std::int64_t seen_first_ = 0;      // the list's places, then
  std::int64_t seen_end_ = 0;
  int columns_ = 0;
  std::uint64_t seen_structure_ = 0;
  std::uint64_t asked_stamp_ = 0;  // of the list when the filter was asked last
  std::uint64_t shown_stamp_ = 0;  // of the list when refresh() ran last
};

}  // namespace tutti
