#include "core/row_list.h"

#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

RowList::RowList(std::vector<std::string> headers) {
  set_headers(std::move(headers));
}

void RowList::set_headers(std::vector<std::string> headers) {
  assert(rows_.empty());
  const bool same_number = headers.size() == columns_.size();
  columns_.resize(headers.size());
  for (std::size_t i = 0; i < headers.size(); ++i) {
    columns_[i].header = std::move(headers[i]);
    if (!same_number) columns_[i].width = 100.0 / static_cast<double>(headers.size());
  }
  rearranged();
}

void RowList::set_column_width(std::size_t column, double percent) {
  assert(column < columns_.size());
  columns_[column].width = percent;
  ++shared_.stamp;
}

void RowList::set_column_widths(std::string_view percents) {
  if (percents.empty()) {
    for (std::size_t column = 0; column < columns_.size(); ++column)
      set_column_width(column, 100.0 / static_cast<double>(columns_.size()));
    return;
  }
  const auto pieces = split(percents, ",");
  for (std::size_t column = 0; column < std::min(columns_.size(), pieces.size()); ++column)
    set_column_width(column, read_number(pieces[column]));
}

void RowList::set_column_tip(std::size_t column, std::string_view tip) {
  assert(column < columns_.size());
  columns_[column].tip = tip;
}

Row* RowList::insert(std::size_t index, RowKey key) {
  assert(index <= size());
  if (!key.empty() && by_key_.contains(key)) return nullptr;
  auto owned = Row::make(key, columns_.size(), &shared_);
  Row* row = owned.get();
  bool between = false;
  if (index == 0) {
    // The rows behind keep their places; only the list's first place moves.
    row->place_ = --first_place_;
    rows_.push_front(std::move(owned));
  } else if (index == size()) {
    row->place_ = first_place_ + static_cast<std::int64_t>(rows_.size());
    rows_.push_back(std::move(owned));
  } else {
    between = true;
    without_holes();
    const auto at = rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(index), std::move(owned));
    number_from(at, first_place_ + static_cast<std::int64_t>(index));
  }
  if (!key.empty()) by_key_.emplace(key, row);
  between ? rearranged() : structure_changed();
  return row;
}

void RowList::remove(Row& row) {
  const auto at = rows_.begin() + static_cast<std::ptrdiff_t>(row.place_ - first_place_);
  assert(at->get() == &row);
  if (!row.key_.empty()) by_key_.erase(row.key_);
  if (current_ == &row) current_ = nullptr;
  const bool between = at != rows_.begin() && at + 1 != rows_.end();
  at->reset();
  ++holes_;
  for (; !rows_.empty() && rows_.front() == nullptr; --holes_, ++first_place_)
    rows_.pop_front();
  for (; !rows_.empty() && rows_.back() == nullptr; --holes_)
    rows_.pop_back();
  between ? rearranged() : structure_changed();
}

void RowList::close_holes() const {
  std::erase(rows_, nullptr);
  holes_ = 0;
  number_from(rows_.begin(), first_place_);
}

void RowList::number_from(Rows::iterator first, std::int64_t place) const {
  for (; first != rows_.end(); ++first)
    (*first)->place_ = place++;
}

std::size_t RowList::remove_if(const std::function<bool(const Row&)>& gone) {
  const std::size_t before = size();
  Row* current = current_ != nullptr && gone(*current_) ? nullptr : current_;
  if (std::none_of(begin(), end(), gone)) return 0;
  auto kept = take_all();
  std::erase_if(kept, [&](const auto& row) { return gone(*row); });
  put_back(std::move(kept));
  current_ = current;
  return before - size();
}

void RowList::clear() {
  take_all();
}

bool RowList::rekey(Row& row, RowKey key) {
  if (row.key_ == key) return true;
  if (!key.empty() && !by_key_.emplace(key, &row).second) return false;
  if (!row.key_.empty()) by_key_.erase(row.key_);
  row.key_ = key;
  row.touch();
  return true;
}

std::deque<Row::Owner> RowList::take_all() {
  without_holes();
  by_key_.clear();
  current_ = nullptr;
  first_place_ = 0;
  rearranged();
  return std::exchange(rows_, {});
}

void RowList::put_back(std::deque<Row::Owner> rows) {
  for (auto& row : rows) {
    if (!row->key_.empty()) by_key_.emplace(row->key_, row.get());
    // Whoever keeps account of which rows he has seen has forgotten those that were away.
    row->touch();
  }
  without_holes();
  rows.insert(rows.end(), std::make_move_iterator(rows_.begin()), std::make_move_iterator(rows_.end()));
  rows_ = std::move(rows);
  first_place_ = 0;
  number_from(rows_.begin(), first_place_);
  rearranged();
}

std::vector<Row*> RowList::selected() const {
  std::vector<Row*> out;
  for (Row& row : *this) {
    if (row.selected_) out.push_back(&row);
  }
  return out;
}

std::size_t RowList::checked_count() const {
  return static_cast<std::size_t>(std::count_if(begin(), end(), [](const Row& row) { return row.checked_; }));
}

void RowList::tick(Row& row, bool checked) {
  row.set_checked(checked);
  if (on_tick) on_tick(row);
}

void RowList::select(Row& row) {
  for (Row& other : *this) {
    if (other.selected_ && &other != &row) other.set_selected(false);
  }
  row.set_selected(true);
  current_ = &row;
  if (on_select) on_select(row);
}

void RowList::activate(Row& row) {
  current_ = &row;
  if (on_activate) on_activate(row);
}

}  // namespace tutti
