#include "dealer/trading/trigger_desk.h"

#include "sessions/contract/codes.h"

namespace tutti {
namespace {

using Answer = AnswerNews::Event;

// What a waiting order asks for once its price has come.
TradeRequest request_of(const PendingOrder& order, const TradingAccount::Position* position) {
  TradeRequest request;
  request.account = order.account;
  request.symbol = order.symbol;
  if (position != nullptr) {
    request.kind = TradeKind::close;
    request.reference = position->record.ticket;
    request.operation = position->record.side;
    request.amount = position->record.amount;
    return request;
  }
  request.kind = TradeKind::open;
  request.number = order.order;
  request.operation = buys(order.operation) ? operation::buy : operation::sell;
  request.amount = order.amount;
  request.stop_loss = order.stop_loss;
  request.take_profit = order.take_profit;
  return request;
}

Answer event_of(bool entry, ResultCode code) {
  if (code == result::succeeded) return entry ? Answer::entry_done : Answer::stops_done;
  if (!entry) return Answer::stops_no_money;
  return code == result::hedging_not_allowed ? Answer::entry_no_hedging : Answer::entry_no_money;
}

}  // namespace

TriggerDesk::TriggerDesk(const DealerConfig& config, const Market& market, FaultScript& faults,
                         TradeRecorder& recorder, AnswerDesk& answers)
    : market_(market),
      faults_(faults),
      recorder_(recorder),
      answers_(answers),
      rules_(config, market),
      execution_(market) {}

void TriggerDesk::run(std::vector<TradingAccount>& accounts, PriceWatch& watch, TimePoint at) {
  struct Due {
    TradingAccount* account = nullptr;
    std::int64_t order = 0;
  };
  for (std::size_t symbol = 0; symbol < market_.count(); ++symbol) {
    if (market_.symbol(symbol).trading != Trading::open || !watch.reached(symbol)) continue;
    // One order may bring or take another along, so that none is touched before all are found.
    std::vector<Due> due;
    watch.forget(symbol);
    for (TradingAccount& account : accounts)
      for (const PendingOrder& order : account.orders()) {
        if (order.symbol != market_.symbol(symbol).name) continue;
        const Trigger trigger = trigger_of(order);
        if (trigger.reached(market_.quote(symbol)))
          due.push_back({&account, order.order});
        else
          watch.expect(symbol, trigger);
      }
    for (const Due& one : due) {
      set_off(*one.account, one.order, at);
      // What could not be done yet is looked at again.
      if (const PendingOrder* left = one.account->find_order(one.order))
        watch.expect(symbol, trigger_of(*left));
    }
  }
}

void TriggerDesk::set_off(TradingAccount& account, std::int64_t number, TimePoint at) {
  const PendingOrder* found = account.find_order(number);
  if (found == nullptr) return;
  const PendingOrder order = *found;
  const bool entry = order.kind == OrderKind::entry;
  const TradingAccount::Position* position = entry ? nullptr : account.find_position(order.reference);
  // The order must close what it belongs to, and nothing else.
  const bool fits = position != nullptr && position->record.symbol == order.symbol &&
                    buys(position->record.side) != buys(order.operation);
  if (!entry && !fits) return;
  account.revalue();
  const TradeRequest request = request_of(order, position);
  const double price = rules_.price(request);
  ResultCode code = rules_.judge(account, request, price);
  const bool final = code == result::succeeded ||
                     (entry && (code == result::not_enough_money || code == result::hedging_not_allowed));
  if (!final) return;
  const Mishap mishap = faults_.strike(account.config().number, FaultPoint::trigger, at);
  if (mishap.reject != ResultCode::none) code = mishap.reject;
  recorder_.note_change(account);

  OrderReport report;
  report.number = number;
  report.account = account.config().number;
  report.result = code;
  report.operation = request.operation;
  report.amount = request.amount;
  report.symbol = request.symbol;
  report.price = price;
  report.time = at;
  if (entry) report.id = recorder_.history().placed_by(report.account, number);
  if (code == result::succeeded) recorder_.note_fill(request, number, account, report);
  const AnswerNews answer{event_of(entry, code), report};
  recorder_.history().answer(answer,
                             code == result::succeeded ? RequestState::executed : RequestState::cancelled);
  const bool told = answers_.tell(account, mishap, answer, at);
  recorder_.note_outcome({.time = at,
                          .account = report.account,
                          .kind = entry ? TradeKind::entry : TradeKind::set_stops,
                          .number = number,
                          .request = request::taken,
                          .result = code,
                          .set_off = true,
                          .told = told});
  carry_out(account, order, request, report, at);
  if (mishap.unknown_ticket) answers_.tell_unknown(account, report, recorder_.numbers().take(), at);
}

void TriggerDesk::carry_out(TradingAccount& account, const PendingOrder& order, const TradeRequest& request,
                            const OrderReport& report, TimePoint at) {
  const bool done = report.result == result::succeeded;
  TradeRequest other;
  if (!done) {
    other.kind = order.kind == OrderKind::entry ? TradeKind::cancel_entry : TradeKind::cancel_stops;
    other.reference = order.order;
    execution_.execute(other, account, 0.0, at);
  } else {
    TradeExecution::remove_row(account, order.order);
    execution_.execute(request, account, report.price, at);
    if (request.kind == TradeKind::open && (order.stop_loss > 0.0 || order.take_profit > 0.0)) {
      other.kind = TradeKind::set_stops;
      other.number = recorder_.numbers().take();
      other.reference = request.number;
      other.stop_loss = order.stop_loss;
      other.take_profit = order.take_profit;
      execution_.execute(other, account, 0.0, at);
    }
  }
  if (AccountListener* listener = account.listener()) listener->tell_summary(done);
}

}  // namespace tutti
