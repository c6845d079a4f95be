#include "accounts/client_rows.h"

#include <utility>

#include "accounts/account_texts.h"
#include "core/texts.h"
#include "sessions/account_record.h"

namespace tutti {

std::vector<std::string> ClientRows::headers() {
  return {"Index",  "Username", "Connection Status ", "Account",      "Notes",      "Balance", "Flt P/L",
          "Credit", "Equity",   "Used Margin",        "Margin Level", "Free Margin"};
}

ClientRows::ClientRows(RowList& list, AccountBook& book) : list_(list) {
  list_.set_make_cells([this](Row& row) { make_cells(row); }, balance);
  book.on_shown = [this](const AccountEntry& account) { rows_.outdate(account.handle); };
}

Row* ClientRows::add(const AccountEntry& account, std::int32_t number) {
  Row* row = list_.add(client_key(number));
  if (row == nullptr) return nullptr;
  row->data<RowData>() = {.account = &account, .duplicate_key = account_key(account.user, account.account)};
  rows_.put(account.handle, *row);
  rows_.outdate(account.handle);
  return row;
}

void ClientRows::make_cells(Row& row) {
  const AccountEntry& account = record(row);
  const AccountEntry::Shown& shown = account.shown;
  // Whose record it is stays.
  if (row.cell(Column::account).empty()) {
    row.set_text(user_name, upper(account.user));
    row.set_number(Column::account, account.account);
  }
  if (std::exchange(row.data<RowData>().written, shown.written) != shown.written) {
    row.set_number(index, static_cast<double>(row.key().number()), NumberFormat::index);
    row.set_text(state, state_text(shown.state), shown.ink);
    row.set_text(notes, shown.note);
    row.standing_changed();
  }
  if (shown.has_values) {
    row.set_number(balance, shown.values.balance, NumberFormat::summary);
    row.set_number(floating, shown.values.floating_pl, NumberFormat::summary);
    row.set_number(credit, shown.values.credit, NumberFormat::summary);
    row.set_number(equity, shown.values.equity, NumberFormat::summary);
    row.set_number(used_margin, shown.values.shown_used_margin(), NumberFormat::summary);
    row.set_number(margin_level, shown.values.shown_margin_level(), NumberFormat::percent);
    row.set_number(free_margin, shown.values.free_margin, NumberFormat::summary);
  } else {
    row.clear_cells(balance, free_margin);
  }
  rows_.made(account.handle);
  shown.outdated = false;
}

void ClientRows::remove(const AccountEntry& account) {
  if (of(account) != nullptr) list_.remove(rows_.take(account.handle));
}

void ClientRows::renumber(const AccountEntry& account, std::int32_t number) {
  Row* row = of(account);
  if (row == nullptr) return;
  list_.rekey(*row, client_key(number));
  row->data<RowData>().written = nothing;
  rows_.outdate(account.handle);
}

Row* ClientRows::of(std::string_view key) const {
  for (Row& row : list_)
    if (duplicate_key(row) == key) return &row;
  return nullptr;
}

}  // namespace tutti
