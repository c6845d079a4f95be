#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/clock.h"
#include "core/displayable.h"
#include "core/journal.h"
#include "core/lines_from_end.h"
#include "core/paths.h"
#include "core/text_file.h"
#include "views/frmJournal.h"
#include "views/history_files.h"
#include "views/history_line.h"

namespace tutti {

// Journal: keeps one history file per identifier (an account number) and shows the history of one at a time
// in the journal window's list. The terminal's one logging helper: every event is one row and one line.
class CJournal final : public Journal, public Displayable {
 public:
  CJournal(const Paths& paths, const Clock& clock, frmJournal& window);
  // Writes what waits.
  ~CJournal() override { close(); }

  // One event: a live row while no history is shown, else a row of the history it belongs to; always one
  // line of the account's file.
  void log(std::string_view message, std::int32_t account) override;

  // Writes the lines that have come since. To be called once per frame, before anybody is shown what they
  // tell.
  void flush() { check(files_.flush()); }
  // The same at the end of the program.
  void close() { check(files_.close_all()); }
  // Line of `id` with the time of this moment, and a row when it is the one on show.
  void Add(std::string_view message, std::int32_t id);
  // A line of the history of what belongs to no account, and no row.
  void note(std::string_view message);
  void addToListView(std::string_view time, std::string_view message, std::int32_t id);
  // The entries of a history, oldest first, whatever is on show; none when there is no file. A message that
  // holds the separator is cut there.
  using Take = history_line::Take;
  tl::expected<void, FileError> read(std::int32_t id, const Take& take);
  // No line was lost so far, as far as is known.
  bool complete() const { return !incomplete_; }
  // Runs when a line can't be written for the first time: from then on the files are not complete.
  std::function<void(std::string_view text)> on_incomplete;
  // Identifier whose history is shown; -1 while live rows are.
  std::int32_t vID() const { return id_; }
  void vID(std::int32_t id);
  // A history shows its newest lines at first. Whether there are older ones, and some more of them, or all,
  // below those that are shown.
  bool has_older() const { return older_ && !older_->done(); }
  void show_older() { show_older(page); }
  void show_all();
  // Removes the history file of vID and clears the list. The history of what belongs to no account notes it.
  void ClearFile();
  // What it notes when its own file was removed; the account that another line is about, if it tells of one.
  static constexpr std::string_view cleared_text = "The history was cleared";
  static std::optional<std::int32_t> cleared_account(std::string_view message);
  // Full path of a history file; -1 means that of vID.
  std::string FileName(std::int32_t id) const { return files_.name(id == -1 ? id_ : id); }
  void ClearList() { window_.lvwJournal.clear(); }

 private:
  static constexpr std::size_t page = 256u << 10;  // bytes
  static constexpr std::string_view cleared_account_begin = "The history of account ";
  static constexpr std::string_view cleared_account_end = " was cleared";

  void append(std::string_view time, std::string_view message, std::int32_t id);
  void check(const tl::expected<void, FileError>& written);
  void reload();
  void show_older(std::size_t bytes);

  const Paths& paths_;
  const Clock& clock_;
  frmJournal& window_;
  std::int32_t id_ = -1;
  HistoryFiles files_;
  std::optional<LinesFromEnd> older_;  // of the history on show, where there is a file
  bool incomplete_ = false;
};

}  // namespace tutti
