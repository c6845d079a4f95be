#include "ledger/request_outcomes.h"

#include "core/numbers.h"
#include "ledger/ledger_words.h"

namespace tutti {

std::vector<RequestOutcome> request_outcomes(LedgerFile& file) {
  std::vector<RequestOutcome> out;
  auto& rows = file.statement(
      "SELECT r.id, a.server, a.user, a.account_text, r.kind, coalesce(e.state, 'STORED'), "
      "coalesce(e.reason, ''), t.t FROM request r JOIN account a ON a.n = r.account JOIN ticket t ON t.n = "
      "r.ticket LEFT JOIN event e ON e.seq = (SELECT max(seq) FROM event WHERE request = r.id) ORDER BY "
      "r.id");
  while (rows.executeStep()) {
    out.push_back({.id = rows.getColumn(0).getInt64(),
                   .account = {rows.getColumn(1).getString(), rows.getColumn(2).getString(),
                               read_integer(rows.getColumn(3).getString())},
                   .kind = ledger_words::kind(rows.getColumn(4).getString()),
                   .state = ledger_words::state(rows.getColumn(5).getString()),
                   .reason = rows.getColumn(6).getString(),
                   .asked = TimePoint{std::chrono::milliseconds{rows.getColumn(7).getInt64()}}});
  }
  rows.reset();
  return out;
}

}  // namespace tutti
