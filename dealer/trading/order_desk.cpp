#include "dealer/trading/order_desk.h"

#include <algorithm>
#include <utility>

#include "sessions/contract/codes.h"

namespace tutti {
namespace {

using Stage = TradeRequest::Stage;
using Answer = AnswerNews::Event;

bool is_market(TradeKind kind) {
  return kind == TradeKind::open || kind == TradeKind::close;
}

// The instruction, and what it says by naming a position or order.
TradeRequest make_request(const TradingAccount& account, const Market& market, const Instruction& wanted) {
  TradeRequest request;
  request.account = account.config().number;
  request.id = wanted.id;
  request.kind = wanted.kind;
  request.reference = wanted.reference;
  request.operation = wanted.side;
  if (wanted.symbol) request.symbol = market.symbol(*wanted.symbol).name;
  request.amount = wanted.amount;
  request.price = wanted.price;
  request.stop_loss = wanted.stops.has_stop_loss ? wanted.stops.stop_loss : 0.0;
  request.take_profit = wanted.stops.has_take_profit ? wanted.stops.take_profit : 0.0;
  if (wanted.kind == TradeKind::open) return request;
  if (wanted.kind == TradeKind::entry) {
    if (wanted.entry == EntryKind::stop)
      request.operation = wanted.side == operation::buy ? operation::buy_stop : operation::sell_stop;
    return request;
  }
  if (wanted.kind == TradeKind::close || wanted.kind == TradeKind::set_stops) {
    const TradingAccount::Position* position = account.find_position(wanted.reference);
    if (position == nullptr) return request;
    request.operation = position->record.side;
    request.symbol = position->record.symbol;
    if (wanted.kind == TradeKind::set_stops) request.amount = position->record.amount;
  } else if (const PendingOrder* order = account.find_order(wanted.reference)) {
    request.operation = order->operation;
    request.symbol = order->symbol;
    request.amount = order->amount;
  }
  return request;
}

FaultPoint point_of(TradeKind kind) {
  switch (kind) {
    case TradeKind::open:
      break;
    case TradeKind::close:
      return FaultPoint::close;
    case TradeKind::entry:
      return FaultPoint::entry;
    case TradeKind::update_entry:
    case TradeKind::set_stops:
      return FaultPoint::update;
    case TradeKind::cancel_entry:
    case TradeKind::cancel_stops:
      return FaultPoint::cancel;
  }
  return FaultPoint::open;
}

}  // namespace

OrderDesk::OrderDesk(const DealerConfig& config, const Market& market, FaultScript& faults,
                     TradeRecorder& recorder, AnswerDesk& answers)
    : config_(config),
      market_(market),
      faults_(faults),
      recorder_(recorder),
      answers_(answers),
      rules_(config, market),
      execution_(market) {}

RequestCode OrderDesk::send(TradingAccount& account, const Instruction& wanted, TimePoint now) {
  TradeRequest request = make_request(account, market_, wanted);
  RequestCode code = rules_.admit(account, wanted);
  const Mishap mishap =
      shut_ ? Mishap{} : faults_.strike(account.config().number, point_of(wanted.kind), now);
  if (mishap.refuse != RequestCode::none) code = mishap.refuse;
  if (shut_) code = request::silent;
  if (code != request::taken) {
    log(request, {.request = code}, now);
    return code;
  }
  request.number = recorder_.numbers().take();
  recorder_.note_change(account);
  if (mishap.swallow) {
    recorder_.history().forget(request.account, request.id);
    log(request, {.request = code}, now);
    return code;
  }
  const auto wait = recorder_.numbers().draw_latency();
  flights_.emplace(
      now + wait + mishap.delay,
      Flight{.account = &account, .request = std::move(request), .mishap = mishap, .latency = wait});
  return code;
}

void OrderDesk::log(const TradeRequest& request, Outcome outcome, TimePoint at) {
  outcome.time = at;
  outcome.account = request.account;
  outcome.kind = request.kind;
  if (outcome.number == 0) outcome.number = request.known_as();
  outcome.dealt = request.stage != Stage::sent;
  recorder_.note_outcome(outcome);
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
  if (flights_.empty()) return std::nullopt;
  return flights_.begin()->first;
}

void OrderDesk::run(TimePoint at) {
  while (!flights_.empty() && flights_.begin()->first <= at) {
    Flight flight = std::move(flights_.extract(flights_.begin()).mapped());
    if (const auto later = next_price(flight); later && *later > at) {
      flights_.emplace(*later, std::move(flight));
      continue;
    }
    flight.account->revalue();
    recorder_.note_change(*flight.account);
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
        finish(flight, ResultCode::none, at);
        break;
    }
  }
}

