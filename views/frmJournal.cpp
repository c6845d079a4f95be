#include "views/frmJournal.h"

#include <iterator>
#include <utility>

#include "core/journal.h"
#include "core/time_texts.h"

namespace tutti {

frmJournal::frmJournal(const Clock& clock) : clock_(clock) {
  ColumnWidthsPer("15,15,68");
  lvwJournal.set_column_tip(Column::time, "By the clock of this computer");
}

void frmJournal::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  lvwJournal.set_column_widths(column_widths_);
}

void frmJournal::Add(std::string_view message, std::int32_t account, std::string_view) {
  const std::string time = now_text(clock_);
  ++entries_;
  if (live_) {
    addToListView(time, account, message);
  } else {
    arrived_meanwhile_.push_back({time, account, std::string{message}});
    if (arrived_meanwhile_.size() > most_live) arrived_meanwhile_.pop_front();
  }
}

void frmJournal::addToListView(std::string_view time, std::int32_t account, std::string_view message) {
  Row& row = *lvwJournal.insert(0);
  row.set_text(Column::time, time);
  if (account != no_account) row.set_number(Column::account, account);
  row.set_text(Column::message, message);
  // The oldest entry makes way, and its row says so; the row that said so before goes.
  const auto last = [this]() -> Row& { return lvwJournal.row(lvwJournal.size() - 1); };
  if (lvwJournal.size() > most_live + 1) lvwJournal.remove(last());
  if (lvwJournal.size() <= most_live) return;
  last().clear_cells(Column::time, Column::account);
  last().set_text(Column::message, older_text);
}

std::vector<frmJournal::Entry> frmJournal::shown_entries() const {
  std::vector<Entry> out;
  out.reserve(lvwJournal.size());
  for (std::size_t i = lvwJournal.size(); i-- > 0;) {
    const Row& row = lvwJournal.row(i);
    const Cell& number = row.cell(Column::account);
    out.push_back({row.text(Column::time),
                   number.empty() ? no_account : static_cast<std::int32_t>(number.stored_number()),
                   row.text(Column::message)});
  }
  return out;
}

void frmJournal::set_live_aside() {
  if (!live_) return;
  live_ = false;
  aside_ = lvwJournal.take_all();
}

void frmJournal::restore_live() {
  if (live_) return;
  live_ = true;
  lvwJournal.clear();
  lvwJournal.put_back(std::exchange(aside_, {}));
  for (const Entry& entry : std::exchange(arrived_meanwhile_, {})) {
    addToListView(entry.time, entry.account, entry.message);
  }
}

}  // namespace tutti
