#include "apps/missing_lines.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <vector>

#include "apps/event_line.h"
#include "apps/journal_anchor.h"
#include "core/file_writer.h"
#include "core/lines_from_end.h"
#include "core/numbers.h"
#include "core/time_texts.h"
#include "views/history_line.h"

namespace tutti {
namespace {

constexpr std::string_view added_begin = " (added at the next start: it happened at ";
constexpr std::string_view added_end = ")";
// A line is written in the handler that has told the ledger.
constexpr std::chrono::seconds handler_takes{5};
// Its time is that of the place where the terminal stood, and of a clock that may have been set.
constexpr std::chrono::hours other_zones{26};
constexpr std::size_t piece = 16u << 10;

struct Expected {
  RequestEvent event;
  LineTexts texts;
};

// Lines that were written since a time, oldest first.
tl::expected<std::vector<ToldLine>, FileError> lines_since(const std::filesystem::path& name,
                                                           const std::string& since) {
  std::vector<ToldLine> out;
  const auto there = file_exists(name);
  if (!there) return tl::unexpected(there.error());
  if (!*there) return out;
  auto lines = LinesFromEnd::open(name);
  if (!lines) return tl::unexpected(lines.error());
  bool older = false;
  while (!older && !lines->done()) {
    const auto read = lines->read(piece, [&](std::string_view line) {
      history_line::take_apart(line, [&](std::string_view time, std::string_view message) {
        if (older || time.size() != since.size()) return;
        older = time < since;
        if (!older) out.push_back(told_line(time, message));
      });
    });
    if (!read) return tl::unexpected(read.error());
  }
  std::reverse(out.begin(), out.end());
  return out;
}

// Seconds since the quarter of an hour of a time as the journal writes it: zones differ by whole ones.
int within_quarter(std::string_view time) {
  constexpr std::size_t minutes = 14, seconds = 17;  // places in "yyyy-mm-dd hh:nn:ss"
  constexpr int quarter = 15;
  if (time.size() < seconds + 2) return -1;
  return read_integer(time.substr(minutes, 2)) % quarter * 60 + read_integer(time.substr(seconds, 2));
}

// Takes the line that tells of it out, if there is one. One that names the order may have been written by the
// clock of another zone.
bool take_line(const Expected& expected, std::vector<ToldLine>& lines, const Clock& clock) {
  const std::string from = journal_time(clock, expected.event.time);
  const std::string until = journal_time(clock, expected.event.time + handler_takes);
  const std::string number = std::to_string(expected.event.order);
  const auto elsewhere = [&](const ToldLine& each) {
    constexpr int quarter = 900;
    const int later = (within_quarter(each.time) - within_quarter(from) + quarter) % quarter;
    return expected.event.order != 0 && each.text.find(number) != std::string::npos &&
           std::chrono::seconds{later} <= handler_takes;
  };
  const auto line = std::find_if(lines.begin(), lines.end(), [&](const ToldLine& each) {
    return (elsewhere(each) || (each.time >= from && each.time <= until)) &&
           std::any_of(expected.texts.begin(), expected.texts.end(),
                       [&](const std::string& text) { return plain_history_text(text) == each.text; });
  });
  if (line == lines.end()) return false;
  lines.erase(line);
  return true;
}

// The one of the texts that would have been written.
const std::string& text_of(LedgerFile& file, const Expected& expected) {
  bool second = false;
  if (expected.texts.size() > 1 && expected.event.evidence == LedgerEvidence::answer) {
    if (expected.event.kind == RequestKind::cancel)
      second = !order_is_of(file, expected.event, RequestKind::entry);
    if (expected.event.kind == RequestKind::stops)
      second = order_is_of(file, expected.event, RequestKind::stops);
  }
  return expected.texts[second ? 1 : 0];
}

}  // namespace

std::string journal_time(const Clock& clock, TimePoint time) {
  return full_time_text(time + clock.utc_offset(time));
}

bool was_added(std::string_view message) {
  return message.find(added_begin) != std::string_view::npos && message.ends_with(added_end);
}

ToldLine told_line(std::string_view time, std::string_view message) {
  if (!was_added(message)) return {std::string{time}, plain_history_text(message)};
  const auto added = message.rfind(added_begin);
  std::string_view happened = message.substr(added + added_begin.size());
  happened.remove_suffix(added_end.size());
  return {std::string{happened}, plain_history_text(message.substr(0, added))};
}

tl::expected<std::size_t, FileError> add_missing_lines(CJournal& journal, const Paths& paths,
                                                       const Clock& clock, LedgerFile& file) {
  const auto anchor = newest_anchor(paths, file);
  if (!anchor) return tl::unexpected(anchor.error());
  // Of a ledger that was put back nobody knows what the histories lack.
  if (!*anchor || (*anchor)->same_place(JournalAnchor::newest(file)) ||
      !(*anchor)->same_place(JournalAnchor::at(file, (*anchor)->commit)))
    return 0;
  std::map<std::int32_t, std::vector<Expected>> accounts;
  each_request_event(file, file.commit_at((*anchor)->commit).seq, [&](const RequestEvent& event) {
    if (LineTexts texts = event_line(event); !texts.empty())
      accounts[event.account].push_back({event, std::move(texts)});
  });
  std::vector<Expected> missing;
  for (const auto& [account, all] : accounts) {
    const auto oldest = std::min_element(all.begin(), all.end(), [](const Expected& a, const Expected& b) {
      return a.event.time < b.event.time;
    });
    auto lines = lines_since(paths.file(journal.FileName(account)),
                             journal_time(clock, oldest->event.time - other_zones));
    if (!lines) return tl::unexpected(lines.error());
    for (const Expected& each : all)
      if (!take_line(each, *lines, clock)) missing.push_back(each);
  }
  std::sort(missing.begin(), missing.end(),
            [](const Expected& a, const Expected& b) { return a.event.seq < b.event.seq; });
  for (const Expected& each : missing)
    journal.log(fmt::format("{}{}{}{}", text_of(file, each), added_begin,
                            journal_time(clock, each.event.time), added_end),
                each.event.account);
  return missing.size();
}

}  // namespace tutti