std::optional<TimePoint> OrderDesk::next_price(const Flight& flight) const {
  const bool waits =
      flight.resumed && !config_.ticks.empty() && rules_.lacks_price(*flight.account, flight.request);
  return waits ? market_.next_due() : std::nullopt;
}

double OrderDesk::price(const TradeRequest& request) const {
  return request.price > 0.0 ? request.price : rules_.price(request);
}

ResultCode OrderDesk::verdict(const Flight& flight) const {
  const auto configured = TradeRules::configured_result(*flight.account, flight.request.kind);
  if (configured != ResultCode::none) return configured;
  return rules_.judge(*flight.account, flight.request, price(flight.request));
}

void OrderDesk::arrive(Flight flight, TimePoint at) {
  const TradeRequest& request = flight.request;
  if (flight.mishap.reject != ResultCode::none) return finish(flight, flight.mishap.reject, at);
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
  AnswerNews answer{answer_to(request, true), report_on(request, result::succeeded, request.price, at)};
  answer.report.state = order_state::pending;
  answer.report.left = request.amount;
  recorder_.history().answer(answer, RequestState::waiting);
  answers_.tell(*flight.account, flight.mishap, answer, at);
  request.stage = Stage::dealing;
  TradeExecution::add_row(*flight.account, TradeExecution::row_of(request, at));
  flights_.emplace(at + wait, std::move(flight));
}

// A `result` of 0 is a rejection without a reason of the server's own.
void OrderDesk::finish(const Flight& flight, ResultCode result, TimePoint at) {
  const TradeRequest& request = flight.request;
  TradingAccount& account = *flight.account;
  const bool done = result == result::succeeded;
  const double done_at = is_market(request.kind) ? price(request) : request.price;
  AnswerNews answer{answer_to(request, done), report_on(request, result, done_at, at)};
  if (done) answer.report.state = order_state::executed;
  // Of stops the client is told the SL/TP order, the one that is there or the one that comes.
  const PendingOrder* stops =
      request.kind == TradeKind::set_stops ? account.stops_of(request.reference) : nullptr;
  if (request.kind == TradeKind::set_stops)
    answer.report.number = stops != nullptr ? stops->order : request.number;
  if (stops != nullptr) answer.event = Answer::update_stops;
  if (done && is_market(request.kind)) recorder_.note_fill(request, request.number, account, answer.report);
  if (done && request.kind == TradeKind::cancel_entry)
    recorder_.history().cancel_working(request.account, request.reference);
  recorder_.history().answer(answer, !done                              ? RequestState::refused
                                     : request.kind == TradeKind::entry ? RequestState::working
                                                                        : RequestState::executed);
  const bool told = answers_.tell(account, flight.mishap, answer, at);
  log(request,
      {.number = answer.report.number,
       .request = request::taken,
       .result = result,
       .updated = stops != nullptr,
       .expired = flight.requoted,
       .told = told,
       .resumed = flight.resumed},
      at);
  if (request.stage == Stage::dealing) TradeExecution::remove_row(account, request.known_as());
  if (done) execution_.execute(request, account, done_at, at);
  AccountListener* listener = account.listener();
  if (listener != nullptr && is_market(request.kind)) listener->tell_summary(done);
  if (flight.mishap.unknown_ticket)
    answers_.tell_unknown(account, answer.report, recorder_.numbers().take(), at);
}

}  // namespace tutti
