#include "ledger/ledger_book.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "core/numbers.h"
#include "ledger/decimals.h"

namespace tutti {
namespace {

using ledger_schema::Chained;

// What of a ticket's sums a request in this state counts for; empty: nothing yet.
struct StateRow {
  LedgerState state;
  std::string_view word;
  std::string_view sum;
  bool open;  // more is to come
};
constexpr StateRow states[] = {
    {LedgerState::stored, "STORED", "", true},
    {LedgerState::refused_here, "REFUSED_HERE", "refused", false},
    {LedgerState::dropped, "DROPPED", "dropped", false},
    {LedgerState::taken, "TAKEN", "", true},
    {LedgerState::refused, "REFUSED", "refused", false},
    {LedgerState::pending, "PENDING", "", true},
    {LedgerState::working, "WORKING", "filled", true},
    {LedgerState::part, "PART", "", true},
    {LedgerState::filled, "FILLED", "filled", false},
    {LedgerState::part_filled, "PART_FILLED", "filled", false},
    {LedgerState::done, "DONE", "filled", false},
    {LedgerState::cancelled, "CANCELLED", "", false},
    {LedgerState::unknown, "UNKNOWN", "unknown", true},
    {LedgerState::never, "NEVER", "refused", false},
    {LedgerState::gone, "GONE", "unknown", true},
    {LedgerState::hand, "HAND", "", false},
};
const StateRow& row_of(LedgerState state) {
  return states[static_cast<std::size_t>(state)];
}
std::string_view sum_of(std::string_view word) {
  const auto row =
      std::find_if(std::begin(states), std::end(states), [&](const StateRow& s) { return s.word == word; });
  return row == std::end(states) ? std::string_view{} : row->sum;
}

constexpr std::array<std::string_view, 7> kinds{"open",   "close", "cancel", "entry",
                                                "update", "stops", "requote"};
constexpr std::array<std::string_view, 5> evidences{"answer", "asked", "positions", "hand", "clock"};

template <class Words, class Value>
std::string word(const Words& words, Value value) {
  return std::string{words[static_cast<std::size_t>(value)]};
}

constexpr std::pair<Operation, std::string_view> sides[] = {{operation::buy, "buy"},
                                                            {operation::sell, "sell"},
                                                            {operation::buy_stop, "buy stop"},
                                                            {operation::sell_stop, "sell stop"}};
LedgerValue side_word(Operation side) {
  for (const auto& [operation, text] : sides)
    if (operation == side) return std::string{text};
  return {};
}

LedgerValue text_or_none(const std::string& text) {
  if (text.empty()) return {};
  return text;
}
LedgerValue number_or_none(std::int64_t number) {
  if (number == 0) return {};
  return number;
}
LedgerValue whole_or_none(double value, int digits, bool told) {
  const auto whole = told ? decimals::whole(value, digits) : std::nullopt;
  if (!whole) return {};
  return *whole;
}
LedgerValue whole_or_none(double value, int digits) {
  return whole_or_none(value, digits, value != 0.0);
}
LedgerValue time_or_none(TimePoint time) {
  return number_or_none(time.time_since_epoch().count());
}

// "2026-03-04", in UTC.
std::string day_of(TimePoint time) {
  const std::chrono::year_month_day day{std::chrono::floor<std::chrono::days>(time)};
  return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                     static_cast<unsigned>(day.day()));
}

}  // namespace

std::string_view ledger_word(LedgerState state) {
  return row_of(state).word;
}

std::string_view ledger_word(RequestKind kind) {
  return kinds[static_cast<std::size_t>(kind)];
}

void LedgerBook::know(Sender sender, const LedgerAccount& account) {
  senders_[sender] = account;
  accounts_.erase(sender);
}

std::int64_t LedgerBook::number(const std::string& sql) {
  auto& one = file_.statement(sql);
  const std::int64_t out = one.executeStep() ? one.getColumn(0).getInt64() : 0;
  one.reset();
  return out;
}

std::int64_t LedgerBook::account_of(Sender sender) {
  if (const auto at = accounts_.find(sender); at != accounts_.end()) return at->second;
  const LedgerAccount& who = senders_[sender];
  const std::string text = std::to_string(who.account);
  auto& known = file_.statement("SELECT n FROM account WHERE server = ? AND user = ? AND account_text = ?");
  known.bind(1, who.server);
  known.bind(2, who.user);
  known.bind(3, text);
  std::int64_t n = known.executeStep() ? known.getColumn(0).getInt64() : 0;
  known.reset();
  if (n == 0) {
    n = number("SELECT coalesce(max(n), 0) + 1 FROM account");
    file_.add(Chained::account, {n, who.server, who.user, text});
  }
  accounts_[sender] = n;
  return n;
}

