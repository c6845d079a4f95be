#include "dealer/trading/answer_desk.h"

#include <limits>
#include <utility>

#include "sessions/contract/codes.h"

namespace tutti {
namespace {

using Answer = AnswerNews::Event;

}  // namespace

AnswerNews::Event answer_to(const TradeRequest& request, bool succeeded) {
  if (request.stage != TradeRequest::Stage::sent) return succeeded ? Answer::accepted : Answer::rejected;
  switch (request.kind) {
    case TradeKind::open:
      break;
    case TradeKind::close:
      return Answer::close;
    case TradeKind::entry:
      return Answer::entry;
    case TradeKind::update_entry:
      return Answer::update_entry;
    case TradeKind::set_stops:
      return Answer::new_stops;
    case TradeKind::cancel_entry:
      return Answer::cancel_entry;
    case TradeKind::cancel_stops:
      return Answer::cancel_stops;
  }
  return Answer::order;
}

OrderReport report_on(const TradeRequest& request, ResultCode result, double price, TimePoint at) {
  OrderReport report;
  report.number = request.known_as();
  report.account = request.account;
  report.result = result;
  report.request_kind = request.kind == TradeKind::close ? request_kind::close : request_kind::open;
  report.operation = request.operation;
  report.amount = request.amount;
  report.symbol = request.symbol;
  report.price = price;
  report.id = request.id;
  report.time = at;
  return report;
}

bool AnswerDesk::tell(TradingAccount& account, const Mishap& mishap, const AnswerNews& answer,
                      TimePoint now) {
  if (mishap.silent) return false;
  AccountListener* listener = account.listener();
  if (mishap.late.count() == 0 && listener == nullptr) return false;
  for (int copies = mishap.twice ? 2 : 1; copies > 0; --copies) {
    if (mishap.late.count() > 0)
      late_.emplace(now + mishap.late, Late{&account, answer});
    else
      listener->tell_answer(answer);
  }
  return true;
}

// News of an opened or changed position are left out: they are what makes a position known.
void AnswerDesk::tell_unknown(TradingAccount& account, OrderReport report, std::int64_t number,
                              TimePoint now) {
  report.number = number;
  if (report.id != 0) report.id = std::numeric_limits<RequestId>::max() - report.number;  // nobody's, too
  report.result = result::succeeded;
  report.state = order_state::executed;
  for (const Answer event :
       {Answer::order, Answer::close, Answer::accepted, Answer::rejected, Answer::entry, Answer::update_entry,
        Answer::new_stops, Answer::update_stops, Answer::cancel_entry, Answer::cancel_stops})
    tell(account, {}, {event, report}, now);
  AccountListener* listener = account.listener();
  if (listener == nullptr) return;
  OpenPosition position;
  position.ticket = report.number;
  position.account = report.account;
  position.symbol = report.symbol;
  listener->tell_position(PositionChange::closed, position);
  PendingOrder order;
  order.order = report.number;
  order.account = report.account;
  listener->tell_order(true, order);
}

std::optional<TimePoint> AnswerDesk::next_due() const {
  if (late_.empty()) return std::nullopt;
  return late_.begin()->first;
}

void AnswerDesk::run(TimePoint at) {
  while (!late_.empty() && late_.begin()->first <= at) {
    const Late late = std::move(late_.extract(late_.begin()).mapped());
    if (AccountListener* listener = late.account->listener()) listener->tell_answer(late.answer);
  }
}

}  // namespace tutti
