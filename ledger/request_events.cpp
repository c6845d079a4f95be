#include "ledger/request_events.h"

#include <tsl/robin_map.h>

#include "core/numbers.h"
#include "ledger/decimals.h"
#include "ledger/ledger_words.h"

namespace tutti {
namespace {

// What was known of a request by then.
struct Known {
  LedgerState state = LedgerState::stored;
  bool dealt = false;
  bool any = false;
};

double value_of(const SQLite::Column& whole, const SQLite::Column& digits) {
  return whole.isNull() ? 0.0 : decimals::number(whole.getInt64(), digits.getInt());
}

}  // namespace

void each_request_event(LedgerFile& file, std::int64_t after,
                        const std::function<void(const RequestEvent&)>& take) {
  tsl::robin_map<RequestId, Known> known;
  auto& rows = file.statement(
      "SELECT e.seq, e.request, a.account_text, r.kind, r.symbol, r.side, r.lots, r.lots_digits, r.price, "
      "r.price_digits, r.reference, r.retry_of IS NOT NULL, e.state, e.evidence, e.reason, e.code, "
      "e.order_no, e.note, e.t_here, e.state = 'WORKING' AND EXISTS (SELECT 1 FROM event n WHERE n.request "
      "= e.request AND n.seq > e.seq AND n.t_here - e.t_here BETWEEN 0 AND 20 AND n.state IN ('PART', "
      "'FILLED')) FROM event e "
      "JOIN request r ON r.id = e.request JOIN account a ON a.n = r.account WHERE e.request IN (SELECT "
      "request FROM event WHERE seq > ?1) ORDER BY e.seq");
  rows.bind(1, after);
  while (rows.executeStep()) {
    const auto text = [&](int column) { return rows.getColumn(column).getString(); };
    const auto number = [&](int column) { return rows.getColumn(column).getInt64(); };
    Known& before = known[number(1)];
    const LedgerState state = ledger_words::state(text(12));
    if (number(0) > after) {
      take({.seq = number(0),
            .request = number(1),
            .account = read_integer(text(2)),
            .kind = ledger_words::kind(text(3)),
            .symbol = text(4),
            .side = ledger_words::side(text(5)),
            .lots = value_of(rows.getColumn(6), rows.getColumn(7)),
            .price = value_of(rows.getColumn(8), rows.getColumn(9)),
            .reference = number(10),
            .state = state,
            .before = before.state,
            .dealt = before.dealt,
            .sent_again = number(11) != 0 || (before.any && before.state == LedgerState::stored),
            .filled_at_once = number(19) != 0,
            .evidence = ledger_words::evidence(text(13)),
            .reason = text(14),
            .code = rows.getColumn(15).getInt(),
            .order = number(16),
            .note = text(17),
            .time = TimePoint{std::chrono::milliseconds{number(18)}}});
    }
    before = {state, before.dealt || state == LedgerState::pending, true};
  }
  rows.reset();
}

bool order_is_of(LedgerFile& file, const RequestEvent& event, RequestKind kind) {
  auto& one = file.statement(
      "SELECT 1 FROM request r JOIN event e ON e.request = r.id WHERE r.account = (SELECT account FROM "
      "request WHERE id = ?1) AND r.kind = ?2 AND r.id <> ?1 AND e.order_no = ?3 LIMIT 1");
  one.bind(1, event.request);
  one.bind(2, std::string{ledger_words::of(kind)});
  one.bind(3, event.order);
  const bool out = one.executeStep();
  one.reset();
  return out;
}

}  // namespace tutti
