#include "dealer/order_desk.h"

#include <algorithm>
#include <utility>

#include "dealer/dealer_session.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

using Stage = TradeRequest::Stage;
using Answer = AnswerNews::Event;

bool is_market(TradeKind kind) {
  return kind == TradeKind::open || kind == TradeKind::close;
}

// A request that changes or cancels an order.
TradeRequest request_about(const TradingAccount& account, TradeKind kind, std::int64_t order) {
  TradeRequest request;
  request.kind = kind;
  request.reference = order;
  if (const PendingOrder* found = account.find_order(order)) {
    request.operation = found->operation;
    request.symbol = found->symbol;
    request.amount = found->amount;
  }
  return request;
}

// Works on an EntryOrder too.
template <class Stops>
void set_prices(TradeRequest& request, const Stops& stops) {
  request.stop_loss = stops.has_stop_loss ? stops.stop_loss : 0.0;
  request.take_profit = stops.has_take_profit ? stops.take_profit : 0.0;
}

}  // namespace

OrderDesk::OrderDesk(const DealerConfig& config, const Market& market, FaultScript& faults)
    : config_(config),
      faults_(faults),
      rules_(config, market),
      execution_(market),
      market_(market),
      numbers_(config) {}

std::int32_t OrderDesk::open(TradingAccount& account, std::int32_t side, std::optional<std::size_t> symbol,
                             double amount, TimePoint now) {
  TradeRequest request;
  request.kind = TradeKind::open;
  request.operation = side;
  if (symbol) request.symbol = market_.symbol(*symbol).name;
  request.amount = amount;
  return admit(account, std::move(request), rules_.admit_open(account, side, symbol, amount),
               FaultPoint::open, now);
}

std::int32_t OrderDesk::close(TradingAccount& account, std::int64_t ticket, double amount, TimePoint now) {
  TradeRequest request;
  request.kind = TradeKind::close;
  request.reference = ticket;
  request.amount = amount;
  if (const TradingAccount::Position* position = account.find_position(ticket)) {
    request.operation = position->record.side;
    request.symbol = position->record.symbol;
  }
  return admit(account, std::move(request), rules_.admit_close(account, ticket, amount), FaultPoint::close,
               now);
}

std::int32_t OrderDesk::place(TradingAccount& account, const EntryOrder& order,
                              std::optional<std::size_t> symbol, TimePoint now) {
  TradeRequest request;
  request.kind = TradeKind::entry;
  request.operation = order.side;
  if (order.kind == EntryKind::stop)
    request.operation = order.side == operation::buy ? operation::buy_stop : operation::sell_stop;
  if (symbol) request.symbol = market_.symbol(*symbol).name;
  request.amount = order.amount;
  request.price = order.price;
  set_prices(request, order);
  return admit(account, std::move(request), rules_.admit_entry(account, order, symbol), FaultPoint::entry,
               now);
}

std::int32_t OrderDesk::update(TradingAccount& account, std::int64_t order, double price,
                               const StopPrices& stops, TimePoint now) {
  TradeRequest request = request_about(account, TradeKind::update_entry, order);
  request.price = price;
  set_prices(request, stops);
  return admit(account, std::move(request), rules_.admit_update(account, order, price, stops),
               FaultPoint::update, now);
}

std::int32_t OrderDesk::set_stops(TradingAccount& account, std::int64_t ticket, const StopPrices& stops,
                                  TimePoint now) {
  TradeRequest request;
  request.kind = TradeKind::set_stops;
  request.reference = ticket;
  if (const TradingAccount::Position* position = account.find_position(ticket)) {
    request.operation = position->record.side;
    request.symbol = position->record.symbol;
    request.amount = position->record.amount;
  }
  set_prices(request, stops);
  return admit(account, std::move(request), rules_.admit_stops(account, ticket, stops), FaultPoint::update,
               now);
}

