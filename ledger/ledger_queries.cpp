#include "ledger/ledger_queries.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "core/numbers.h"
#include "ledger/decimals.h"
#include "ledger/ledger_words.h"

namespace tutti {
namespace {

TimePoint time_of(const SQLite::Column& column) {
  return TimePoint{std::chrono::milliseconds{column.getInt64()}};
}

std::int64_t milliseconds(TimePoint time) {
  return time.time_since_epoch().count();
}

// A whole number and its decimals, which stand side by side.
double decimal(SQLite::Statement& row, int column) {
  return decimals::number(row.getColumn(column).getInt64(), row.getColumn(column + 1).getInt());
}

std::optional<double> money(const SQLite::Column& column) {
  if (column.isNull()) return std::nullopt;
  return decimals::number(column.getInt64(), money_digits);
}

LedgerAccount account_of(SQLite::Statement& row, int first) {
  return {row.getColumn(first).getString(), row.getColumn(first + 1).getString(),
          read_integer(row.getColumn(first + 2).getString())};
}

// A day as the fills have it.
std::string day_sql(TimePoint time) {
  return fmt::format("date({}, 'unixepoch')", milliseconds(time) / 1000);
}

// What reads, and what is bound to it, in this order.
struct Query {
  std::string sql;
  std::vector<LedgerValue> values;

