#include "views/CJournal.h"

#include <fmt/format.h>

#include <utility>

#include "core/line_reader.h"
#include "core/numbers.h"
#include "core/time_texts.h"
#include "views/history_line.h"

namespace tutti {

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

void CJournal::note(std::string_view message) {
  append(now_text(clock_), message, no_account);
}

std::optional<std::int32_t> CJournal::cleared_account(std::string_view message) {
  if (!message.starts_with(cleared_account_begin) || !message.ends_with(cleared_account_end))
    return std::nullopt;
  message.remove_prefix(cleared_account_begin.size());
  message.remove_suffix(cleared_account_end.size());
  return read_integer(message);
}

void CJournal::addToListView(std::string_view time, std::string_view message, std::int32_t id) {
  if (id != id_ && id >= 0) return;
  Row& row = *window_.lvwJournal.insert(0);
  row.set_text(frmJournal::time, time);
  row.set_text(frmJournal::message, message);
}

void CJournal::append(std::string_view time, std::string_view message, std::int32_t id) {
  files_.add(id, history_line::of(time, message));
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
    if (!line.empty()) history_line::take_apart(line, take);
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
    if (!line.empty()) history_line::take_apart(line, add);
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
  // Who compares the histories with the ledger must know why lines are missing, whenever this run ends.
  if (id_ != no_account) {
    note(fmt::format("{}{}{}", cleared_account_begin, id_, cleared_account_end));
    flush();
    (void)files_.remove(id_);
  } else if (files_.remove(id_)) {
    note(cleared_text);
  }
  older_.reset();
  ClearList();
}

}  // namespace tutti
