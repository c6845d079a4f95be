#include "orders/close_rows.h"

#include <algorithm>
#include <cassert>
#include <charconv>

#include "accounts/account_texts.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

// Twelve blanks: the ticket is read back as what stands behind them.
constexpr std::string_view position_prefix = "            #";
// Of the position text split at its blanks.
constexpr std::size_t ticket_piece = 12;
constexpr std::string_view no_price_text = "Close";

std::string position_text(const PositionBook::Record& open) {
  return std::string{position_prefix} + std::to_string(open.ticket) + " " + frmTrade::type_text(open) + " " +
         number_text(open.amount) + " " + open.symbol + " at " + fixed_text(open.open_price, open.digits);
}

}  // namespace

bool CloseRows::shows(const Row& above, AccountState state) {
  const auto* data = above.data_if<RowData>();
  return data != nullptr && data->kind == Kind::account && data->state == state;
}

std::int32_t CloseRows::account_of(const Row& row) {
  return is_position(row) ? row.key().account()
                          : static_cast<std::int32_t>(row.cell(Column::account).stored_number());
}

void CloseRows::show_state(Row& above, AccountState state) {
  above.data<RowData>() = {Kind::account, state};
  above.set_text(Column::status, state_text(state));
}

Row& CloseRows::add(std::int32_t number) {
  Row* row = find(number);
  if (row == nullptr) {
    row = list_.add(client_key(number));
    row->set_number(Column::account, number);
  }
  show_state(*row, AccountState::connected);
  return *row;
}

void CloseRows::write(Row& row, const Record& open) {
  const std::string text = position_text(open);
  const auto has = [&text](const char* word) { return text.find(word) != std::string::npos; };
  const bool is_new = row.cell(Column::status).empty();
  row.set_text(Column::status, text);
  row.set_number(Column::amount, open.amount);
  row.data<RowData>().kind = has("Sell") ? Kind::sell : has("Buy") ? Kind::buy : Kind::other;
  if (is_new) write_no_price(row);
}

void CloseRows::write_no_price(Row& row) {
  row.set_text(Column::action, no_price_text);
  write_price(row);
  // A request that is still on its way is to be seen as such.
  if (round_.answer_of(row.key()) == OrderAnswer::waiting) write_action(row, waiting_text);
}

// Of a request, until the next price.
void CloseRows::write_action(Row& row, std::string_view text) {
  row.set_text(Column::action, text);
  overwritten_ = true;
}

void CloseRows::show_prices(double ask, double bid) {
  ask_ = ask;
  bid_ = bid;
  overwritten_ = false;
  for (Row& row : list_)
    write_price(row);
}

// An account that is not connected stays, so that the operator sees why its positions are gone.
void CloseRows::remove_if_empty(Row& above) {
  if (shows(above, AccountState::connected) && positions_of(above).empty()) list_.remove(above);
}

void CloseRows::take_out(Row& above) {
  for (Row* position : positions_of(above))
    list_.remove(*position);
  list_.remove(above);
}

void CloseRows::mark(Row& row, bool marked) {
  row.set_ground(Column::status, marked ? marked_ground : unmarked_ground);
}

std::vector<Row*> CloseRows::positions_of(const Row& above) const {
  std::vector<Row*> out;
  for (std::size_t at = list_.index_of(above) + 1; at < list_.size() && is_position(list_.row(at)); ++at)
    out.push_back(&list_.row(at));
  return out;
}

bool CloseRows::toggle(const std::vector<Row*>& rows) {
  std::vector<Row*> positions;
  for (Row* row : rows) {
    if (is_position(*row)) {
      positions.push_back(row);
    } else {
      for (Row* below : positions_of(*row))
        positions.push_back(below);
    }
  }
  if (positions.empty()) return false;
  const bool all = std::all_of(positions.begin(), positions.end(), [](const Row* p) { return marked(*p); });
  for (Row* position : positions)
    mark(*position, !all);
  return all;
}

std::size_t CloseRows::marked_count() const {
  return static_cast<std::size_t>(std::count_if(
      list_.begin(), list_.end(), [](const Row& row) { return is_position(row) && marked(row); }));
}

std::int64_t CloseRows::ticket_of(const Row& row) {
  const std::string text = row.text(Column::status);
  const auto pieces = split(text, " ");
  std::int64_t ticket = 0;
  if (pieces.size() > ticket_piece && pieces[ticket_piece].starts_with('#')) {
    const std::string_view number = pieces[ticket_piece].substr(1);
    std::from_chars(number.data(), number.data() + number.size(), ticket);
  }
  assert(ticket == row.key().number());
  return ticket;
}

std::vector<frmTrade::Close> CloseRows::marked_positions() const {
  std::vector<frmTrade::Close> out;
  std::int32_t number = 0;
  for (const Row& row : list_) {
    if (!row.cell(Column::account).empty()) {
      number = static_cast<std::int32_t>(row.cell(Column::account).stored_number());
    } else if (!row.cell(Column::status).empty() && marked(row)) {
      out.push_back({ticket_of(row), row.cell(Column::amount).number(), number});
    }
  }
  return out;
}

}  // namespace tutti