  void narrow(const std::string& condition) { sql += " AND " + condition; }
  void narrow(const std::string& condition, LedgerValue value) {
    narrow(condition);
    values.push_back(std::move(value));
  }
};

// The fills are found first, by an index alone, and read in the order in which they lie in the file.
Query fill_query(const FillFilter& filter, bool whole) {
  Query out;
  // Those of a ticket are found by its requests, those behind another by their own number, all others by
  // the days of the accounts.
  const std::string_view from =
      filter.ticket != 0
          ? "request r CROSS JOIN fill f ON f.request = r.id CROSS JOIN account a ON a.n = f.account"
      : filter.after != 0 ? "fill f CROSS JOIN account a ON a.n = f.account"
                          : "account a CROSS JOIN fill f ON f.account = a.n";
  out.sql = fmt::format("WITH found AS MATERIALIZED (SELECT f.seq FROM {} WHERE 1", from);
  if (filter.ticket != 0) out.narrow("r.ticket = ?", filter.ticket);
  if (filter.after != 0) out.narrow("f.seq > ?", filter.after);
  if (filter.since) out.narrow("f.day >= " + day_sql(*filter.since));
  if (filter.until) out.narrow("f.day <= " + day_sql(*filter.until));
  if (!filter.accounts.empty()) {
    std::string numbers;
    for (const std::int32_t account : filter.accounts)
      numbers += fmt::format("{}'{}'", numbers.empty() ? "" : ", ", account);
    out.narrow("a.account_text IN (" + numbers + ")");
  }
  // Without a limit the order would not count, as that of a part.
  out.sql += " ORDER BY f.seq LIMIT -1) ";
  // Columns that came later.
  const auto later = [whole](std::string_view column) {
    return whole ? fmt::format("coalesce(r.{0}, f.{0})", column) : fmt::format("r.{}", column);
  };
  out.sql += fmt::format(
      "SELECT f.seq, coalesce(f.t_server, f.t_here) AS t, f.t_here, r.ticket, f.request, f.account, "
      "f.open_or_close, f.position, f.lots, f.lots_digits, f.price, f.price_digits, f.profit, f.commission, "
      "f.exec_id, {} AS symbol, {} AS side, {} FROM found CROSS JOIN fill f ON f.seq = found.seq LEFT JOIN "
      "request r ON r.id = f.request WHERE 1",
      later("symbol"), later("side"), whole ? "f.currency" : "NULL");
  if (filter.since) out.narrow("t >= ?", milliseconds(*filter.since));
  if (filter.until) out.narrow("t < ?", milliseconds(*filter.until));
  if (!filter.symbol.empty()) out.narrow(later("symbol") + " = ?", filter.symbol);
  return out;
}

constexpr auto ticket_columns =
    "SELECT n, t, kind, coalesce(symbol, ''), coalesce(side, ''), coalesce(total, 0), coalesce(total_digits, "
    "0), "
    "coalesce(price_at_click, 0), coalesce(price_digits, 0), coalesce(\"by\", ''), coalesce(retry_of, 0) "
    "FROM "
    "ticket ";

}  // namespace

bool TicketRequest::may_be_retried(RetryPart part) const {
  const bool nothing_done = part == RetryPart::settled_by_hand
                                ? state == LedgerState::hand && reason == hand_not_executed
                                : state == LedgerState::refused || state == LedgerState::refused_here ||
                                      state == LedgerState::never || state == LedgerState::dropped ||
                                      was_left_behind();
  // The order that the answer to a requote was for has ended.
  return nothing_done && retried_by == 0 && kind != RequestKind::requote;
}

std::int64_t LedgerQueries::version() {
  auto& one = file_.statement("PRAGMA data_version");
  const std::int64_t out = one.executeStep() ? one.getColumn(0).getInt64() : 0;
  one.reset();
  return out;
}

const LedgerAccount& LedgerQueries::account(std::int64_t number) {
  const auto [at, is_new] = accounts_.try_emplace(number);
  if (!is_new) return at->second;
  auto& row = file_.statement("SELECT server, user, account_text FROM account WHERE n = ?");
  row.bind(1, number);
  if (row.executeStep()) at->second = account_of(row, 0);
  row.reset();
  return at->second;
}

std::vector<FillRecord> LedgerQueries::fills(const FillFilter& filter) {
  std::vector<FillRecord> out;
  const Query query = fill_query(filter, file_.schema() >= 2);
  SQLite::Statement rows{file_.connection(), query.sql};
  for (std::size_t i = 0; i < query.values.size(); ++i)
    bind_value(rows, static_cast<int>(i) + 1, query.values[i]);
  while (rows.executeStep()) {
    out.push_back({.seq = rows.getColumn(0).getInt64(),
                   .time = time_of(rows.getColumn(1)),
                   .heard = time_of(rows.getColumn(2)),
                   .ticket = rows.getColumn(3).getInt64(),
                   .request = rows.getColumn(4).getInt64(),
                   .account = account(rows.getColumn(5).getInt64()),
                   .closes = rows.getColumn(6).getText() == std::string_view{"close"},
                   .order = rows.getColumn(7).getInt64(),
                   .symbol = rows.getColumn(15).getText(),
                   .side = ledger_words::side(rows.getColumn(16).getText()),
                   .lots = decimal(rows, 8),
                   .price = decimal(rows, 10),
                   .price_digits = rows.getColumn(11).getInt(),
                   .profit = money(rows.getColumn(12)),
                   .commission = money(rows.getColumn(13)),
                   .currency = rows.getColumn(17).getText(),
                   .execution = rows.getColumn(14).getText()});
  }
  std::map<std::string, int> digits;
  for (const FillRecord& fill : out) {
    int& most = digits[fill.symbol];
    most = std::max(most, fill.price_digits);
  }
  for (FillRecord& fill : out)
    fill.price_digits = digits[fill.symbol];
  return out;
}

std::vector<TicketRecord> LedgerQueries::newest_tickets(int count) {
  return tickets("ORDER BY n DESC LIMIT ?", count);
}

std::optional<TicketRecord> LedgerQueries::ticket(std::int64_t number) {
  auto found = tickets("WHERE n = ?", number);
  if (found.empty()) return std::nullopt;
  return std::move(found.front());
}

std::vector<TicketRecord> LedgerQueries::tickets(const std::string& which, std::int64_t value) {
  std::vector<TicketRecord> out;
  auto& rows = file_.statement(ticket_columns + which);
  rows.bind(1, value);
  while (rows.executeStep()) {
    out.push_back({.number = rows.getColumn(0).getInt64(),
                   .time = time_of(rows.getColumn(1)),
                   .kind = ledger_words::kind(rows.getColumn(2).getString()),
                   .symbol = rows.getColumn(3).getString(),
                   .side = ledger_words::side(rows.getColumn(4).getString()),
                   .total = decimal(rows, 5),
                   .price_at_click = decimal(rows, 7),
                   .by = rows.getColumn(9).getString(),
                   .retry_of = rows.getColumn(10).getInt64()});
  }
  rows.reset();
  for (TicketRecord& ticket : out)
    add_outcomes(ticket);
  return out;
}

void LedgerQueries::add_outcomes(TicketRecord& ticket) {
  auto& sums = file_.statement("SELECT state, reason, code, requests FROM ticket_sum WHERE ticket = ?");
  sums.bind(1, ticket.number);
  while (sums.executeStep()) {
    ticket.outcomes.push_back({ledger_words::state(sums.getColumn(0).getString()),
                               sums.getColumn(1).getString(), sums.getColumn(2).getInt64(),
                               sums.getColumn(3).getInt()});
  }
  sums.reset();
  std::stable_sort(ticket.outcomes.begin(), ticket.outcomes.end(),
                   [](const TicketOutcome& a, const TicketOutcome& b) { return a.state < b.state; });
  auto& fills = file_.statement(
      "SELECT fills, lots, value, least, most, price_digits FROM ticket_fill WHERE ticket = ?");
  fills.bind(1, ticket.number);
  if (fills.executeStep()) {
    const double lots = fills.getColumn(1).getDouble();
    ticket.filled = {fills.getColumn(0).getInt(),
                     lots,
                     lots > 0.0 ? fills.getColumn(2).getDouble() / lots : 0.0,
                     fills.getColumn(3).getDouble(),
                     fills.getColumn(4).getDouble(),
                     fills.getColumn(5).getInt()};
  }
  fills.reset();
  if (ticket.kind != RequestKind::entry) return;
  // All of them were placed at the same.
  auto& first = file_.statement(
      "SELECT coalesce(price, 0), coalesce(price_digits, 0) FROM request WHERE ticket = ? LIMIT 1");
  first.bind(1, ticket.number);
  if (first.executeStep()) ticket.price = decimal(first, 0);
  first.reset();
}

std::vector<TicketRequest> LedgerQueries::requests_of(std::int64_t ticket) {
  std::vector<TicketRequest> out;
  auto& rows = file_.statement(
      "SELECT r.id, a.server, a.user, a.account_text, r.kind, coalesce(r.symbol, ''), coalesce(r.side, ''), "
      "coalesce(r.lots, 0), coalesce(r.lots_digits, 0), coalesce(r.price, 0), coalesce(r.price_digits, 0), "
      "coalesce(r.reference, (SELECT order_no FROM event WHERE request = r.id AND order_no IS NOT NULL ORDER "
      "BY "
      "seq DESC LIMIT 1), 0), coalesce(e.state, 'STORED'), coalesce(e.reason, ''), coalesce(e.code, 0), "
      "coalesce(e.note, ''), e.t_here - t.t, coalesce((SELECT id FROM request WHERE retry_of = r.id), 0), "
      "r.stop_loss, r.take_profit FROM request r JOIN account a ON a.n = r.account JOIN ticket t ON t.n = "
      "r.ticket LEFT JOIN event e ON "
      "e.seq = "
      "(SELECT max(seq) FROM event WHERE request = r.id) WHERE r.ticket = ? ORDER BY r.id");
  rows.bind(1, ticket);
  while (rows.executeStep()) {
    out.push_back({.id = rows.getColumn(0).getInt64(),
                   .ticket = ticket,
                   .account = account_of(rows, 1),
                   .kind = ledger_words::kind(rows.getColumn(4).getString()),
                   .symbol = rows.getColumn(5).getString(),
                   .side = ledger_words::side(rows.getColumn(6).getString()),
                   .lots = decimal(rows, 7),
                   .price = decimal(rows, 9),
                   .number = rows.getColumn(11).getInt64(),
                   .state = ledger_words::state(rows.getColumn(12).getString()),
                   .reason = rows.getColumn(13).getString(),
                   .code = rows.getColumn(14).getInt64(),
                   .note = rows.getColumn(15).getString(),
                   .retried_by = rows.getColumn(17).getInt64()});
    const auto stop = [&](int column) {
      return decimals::number(rows.getColumn(column).getInt64(), rows.getColumn(10).getInt());
    };
    out.back().stops = {stop(18), stop(19), !rows.getColumn(18).isNull(), !rows.getColumn(19).isNull()};
    if (!rows.getColumn(16).isNull())
      out.back().answered = std::chrono::milliseconds{rows.getColumn(16).getInt64()};
  }
  rows.reset();
  const auto before = [](const TicketRequest& request, RequestId id) { return request.id < id; };
  for (const FillRecord& fill : fills({.ticket = ticket})) {
    const auto at = std::lower_bound(out.begin(), out.end(), fill.request, before);
    if (at == out.end() || at->id != fill.request) continue;
    const double worth = at->filled * at->fill_price + fill.lots * fill.price;
    at->filled += fill.lots;
    at->fill_price = at->filled > 0.0 ? worth / at->filled : 0.0;
    at->price_digits = fill.price_digits;
    at->filled_at = fill.time;
  }
  return out;
}

std::vector<TicketRequest> LedgerQueries::with_tickets_of(std::span<const RequestId> requests) {
  std::set<std::int64_t> tickets;
  for (const RequestId id : requests) {
    auto& one = file_.statement("SELECT ticket FROM request WHERE id = ?");
    one.bind(1, id);
    if (one.executeStep()) tickets.insert(one.getColumn(0).getInt64());
    one.reset();
  }
  std::vector<TicketRequest> out;
  for (const std::int64_t ticket : tickets) {
    auto more = requests_of(ticket);
    out.insert(out.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
  }
  std::sort(out.begin(), out.end(),
            [](const TicketRequest& a, const TicketRequest& b) { return a.id < b.id; });
  return out;
}

// Of those that more is to come of, the ones that `which` names; `id` is bound to it unless it is 0.
void LedgerQueries::add_open(const std::string& which, RequestId id, std::vector<LedgerUnknown>& out) {
  auto& rows = file_.statement(
      "SELECT o.request, a.server, a.user, a.account_text, r.kind, coalesce(r.symbol, ''), coalesce(r.side, "
      "''), coalesce(r.lots, 0), coalesce(r.lots_digits, 0), coalesce(r.price, 0), coalesce(r.price_digits, "
      "0), coalesce(r.reference, o.order_no, 0), coalesce(r.era, 0), coalesce(e.reason, ''), "
      "coalesce(e.t_here, t.t), coalesce(r.greatest_before, -1) FROM open_request o JOIN request r ON r.id = "
      "o.request JOIN account a ON a.n "
      "= "
      "r.account JOIN ticket t ON t.n = r.ticket LEFT JOIN event e ON e.seq = (SELECT max(seq) FROM event "
      "WHERE request = o.request) WHERE " +
      which + " ORDER BY o.request");
  if (id != 0) rows.bind(1, id);
  while (rows.executeStep()) {
    out.push_back({.id = rows.getColumn(0).getInt64(),
                   .account = account_of(rows, 1),
                   .kind = ledger_words::kind(rows.getColumn(4).getString()),
                   .symbol = rows.getColumn(5).getString(),
                   .side = ledger_words::side(rows.getColumn(6).getString()),
                   .lots = decimal(rows, 7),
                   .price = decimal(rows, 9),
                   .number = rows.getColumn(11).getInt64(),
                   .era = static_cast<BookEra>(rows.getColumn(12).getInt64()),
                   .why = rows.getColumn(13).getString(),
                   .since = time_of(rows.getColumn(14)),
                   .greatest_before = rows.getColumn(15).getInt64()});
  }
  rows.reset();
}

std::vector<LedgerUnknown> LedgerQueries::unknown(std::span<const LedgerEvent> more) {
  std::vector<LedgerUnknown> out;
  add_open("o.state IN ('UNKNOWN', 'GONE')", 0, out);
  for (const LedgerEvent& event : more) {
    if (event.state != LedgerState::unknown) continue;
    const std::size_t before = out.size();
    add_open("o.request = ?", event.request, out);
    if (out.size() > before) out.back().why = event.reason;
  }
  std::sort(out.begin(), out.end(),
            [](const LedgerUnknown& a, const LedgerUnknown& b) { return a.id < b.id; });
  for (LedgerUnknown& each : out)
    if (each.kind == RequestKind::open && each.greatest_before >= 0) add_taken_since(each);
  return out;
}

void LedgerQueries::add_taken_since(LedgerUnknown& unknown) {
  // What was under way then was sent within the hour before; the upper half of an id counts seconds.
  constexpr std::int64_t hour = std::int64_t{3600} << 32;
  auto& rows = file_.statement(
      "SELECT DISTINCT e.order_no FROM request o JOIN request r ON r.id > o.id - ?3 AND r.id <> o.id AND "
      "+r.account = o.account JOIN event e ON e.request = r.id WHERE o.id = ?1 AND e.order_no > ?2 ORDER BY "
      "1");
  rows.bind(1, unknown.id);
  rows.bind(2, unknown.greatest_before);
  rows.bind(3, hour);
  while (rows.executeStep())
    unknown.taken_since.push_back(rows.getColumn(0).getInt64());
  rows.reset();
}

std::map<std::int32_t, std::int64_t> LedgerQueries::left() {
  std::map<std::int32_t, std::int64_t> out;
  auto& rows = file_.statement(
      "SELECT a.account_text, coalesce(s.requests, 0) + coalesce(m.requests, 0) FROM "
      "account a "
      "LEFT JOIN account_sum s ON s.account = a.n LEFT JOIN missing_accepted m ON m.account = a.n");
  while (rows.executeStep())
    out[read_integer(rows.getColumn(0).getString())] += rows.getColumn(1).getInt64();
  rows.reset();
  return out;
}

std::vector<LedgerUnknown> LedgerQueries::never_left() {
  std::vector<LedgerUnknown> out;
  add_open("o.state = 'STORED' AND t.key_text IS NOT NULL", 0, out);
  return out;
}

std::vector<LedgerUnknown> LedgerQueries::working() {
  std::vector<LedgerUnknown> out;
  add_open("o.state = 'WORKING'", 0, out);
  return out;
}

TimePoint LedgerQueries::last_commit() {
  auto& last = file_.statement("SELECT t FROM commit_log ORDER BY n DESC LIMIT 1");
  const TimePoint out = last.executeStep() ? time_of(last.getColumn(0)) : TimePoint{};
  last.reset();
  return out;
}

std::optional<NamedTicket> LedgerQueries::named(const std::string& key, const std::string& plan) {
  std::optional<NamedTicket> out;
  auto& rows = file_.statement("SELECT n, plan_digest = ?2, planned_count FROM ticket WHERE key_text = ?1");
  bind_value(rows, 1, key);
  bind_value(rows, 2, digest_of_plan(plan));
  if (rows.executeStep())
    out = {rows.getColumn(0).getInt64(), rows.getColumn(1).getInt() != 0, rows.getColumn(2).getInt()};
  rows.reset();
  return out;
}

std::vector<LedgerPastTicket> LedgerQueries::recent(TimePoint since) {
  std::vector<LedgerPastTicket> out;
  auto& rows = file_.statement(
      "SELECT kind, symbol, side, coalesce(total, 0), total_digits, planned_count, t FROM ticket WHERE n > "
      "(SELECT coalesce(max(n), 0) - 1000 FROM ticket) AND t >= ? AND kind IN ('open', 'entry', 'update', "
      "'stops') AND NOT EXISTS (SELECT 1 FROM request r JOIN event e ON e.request = r.id WHERE r.ticket = "
      "ticket.n AND e.state = 'REFUSED_HERE') ORDER BY n");
  rows.bind(1, milliseconds(since));
  while (rows.executeStep()) {
    out.push_back({.kind = ledger_words::kind(rows.getColumn(0).getString()),
                   .symbol = rows.getColumn(1).getString(),
                   .side = ledger_words::side(rows.getColumn(2).getString()),
                   .total = decimal(rows, 3),
                   .count = static_cast<std::size_t>(rows.getColumn(5).getInt64()),
                   .time = time_of(rows.getColumn(6))});
  }
  rows.reset();
  return out;
}

}  // namespace tutti
