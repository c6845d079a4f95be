#include "gui/list/row_list_model.h"

#include <algorithm>
#include <utility>

#include <tsl/robin_map.h>
#include "gui/kit/theme.h"

#include "gui/list/row_order.h"

namespace tutti {

RowListModel::RowListModel(RowList& list, bool ticks, QObject* parent)
    : ShownRows(parent), list_(list), ticks_(ticks), columns_(static_cast<int>(list.columns().size())) {
  settle();
}

int RowListModel::place_of(const Row* row) const {
  if (!settled()) return -1;
  const auto at = std::find(shown().begin(), shown().end(), row);
  return at == shown().end() ? -1 : static_cast<int>(at - shown().begin());
}

void RowListModel::set_filter(Filter filter, Asked asked) {
  settle();
  filter_ = std::move(filter);
  asked_ = asked;
  asked_stamp_ = 0;
  ordered_stamp_ = 0;  // what was hidden comes last
  ordered_structure_ = 0;
  show(wanted());
}

void RowListModel::keep_sorted(int column) {
  sort(column, Qt::AscendingOrder);
  keeps_sorted_ = true;
}

void RowListModel::keep_groups_sorted(int column, Filter is_head) {
  settle();
  group_column_ = column;
  is_head_ = std::move(is_head);
  show(wanted());
}

RowListModel::Rows RowListModel::by_group(const Rows& rows) const {
  tsl::robin_map<const Row*, std::size_t> place;
  Rows heads;
  for (std::size_t at = 0; at < rows.size(); ++at) {
    if (at > 0 && !is_head_(*rows[at])) continue;
    heads.push_back(rows[at]);
    place[rows[at]] = at;
  }
  sort_rows(heads, static_cast<std::size_t>(group_column_), false);
  Rows out;
  for (Row* head : heads) {
    std::size_t at = place[head];
    do {
      out.push_back(rows[at++]);
    } while (at < rows.size() && !place.contains(rows[at]));
  }
  return out;
}

void RowListModel::sort(int column, Qt::SortOrder order) {
  settle();
  sort_column_ = column;
  sort_order_ = order;
  in_order_ = column >= 0;
  ordered_stamp_ = list_.stamp();
  ordered_structure_ = list_.structure_stamp();
  keeps_sorted_ = false;
  Rows rows;
  if (column < 0) {
    rows = wanted();
  } else {
    rows = shown();
    // Ties stay in the list's own order whatever was shown before.
    std::sort(rows.begin(), rows.end(),
              [this](const Row* a, const Row* b) { return list_.index_of(*a) < list_.index_of(*b); });
    sort_rows(rows, static_cast<std::size_t>(column), order == Qt::DescendingOrder);
  }
  show(std::move(rows));
}

void RowListModel::check_order(int first, int last) {
  constexpr unsigned seldom = 32;
  if (!in_order_ || ordered_stamp_ == list_.stamp()) return;
  const int end = static_cast<int>(shown().size()) - 1;
  const bool all = ordered_structure_ != list_.structure_stamp() || ++order_checks_ % seldom == 0;
  const auto column = static_cast<std::size_t>(sort_column_);
  for (int at = all ? 0 : std::max(first, 0); in_order_ && at < (all ? end : std::min(last, end)); ++at) {
    Row& row = *shown()[static_cast<std::size_t>(at)];
    Row& next = *shown()[static_cast<std::size_t>(at) + 1];
    if (row.stamp() <= ordered_stamp_ && next.stamp() <= ordered_stamp_) continue;
    in_order_ = tutti::in_order(row, next, column, sort_order_ == Qt::DescendingOrder);
  }
  if (!all) return;
  ordered_stamp_ = list_.stamp();
  ordered_structure_ = list_.structure_stamp();
}

// While sorted once, the rows that are shown keep their order and new ones follow.
RowListModel::Rows RowListModel::wanted() {
  Rows rows;
  // What the filter said of a row holds until the row changes.
  const RowSet passed = filter_ ? RowSet(shown().begin(), shown().end()) : RowSet{};
  for (Row& row : list_) {
    if (!filter_ || (row.stamp() > asked_stamp_ ? filter_(row) : passed.contains(&row))) {
      rows.push_back(&row);
    }
  }
  asked_stamp_ = list_.stamp();
  if (group_column_ >= 0) return by_group(rows);
  if (sort_column_ < 0) return rows;
  if (keeps_sorted_) {
    sort_rows(rows, static_cast<std::size_t>(sort_column_), false);
    return rows;
  }
  const RowSet there(rows.begin(), rows.end());
  Rows ordered;
  std::copy_if(shown().begin(), shown().end(), std::back_inserter(ordered),
               [&](const Row* row) { return there.contains(row); });
  const RowSet placed(ordered.begin(), ordered.end());
  std::copy_if(rows.begin(), rows.end(), std::back_inserter(ordered),
               [&](const Row* row) { return !placed.contains(row); });
  return ordered;
}

// Rows of other columns are other rows, to be sorted anew. Columns come and go at the end, so that the one
// sorted by still is where it was.
void RowListModel::take_columns() {
  beginResetModel();
  columns_ = static_cast<int>(list_.columns().size());
  replace({});
  if (sort_column_ >= columns_) sort_column_ = -1;
  asked_stamp_ = 0;
  Rows rows = wanted();
  in_order_ = sort_column_ >= 0;
  if (in_order_) sort_rows(rows, static_cast<std::size_t>(sort_column_), sort_order_ == Qt::DescendingOrder);
  replace(std::move(rows));
  ordered_stamp_ = list_.stamp();
  seen_structure_ = ordered_structure_ = list_.structure_stamp();
  note_places();
  endResetModel();
}

void RowListModel::settle() {
  if (settled()) return;
  if (columns_ != static_cast<int>(list_.columns().size())) return take_columns();
  // Rows are given out again only when what is shown is in step: views ask in between.
  if (!take_ends()) show(wanted());
  seen_structure_ = list_.structure_stamp();
}

void RowListModel::note_places() {
  places_.clear();
  seen_first_ = list_.first_place();
  seen_end_ = list_.end_place();
  if (!own_order()) return;
  std::transform(shown().begin(), shown().end(), std::back_inserter(places_),
                 [](const Row* row) { return RowList::place(*row); });
}

// Rows that only came and went at the ends of the list, of which those that went are no more: nothing is
// looked at but them. False when it is not so.
bool RowListModel::take_ends() {
  if (!own_order() || places_.size() != shown().size() || list_.rearranged_stamp() > seen_structure_)
    return false;
  const std::int64_t first = list_.first_place();
  const std::int64_t end = list_.end_place();
  const auto gone_behind = std::lower_bound(places_.begin(), places_.end(), end) - places_.begin();
  drop(static_cast<std::size_t>(gone_behind), shown().size());
  const auto gone_before = std::lower_bound(places_.begin(), places_.end(), first) - places_.begin();
  drop(0, static_cast<std::size_t>(gone_before));
  const auto bring = [this](std::int64_t from, std::int64_t to, bool before) {
    Rows rows;
    for (std::int64_t place = from; place < to; ++place) {
      Row& row = list_.row(static_cast<std::size_t>(place - list_.first_place()));
      if (!filter_ || filter_(row)) rows.push_back(&row);
    }
    if (rows.empty()) return;
    const std::size_t at = before ? 0 : shown().size();
    insert(at, rows);
    std::vector<std::int64_t> places;
    for (const Row* row : rows)
      places.push_back(RowList::place(*row));
    places_.insert(places_.begin() + static_cast<std::ptrdiff_t>(at), places.begin(), places.end());
  };
  bring(first, std::min(seen_first_, end), true);
  bring(std::max(seen_end_, first), end, false);
  seen_first_ = first;
  seen_end_ = end;
  return true;
}

void RowListModel::drop(std::size_t first, std::size_t end) {
  if (first == end) return;
  remove(first, end);
  places_.erase(places_.begin() + static_cast<std::ptrdiff_t>(first),
                places_.begin() + static_cast<std::ptrdiff_t>(end));
}

void RowListModel::show(Rows wanted) {
  arrange(std::move(wanted));
  note_places();
}

void RowListModel::refresh(int first, int last) {
  settle();
  const std::uint64_t now = list_.stamp();
  if (now == shown_stamp_) return;
  if (filter_ && asked_ == Asked::by_changes && asked_stamp_ != now) show(wanted());
  first = std::max(first, 0);
  last = std::min(last, static_cast<int>(shown().size()) - 1);
  const auto dirty = [this](int place) {
    return shown()[static_cast<std::size_t>(place)]->stamp() > shown_stamp_;
  };
  if (last < first) {
    shown_stamp_ = now;
    return;
  }
  // What has changed of a row is known once its cells are made, which painting it would do next.
  const auto left_of = [this](int place) {
    const Row& row = *shown()[static_cast<std::size_t>(place)];
    row.cell(0);
    return row.standing_stamp() > shown_stamp_ ? 0 : static_cast<int>(list_.moving_from());
  };
  int changed = 0;
  const int right = columnCount() - 1;
  int left = right;
  for (int place = first; place <= last; ++place) {
    if (!dirty(place)) continue;
    ++changed;
    left = std::min(left, left_of(place));
  }
  if (2 * changed > last - first) {
    Q_EMIT dataChanged(index(first, left), index(last, right));
  } else {
    for (int place = first; place <= last; ++place) {
      if (dirty(place)) Q_EMIT dataChanged(index(place, left_of(place)), index(place, right));
    }
  }
  shown_stamp_ = now;
}

int RowListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown().size());
}

int RowListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns_;
}

QVariant RowListModel::data(const QModelIndex& index, int role) const {
  const Row* row = index.isValid() ? row_at(index.row()) : nullptr;
  if (row == nullptr) return {};
  const Cell& cell = row->cell(static_cast<std::size_t>(index.column()));
  switch (role) {
    case Qt::DisplayRole:
      return QString::fromStdString(cell.text());
    case Qt::ForegroundRole:
      return theme::colour(cell.ink());
    case Qt::CheckStateRole:
      if (!ticks_ || index.column() != 0) return {};
      return row->checked() ? Qt::Checked : Qt::Unchecked;
    default:
      return {};
  }
}

QVariant RowListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  if (orientation == Qt::Vertical) {
    if (role != Qt::DisplayRole) return {};
    // For views whose first column does not scroll away; see freeze_first_column.
    const Row* row = row_at(section);
    return row == nullptr ? QVariant{} : QString::fromStdString(row->text(0));
  }
  if (section < 0 || static_cast<std::size_t>(section) >= list_.columns().size()) return {};
  const Column& column = list_.columns()[static_cast<std::size_t>(section)];
  return QString::fromStdString(role == Qt::ToolTipRole ? column.tip : column.header);
}

Qt::ItemFlags RowListModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
}

}  // namespace tutti
