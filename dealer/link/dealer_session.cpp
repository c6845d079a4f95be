#include "dealer/link/dealer_session.h"

#include <memory>
#include <utility>

#include "sessions/contract/codes.h"

namespace tutti {
namespace {

void spoil(OpenPosition& position, double value) {
  position.amount = value;
  position.open_price = value;
  position.current_price = value;
  position.floating_pl = value;
}

}  // namespace

DealerSession::DealerSession(EventQueue& queue, const Market& market, FaultScript& faults)
    : queue_(queue), market_(market), faults_(faults) {}

DealerSession::~DealerSession() {
  queue_.forget(*this);
}

void DealerSession::set_sink(CLAPICLASS* sink) {
  if (sink == sink_) return;
  if (sink_ != nullptr) {
    queue_.forget(*this);
  }
  forget_waiting();
  sink_ = sink;
}

void DealerSession::connect(std::int32_t number) {
  link_ = Link::connecting;
  number_ = number;
  post(WaitingNews{waiting_mode::connecting});
}

void DealerSession::refuse() {
  link_ = Link::off;
  post(Signal::invalid_login);
  post(WaitingNews{waiting_mode::normal});
}

void DealerSession::open(TradingAccount* account) {
  link_ = Link::on;
  account_ = account;
  if (account_ != nullptr) account_->set_listener(this);
  forget_waiting();
  post(ConnectionNews{true});
  post(Signal::symbols_loaded);
  positions_waiting_ = sink_ != nullptr;
  orders_waiting_ = sink_ != nullptr;
  post(Signal::positions_loaded);
  post(Signal::orders_loaded);
  if (account_ != nullptr) tell_summary(true);
  post(WaitingNews{waiting_mode::normal});
  post(Signal::all_loaded);
}

void DealerSession::end(bool dropped) {
  const bool connecting = link_ == Link::connecting;
  queue_.forget_connection(*this);
  forget_waiting();
  link_ = Link::off;
  if (account_ != nullptr) account_->set_listener(nullptr);
  account_ = nullptr;
  post(ConnectionNews{false});
  if (dropped) post(Signal::session_closed);
  if (connecting) post(WaitingNews{waiting_mode::normal});
}

const Symbol& DealerSession::Shown::fill(const DealerSession& session, std::size_t index) {
  if (place != index) {
    const SymbolConfig& config = session.market_.symbol(index);
    record = {.name = config.name,
              .digits = config.digits,
              .contract_size = config.contract_size,
              .base = config.base,
              .profit = config.profit,
              .margin_rate = config.margin_rate};
    place = index;
  }
  const Quote& quote = session.market_.quote(index);
  record.id = session.account_ != nullptr ? session.account_->symbol_id(index) : 0;
  record.bid = quote.bid;
  record.ask = quote.ask;
  record.high = quote.high;
  record.low = quote.low;
  record.quote_time = quote.time;
  return record;
}

void DealerSession::forget_waiting() {
  pass_ = {market_.steps(), market_.steps()};
  prices_waiting_ = false;
  summary_waiting_ = false;
  time_waiting_ = false;
  positions_waiting_ = false;
  orders_waiting_ = false;
  if (account_ == nullptr) return;
  for (TradingAccount::Position& position : account_->positions())
    position.waiting = false;
}

void DealerSession::post(News news) {
  if (sink_ != nullptr) queue_.push(*this, std::move(news));
}

void DealerSession::tell_prices() {
  if (sink_ == nullptr || prices_waiting_) return;
  prices_waiting_ = true;
  post(PricesNews{});
}

void DealerSession::tell_floating() {
  if (sink_ == nullptr || account_ == nullptr) return;
  for (TradingAccount::Position& position : account_->positions()) {
    if (position.moved && !position.waiting) {
      position.waiting = true;
      if (const auto value = faults_.garbage(number_, FaultPoint::position)) {
        SpoiltFloating spoilt{position.record};
        spoil(spoilt.position, *value);
        post(std::make_unique<SpoiltFloating>(std::move(spoilt)));
      }
      post(FloatingNews{position.record.ticket});
    }
    position.moved = false;
  }
}

void DealerSession::tell_summary(bool anew) {
  if (sink_ == nullptr || (summary_waiting_ && !anew)) return;
  summary_waiting_ = true;
  if (const auto value = faults_.garbage(number_, FaultPoint::summary))
    post(std::make_unique<SpoiltSummary>(
        SpoiltSummary{{*value, *value, *value, *value, *value, *value, *value}}));
  post(SummaryNews{});
}

void DealerSession::tell_time(TimePoint time) {
  time_ = time;
  if (sink_ == nullptr || time_waiting_) return;
  time_waiting_ = true;
  post(TimeNews{});
}

void DealerSession::tell_position(PositionChange change, const OpenPosition& position) {
  if (sink_ == nullptr || positions_waiting_) return;
  if (const auto value = faults_.garbage(number_, FaultPoint::position);
      value && change != PositionChange::closed) {
    PositionNews spoilt{change, position};
    spoil(spoilt.position, *value);
    post(std::make_unique<PositionNews>(std::move(spoilt)));
  }
  post(std::make_unique<PositionNews>(PositionNews{change, position}));
}

void DealerSession::tell_order(bool gone, const PendingOrder& order) {
  if (!orders_waiting_) post(std::make_unique<OrderNews>(OrderNews{gone, order}));
}

void DealerSession::tell_requote(const Requote& requote) {
  post(std::make_unique<Requote>(requote));
}

void DealerSession::tell_answer(const AnswerNews& answer) {
  post(std::make_unique<AnswerNews>(answer));
}

void DealerSession::tell_request(const RequestTold& told) {
  post(std::make_unique<RequestTold>(told));
}

void DealerSession::tell_fills(FillsTold told) {
  post(std::make_unique<FillsTold>(std::move(told)));
}

void DealerSession::deliver(const News& news) {
  if (sink_ != nullptr) std::visit([&](const auto& one) { pass(*sink_, one); }, news);
}

bool DealerSession::deliver_price() {
  using Part = PricePass::Part;
  if (sink_ == nullptr) return false;
  if (pass_.place == 0 && pass_.part == Part::spoilt) pass_.until = market_.steps();
  // All is noted before a handler is called: it may raise an error, or destroy this session.
  while (pass_.place < market_.count()) {
    const std::size_t place = pass_.place;
    const Market::Moved moved = market_.moved(place);
    const bool price = moved.price > pass_.before && carries(place);
    switch (pass_.part) {
      case Part::spoilt:
        pass_.part = Part::price;
        if (!price) break;
        if (const auto value = faults_.garbage(number_, FaultPoint::price)) {
          Symbol spoilt = symbol(place);
          spoilt.bid = spoilt.ask = spoilt.high = spoilt.low = *value;
          sink_->SymbolPricesChanged(spoilt);
          return true;
        }
        break;
      case Part::price:
        pass_.part = Part::high_low;
        if (!price) break;
        sink_->SymbolPricesChanged(told_.fill(*this, place));
        return true;
      case Part::high_low:
        pass_.part = Part::spoilt;
        ++pass_.place;
        if (!price || moved.high_low <= pass_.before) break;
        sink_->SymbolHighLowChanged(told_.fill(*this, place));
        return true;
    }
  }
  pass_ = {pass_.until, pass_.until};
  prices_waiting_ = false;
  if (market_.last_move() > pass_.before) tell_prices();
  return false;
}

// The handlers come last below, and nothing of the session is touched after them: they may destroy it.

void DealerSession::pass(CLAPICLASS& sink, Signal signal) {
  switch (signal) {
    case Signal::all_loaded:
      sink.AllDataAreLoaded();
      break;
    case Signal::invalid_login:
      sink.InvalidUsernamePassword();
      break;
    case Signal::orders_loaded:
      orders_waiting_ = false;
      sink.PendingOrdersLoaded();
      break;
    case Signal::positions_loaded:
      positions_waiting_ = false;
      sink.OpenPositionsLoaded();
      break;
    case Signal::session_closed:
      sink.SessionDisconnected();
      break;
    case Signal::symbols_loaded:
      sink.SymbolsLoaded();
      break;
  }
}

void DealerSession::pass(CLAPICLASS& sink, WaitingNews news) {
  sink.WaitingMode(news.mode);
}

void DealerSession::pass(CLAPICLASS& sink, ConnectionNews news) {
  sink.ConnectionState(news.connected);
}

void DealerSession::pass(CLAPICLASS& sink, FloatingNews news) {
  TradingAccount::Position* position = account_->find_position(news.ticket);
  if (position == nullptr) return;
  position->waiting = false;
  sink.PosFloatingPLChanged(position->record);
}

void DealerSession::pass(CLAPICLASS& sink, SummaryNews) {
  summary_waiting_ = false;
  sink.SummariesChanged(account_->summary());
}

void DealerSession::pass(CLAPICLASS& sink, TimeNews) {
  time_waiting_ = false;
  sink.ServerTime(time_);
}

void DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<PositionNews>& news) {
  switch (news->change) {
    case PositionChange::opened:
      sink.NewOpenPosition(news->position);
      break;
    case PositionChange::changed:
      sink.UpdateOpenPosition(news->position);
      break;
    case PositionChange::closed:
      sink.DeleteOpenPosition(news->position);
      break;
  }
}

void DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<OrderNews>& news) {
  if (news->gone)
    sink.DeletePendingOrder(news->order);
  else
    sink.NewPendingOrder(news->order);
}

void DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<AnswerNews>& news) {
  const OrderReport& report = news->report;
  switch (news->event) {
    case AnswerNews::Event::order:
      sink.NewOrderResult(report);
      break;
    case AnswerNews::Event::close:
      sink.CloseOrderResult(report);
      break;
    case AnswerNews::Event::accepted:
      sink.MarketOrderAccepted(report);
      break;
    case AnswerNews::Event::rejected:
      sink.MarketOrderRejected(report);
      break;
    case AnswerNews::Event::entry:
      sink.NewLimitOrderResult(report.number, report.result, report.id);
      break;
    case AnswerNews::Event::update_entry:
      sink.UpdateLimitOrderResult(report.number, report.result, report.id);
      break;
    case AnswerNews::Event::new_stops:
      sink.NewSLTPOrderResult(report.number, report.result, report.id);
      break;
    case AnswerNews::Event::update_stops:
      sink.UpdateSLTPOrderResult(report.number, report.result, report.id);
      break;
    case AnswerNews::Event::cancel_entry:
      sink.DeleteLimitOrderResult(report.number, report.result, report.id);
      break;
    case AnswerNews::Event::cancel_stops:
      sink.DeleteSLTPOrderResult(report.number, report.result, report.id);
      break;
    case AnswerNews::Event::entry_done:
      sink.LimitOrderAccepted(report);
      break;
    case AnswerNews::Event::entry_no_money:
      sink.LimitOrderCanceledNoMoney(report.number, report.account);
      break;
    case AnswerNews::Event::entry_no_hedging:
      sink.LimitOrderCanceledCannotHdg(report.number, report.account);
      break;
    case AnswerNews::Event::stops_done:
      sink.SlTpOrderAccepted(report.number);
      break;
    case AnswerNews::Event::stops_no_money:
      sink.SlTpOrderCanceledNoMoney(report.number);
      break;
  }
}

void DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<Requote>& news) {
  sink.OrderTimer(*news);
}

void DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<RequestTold>& news) {
  sink.RequestTold(news->id, news->state, news->lots);
}

void DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<FillsTold>& news) {
  sink.ExecutionsTold(news->fills, news->complete);
}

void DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<SpoiltFloating>& news) {
  sink.PosFloatingPLChanged(news->position);
}

void DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<SpoiltSummary>& news) {
  sink.SummariesChanged(news->summary);
}

}  // namespace tutti
