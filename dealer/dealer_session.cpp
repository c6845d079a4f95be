#include "dealer/dealer_session.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "sessions/contract/codes.h"

namespace tutti {

DealerSession::DealerSession(EventQueue& queue, const Market& market) : queue_(queue), market_(market) {}

DealerSession::~DealerSession() {
  queue_.forget(*this);
}

void DealerSession::set_sink(CLAPICLASS* sink) {
  if (sink == sink_) return;
  if (sink_ != nullptr) {
    queue_.forget(*this);
    forget_waiting();
  }
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
  load_symbols();
  if (account_ != nullptr) account_->set_session(this);
  forget_waiting();
  post(ConnectionNews{true});
  post(Signal::symbols_loaded);
  list_waiting_ = sink_ != nullptr;
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
  if (account_ != nullptr) account_->set_session(nullptr);
  account_ = nullptr;
  post(ConnectionNews{false});
  if (dropped) post(Signal::session_closed);
  if (connecting) post(WaitingNews{waiting_mode::normal});
}

void DealerSession::load_symbols() {
  symbols_.clear();
  for (std::size_t s = 0; s < market_.count(); ++s) {
    const SymbolConfig& config = market_.symbol(s);
    const Quote& quote = market_.quote(s);
    symbols_.push_back({account_ != nullptr ? account_->symbol_id(s) : 0, config.name, config.digits,
                        config.contract_size, quote.bid, quote.ask, quote.high, quote.low, quote.time});
  }
  price_waiting_.assign(market_.count(), false);
  high_low_waiting_.assign(market_.count(), false);
}

void DealerSession::forget_waiting() {
  std::fill(price_waiting_.begin(), price_waiting_.end(), false);
  std::fill(high_low_waiting_.begin(), high_low_waiting_.end(), false);
  summary_waiting_ = false;
  time_waiting_ = false;
  list_waiting_ = false;
  if (account_ == nullptr) return;
  for (TradingAccount::Position& position : account_->positions())
    position.waiting = false;
}

void DealerSession::post(News news) {
  if (sink_ != nullptr) queue_.push(*this, std::move(news));
}

void DealerSession::tell_price(const Market::Move& move) {
  const Quote& quote = market_.quote(move.symbol);
  Symbol& symbol = symbols_[move.symbol];
  symbol.bid = quote.bid;
  symbol.ask = quote.ask;
  symbol.high = quote.high;
  symbol.low = quote.low;
  symbol.quote_time = quote.time;
  if (sink_ == nullptr || symbol.id == 0) return;
  if (!price_waiting_[move.symbol]) {
    price_waiting_[move.symbol] = true;
    post(PriceNews{move.symbol});
  }
  if (move.high_low && !high_low_waiting_[move.symbol]) {
    high_low_waiting_[move.symbol] = true;
    post(HighLowNews{move.symbol});
  }
}

void DealerSession::tell_floating() {
  if (sink_ == nullptr || account_ == nullptr) return;
  for (TradingAccount::Position& position : account_->positions()) {
    if (position.moved && !position.waiting) {
      position.waiting = true;
      post(FloatingNews{position.record.ticket});
    }
    position.moved = false;
  }
}

void DealerSession::tell_summary(bool anew) {
  if (sink_ == nullptr || (summary_waiting_ && !anew)) return;
  summary_waiting_ = true;
  post(SummaryNews{});
}

void DealerSession::tell_time(TimePoint time) {
  time_ = time;
  if (sink_ == nullptr || time_waiting_) return;
  time_waiting_ = true;
  post(TimeNews{});
}

void DealerSession::tell_position(PositionNews::Change change, const OpenPosition& position) {
  if (sink_ == nullptr || list_waiting_) return;
  post(std::make_unique<PositionNews>(PositionNews{change, position}));
}

void DealerSession::tell_report(bool close, const OrderReport& report) {
  if (sink_ != nullptr) post(std::make_unique<ReportNews>(ReportNews{close, report}));
}

bool DealerSession::deliver(const News& news) {
  if (sink_ == nullptr) return false;
  return std::visit([&](const auto& one) { return pass(*sink_, one); }, news);
}

// The handlers come last below, and nothing of the session is touched after them: they may destroy it.

bool DealerSession::pass(CLAPICLASS& sink, Signal signal) {
  switch (signal) {
    case Signal::all_loaded:
      sink.AllDataAreLoaded();
      break;
    case Signal::invalid_login:
      sink.InvalidUsernamePassword();
      break;
    case Signal::orders_loaded:
      sink.PendingOrdersLoaded();
      break;
    case Signal::positions_loaded:
      list_waiting_ = false;
      sink.OpenPositionsLoaded();
      break;
    case Signal::session_closed:
      sink.SessionDisconnected();
      break;
    case Signal::symbols_loaded:
      sink.SymbolsLoaded();
      break;
  }
  return true;
}

bool DealerSession::pass(CLAPICLASS& sink, WaitingNews news) {
  sink.WaitingMode(news.mode);
  return true;
}

bool DealerSession::pass(CLAPICLASS& sink, ConnectionNews news) {
  sink.ConnectionState(news.connected);
  return true;
}

bool DealerSession::pass(CLAPICLASS& sink, PriceNews news) {
  price_waiting_[news.symbol] = false;
  sink.SymbolPricesChanged(symbols_[news.symbol]);
  return true;
}

bool DealerSession::pass(CLAPICLASS& sink, HighLowNews news) {
  high_low_waiting_[news.symbol] = false;
  sink.SymbolHighLowChanged(symbols_[news.symbol]);
  return true;
}

bool DealerSession::pass(CLAPICLASS& sink, FloatingNews news) {
  TradingAccount::Position* position = account_->find_position(news.ticket);
  if (position == nullptr) return false;
  position->waiting = false;
  sink.PosFloatingPLChanged(position->record);
  return true;
}

bool DealerSession::pass(CLAPICLASS& sink, SummaryNews) {
  summary_waiting_ = false;
  sink.SummariesChanged(account_->summary());
  return true;
}

bool DealerSession::pass(CLAPICLASS& sink, TimeNews) {
  time_waiting_ = false;
  sink.ServerTime(time_);
  return true;
}

bool DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<PositionNews>& news) {
  switch (news->change) {
    case PositionNews::Change::opened:
      sink.NewOpenPosition(news->position);
      break;
    case PositionNews::Change::changed:
      sink.UpdateOpenPosition(news->position);
      break;
    case PositionNews::Change::closed:
      sink.DeleteOpenPosition(news->position);
      break;
  }
  return true;
}

bool DealerSession::pass(CLAPICLASS& sink, const std::unique_ptr<ReportNews>& news) {
  if (news->close)
    sink.CloseOrderResult(news->report);
  else
    sink.NewOrderResult(news->report);
  return true;
}

}  // namespace tutti
