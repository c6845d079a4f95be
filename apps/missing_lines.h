#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "core/clock.h"
#include "core/paths.h"
#include "ledger/ledger_file.h"
#include "views/CJournal.h"

namespace tutti {

// Adds to the histories what a kill kept from them: the lines that tell of what the ledger has from behind
// the newest anchor of its own. Each says that it was added, and when it happened. To be called at the start,
// before the new run's anchor; answers how many lines it were. Nothing where the last run came to its end, or
// where no anchor says what may be missing. Throws as the file does.
tl::expected<std::size_t, FileError> add_missing_lines(CJournal& journal, const Paths& paths,
                                                       const Clock& clock, LedgerFile& file);

// What a line of a history tells, and when that happened, in the journal's own form: of one that was added
// the time it names.
struct ToldLine {
  std::string time;
  std::string text;  // as plain_history_text has it
};
ToldLine told_line(std::string_view time, std::string_view message);
// Whether it was added so.
bool was_added(std::string_view message);
// A moment as the journal writes it.
std::string journal_time(const Clock& clock, TimePoint time);

}  // namespace tutti
