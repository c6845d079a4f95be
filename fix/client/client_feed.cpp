#include <algorithm>
#include <utility>

#include "fix/client/client_feed.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

// What is still worth telling of a line that was left.
bool is_answer(const LineNews& news) {
  if (std::holds_alternative<line::Unsent>(news)) return true;
  const auto* wire = std::get_if<WireNews>(&news);
  if (wire == nullptr) return false;
  return std::holds_alternative<news::Report>(*wire) || std::holds_alternative<news::Refused>(*wire) ||
         std::holds_alternative<news::Told>(*wire);
}

void call(CLAPICLASS& sink, const news::Report& news) {
  const OrderReport& report = news.report;
  switch (news.answer) {
    case Answer::order:
      return sink.NewOrderResult(report);
    case Answer::close:
      return sink.CloseOrderResult(report);
    case Answer::accepted:
      return sink.MarketOrderAccepted(report);
    case Answer::rejected:
      return sink.MarketOrderRejected(report);
    case Answer::entry:
      return sink.NewLimitOrderResult(report.number, report.result, report.id);
    case Answer::update_entry:
      return sink.UpdateLimitOrderResult(report.number, report.result, report.id);
    case Answer::new_stops:
      return sink.NewSLTPOrderResult(report.number, report.result, report.id);
    case Answer::update_stops:
      return sink.UpdateSLTPOrderResult(report.number, report.result, report.id);
    case Answer::cancel_entry:
      return sink.DeleteLimitOrderResult(report.number, report.result, report.id);
    case Answer::cancel_stops:
      return sink.DeleteSLTPOrderResult(report.number, report.result, report.id);
    case Answer::entry_done:
      return sink.LimitOrderAccepted(report);
    case Answer::entry_no_money:
      return sink.LimitOrderCanceledNoMoney(report.number, report.account);
    case Answer::entry_no_hedging:
      return sink.LimitOrderCanceledCannotHdg(report.number, report.account);
    case Answer::stops_done:
      return sink.SlTpOrderAccepted(report.number);
    case Answer::stops_no_money:
      return sink.SlTpOrderCanceledNoMoney(report.number);
    case Answer::cancelled:
      break;
  }
}

}  // namespace

ClientFeed::ClientFeed(FixClient& owner, ClientDesk& desk) : owner_(owner), desk_(desk) {}

void ClientFeed::set_sink(CLAPICLASS* sink) {
  if (sink == sink_) return;
  desk_.forget(owner_, true);
  price_waits_.assign(price_waits_.size(), false);
  high_low_waits_.assign(high_low_waits_.size(), false);
  summary_waits_ = time_waits_ = positions_wait_ = orders_wait_ = false;
  sink_ = sink;
}

void ClientFeed::begin() {
  link_ = Link::connecting;
  post([](CLAPICLASS& sink) { sink.WaitingMode(waiting_mode::connecting); }, true);
}

void ClientFeed::log_out() {
  const bool connecting = link_ == Link::connecting;
  end_link();
  post([](CLAPICLASS& sink) { sink.ConnectionState(false); }, true);
  if (connecting) post([](CLAPICLASS& sink) { sink.WaitingMode(waiting_mode::normal); }, true);
}

std::chrono::milliseconds ClientFeed::summary_age() const {
  return desk_.clock().elapsed() - summary_at_;
}

void ClientFeed::post(std::function<void(CLAPICLASS&)> call, bool outlives) {
  if (sink_ == nullptr) return;
  desk_.post(
      {.client = &owner_, .kind = ClientEvent::Kind::call, .outlives = outlives, .call = std::move(call)});
}

void ClientFeed::post_moved(ClientEvent::Kind kind, std::int64_t which) {
  if (sink_ != nullptr) desk_.post({.client = &owner_, .kind = kind, .which = which});
}

// The handlers come last, and nothing of the client is touched after them: they may destroy it, or log it out
// while they still read their record.
void ClientFeed::deliver(const ClientEvent& event) {
  if (sink_ == nullptr) return;
  const auto place = static_cast<std::size_t>(event.which);
  switch (event.kind) {
    case ClientEvent::Kind::call:
      return event.call(*sink_);
    case ClientEvent::Kind::price:
    case ClientEvent::Kind::high_low: {
      const bool price = event.kind == ClientEvent::Kind::price;
      (price ? price_waits_ : high_low_waits_)[place] = false;
      const Symbol told = cache_.symbols()[place].symbol;
      return price ? sink_->SymbolPricesChanged(told) : sink_->SymbolHighLowChanged(told);
    }
    case ClientEvent::Kind::floating:
      if (AccountCache::Position* position = cache_.find_position(event.which)) {
        position->waiting = false;
        const OpenPosition told = position->record;
        return sink_->PosFloatingPLChanged(told);
      }
      return;
    case ClientEvent::Kind::summary: {
      summary_waits_ = false;
      const AccountSummary told = cache_.summary().summary;
      return sink_->SummariesChanged(told);
    }
    case ClientEvent::Kind::time:
      time_waits_ = false;
      return sink_->ServerTime(server_time_);
  }
}

