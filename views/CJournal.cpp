#include "views/CJournal.h"

#include <algorithm>
#include <utility>

#include "core/line_reader.h"
#include "core/time_texts.h"

namespace tutti {

namespace {

constexpr std::string_view separator = "*,%$";

void take_apart(std::string_view line, const CJournal::Take& take) {
  const auto end = line.find(separator);
  if (end == std::string_view::npos) return take(line, "");
  const std::string_view rest = line.substr(end + separator.size());
  take(line.substr(0, end), rest.substr(0, rest.find(separator)));
}

}  // namespace

CJournal::CJournal(const Paths& paths, const Clock& clock, frmJournal& window)
    : paths_(paths), clock_(clock), window_(window), files_(paths) {}

void CJournal::log(std::string_view message, std::int32_t account) {
  window_.Add(message, account);
  if (window_.live()) {
    append(now_text(clock_), message, account);
  } else {
    Add(message, account);
  }
}

void CJournal::Add(std::string_view message, std::int32_t id) {
  const std::string time = now_text(clock_);
  addToListView(time, message, id);
  append(time, message, id);
}

void CJournal::addToListView(std::string_view time, std::string_view message, std::int32_t id) {
  if (id != id_ && id >= 0) return;
  Row& row = *window_.lvwJournal.insert(0);
  row.set_text(frmJournal::time, time);
  row.set_text(frmJournal::message, message);
}

void CJournal::append(std::string_view time, std::string_view message, std::int32_t id) {
  std::string line{time};
  line += separator;
  const std::size_t behind_time = line.size();
  line += message;
  // One entry is one line of the file, and has one separator.
  std::replace(line.begin(), line.end(), '\n', ' ');
  for (auto at = line.find(separator, behind_time); at != std::string::npos; at = line.find(separator, at))
    line.insert(at + 2, 1, ' ');
  files_.add(id, line);
}

void CJournal::check(const tl::expected<void, FileError>& written) {
  if (written || std::exchange(incomplete_, true)) return;
  // The rows on the screen are what remains.
  const std::string text =
      "The journal is not complete, its lines can't be written: " + written.error().text();
  if (on_incomplete) on_incomplete(text);
}

tl::expected<void, FileError> CJournal::read(std::int32_t id, const Take& take) {
  flush();
  const std::string name = FileName(id);
  const auto there = TextFile{paths_}.exists(name);
  if (!there) return tl::unexpected(there.error());
  if (!*there) return {};
  return read_lines(paths_.file(name), [&take](std::string_view line) {
    if (!line.empty()) take_apart(line, take);
  });
}

void CJournal::vID(std::int32_t id) {
  id_ = id;
  older_.reset();
  if (id == no_account) {
    window_.restore_live();
  } else {
    window_.set_live_aside();
    reload();
  }
}

void CJournal::reload() {
  ClearList();
  flush();
  const std::string name = FileName(id_);
  const auto there = TextFile{paths_}.exists(name);
  if (there && !*there) return;
  auto file = there ? LinesFromEnd::open(paths_.file(name)) : tl::unexpected(there.error());
  if (!file) {
    return addToListView(now_text(clock_), "The history can't be read: " + file.error().text(), id_);
  }
  older_ = std::move(*file);
  show_older();
}

void CJournal::show_older(std::size_t bytes) {
  if (!has_older()) return;
  const auto add = [this](std::string_view time, std::string_view message) {
    Row& row = *window_.lvwJournal.add();
    row.set_text(frmJournal::time, time);
    row.set_text(frmJournal::message, message);
  };
  const auto read = older_->read(bytes, [&](std::string_view line) {
    if (!line.empty()) take_apart(line, add);
  });
  if (read) return;
  add(now_text(clock_), "What is older can't be read: " + read.error().text());
  older_.reset();
}

void CJournal::show_all() {
  while (has_older())
    show_older(page);
}

void CJournal::ClearFile() {
  (void)files_.remove(id_);
  older_.reset();
  ClearList();
}

}  // namespace tutti
