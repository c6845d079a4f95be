#include "ledger/copy/ledger_copy.h"

#include <fmt/format.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "ledger/copy/copy_schema.h"

namespace tutti {
namespace {

using ledger_schema::Column;
using ledger_schema::Table;

constexpr std::int64_t page_rows = 1000;  // and up to the end of their commit
constexpr int tries = 4;                  // of one page

std::string bytes_of(std::string_view hex) {
  return "\\x" + std::string{hex};
}

// A value within the text of an array. Of what the server can't keep as text a mark is left.
std::string element(const SQLite::Column& value, const Column& column) {
  if (value.isNull()) return "NULL";
  if (column.type == "INTEGER") return value.getString();
  std::string text = value.getString();
  if (column.type == "BLOB") {
    std::string hex;
    for (const char byte : text)
      hex += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    text = bytes_of(hex);
  } else {
    std::string whole;
    icu::UnicodeString::fromUTF8(text)
        .findAndReplace(icu::UnicodeString{u'\0'}, icu::UnicodeString{u'\xFFFD'})
        .toUTF8String(whole);
    text = std::move(whole);
  }
  std::string out = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') out += '\\';
    out += letter;
  }
  return out + '"';
}

}  // namespace

tl::expected<LedgerCopy::Pushed, CopyError> LedgerCopy::push() {
  pushed_ = {};
  sent_ = {};
  for (int left = tries;;) {
    const std::int64_t before = pushed_.commits;
    const Or<void> done = [this]() -> Or<void> {
      try {
        return push_all();
      } catch (const SQLite::Exception& error) {
        return tl::unexpected(CopyError{.text = fmt::format("the ledger can't be read: {}", error.what())});
      }
    }();
    if (done) return pushed_;
    // With it ends what was begun there.
    server_.reset();
    if (pushed_.commits > before) left = tries;
    if (done.error().kind != CopyError::Kind::again || --left == 0 || stopped_())
      return tl::unexpected(done.error());
  }
}

tl::expected<void, CopyError> LedgerCopy::push_all() {
  if (auto connected = connect(); !connected) return connected;
  for (const Stretch& stretch : stretches()) {
    for (bool more = true; more;) {
      const auto pushed = push_page(stretch);
      if (!pushed) return tl::unexpected(pushed.error());
      more = *pushed;
    }
  }
  return {};
}

tl::expected<void, CopyError> LedgerCopy::connect() {
  if (server_) return {};
  if (file_.schema() != ledger_schema::version)
    return tl::unexpected(CopyError{.text = "the ledger is of another version than this program"});
  auto connected = CopyServer::connect(target_, stopped_);
  if (!connected) return tl::unexpected(connected.error());
  server_ = std::move(*connected);
  const auto there = ask("SELECT 1 WHERE to_regclass('tutti.version') IS NOT NULL");
  if (!there) return tl::unexpected(there.error());
  if (there->empty()) {
    if (auto made = ask(copy_schema::create()); !made) return tl::unexpected(made.error());
  }
  const auto version = ask("SELECT version FROM tutti.version");
  if (!version) return tl::unexpected(version.error());
  const std::string found = version->empty() ? "none" : version->front()[0];
  if (found == std::to_string(copy_schema::version)) return {};
  return tl::unexpected(CopyError{
      .text = fmt::format("the schema \"tutti\" there is of version {}, and this program's is {}: copy with "
                          "the program that made it, or to another database",
                          found, copy_schema::version)});
}

CopyServer::Answer LedgerCopy::ask(const std::string& sql, const std::vector<std::string>& values) {
  auto answer = server_->ask(sql, values);
  if (answer && on_step) on_step();
  return answer;
}

std::int64_t LedgerCopy::number(const std::string& sql, std::int64_t value) {
  auto& one = file_.statement(sql);
  one.bind(1, value);
  const std::int64_t out = one.executeStep() ? one.getColumn(0).getInt64() : 0;
  one.reset();
  return out;
}

std::string LedgerCopy::hash(std::int64_t commit) {
  auto& one = file_.statement("SELECT lower(hex(hash)) FROM commit_log WHERE n = ?");
  one.bind(1, commit);
  std::string out = one.executeStep() ? one.getColumn(0).getString() : std::string{};
  one.reset();
  return out;
}

std::vector<LedgerCopy::Stretch> LedgerCopy::stretches() {
  const std::string up_to = "SELECT n FROM commit_log WHERE last_seq <= ? ORDER BY n DESC LIMIT 1";
  std::vector<Stretch> out;
  for (LedgerLine& line : ledger_lines(file_)) {
    const std::int64_t before = number(up_to, line.forked_at);
    // A later child may begin before an earlier one.
    for (Stretch& each : out)
      each.last = std::min(each.last, before);
    out.push_back({std::move(line), before, std::numeric_limits<std::int64_t>::max(), false});
  }
  out.back().newest = true;
  out.back().last = number(up_to, std::numeric_limits<std::int64_t>::max());
  return out;
}

