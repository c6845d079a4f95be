#include "ledger/ledger_lines.h"

#include <fmt/format.h>
#include <sodium.h>

#include <algorithm>
#include <array>

namespace tutti {
namespace {

std::vector<LedgerLine> all_lines(LedgerFile& file) {
  std::vector<LedgerLine> out;
  auto& rows = file.statement(
      "SELECT lower(hex(id)), lower(hex(parent)), forked_at, schema, created FROM ledger ORDER BY rowid");
  while (rows.executeStep()) {
    out.push_back({rows.getColumn(0).getString(), rows.getColumn(1).getString(), rows.getColumn(2).getInt64(),
                   rows.getColumn(3).getInt64(), rows.getColumn(4).getInt64()});
  }
  rows.reset();
  return out;
}

}  // namespace

std::vector<LedgerLine> ledger_lines(LedgerFile& file) {
  const std::vector<LedgerLine> all = all_lines(file);
  // A parent stands before its children.
  std::vector<LedgerLine> out;
  std::string wanted = all.empty() ? "" : all.back().id;
  for (auto line = all.rbegin(); line != all.rend(); ++line) {
    if (line->id != wanted) continue;
    out.push_back(*line);
    wanted = line->parent;
  }
  if (out.empty() || !wanted.empty()) throw SQLite::Exception{"it does not say which one it is"};
  std::reverse(out.begin(), out.end());
  return out;
}

void begin_line(LedgerFile& file, std::int64_t forked_at, TimePoint now) {
  std::array<unsigned char, 16> id{};
  ::randombytes_buf(id.data(), id.size());
  auto& insert = file.statement(
      "INSERT INTO ledger (id, parent, forked_at, schema, created) SELECT ?, id, ?, schema, ? FROM ledger "
      "ORDER BY rowid DESC LIMIT 1");
  insert.bind(1, id.data(), static_cast<int>(id.size()));
  insert.bind(2, forked_at);
  insert.bind(3, static_cast<std::int64_t>(now.time_since_epoch().count()));
  insert.exec();
  insert.reset();
}

std::vector<std::string> faults_of_lines(LedgerFile& file) {
  std::vector<std::string> out;
  std::vector<std::string> known;
  auto& ends = file.statement("SELECT count(*) FROM commit_log WHERE last_seq = ?");
  for (const LedgerLine& line : all_lines(file)) {
    ends.reset();
    ends.bind(1, line.forked_at);
    const bool at_end = ends.executeStep() && ends.getColumn(0).getInt64() == 1;
    const bool first = known.empty();
    if (first ? !line.parent.empty()
              : std::find(known.begin(), known.end(), line.parent) == known.end() ||
                    (line.forked_at != 0 && !at_end))
      out.push_back(fmt::format("its id {} does not follow from one before", line.id));
    known.push_back(line.id);
  }
  ends.reset();
  return out;
}

}  // namespace tutti
