#include "apps/journal_comparison.h"

#include <fmt/format.h>
#include <tsl/robin_map.h>

#include <algorithm>

#include "apps/event_line.h"
#include "apps/journal_anchor.h"
#include "apps/missing_lines.h"

namespace tutti {

tl::expected<void, FileError> JournalComparison::read_general() {
  return journal_.read(no_account, [this](std::string_view time, std::string_view message) {
    if (message == CJournal::cleared_text) general_cleared_ = true;
    if (!began_ && JournalAnchor::of(message)) began_ = time;
    if (const auto account = CJournal::cleared_account(message)) cleared_at_[*account] = time;
  });
}

void JournalComparison::expect(const RequestEvent& event) {
  if (!compared_(event.account)) return;
  Expected out{journal_time(clock_, event.time), event_line(event)};
  if (out.texts.empty()) return;
  if (!began_ || out.time < *began_) {
    if (general_cleared_) ++cleared_;
    return;
  }
  const auto cleared = cleared_at_.find(event.account);
  if (cleared != cleared_at_.end() && out.time < cleared->second) {
    ++cleared_;
    return;
  }
  for (std::string& text : out.texts)
    text = plain_history_text(text);
  expected_[event.account].push_back(std::move(out));
}

tl::expected<void, FileError> JournalComparison::compare(std::int32_t account,
                                                         const std::vector<Expected>& expected) {
  tsl::robin_map<std::string, int> lines;  // of these texts, how many there are
  for (const Expected& each : expected)
    for (const std::string& text : each.texts)
      lines[text] = 0;
  const auto read = journal_.read(account, [&](std::string_view time, std::string_view message) {
    const auto at = lines.find(told_line(time, message).text);
    if (at != lines.end()) ++at.value();
  });
  if (!read) return read;
  const auto cleared = cleared_at_.find(account);
  const auto in_that_second = [&](const Expected& each) {
    return cleared != cleared_at_.end() && each.time == cleared->second;
  };
  const auto take = [&](const Expected& each) {
    const auto text = std::find_if(each.texts.begin(), each.texts.end(),
                                   [&](const std::string& one) { return lines[one] > 0; });
    if (text == each.texts.end()) return false;
    --lines[*text];
    return true;
  };
  for (const Expected& each : expected)
    if (!in_that_second(each) && !take(each))
      differences_.push_back(fmt::format("Account {}: the history lacks a line of {}: {}", account, each.time,
                                         each.texts.front()));
  // Before or after, nobody knows: the lines that are left say it.
  for (const Expected& each : expected)
    if (in_that_second(each) && !take(each)) ++cleared_;
  return {};
}

tl::expected<std::vector<std::string>, FileError> JournalComparison::run(LedgerFile& file) {
  began_.reset();
  general_cleared_ = false;
  cleared_at_.clear();
  expected_.clear();
  differences_.clear();
  cleared_ = 0;
  if (const auto read = read_general(); !read) return tl::unexpected(read.error());
  each_request_event(file, 0, [this](const RequestEvent& event) { expect(event); });
  for (const auto& [account, expected] : expected_)
    if (const auto read = compare(account, expected); !read) return tl::unexpected(read.error());
  return std::move(differences_);
}

}  // namespace tutti