tl::expected<bool, CopyError> LedgerCopy::push_page(const Stretch& stretch) {
  const std::string id = bytes_of(stretch.line.id);
  if (auto begun = ask("BEGIN ISOLATION LEVEL READ COMMITTED READ WRITE"); !begun)
    return tl::unexpected(begun.error());
  // No other copy of this ledger comes between looking and adding.
  const auto locked =
      ask("SELECT pg_advisory_xact_lock(('x' || substr(encode($1::bytea, 'hex'), 1, 16))::bit(64)::bigint)",
          {id});
  if (!locked) return tl::unexpected(locked.error());
  const auto head = ask(
      "SELECT n, encode(hash, 'hex') FROM tutti.commit_log WHERE ledger = $1::bytea ORDER BY n DESC LIMIT 1",
      {id});
  if (!head) return tl::unexpected(head.error());
  Head theirs{.commit = stretch.before, .hash = {}};
  if (!head->empty()) theirs = {std::stoll(head->front()[0]), head->front()[1]};
  if (!head->empty()) {
    const auto both = common(stretch, theirs);
    if (!both) return tl::unexpected(both.error());
    if (*both < std::min(theirs.commit, stretch.last) || (stretch.newest && theirs.commit > stretch.last))
      return tl::unexpected(forked(stretch, theirs, *both));
  }
  // Only now is it known, also of a page whose end nobody heard of.
  if (sent_.commit != 0 && theirs.commit >= sent_.commit) {
    pushed_.commits += sent_.what.commits;
    pushed_.rows += sent_.what.rows;
  }
  sent_ = {};
  const bool more = theirs.commit < stretch.last;
  if (more) {
    if (auto sent = send_page(stretch, theirs.commit); !sent) return tl::unexpected(sent.error());
  } else if (auto ended = ask("ROLLBACK"); !ended) {
    return tl::unexpected(ended.error());
  }
  return more;
}

tl::expected<std::int64_t, CopyError> LedgerCopy::common(const Stretch& stretch, const Head& theirs) {
  std::int64_t low = std::min(stretch.before, theirs.commit);
  std::int64_t high = std::min(theirs.commit, stretch.last);
  // Each hash is over the one before, so that from the first that differs on all do. Mostly none does.
  for (std::int64_t middle = high; low < high; middle = low + (high - low + 1) / 2) {
    std::string there = theirs.hash;
    if (middle != theirs.commit) {
      const auto found =
          ask("SELECT encode(hash, 'hex') FROM tutti.commit_log WHERE ledger = $1::bytea AND n = $2::bigint",
              {bytes_of(stretch.line.id), std::to_string(middle)});
      if (!found) return tl::unexpected(found.error());
      there = found->empty() ? std::string{} : found->front()[0];
    }
    if (there == hash(middle))
      low = middle;
    else
      high = middle - 1;
  }
  return low;
}

CopyError LedgerCopy::forked(const Stretch& stretch, const Head& theirs, std::int64_t common) {
  CopyError out{.kind = stretch.newest ? CopyError::Kind::forked : CopyError::Kind::failed};
  out.common = number("SELECT last_seq FROM commit_log WHERE n = ?", common);
  out.text = fmt::format(
      "the server has {} commits of the ledger {}, and of these this home has the first {} only: it was put "
      "back from a backup, or is in use twice",
      theirs.commit, stretch.line.id, common);
  return out;
}

tl::expected<void, CopyError> LedgerCopy::send_page(const Stretch& stretch, std::int64_t after) {
  const std::string id = bytes_of(stretch.line.id);
  const std::int64_t first = number("SELECT first_seq FROM commit_log WHERE n = ?", after + 1);
  auto& end = file_.statement(
      "SELECT n, last_seq FROM commit_log WHERE n > ? AND n <= ? AND (last_seq >= ? OR n = ?) ORDER BY n "
      "LIMIT 1");
  end.bind(1, after);
  end.bind(2, stretch.last);
  end.bind(3, first + page_rows - 1);
  end.bind(4, stretch.last);
  if (!end.executeStep()) throw SQLite::Exception{"a commit is missing"};
  const std::int64_t last_commit = end.getColumn(0).getInt64();
  const std::int64_t last = end.getColumn(1).getInt64();
  end.reset();

  const LedgerLine& line = stretch.line;
  const auto known =
      ask(copy_schema::insert_ledger(), {id, bytes_of(line.parent), std::to_string(line.forked_at),
                                         std::to_string(line.schema), std::to_string(line.created)});
  if (!known) return tl::unexpected(known.error());
  for (const Table& table : ledger_schema::chained())
    if (auto sent = send_rows(id, table, first, last); !sent) return sent;
  if (auto sent = send_rows(id, ledger_schema::commits(), after + 1, last_commit); !sent) return sent;
  sent_ = {last_commit, {last_commit - after, last - first + 1}};
  if (auto done = ask("COMMIT"); !done) return tl::unexpected(done.error());
  return {};
}

tl::expected<void, CopyError> LedgerCopy::send_rows(const std::string& ledger, const Table& table,
                                                    std::int64_t first, std::int64_t last) {
  auto& rows = file_.statement(fmt::format("SELECT {} FROM {} WHERE {} BETWEEN ? AND ? ORDER BY 1",
                                           table.names(0, table.columns.size()), table.name,
                                           table.columns.front().name));
  rows.bind(1, first);
  rows.bind(2, last);
  std::vector<std::string> values(table.columns.size() + 1, "{");
  values[0] = ledger;
  bool any = false;
  while (rows.executeStep()) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      if (any) values[i + 1] += ',';
      values[i + 1] += element(rows.getColumn(static_cast<int>(i)), table.columns[i]);
    }
    any = true;
  }
  if (!any) return {};
  for (std::size_t i = 1; i < values.size(); ++i)
    values[i] += '}';
  if (auto sent = ask(copy_schema::insert(table), values); !sent) return tl::unexpected(sent.error());
  return {};
}

}  // namespace tutti