std::int64_t LedgerBook::add_ticket(const LedgerTicket& ticket, std::size_t planned, TimePoint time) {
  const std::int64_t n = number("SELECT coalesce(max(n), 0) + 1 FROM ticket");
  const int total_digits = decimals::needed({ticket.total});
  const int price_digits = decimals::needed({ticket.price_at_click});
  LedgerValue age;
  if (ticket.quote_age.count() >= 0) age = std::int64_t{ticket.quote_age.count()};
  file_.add(Chained::ticket, {n,
                              {},
                              {},
                              word(kinds, ticket.kind),
                              text_or_none(ticket.symbol),
                              side_word(ticket.side),
                              whole_or_none(ticket.total, total_digits),
                              total_digits,
                              {},
                              whole_or_none(ticket.price_at_click, price_digits),
                              price_digits,
                              age,
                              by_,
                              "here",
                              {},
                              {},
                              static_cast<std::int64_t>(planned),
                              time.time_since_epoch().count()});
  return n;
}

void LedgerBook::add_requests(std::int64_t ticket, const std::vector<LedgerRequest>& requests) {
  for (const LedgerRequest& each : requests) {
    const std::int64_t account = account_of(each.sender);
    const int lots_digits = decimals::needed({each.lots});
    const int price_digits = decimals::needed({each.price, each.stops.stop_loss, each.stops.take_profit});
    std::string kind = word(kinds, each.kind);
    if (each.kind == RequestKind::requote) kind += each.accepts ? " accept" : " reject";
    file_.add(Chained::request,
              {each.id,
               ticket,
               account,
               std::move(kind),
               text_or_none(each.symbol),
               side_word(each.side),
               whole_or_none(each.lots, lots_digits),
               lots_digits,
               whole_or_none(each.price, price_digits),
               whole_or_none(each.stops.stop_loss, price_digits, each.stops.has_stop_loss),
               whole_or_none(each.stops.take_profit, price_digits, each.stops.has_take_profit),
               price_digits,
               number_or_none(each.reference),
               {},
               {},
               number_or_none(static_cast<std::int64_t>(each.era)),
               {},
               {},
               {}});
    auto& open =
        file_.statement("INSERT INTO open_request (request, account, state) VALUES (?, ?, 'STORED')");
    open.bind(1, each.id);
    open.bind(2, account);
    open.exec();
  }
  auto& sum = file_.statement(
      "INSERT INTO ticket_sum VALUES (?1, ?2, 0, 0, 0, 0) ON CONFLICT (ticket) DO UPDATE SET requests = "
      "requests + ?2");
  sum.bind(1, ticket);
  sum.bind(2, static_cast<std::int64_t>(requests.size()));
  sum.exec();
}

std::optional<LedgerBook::Known> LedgerBook::find(const LedgerEvent& event) {
  RequestId id = event.request;
  if (id == 0) {
    auto& working = file_.statement(
        "SELECT request FROM open_request WHERE order_no = ? AND account = ? AND state = 'WORKING'");
    working.bind(1, event.order);
    working.bind(2, account_of(event.sender));
    if (working.executeStep()) id = working.getColumn(0).getInt64();
    working.reset();
  }
  auto& one = file_.statement(
      "SELECT ticket, account, coalesce((SELECT state FROM event WHERE request = id ORDER BY seq DESC LIMIT "
      "1), 'STORED') FROM request WHERE id = ?");
  one.bind(1, id);
  std::optional<Known> out;
  if (one.executeStep()) {
    out = Known{id, one.getColumn(0).getInt64(), one.getColumn(1).getInt64(), one.getColumn(2).getString()};
  }
  one.reset();
  return out;
}

void LedgerBook::add_event(const LedgerEvent& event) {
  const std::optional<Known> request = find(event);
  if (event.filled > 0.0) add_fill(event, request);
  if (!request) return;
  file_.add(Chained::event, {request->id, std::string{ledger_word(event.state)}, text_or_none(event.reason),
                             word(evidences, event.evidence), number_or_none(event.code),
                             number_or_none(event.order), text_or_none(event.note),
                             time_or_none(event.server_time), event.time.time_since_epoch().count()});
  note_state(*request, event);
}

void LedgerBook::note_state(const Known& request, const LedgerEvent& event) {
  const StateRow& now = row_of(event.state);
  if (now.open) {
    auto& open = file_.statement(
        "INSERT INTO open_request (request, account, state, order_no) VALUES (?1, ?2, ?3, ?4) ON CONFLICT "
        "(request) DO UPDATE SET state = ?3, order_no = coalesce(?4, order_no)");
    open.bind(1, request.id);
    open.bind(2, request.account);
    open.bind(3, std::string{now.word});
    if (event.order != 0) open.bind(4, event.order);
    open.exec();
  } else {
    auto& closed = file_.statement("DELETE FROM open_request WHERE request = ?");
    closed.bind(1, request.id);
    closed.exec();
  }
  const std::string_view before = sum_of(request.state);
  if (before == now.sum) return;
  for (const auto& [sum, step] : {std::pair{before, "-"}, std::pair{now.sum, "+"}}) {
    if (sum.empty()) continue;
    auto& change =
        file_.statement(fmt::format("UPDATE ticket_sum SET {0} = {0} {1} 1 WHERE ticket = ?", sum, step));
    change.bind(1, request.ticket);
    change.exec();
  }
}

