#include "apps/journal_anchor.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <map>
#include <vector>

#include "core/file_writer.h"
#include "core/journal.h"
#include "core/line_reader.h"
#include "core/lines_from_end.h"
#include "ledger/ledger_lines.h"
#include "views/history_line.h"

namespace tutti {
namespace {

constexpr std::string_view begin = "Ledger ";
constexpr std::string_view before_commit = ", commit ";
constexpr std::string_view before_hash = ": ";

// Up to which commit each of its ids is this ledger's.
std::map<std::string, std::int64_t> last_commits_of_ids(LedgerFile& file) {
  std::map<std::string, std::int64_t> out;
  const std::vector<LedgerLine> ids = ledger_lines(file);
  for (std::size_t i = 0; i + 1 < ids.size(); ++i) {
    auto& fork = file.statement("SELECT coalesce(max(n), 0) FROM commit_log WHERE last_seq <= ?");
    fork.bind(1, ids[i + 1].forked_at);
    out[ids[i].id] = fork.executeStep() ? fork.getColumn(0).getInt64() : 0;
    fork.reset();
  }
  out[ids.back().id] = std::numeric_limits<std::int64_t>::max();
  return out;
}

}  // namespace

std::string JournalAnchor::text() const {
  return fmt::format("{}{}{}{}{}{}", begin, ledger, before_commit, commit, before_hash, hash);
}

std::optional<JournalAnchor> JournalAnchor::of(std::string_view message) {
  const auto commit = message.find(before_commit);
  const auto hash = message.rfind(before_hash);
  if (!message.starts_with(begin) || commit == std::string_view::npos || hash == std::string_view::npos ||
      hash < commit)
    return std::nullopt;
  JournalAnchor out{.ledger = std::string{message.substr(begin.size(), commit - begin.size())},
                    .hash = std::string{message.substr(hash + before_hash.size())}};
  const std::string_view number =
      message.substr(commit + before_commit.size(), hash - commit - before_commit.size());
  const auto read = std::from_chars(number.data(), number.data() + number.size(), out.commit);
  if (read.ec != std::errc{} || read.ptr != number.data() + number.size()) return std::nullopt;
  return out;
}

JournalAnchor JournalAnchor::at(LedgerFile& file, std::int64_t commit) {
  const LedgerFile::Head head = file.commit_at(commit);
  return {ledger_lines(file).back().id, head.commit, fmt::format("{:02x}", fmt::join(head.hash, ""))};
}

JournalAnchor JournalAnchor::newest(LedgerFile& file) {
  auto& last = file.statement("SELECT coalesce(max(n), 0) FROM commit_log");
  const std::int64_t commit = last.executeStep() ? last.getColumn(0).getInt64() : 0;
  last.reset();
  return at(file, commit);
}

std::filesystem::path general_history(const Paths& paths) {
  return paths.file("\\History\\JN" + std::to_string(no_account) + ".his");
}

tl::expected<std::optional<JournalAnchor>, FileError> newest_anchor(const Paths& paths, LedgerFile& file) {
  const std::filesystem::path name = general_history(paths);
  const auto there = file_exists(name);
  if (!there) return tl::unexpected(there.error());
  if (!*there) return std::nullopt;
  const std::vector<LedgerLine> ids = ledger_lines(file);
  const auto is_own = [&](const JournalAnchor& anchor) {
    return std::any_of(ids.begin(), ids.end(),
                       [&](const LedgerLine& each) { return each.id == anchor.ledger; });
  };
  auto lines = LinesFromEnd::open(name);
  if (!lines) return tl::unexpected(lines.error());
  std::optional<JournalAnchor> out;
  // Mostly the last line of a run is one.
  for (std::size_t piece = 1u << 10; !out && !lines->done(); piece = 256u << 10) {
    const auto read = lines->read(piece, [&](std::string_view line) {
      if (out) return;
      history_line::take_apart(line, [&](std::string_view, std::string_view message) {
        if (auto anchor = JournalAnchor::of(message); anchor && is_own(*anchor)) out = std::move(anchor);
      });
    });
    if (!read) return tl::unexpected(read.error());
  }
  return out;
}

tl::expected<std::vector<std::string>, FileError> faults_of_anchors(const Paths& paths, LedgerFile& file) {
  std::vector<std::string> out;
  const std::filesystem::path name = general_history(paths);
  const auto there = file_exists(name);
  if (!there) return tl::unexpected(there.error());
  if (!*there) return out;
  const std::map<std::string, std::int64_t> last_commits = last_commits_of_ids(file);
  JournalAnchor last;  // the same one stands there as long as nothing is stored
  const auto check = [&](std::string_view time, std::string_view message) {
    const auto anchor = JournalAnchor::of(message);
    if (!anchor || anchor->same_place(last)) return;
    const auto id = last_commits.find(anchor->ledger);
    if (id == last_commits.end() || anchor->commit > id->second) return;
    last = *anchor;
    const JournalAnchor here = JournalAnchor::at(file, anchor->commit);
    if (here.commit != anchor->commit)
      out.push_back(
          fmt::format("commit {}, which the journal names at {}, is missing: the ledger's end was "
                      "cut off, or it is an older copy",
                      anchor->commit, time));
    else if (here.hash != anchor->hash)
      out.push_back(
          fmt::format("commit {} is another one than the journal names at {}: the ledger was put "
                      "back and went on otherwise, or was changed",
                      anchor->commit, time));
  };
  const auto read = read_lines(name, [&](std::string_view line) { history_line::take_apart(line, check); });
  if (!read) return tl::unexpected(read.error());
  return out;
}

}  // namespace tutti