std::int32_t OrderDesk::cancel(TradingAccount& account, TradeKind kind, std::int64_t order, TimePoint now) {
  const char* row = kind == TradeKind::cancel_entry ? "LO" : "ST";
  return admit(account, request_about(account, kind, order), rules_.admit_cancel(account, order, row),
               FaultPoint::cancel, now);
}

std::int32_t OrderDesk::admit(TradingAccount& account, TradeRequest request, std::int32_t code,
                              FaultPoint point, TimePoint now) {
  request.account = account.config().number;
  const Mishap mishap = shut_ ? Mishap{} : faults_.strike(account.config().number, point, now);
  if (mishap.refuse != 0) code = mishap.refuse;
  if (shut_) code = request::silent;
  if (code != request::taken) {
    log(request, {.request = code}, now);
    return code;
  }
  request.number = numbers_.take();
  note_change(account);
  if (mishap.swallow) {
    log(request, {.request = code}, now);
    return code;
  }
  const auto wait = numbers_.draw_latency();
  flights_.emplace(
      now + wait + mishap.delay,
      Flight{.account = &account, .request = std::move(request), .mishap = mishap, .latency = wait});
  return code;
}

const Outcome& OrderDesk::log(const TradeRequest& request, Outcome outcome, TimePoint at) {
  outcome.time = at;
  outcome.account = request.account;
  outcome.kind = request.kind;
  if (outcome.number == 0) outcome.number = request.known_as();
  outcome.dealt = request.stage != Stage::sent;
  log_.add(outcome);
  return log_.all().back();
}

std::vector<TradeRequest> OrderDesk::requests() const {
  std::vector<TradeRequest> requests;
  for (const auto& [due, flight] : flights_) {
    TradeRequest& request = requests.emplace_back(flight.request);
    request.due = due;
    if (!flight.requoted) continue;
    // A new price doesn't outlive the run in which it was offered.
    request.stage = Stage::rejected;
    request.due = flight.deadline + std::chrono::seconds{1};
  }
  return requests;
}

void OrderDesk::resume(TradingAccount& account, const TradeRequest& request, TimePoint now) {
  if (request.stage == Stage::dealing) account.add_order(TradeExecution::row_of(request, now));
  flights_.emplace(std::max(request.due, now),
                   Flight{.account = &account, .request = request, .mishap = {}, .resumed = true});
}

std::optional<TimePoint> OrderDesk::next_due() const {
  const auto late = answers_.next_due();
  if (flights_.empty()) return late;
  const TimePoint first = flights_.begin()->first;
  return late ? std::min(*late, first) : first;
}

void OrderDesk::run(TimePoint at) {
  while (!flights_.empty() && flights_.begin()->first <= at) {
    Flight flight = std::move(flights_.extract(flights_.begin()).mapped());
    if (const auto later = next_price(flight); later && *later > at) {
      flights_.emplace(*later, std::move(flight));
      continue;
    }
    flight.account->revalue();
    note_change(*flight.account);
    switch (flight.request.stage) {
      case Stage::sent:
        arrive(std::move(flight), at);
        break;
      case Stage::dealing:
        deal(std::move(flight), at);
        break;
      case Stage::accepted:
        finish(flight, verdict(flight), at);
        break;
      case Stage::rejected:
        finish(flight, 0, at);
        break;
    }
  }
  answers_.run(at);
}

std::optional<TimePoint> OrderDesk::next_price(const Flight& flight) const {
  const bool waits =
      flight.resumed && !config_.ticks.empty() && rules_.lacks_price(*flight.account, flight.request);
  return waits ? market_.next_due() : std::nullopt;
}

double OrderDesk::price(const TradeRequest& request) const {
  return request.price > 0.0 ? request.price : rules_.price(request);
}

std::int32_t OrderDesk::verdict(const Flight& flight) const {
  const auto configured = TradeRules::configured_result(*flight.account, flight.request.kind);
  if (configured != 0) return configured;
  return rules_.judge(*flight.account, flight.request, price(flight.request));
}

