#include "gui/list/row_list_model.h"

#include <algorithm>
#include <utility>

#include <tsl/robin_map.h>
#include "gui/kit/theme.h"

#include "gui/list/row_order.h"

namespace tutti {

namespace {

// Telling of single changes costs the views as much as all rows, so more of them are made in one step.
constexpr std::size_t most_runs = 16;

}  // namespace

RowListModel::RowListModel(RowList& list, bool ticks, QObject* parent)
    : QAbstractTableModel(parent),
      list_(list),
      ticks_(ticks),
      columns_(static_cast<int>(list.columns().size())) {
  settle();
}

int RowListModel::place_of(const Row* row) const {
  if (!settled()) return -1;
  const auto at = std::find(shown_.begin(), shown_.end(), row);
  return at == shown_.end() ? -1 : static_cast<int>(at - shown_.begin());
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
    rows = shown_;
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
  const int end = static_cast<int>(shown_.size()) - 1;
  const bool all = ordered_structure_ != list_.structure_stamp() || ++order_checks_ % seldom == 0;
  const auto column = static_cast<std::size_t>(sort_column_);
  for (int at = all ? 0 : std::max(first, 0); in_order_ && at < (all ? end : std::min(last, end)); ++at) {
    Row& row = *shown_[static_cast<std::size_t>(at)];
    Row& next = *shown_[static_cast<std::size_t>(at) + 1];
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
  const RowSet passed = filter_ ? RowSet(shown_.begin(), shown_.end()) : RowSet{};
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
  std::copy_if(shown_.begin(), shown_.end(), std::back_inserter(ordered),
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
  shown_.clear();
  if (sort_column_ >= columns_) sort_column_ = -1;
  asked_stamp_ = 0;
  shown_ = wanted();
  in_order_ = sort_column_ >= 0;
  if (in_order_)
    sort_rows(shown_, static_cast<std::size_t>(sort_column_), sort_order_ == Qt::DescendingOrder);
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
  std::transform(shown_.begin(), shown_.end(), std::back_inserter(places_),
                 [](const Row* row) { return RowList::place(*row); });
}

// Rows that only came and went at the ends of the list, of which those that went are no more: nothing is
// looked at but them. False when it is not so.
bool RowListModel::take_ends() {
  if (!own_order() || places_.size() != shown_.size() || list_.rearranged_stamp() > seen_structure_)
    return false;
  const std::int64_t first = list_.first_place();
  const std::int64_t end = list_.end_place();
  const auto gone_behind = std::lower_bound(places_.begin(), places_.end(), end) - places_.begin();
  drop(static_cast<std::size_t>(gone_behind), shown_.size());
  const auto gone_before = std::lower_bound(places_.begin(), places_.end(), first) - places_.begin();
  drop(0, static_cast<std::size_t>(gone_before));
  const auto bring = [this](std::int64_t from, std::int64_t to, bool before) {
    Rows rows;
    for (std::int64_t place = from; place < to; ++place) {
      Row& row = list_.row(static_cast<std::size_t>(place - list_.first_place()));
      if (!filter_ || filter_(row)) rows.push_back(&row);
    }
    if (rows.empty()) return;
    const std::size_t at = before ? 0 : shown_.size();
    beginInsertRows({}, static_cast<int>(at), static_cast<int>(at + rows.size()) - 1);
    shown_.insert(shown_.begin() + static_cast<std::ptrdiff_t>(at), rows.begin(), rows.end());
    std::vector<std::int64_t> places;
    for (const Row* row : rows)
      places.push_back(RowList::place(*row));
    places_.insert(places_.begin() + static_cast<std::ptrdiff_t>(at), places.begin(), places.end());
    endInsertRows();
  };
  bring(first, std::min(seen_first_, end), true);
  bring(std::max(seen_end_, first), end, false);
  seen_first_ = first;
  seen_end_ = end;
  return true;
}

void RowListModel::drop(std::size_t first, std::size_t end) {
  if (first == end) return;
  const auto part = [&](auto& of, std::size_t at) { return of.begin() + static_cast<std::ptrdiff_t>(at); };
  beginRemoveRows({}, static_cast<int>(first), static_cast<int>(end) - 1);
  shown_.erase(part(shown_, first), part(shown_, end));
  places_.erase(part(places_, first), part(places_, end));
  endRemoveRows();
}

void RowListModel::show(Rows wanted) {
  arrange(std::move(wanted));
  note_places();
}

// Tells the views the smallest change: what stands the same at both ends is left alone, since most changes
// are one row, or new rows at one end.
void RowListModel::arrange(Rows wanted) {
  std::size_t head = 0;
  const std::size_t both = std::min(shown_.size(), wanted.size());
  while (head < both && shown_[head] == wanted[head])
    ++head;
  std::size_t tail = 0;
  while (tail < both - head && shown_[shown_.size() - 1 - tail] == wanted[wanted.size() - 1 - tail])
    ++tail;
  if (head + tail == shown_.size() && shown_.size() == wanted.size()) return;

  const auto middle = wanted.begin() + static_cast<std::ptrdiff_t>(head);
  const auto middle_end = wanted.end() - static_cast<std::ptrdiff_t>(tail);
  const RowSet staying(middle, middle_end);
  if (runs(staying, shown_, head, shown_.size() - tail) > most_runs) gather(staying, head, tail);
  remove_missing(staying, head, shown_.size() - tail);

  const RowSet kept(shown_.begin() + static_cast<std::ptrdiff_t>(head),
                    shown_.end() - static_cast<std::ptrdiff_t>(tail));
  if (runs(kept, wanted, head, wanted.size() - tail) > most_runs) return append_new(std::move(wanted));
  Rows order(shown_.begin(), shown_.begin() + static_cast<std::ptrdiff_t>(head));
  std::copy_if(middle, middle_end, std::back_inserter(order), [&](Row* row) { return kept.contains(row); });
  order.insert(order.end(), shown_.end() - static_cast<std::ptrdiff_t>(tail), shown_.end());
  if (order != shown_) reorder(std::move(order));
  insert_new(wanted, head, wanted.size() - tail);
}

// How many runs of rows that are not in the set there are between two places.
std::size_t RowListModel::runs(const RowSet& set, const Rows& rows, std::size_t from, std::size_t to) {
  std::size_t count = 0;
  bool within = false;
  for (std::size_t at = from; at < to; ++at) {
    const bool outside = !set.contains(rows[at]);
    if (outside && !within) ++count;
    within = outside;
  }
  return count;
}

// Brings the rows that go together, so that they go in one step.
void RowListModel::gather(const RowSet& staying, std::size_t head, std::size_t tail) {
  Rows order = shown_;
  std::stable_partition(order.begin() + static_cast<std::ptrdiff_t>(head),
                        order.end() - static_cast<std::ptrdiff_t>(tail),
                        [&](const Row* row) { return staying.contains(row); });
  reorder(std::move(order));
}

// New rows come in one step, and then everything goes to its place.
void RowListModel::append_new(Rows wanted) {
  const RowSet there(shown_.begin(), shown_.end());
  const std::size_t old = shown_.size();
  beginInsertRows({}, static_cast<int>(old), static_cast<int>(wanted.size()) - 1);
  std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(shown_),
               [&](const Row* row) { return !there.contains(row); });
  endInsertRows();
  reorder(std::move(wanted));
}

void RowListModel::remove_missing(const RowSet& wanted, std::size_t from, std::size_t to) {
  while (to > from) {
    std::size_t last = to;
    while (last > from && wanted.contains(shown_[last - 1]))
      --last;
    std::size_t first = last;
    while (first > from && !wanted.contains(shown_[first - 1]))
      --first;
    if (first < last) {
      beginRemoveRows({}, static_cast<int>(first), static_cast<int>(last) - 1);
      shown_.erase(shown_.begin() + static_cast<std::ptrdiff_t>(first),
                   shown_.begin() + static_cast<std::ptrdiff_t>(last));
      endRemoveRows();
    }
    to = first;
  }
}

void RowListModel::reorder(Rows order) {
  Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
  const QModelIndexList before = persistentIndexList();
  const Rows old = std::exchange(shown_, std::move(order));
  tsl::robin_map<const Row*, int> places;
  for (std::size_t i = 0; i < shown_.size(); ++i)
    places[shown_[i]] = static_cast<int>(i);
  QModelIndexList after;
  for (const QModelIndex& each : before)
    after.push_back(index(places[old[static_cast<std::size_t>(each.row())]], each.column()));
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged({}, VerticalSortHint);
}

void RowListModel::insert_new(const Rows& wanted, std::size_t from, std::size_t to) {
  for (std::size_t at = from; at < to;) {
    if (at < shown_.size() && shown_[at] == wanted[at]) {
      ++at;
      continue;
    }
    // A run of new rows ends where the row that is shown next comes, or at the end of the middle.
    const Row* next = at < shown_.size() ? shown_[at] : nullptr;
    std::size_t end = at;
    while (end < to && wanted[end] != next)
      ++end;
    beginInsertRows({}, static_cast<int>(at), static_cast<int>(end) - 1);
    shown_.insert(shown_.begin() + static_cast<std::ptrdiff_t>(at),
                  wanted.begin() + static_cast<std::ptrdiff_t>(at),
                  wanted.begin() + static_cast<std::ptrdiff_t>(end));
    endInsertRows();
    at = end;
  }
}

void RowListModel::refresh(int first, int last) {
  settle();
  const std::uint64_t now = list_.stamp();
  if (now == shown_stamp_) return;
  if (filter_ && asked_ == Asked::by_changes && asked_stamp_ != now) show(wanted());
  first = std::max(first, 0);
  last = std::min(last, static_cast<int>(shown_.size()) - 1);
  const auto dirty = [this](int place) {
    return shown_[static_cast<std::size_t>(place)]->stamp() > shown_stamp_;
  };
  if (last < first) {
    shown_stamp_ = now;
    return;
  }
  // What has changed of a row is known once its cells are made, which painting it would do next.
  const auto left_of = [this](int place) {
    const Row& row = *shown_[static_cast<std::size_t>(place)];
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
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
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
