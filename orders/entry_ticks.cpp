#include "orders/entry_ticks.h"

#include "orders/entry_round.h"

namespace tutti {

EntryTicks::EntryTicks(AccountRows& rows, RowList& list, CheckBox& all, Label& all_label)
    : rows_(rows), list_(list), all_(all), all_label_(all_label) {
  list_.on_tick = [this](Row& row) { follow_row(row); };
  all_.on_click = [this] { follow_box(); };
  all_label_.on_click = [this] { all_.click(); };
}

void EntryTicks::follow_row(Row& row) {
  row.data<EntryRound::RowData>().wanted = row.checked();
  rows_.ticked(row);
}

void EntryTicks::follow_box() {
  const bool checked = all_.checked();
  all_label_.set_text(checked ? "Uncheck All" : "Check All");
  if (!checked) return untick_all();
  for (Row& row : list_) {
    row.set_checked(true);
    follow_row(row);
  }
}

void EntryTicks::tick_all() {
  if (all_.checked() && list_.checked_count() == 0) return follow_box();
  all_.click();
}

void EntryTicks::untick_all() {
  for (Row& row : list_) {
    row.set_checked(false);
    row.data<EntryRound::RowData>().wanted = false;
  }
  rows_.forget_ticks();
}

void EntryTicks::reset() {
  all_.set_checked(false);
  all_label_.set_text("Check All");
  untick_all();
}

void EntryTicks::tick(Row& row) {
  row.set_checked(true);
  row.data<EntryRound::RowData>().wanted = true;
}

void EntryTicks::take_as_wanted() {
  for (Row& row : list_)
    row.data<EntryRound::RowData>().wanted = row.checked();
}

}  // namespace tutti
