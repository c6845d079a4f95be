#include "orders/account_rows.h"

#include "core/texts.h"

namespace tutti {

Row* AccountRows::add(std::int32_t account, std::string_view amount) {
  Row* row = list_.add(client_key(account));
  if (row == nullptr) return nullptr;
  row->set_number(Column::account, account);
  row->set_text(Column::amount, amount);
  if (ticked_when_gone_.erase(account) > 0) row->set_text(Column::result_text, came_back_text);
  return row;
}

std::vector<std::int32_t> AccountRows::accounts() const {
  std::vector<std::int32_t> out;
  for (const Row& row : list_)
    out.push_back(static_cast<std::int32_t>(row.key().number()));
  return out;
}

void AccountRows::update_result(RowKey key, std::string_view text) {
  if (Row* row = list_.find(key)) row->set_text(Column::result_text, text);
}

void AccountRows::update_amount(RowKey key, double amount) {
  if (Row* row = list_.find(key)) row->set_number(Column::amount, amount);
}

void AccountRows::remove(std::int32_t account) {
  Row* row = find(account);
  if (row == nullptr) return;
  if (was_ticked(*row)) ticked_when_gone_.insert(account);
  list_.remove(*row);
}

void AccountRows::remove_if(const std::function<bool(const Row&)>& gone) {
  for (const Row& row : list_)
    if (was_ticked(row) && gone(row)) ticked_when_gone_.insert(static_cast<std::int32_t>(row.key().number()));
  list_.remove_if(gone);
}

void AccountRows::ticked(Row& row) {
  if (came_back(row)) row.set_text(Column::result_text, "");
}

void AccountRows::leave_out(Row& row, std::string_view reason) {
  row.set_text(Column::result_text, reason);
  ++left_out_[std::string{reason}];
}

std::string AccountRows::left_out_text() const {
  std::string out;
  for (const auto& [reason, count] : left_out_)
    out += (out.empty() ? "" : ", ") + std::to_string(count) + " left out (" + reason + ")";
  return out;
}

std::optional<double> AccountRows::share_of(const Row& row) {
  const Cell& cell = row.cell(Column::amount);
  return cell.empty() ? std::nullopt : std::optional{cell.number()};
}

ShareFault AccountRows::fault_of(const Row& row) const {
  if (!row.checked()) return ShareFault::none;
  const auto share = share_of(row);
  if (!share) return ShareFault::none;
  if (*share <= 0.0) return ShareFault::zero_or_below;
  if (*share < lots_.minimum) return ShareFault::below_minimum;
  return lots_.maximum > 0.0 && *share > lots_.maximum ? ShareFault::above_maximum : ShareFault::none;
}

Shares AccountRows::shares() const {
  Shares out;
  for (const Row& row : list_) {
    if (!row.checked()) continue;
    const auto share = share_of(row);
    if (!share) {
      ++out.without;
      continue;
    }
    out.sum += *share;
    ++out.counted;
    const ShareFault fault = fault_of(row);
    if (fault == ShareFault::zero_or_below) ++(*share < 0.0 ? out.negative : out.zero);
    if (fault == ShareFault::below_minimum) ++out.below_minimum;
    if (fault == ShareFault::above_maximum) ++out.above_maximum;
  }
  return out;
}

bool AccountRows::open_editor(Row& row, std::size_t column) {
  if (column != Column::amount) return false;
  move_editor(row.key(), column);
  editor_.set_text(row.text(column));
  editor_.set_visible(true);
  editor_.select_all();
  return true;
}

bool AccountRows::commit_editor() {
  editor_.set_visible(false);
  // The account may have disconnected while its share was edited.
  Row* row = list_.find(editor_row_);
  const std::string_view text = trim(editor_.text());
  // The text of a placeholder row is no value.
  if (row == nullptr || text == "enter next entry") return false;
  row->set_text(editor_column_, text);
  return true;
}

double AccountRows::left_edge(std::size_t column) const {
  double left = 0.0;
  for (std::size_t i = 0; i < column; ++i)
    left += list_.columns()[i].width;
  return left;
}

void AccountRows::move_editor(RowKey row, std::size_t column) {
  editor_row_ = row;
  editor_column_ = column;
}

}  // namespace tutti