void ClientFeed::take(std::uint64_t line, LineNews& news) {
  if (line != line_ && !is_answer(news)) return;
  std::visit([&](auto& each) { take(each); }, news);
  if (line != line_ || link_ != Link::on || desk_.profile().logon.own_fields) return;
  const auto* wire = std::get_if<WireNews>(&news);
  const auto* report = wire != nullptr ? std::get_if<news::Report>(wire) : nullptr;
  if (report != nullptr) follow_orders(*report);
}

void ClientFeed::take(WireNews& news) {
  std::visit([&](auto& each) { take(each); }, news);
}

void ClientFeed::end_link() {
  link_ = Link::off;
  line_ = 0;
  desk_.forget(owner_, false);
  cache_.clear();
  requotes_.clear();
  fills_.clear();
  price_waits_.clear();
  high_low_waits_.clear();
  summary_waits_ = time_waits_ = positions_wait_ = orders_wait_ = false;
}

void ClientFeed::take(line::Ready& ready) {
  link_ = Link::on;
  cache_.fill(std::move(ready));
  price_waits_.assign(cache_.symbols().size(), false);
  high_low_waits_ = price_waits_;
  positions_wait_ = orders_wait_ = sink_ != nullptr;
  post([](CLAPICLASS& sink) { sink.ConnectionState(true); }, true);
  post([](CLAPICLASS& sink) { sink.SymbolsLoaded(); });
  post([this](CLAPICLASS& sink) {
    positions_wait_ = false;
    sink.OpenPositionsLoaded();
  });
  post([this](CLAPICLASS& sink) {
    orders_wait_ = false;
    sink.PendingOrdersLoaded();
  });
  summary_at_ = desk_.clock().elapsed();
  if (cache_.summary().owned) take(cache_.summary());
  post([](CLAPICLASS& sink) { sink.WaitingMode(waiting_mode::normal); }, true);
  post([](CLAPICLASS& sink) { sink.AllDataAreLoaded(); });
}

void ClientFeed::take(const line::Refused& refused) {
  desk_.remark(owner_, "The login was refused: " + refused.why);
  end_link();
  post([](CLAPICLASS& sink) { sink.InvalidUsernamePassword(); }, true);
  post([](CLAPICLASS& sink) { sink.WaitingMode(waiting_mode::normal); }, true);
}

void ClientFeed::take(const line::Ended& ended) {
  if (link_ == Link::off) return;
  const bool connecting = link_ == Link::connecting;
  desk_.remark(owner_, ended.why);
  end_link();
  post([](CLAPICLASS& sink) { sink.ConnectionState(false); }, true);
  if (connecting)
    post([](CLAPICLASS& sink) { sink.WaitingMode(waiting_mode::normal); }, true);
  else
    post([](CLAPICLASS& sink) { sink.SessionDisconnected(); }, true);
}

void ClientFeed::take(const line::Unsent& unsent) {
  post([id = unsent.id](CLAPICLASS& sink) { sink.RequestUnsent(id); }, true);
}

void ClientFeed::take(const line::Silence& silence) {
  const ConnectionMode mode = silence.silent ? waiting_mode::waiting : waiting_mode::normal;
  post([mode](CLAPICLASS& sink) { sink.WaitingMode(mode); });
}

void ClientFeed::take(const line::Remark& remark) {
  desk_.remark(owner_, remark.text);
}

void ClientFeed::take(const news::Price& price) {
  const auto moved = cache_.set_price(price);
  if (!moved || sink_ == nullptr) return;
  const auto which = static_cast<std::int64_t>(moved->place);
  if (!price_waits_[moved->place]) {
    price_waits_[moved->place] = true;
    post_moved(ClientEvent::Kind::price, which);
  }
  if (moved->high_low && !high_low_waits_[moved->place]) {
    high_low_waits_[moved->place] = true;
    post_moved(ClientEvent::Kind::high_low, which);
  }
}

void ClientFeed::settle_prices() {
  if (link_ != Link::on) return;
  cache_.revalue([&](AccountCache::Position& position) {
    if (position.waiting || sink_ == nullptr) return;
    position.waiting = true;
    post_moved(ClientEvent::Kind::floating, position.record.ticket);
  });
}

