#include "ledger/ledger_start.h"

#include <fmt/format.h>

#include <algorithm>

namespace tutti {

std::filesystem::path ledger_path(const std::filesystem::path& home) {
  return home / "ledger.db";
}

std::filesystem::path left_log_path(const std::filesystem::path& home) {
  return home / "left.log";
}

std::vector<LedgerEvent> unanswered_events(LedgerBook& book, const LedgerFile& file,
                                           const std::optional<LeftLog::Content>& left,
                                           const std::string& boot) {
  // Anything but the last run's own file of the same start of the machine may lack what has left.
  const bool whole = left && !boot.empty() && left->head.boot == boot && left->head.ledger == file.id() &&
                     left->head.run == book.last_run();
  std::vector<LedgerEvent> out;
  for (const LedgerBook::Open& each : book.unanswered()) {
    LedgerEvent event{.request = each.id, .evidence = LedgerEvidence::clock, .reason = "crash"};
    if (each.state == "STORED") {
      // Found so by an earlier start, and not sent after all since, as far as this start of the machine can
      // tell. A run that stored nothing has no number, so it is not compared.
      const bool same_log =
          left && !boot.empty() && left->head.boot == boot && left->head.ledger == file.id();
      if (each.has_event && same_log && !left->left.contains(each.id)) continue;
      event.state = !each.has_event && whole && !left->left.contains(each.id) ? LedgerState::stored
                                                                              : LedgerState::unknown;
    } else {
      // The order that a requote's answer was for is unknown itself, and the countdown is over.
      event.state = each.kind.starts_with("requote") ? LedgerState::done : LedgerState::unknown;
    }
    out.push_back(std::move(event));
  }
  return out;
}

std::string fault_of_end(LedgerFile& file, const std::optional<LeftLog::Content>& left) {
  if (!left || left->head.ledger != file.id()) return {};
  const LedgerFile::Head& known = left->head.commit;
  if (known.commit > 0 && file.commit_at(known.commit).hash != known.hash)
    return fmt::format("the last run began with commit {}, which the ledger does not have", known.commit);
  auto& stored = file.statement("SELECT 1 FROM request WHERE id = ?");
  std::size_t missing = 0;
  for (const RequestId id : left->left) {
    stored.reset();
    stored.bind(1, id);
    if (!stored.executeStep()) ++missing;
  }
  stored.reset();
  if (missing == 0) return {};
  return fmt::format("{} requests have left that the ledger does not have", missing);
}

}  // namespace tutti