void OrderDesk::arrive(Flight flight, TimePoint at) {
  const TradeRequest& request = flight.request;
  if (flight.mishap.reject != 0) return finish(flight, flight.mishap.reject, at);
  if (is_market(request.kind)) {
    const auto wait = flight.mishap.pending.value_or(rules_.dealing_time(*flight.account, request));
    if (wait.count() > 0 || flight.mishap.requote_seconds > 0) {
      const auto code = rules_.judge(*flight.account, request, price(request));
      if (code != result::succeeded) return finish(flight, code, at);
      return enter_dealing(std::move(flight), wait, at);
    }
  }
  finish(flight, verdict(flight), at);
}

void OrderDesk::enter_dealing(Flight flight, std::chrono::milliseconds wait, TimePoint at) {
  TradeRequest& request = flight.request;
  request.price = rules_.price(request);
  OrderReport report = report_on(request, result::succeeded, request.price);
  report.state = order_state::pending;
  answers_.tell(*flight.account, flight.mishap, {answer_to(request, true), report}, at);
  request.stage = Stage::dealing;
  TradeExecution::add_row(*flight.account, TradeExecution::row_of(request, at));
  flights_.emplace(at + wait, std::move(flight));
}

// A `result` of 0 is a rejection without a reason of the server's own.
void OrderDesk::finish(const Flight& flight, std::int32_t result, TimePoint at) {
  const TradeRequest& request = flight.request;
  TradingAccount& account = *flight.account;
  const bool done = result == result::succeeded;
  const double done_at = is_market(request.kind) ? price(request) : request.price;
  AnswerNews answer{answer_to(request, done), report_on(request, result, done_at)};
  if (done) answer.report.state = order_state::executed;
  // Of stops the client is told the SL/TP order, the one that is there or the one that comes.
  const PendingOrder* stops =
      request.kind == TradeKind::set_stops ? account.stops_of(request.reference) : nullptr;
  if (request.kind == TradeKind::set_stops)
    answer.report.number = stops != nullptr ? stops->order : request.number;
  if (stops != nullptr) answer.event = Answer::update_stops;
  const bool told = answers_.tell(account, flight.mishap, answer, at);
  const Outcome& outcome = log(request,
                               {.number = answer.report.number,
                                .request = request::taken,
                                .result = result,
                                .updated = stops != nullptr,
                                .expired = flight.requoted,
                                .told = told,
                                .resumed = flight.resumed},
                               at);
  if (flight.resumed && !told) untold_.push_back(outcome);
  if (request.stage == Stage::dealing) TradeExecution::remove_row(account, request.known_as());
  if (done) execution_.execute(request, account, done_at, at);
  DealerSession* session = account.session();
  if (session != nullptr && is_market(request.kind)) session->tell_summary(done);
  if (flight.mishap.unknown_ticket) tell_unknown(account, answer.report, at);
}

// Everything that can be said of a number, about one that is nobody's. News of an opened or changed position
// are left out: they are what makes a position known.
void OrderDesk::tell_unknown(TradingAccount& account, OrderReport report, TimePoint at) {
  report.number = numbers_.take();
  report.result = result::succeeded;
  report.state = order_state::executed;
  for (const Answer event :
       {Answer::order, Answer::close, Answer::accepted, Answer::rejected, Answer::entry, Answer::update_entry,
        Answer::new_stops, Answer::update_stops, Answer::cancel_entry, Answer::cancel_stops})
    answers_.tell(account, {}, {event, report}, at);
  DealerSession* session = account.session();
  if (session == nullptr) return;
  OpenPosition position;
  position.ticket = report.number;
  position.account = report.account;
  position.symbol = report.symbol;
  session->tell_position(PositionNews::Change::closed, position);
  PendingOrder order;
  order.order = report.number;
  order.account = report.account;
  session->tell_order(true, order);
}

}  // namespace tutti
