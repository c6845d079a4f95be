#include "sessions/connection_report.h"

#include <utility>

namespace tutti {
namespace {

constexpr std::size_t column_notes = 4;  // of the accounts list

}  // namespace

void ConnectionReport::connected(Row* row) {
  connected_ = true;
  told_ = false;
  if (reason_.empty()) return;
  if (row != nullptr && row->reads(column_notes, reason_)) row->set_text(column_notes, notes_);
  reason_.clear();
}

void ConnectionReport::tell(Row* row, std::string_view reason) {
  connected_ = false;
  if (std::exchange(told_, true)) return;
  general_.log("Not connected: " + std::string{reason}, account_);
  if (row == nullptr) return;
  if (reason_.empty() || !row->reads(column_notes, reason_)) notes_ = row->text(column_notes);
  reason_ = reason;
  row->set_text(column_notes, reason_);
}

}  // namespace tutti
