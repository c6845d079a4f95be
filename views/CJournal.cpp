#include "views/CJournal.h"

#include <algorithm>

#include "core/texts.h"

namespace tutti {

CJournal::CJournal(MGeneral& general, frmJournal& window)
    : general_(general), window_(window), files_(general.paths) {}

void CJournal::log(std::string_view message, std::int32_t account) {
  window_.Add(message, account);
  if (window_.live()) {
    append(general_.now_text(), message, account);
  } else {
    Add(message, account);
  }
}

void CJournal::Add(std::string_view message, std::int32_t id) {
  const std::string time = general_.now_text();
  addToListView(time, message, id);
  append(time, message, id);
}

void CJournal::addToListView(std::string_view time, std::string_view message, std::int32_t id) {
  if (id != id_ && id >= 0) return;
  Row& row = *window_.lvwJournal.insert(0);
  row.set_text(0, time);
  row.set_text(2, message);
}

void CJournal::append(std::string_view time, std::string_view message, std::int32_t id) {
  // One entry is one line of the file.
  std::string line = std::string{time} + separator_ + std::string{message};
  std::replace(line.begin(), line.end(), '\n', ' ');
  // Where even the journal can't be written, the row on the screen is what remains.
  (void)files_.write_line(history_file(id), line, TextFile::Mode::append);
}

void CJournal::vID(std::int32_t id) {
  id_ = id;
  if (id == no_account) {
    window_.restore_live();
  } else {
    window_.set_live_aside();
    reload();
  }
}

void CJournal::reload() {
  ClearList();
  const auto lines = files_.lines(FileName(id_));
  if (!lines) return;
  for (const std::string& line : *lines) {
    if (line.empty()) continue;
    const auto parts = split(line, separator_);
    addToListView(parts[0], parts.size() > 1 ? parts[1] : "", id_);
  }
}

void CJournal::ClearFile() {
  (void)files_.remove(FileName(id_));
  ClearList();
}

std::string CJournal::FileName(std::int32_t id) const {
  return history_file(id == -1 ? id_ : id);
}

// Lines that belong to no account have a file of their own, whatever is on show.
std::string CJournal::history_file(std::int32_t id) const {
  return general_.paths.full("\\History\\JN" + std::to_string(id) + ".his");
}

}  // namespace tutti
