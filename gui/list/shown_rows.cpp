#include "gui/list/shown_rows.h"

#include <tsl/robin_map.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tutti {
namespace {

// Telling of single changes costs the views as much as all rows, so more of them are made in one step.
constexpr std::size_t most_runs = 16;

}  // namespace

void ShownRows::insert(std::size_t at, const Rows& rows) {
  beginInsertRows({}, static_cast<int>(at), static_cast<int>(at + rows.size()) - 1);
  shown_.insert(shown_.begin() + static_cast<std::ptrdiff_t>(at), rows.begin(), rows.end());
  endInsertRows();
}

void ShownRows::remove(std::size_t first, std::size_t end) {
  beginRemoveRows({}, static_cast<int>(first), static_cast<int>(end) - 1);
  shown_.erase(shown_.begin() + static_cast<std::ptrdiff_t>(first),
               shown_.begin() + static_cast<std::ptrdiff_t>(end));
  endRemoveRows();
}

// Tells the views the smallest change: what stands the same at both ends is left alone, since most changes
// are one row, or new rows at one end.
void ShownRows::arrange(Rows wanted) {
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
std::size_t ShownRows::runs(const RowSet& set, const Rows& rows, std::size_t from, std::size_t to) {
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
void ShownRows::gather(const RowSet& staying, std::size_t head, std::size_t tail) {
  Rows order = shown_;
  std::stable_partition(order.begin() + static_cast<std::ptrdiff_t>(head),
                        order.end() - static_cast<std::ptrdiff_t>(tail),
                        [&](const Row* row) { return staying.contains(row); });
  reorder(std::move(order));
}

// New rows come in one step, and then everything goes to its place.
void ShownRows::append_new(Rows wanted) {
  const RowSet there(shown_.begin(), shown_.end());
  const std::size_t old = shown_.size();
  beginInsertRows({}, static_cast<int>(old), static_cast<int>(wanted.size()) - 1);
  std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(shown_),
               [&](const Row* row) { return !there.contains(row); });
  endInsertRows();
  reorder(std::move(wanted));
}

void ShownRows::remove_missing(const RowSet& wanted, std::size_t from, std::size_t to) {
  while (to > from) {
    std::size_t last = to;
    while (last > from && wanted.contains(shown_[last - 1]))
      --last;
    std::size_t first = last;
    while (first > from && !wanted.contains(shown_[first - 1]))
      --first;
    if (first < last) remove(first, last);
    to = first;
  }
}

void ShownRows::reorder(Rows order) {
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

void ShownRows::insert_new(const Rows& wanted, std::size_t from, std::size_t to) {
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
    insert(at, Rows(wanted.begin() + static_cast<std::ptrdiff_t>(at),
                    wanted.begin() + static_cast<std::ptrdiff_t>(end)));
    at = end;
  }
}

}  // namespace tutti
