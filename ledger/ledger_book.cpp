#include "ledger/ledger_book.h"

#include <fmt/format.h>

#include "ledger/decimals.h"
#include "ledger/ledger_words.h"

namespace tutti {
namespace {

using ledger_schema::Chained;

LedgerValue text_or_none(std::string_view text) {
  if (text.empty()) return {};
  return std::string{text};
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

// Whether a request of this state has left, as far as is known.
bool has_left(std::string_view state) {
  return state != "STORED" && state != "REFUSED_HERE" && state != "DROPPED" && state != "NEVER";
}

// "2026-03-04", in UTC.
std::string day_of(TimePoint time) {
  const std::chrono::year_month_day day{std::chrono::floor<std::chrono::days>(time)};
  return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                     static_cast<unsigned>(day.day()));
}

}  // namespace

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
                              text_or_none(ticket.key),
                              ticket.key.empty() ? LedgerValue{} : digest_of_plan(ticket.plan),
                              std::string{ledger_words::of(ticket.kind)},
                              text_or_none(ticket.symbol),
                              text_or_none(ledger_words::of(ticket.side)),
                              whole_or_none(ticket.total, total_digits),
                              total_digits,
                              {},
                              whole_or_none(ticket.price_at_click, price_digits),
                              price_digits,
                              age,
                              by_,
                              std::string{ledger_words::of(ticket.origin)},
                              number_or_none(ticket.retry_of),
                              text_or_none(ticket.override_reason),
                              static_cast<std::int64_t>(planned),
                              time.time_since_epoch().count()});
  return n;
}

void LedgerBook::add_requests(std::int64_t ticket, const std::vector<LedgerRequest>& requests) {
  for (const LedgerRequest& each : requests) {
    const std::int64_t account = account_of(each.sender);
    const int lots_digits = decimals::needed({each.lots, each.net_before});
    const int price_digits = decimals::needed({each.price, each.stops.stop_loss, each.stops.take_profit});
    std::string kind = std::string{ledger_words::of(each.kind)};
    if (each.kind == RequestKind::requote) kind += each.accepts ? " accept" : " reject";
    file_.add(Chained::request,
              {each.id,
               ticket,
               account,
               std::move(kind),
               text_or_none(each.symbol),
               text_or_none(ledger_words::of(each.side)),
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
               number_or_none(each.retry_of),
               whole_or_none(each.net_before, lots_digits),
               each.greatest_before});
    auto& open =
        file_.statement("INSERT INTO open_request (request, account, state) VALUES (?, ?, 'STORED')");
    open.bind(1, each.id);
    open.bind(2, account);
    open.exec();
  }
  count(ticket, {"STORED", "", 0}, static_cast<std::int64_t>(requests.size()));
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
      "SELECT r.ticket, r.account, coalesce(e.state, 'STORED'), coalesce(e.reason, ''), coalesce(e.code, 0), "
      "r.kind LIKE 'requote%' FROM request r LEFT JOIN event e ON e.seq = (SELECT max(seq) FROM event WHERE "
      "request = r.id) WHERE "
      "r.id "
      "= ?");
  one.bind(1, id);
  std::optional<Known> out;
  if (one.executeStep()) {
    out = Known{id,
                one.getColumn(0).getInt64(),
                one.getColumn(1).getInt64(),
                one.getColumn(5).getInt() != 0,
                {one.getColumn(2).getString(), one.getColumn(3).getString(), one.getColumn(4).getInt64()}};
  }
  one.reset();
  return out;
}

void LedgerBook::add_event(const LedgerEvent& event) {
  const std::optional<Known> request = event.fill_alone && event.request == 0 ? std::nullopt : find(event);
  if (event.filled > 0.0) add_fill(event, request);
  if (!request || event.fill_alone) return;
  file_.add(
      Chained::event,
      {request->id, std::string{ledger_words::of(event.state)}, text_or_none(event.reason),
       std::string{ledger_words::of(event.evidence)}, number_or_none(event.code), number_or_none(event.order),
       text_or_none(event.note), time_or_none(event.server_time), event.time.time_since_epoch().count()});
  note_state(*request, event);
}

void LedgerBook::note_state(const Known& request, const LedgerEvent& event) {
  if (ledger_words::is_open(event.state)) {
    auto& open = file_.statement(
        "INSERT INTO open_request (request, account, state, order_no) VALUES (?1, ?2, ?3, ?4) ON CONFLICT "
        "(request) DO UPDATE SET state = ?3, order_no = coalesce(?4, order_no)");
    open.bind(1, request.id);
    open.bind(2, request.account);
    open.bind(3, std::string{ledger_words::of(event.state)});
    if (event.order != 0) open.bind(4, event.order);
    open.exec();
  } else {
    auto& closed = file_.statement("DELETE FROM open_request WHERE request = ?");
    closed.bind(1, request.id);
    closed.exec();
  }
  Outcome after{std::string{ledger_words::of(event.state)}, event.reason, event.code};
  if (request.outcome == after) return;
  const bool left = has_left(after.state);
  if (!request.requote && left != has_left(request.outcome.state)) count_left(request.account, left ? 1 : -1);
  count(request.ticket, request.outcome, -1);
  count(request.ticket, after, 1);
}