void LedgerBook::add_fill(const LedgerEvent& event, const std::optional<Known>& request) {
  const std::int64_t account = account_of(event.sender);
  const bool told = event.server_time != TimePoint{};
  const std::string day = day_of(told ? event.server_time : event.time);
  if (!event.execution.empty()) {
    auto& known = file_.statement("SELECT 1 FROM fill WHERE account = ? AND day = ? AND exec_id = ?");
    known.bind(1, account);
    known.bind(2, day);
    known.bind(3, event.execution);
    const bool repeated = known.executeStep();
    known.reset();
    if (repeated) return;
  }
  const int lots_digits = decimals::needed({event.filled});
  const int price_digits = decimals::needed({event.price});
  file_.add(Chained::fill, {request ? LedgerValue{request->id} : LedgerValue{},
                            account,
                            text_or_none(event.execution),
                            event.closes ? "close" : "open",
                            number_or_none(event.order),
                            number_or_none(event.order),
                            whole_or_none(event.filled, lots_digits),
                            lots_digits,
                            whole_or_none(event.price, price_digits),
                            price_digits,
                            {},
                            {},
                            day,
                            time_or_none(event.server_time),
                            event.time.time_since_epoch().count()});
}

std::vector<LedgerBook::Open> LedgerBook::unanswered() {
  std::vector<Open> out;
  auto& rows = file_.statement(
      "SELECT o.request, o.state, r.kind, EXISTS (SELECT 1 FROM event WHERE request = o.request) FROM "
      "open_request o JOIN request r ON r.id = o.request WHERE o.state IN ('STORED', 'TAKEN', 'PENDING') "
      "ORDER "
      "BY o.request");
  while (rows.executeStep()) {
    out.push_back({rows.getColumn(0).getInt64(), rows.getColumn(1).getString(), rows.getColumn(2).getString(),
                   rows.getColumn(3).getInt() != 0});
  }
  rows.reset();
  return out;
}

std::vector<LedgerUnknown> LedgerBook::unknown() {
  std::vector<LedgerUnknown> out;
  auto& rows = file_.statement(
      "SELECT o.request, a.server, a.user, a.account_text, r.kind, r.symbol, r.side, r.lots, r.lots_digits, "
      "r.price, r.price_digits, coalesce(r.reference, o.order_no, 0), coalesce(r.era, 0), coalesce(e.reason, "
      "''), e.t_here FROM open_request o JOIN request r ON r.id = o.request JOIN account a ON a.n = "
      "r.account "
      "JOIN event e ON e.seq = (SELECT max(seq) FROM event WHERE request = o.request) WHERE o.state IN "
      "('UNKNOWN', 'GONE') ORDER BY o.request");
  while (rows.executeStep()) {
    const auto text = [&](int column) { return rows.getColumn(column).getString(); };
    const auto decimal = [&](int column, int digits) {
      return decimals::number(rows.getColumn(column).getInt64(), rows.getColumn(digits).getInt());
    };
    const std::string kind = text(4).substr(0, text(4).find(' '));
    const auto side = std::find_if(std::begin(sides), std::end(sides),
                                   [side = text(6)](const auto& each) { return each.second == side; });
    out.push_back(
        {.id = rows.getColumn(0).getInt64(),
         .account = {text(1), text(2), read_integer(text(3))},
         .kind = static_cast<RequestKind>(std::find(kinds.begin(), kinds.end(), kind) - kinds.begin()),
         .symbol = text(5),
         .side = side == std::end(sides) ? operation::none : side->first,
         .lots = decimal(7, 8),
         .price = decimal(9, 10),
         .number = rows.getColumn(11).getInt64(),
         .era = static_cast<BookEra>(rows.getColumn(12).getInt64()),
         .why = text(13),
         .since = TimePoint{std::chrono::milliseconds{rows.getColumn(14).getInt64()}}});
  }
  rows.reset();
  return out;
}

void LedgerBook::add_run(std::int64_t number, const std::string& boot, TimePoint time) {
  auto& run = file_.statement("INSERT INTO run VALUES (?, ?, ?)");
  run.bind(1, number);
  run.bind(2, boot);
  run.bind(3, time.time_since_epoch().count());
  run.exec();
}

std::int64_t LedgerBook::last_run() {
  return number("SELECT coalesce(max(n), 0) FROM run");
}

}  // namespace tutti