void ClientFeed::take(news::Position& news) {
  const AccountCache::Change change = cache_.set_position(news.position, news.gone);
  if (change == AccountCache::Change::none || positions_wait_) return;
  post([change, record = news.position](CLAPICLASS& sink) {
    if (change == AccountCache::Change::opened) return sink.NewOpenPosition(record);
    if (change == AccountCache::Change::changed) return sink.UpdateOpenPosition(record);
    sink.DeleteOpenPosition(record);
  });
}

void ClientFeed::take(news::Order& news) {
  const AccountCache::Change change = cache_.set_order(news);
  if (change == AccountCache::Change::closed) requotes_.end(news.order.order);
  if (change == AccountCache::Change::none || orders_wait_) return;
  post([change, record = news.order](CLAPICLASS& sink) {
    if (change == AccountCache::Change::closed) return sink.DeletePendingOrder(record);
    sink.NewPendingOrder(record);
  });
}

void ClientFeed::take(const news::Report& report) {
  if (report.answer == Answer::accepted || report.answer == Answer::rejected)
    requotes_.end(report.report.number);
  if (report.answer == Answer::update_entry && report.report.result == result::succeeded)
    cache_.note_accepted(report.report.number, report.id_text);
  post([report](CLAPICLASS& sink) { call(sink, report); }, true);
}

void ClientFeed::follow_orders(const news::Report& news) {
  const OrderReport& report = news.report;
  const bool done = report.result == result::succeeded;
  news::Order row;
  PendingOrder& order = row.order;
  if (const AccountCache::Order* known = cache_.find_order(report.number)) order = known->record;
  order.order = report.number;
  order.account = report.account;
  row.id_text = news.id_text;
  switch (news.answer) {
    case Answer::order:
    case Answer::close:
      row.gone = !done || report.state != order_state::pending;
      order.kind = news.answer == Answer::close ? OrderKind::close : OrderKind::open;
      break;
    case Answer::entry:
      if (!done) return;
      order.kind = OrderKind::entry;
      break;
    case Answer::update_entry:
      if (!done) return;
      break;
    case Answer::cancel_entry:
      if (!done) return;
      row.gone = true;
      break;
    default:
      row.gone = report.left <= 0.0;
  }
  if (!report.symbol.empty()) {
    order.symbol = report.symbol;
    order.operation = report.operation;
    order.amount = report.left > 0.0 ? report.left : report.amount;
    order.time = report.time;
    if (report.state != order_state::executed && report.price > 0.0) order.price = report.price;
  }
  take(row);
}

void ClientFeed::take(const news::Refused& refused) {
  if (refused.id == 0)
    return desk_.remark(owner_, "The server has refused something that it does not name: " + refused.text);
  // The server knows the id as another request's: that says nothing of this one.
  if (refused.code == request::other_request) {
    desk_.remark(owner_, "The server has another request under the same id: " + refused.text);
    return desk_.send(line_, ask::Request{refused.id, {}, cache_.summary().era});
  }
  post([refused](CLAPICLASS& sink) { sink.RequestRefused(refused.id, refused.code, refused.text); }, true);
}

void ClientFeed::take(const news::Told& told) {
  post([told](CLAPICLASS& sink) { sink.RequestTold(told.id, told.state, told.lots); }, true);
}

void ClientFeed::take(news::Fills& fills) {
  std::move(fills.fills.begin(), fills.fills.end(), std::back_inserter(fills_));
  if (!fills.last) return;
  post([told = std::exchange(fills_, {}), complete = fills.complete](CLAPICLASS& sink) {
    sink.ExecutionsTold(told, complete);
  });
}

void ClientFeed::take(const news::Summary& summary) {
  if (&summary != &cache_.summary()) cache_.set_summary(summary);
  summary_at_ = desk_.clock().elapsed();
  if (std::exchange(summary_waits_, sink_ != nullptr)) return;
  post_moved(ClientEvent::Kind::summary, 0);
}

void ClientFeed::take(const news::Offer& offer) {
  if (!requotes_.offer(offer.requote, desk_.clock().elapsed())) return;
  post([requote = offer.requote](CLAPICLASS& sink) { sink.OrderTimer(requote); });
}

void ClientFeed::tick() {
  while (const auto requote = requotes_.tick(desk_.clock().elapsed()))
    post([told = *requote](CLAPICLASS& sink) { sink.OrderTimer(told); });
}

void ClientFeed::take(const news::Time& time) {
  server_time_ = time.time;
  if (std::exchange(time_waits_, sink_ != nullptr)) return;
  post_moved(ClientEvent::Kind::time, 0);
}

}  // namespace tutti