void LedgerBook::count(std::int64_t ticket, const Outcome& outcome, std::int64_t step) {
  auto& change = file_.statement(
      "INSERT INTO ticket_sum VALUES (?1, ?2, ?3, ?4, ?5) ON CONFLICT (ticket, state, reason, code) DO "
      "UPDATE "
      "SET requests = requests + ?5");
  change.bind(1, ticket);
  change.bind(2, outcome.state);
  change.bind(3, outcome.reason);
  change.bind(4, outcome.code);
  change.bind(5, step);
  change.exec();
  if (step > 0) return;
  auto& none = file_.statement(
      "DELETE FROM ticket_sum WHERE ticket = ? AND state = ? AND reason = ? AND code = ? AND requests <= 0");
  none.bind(1, ticket);
  none.bind(2, outcome.state);
  none.bind(3, outcome.reason);
  none.bind(4, outcome.code);
  none.exec();
}

void LedgerBook::count_left(std::int64_t account, std::int64_t step) {
  auto& change = file_.statement(
      "INSERT INTO account_sum VALUES (?1, ?2) ON CONFLICT (account) DO UPDATE SET requests = requests + ?2");
  change.bind(1, account);
  change.bind(2, step);
  change.exec();
  // As it is when it is made anew.
  if (step < 0) file_.statement("DELETE FROM account_sum WHERE requests = 0").exec();
}

void LedgerBook::accept_missing(Sender sender, std::int64_t requests) {
  auto& change = file_.statement(
      "INSERT INTO missing_accepted VALUES (?1, ?2) ON CONFLICT (account) DO UPDATE SET requests = requests "
      "+ "
      "?2");
  change.bind(1, account_of(sender));
  change.bind(2, requests);
  change.exec();
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
  const LedgerValue lots = whole_or_none(event.filled, lots_digits);
  const LedgerValue price = whole_or_none(event.price, price_digits);
  const auto money = [&](double Realised::*part) {
    return event.realised ? whole_or_none((*event.realised).*part, money_digits, true) : LedgerValue{};
  };
  file_.add(
      Chained::fill,
      {request ? LedgerValue{request->id} : LedgerValue{}, account, text_or_none(event.execution),
       event.closes ? "close" : "open", number_or_none(event.order), number_or_none(event.order), lots,
       lots_digits, price, price_digits, money(&Realised::commission), money(&Realised::profit), day,
       time_or_none(event.server_time), event.time.time_since_epoch().count(), text_or_none(event.symbol),
       text_or_none(ledger_words::of(event.side)), text_or_none(event.currency)});
  const auto* whole_lots = std::get_if<std::int64_t>(&lots);
  const auto* whole_price = std::get_if<std::int64_t>(&price);
  if (request && whole_lots != nullptr && whole_price != nullptr)
    count_fill(request->ticket, decimals::number(*whole_lots, lots_digits),
               decimals::number(*whole_price, price_digits), price_digits);
}

void LedgerBook::count_fill(std::int64_t ticket, double lots, double price, int price_digits) {
  auto& sum = file_.statement(
      "INSERT INTO ticket_fill VALUES (?1, 1, ?2, ?2 * ?3, ?3, ?3, ?4) ON CONFLICT (ticket) DO UPDATE SET "
      "fills = fills + 1, lots = lots + ?2, value = value + ?2 * ?3, least = min(least, ?3), most = "
      "max(most, "
      "?3), price_digits = max(price_digits, ?4)");
  sum.bind(1, ticket);
  sum.bind(2, lots);
  sum.bind(3, price);
  sum.bind(4, price_digits);
  sum.exec();
}

std::vector<LedgerBook::Open> LedgerBook::unanswered() {
  std::vector<Open> out;
  auto& rows = file_.statement(
      "SELECT o.request, o.state, r.kind, EXISTS (SELECT 1 FROM event WHERE request = o.request) FROM "
      "open_request o JOIN request r ON r.id = o.request WHERE o.state IN ('STORED', 'TAKEN', 'PENDING', "
      "'PART') "
      "ORDER "
      "BY o.request");
  while (rows.executeStep()) {
    out.push_back({rows.getColumn(0).getInt64(), rows.getColumn(1).getString(), rows.getColumn(2).getString(),
                   rows.getColumn(3).getInt() != 0});
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
