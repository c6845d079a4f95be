#include <algorithm>
#include <utility>

#include "fix/dialect/ask_codec.h"
#include "fix/dialect/wire_values.h"
#include "fix/server/seat_news.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

constexpr std::size_t fills_at_once = 200;

// Whether the request that a report answers has come to its end with it.
bool is_final(Answer answer, const OrderReport& report) {
  const bool done = report.result == result::succeeded;
  switch (answer) {
    case Answer::order:
    case Answer::close:
      return !done || (report.state == order_state::executed && report.left <= 0.0);
    case Answer::accepted:
    case Answer::entry_done:
      return report.left <= 0.0;
    case Answer::entry:
      return !done;
    default:
      return true;
  }
}

}  // namespace

SeatNews::SeatNews(const ServerSettings& settings, ClientAPI& client, AccountMemory& memory,
                   std::int32_t account, bool own_fields, SeatWire& wire)
    : settings_(settings),
      client_(client),
      memory_(memory),
      wire_(wire),
      encoder_([this](std::string_view symbol) { return size_of(symbol); }, own_fields),
      account_(account),
      own_fields_(own_fields) {}

double SeatNews::size_of(std::string_view symbol) const {
  const Symbol* record = client_.SymbolRecord(symbol);
  return record != nullptr ? record->contract_size : 0.0;
}

const PendingOrder* SeatNews::order(std::int64_t number) const {
  for (int i = 1; i <= client_.PendingOrderCount(); ++i)
    if (client_.PendingOrderItem(i)->order == number) return client_.PendingOrderItem(i);
  return nullptr;
}

void SeatNews::tell(const WireNews& news, std::string_view stamp) {
  if (!on_) return;
  const auto message = encoder_.encode(news, stamp);
  if (!message) return;
  wire_.send(*message);
  if (wire_.unsent() > settings_.dropped_from) wire_.drop();
}

void SeatNews::catch_up() {
  if (!on_ || slow()) return;
  for (const std::string& name : std::exchange(late_prices_, {}))
    if (const Symbol* symbol = client_.FindSymbol(name)) tell_price(*symbol);
  if (std::exchange(late_summary_, false)) tell_summary();
}

void SeatNews::tell_price(const Symbol& symbol, std::string_view stamp) {
  const auto told = priced_.find(symbol.name);
  if (told == priced_.end()) return;
  if (slow()) {
    late_prices_.insert(symbol.name);
    return;
  }
  // The day's high and low come as an event of their own, behind the price that brought them along.
  news::Price price{symbol.name, symbol.bid, symbol.ask, symbol.high, symbol.low, symbol.quote_time};
  if (price == told->second) return;
  told->second = std::move(price);
  tell(told->second, stamp);
}

void SeatNews::tell_summary(std::string_view stamp) {
  news::Summary news;
  const auto info = client_.FindAccount(account_);
  news.owned = info.has_value();
  if (info) news.info = *info;
  news.era = client_.Era();
  news.lots = {client_.MinimumLot(), client_.MaximumLot()};
  const SummaryAnswer answer = client_.GetAccountSummary(account_);
  if (answer.result == result::succeeded) news.summary = answer.values;
  tell(news, stamp);
}

void SeatNews::SummariesChanged(const AccountSummary&) {
  if (!on_ || !summary_wanted_) return;
  if (slow())
    late_summary_ = true;
  else
    tell_summary();
}

void SeatNews::tell_position(const OpenPosition& position, bool gone) {
  if (on_ && positions_wanted_) tell(news::Position{position, false, gone});
}

void SeatNews::tell_order(const PendingOrder& order, bool gone) {
  if (!on_) return;
  if (orders_wanted_ && own_fields_) {
    news::Order news;
    news.order = order;
    news.id_text = memory_.accepted_of(order.order);
    news.gone = gone;
    tell(news);
  }
  if (gone) {
    memory_.end_order(order.order);
    offered_.erase(order.order);
  }
}

void SeatNews::tell_report(Answer answer, OrderReport report) {
  if (!on_) return;
  news::Report news{answer, std::move(report), {}, {}};
  OrderReport& told = news.report;
  news.id_text = memory_.text_of(told.id);
  // Reports of entry orders and of changes name the order alone.
  if (const WireRequest* request = memory_.find(told.id)) {
    news.original_text = request->original_text;
    if (told.symbol.empty()) told.symbol = request->symbol;
    if (told.operation == Operation::none) told.operation = request->operation;
    if (told.amount == 0.0) told.amount = request->lots;
  }
  if (told.symbol.empty())
    if (const PendingOrder* row = order(told.number)) {
      told.symbol = row->symbol;
      told.operation = row->operation;
      told.amount = row->amount;
    }
  const bool done = told.result == result::succeeded;
  if (done && answer == Answer::entry) told.left = told.amount;
  if (done && (answer == Answer::entry || answer == Answer::update_entry) && !news.id_text.empty())
    memory_.note_accepted(told.number, news.id_text);
  tell(news);
  if (is_final(answer, told)) {
    memory_.end(told.id);
    offered_.erase(told.number);
  }
}

void SeatNews::tell_result(Answer answer, std::int64_t order, ResultCode result, RequestId id) {
  OrderReport report;
  report.number = order;
  report.account = account_;
  report.result = result;
  report.id = id;
  tell_report(answer, std::move(report));
}

// The other end counts the seconds itself.
void SeatNews::OrderTimer(const Requote& requote) {
  if (on_ && offered_.insert(requote.order).second) tell(news::Offer{requote});
}

void SeatNews::RequestTold(RequestId id, RequestState state, double lots) {
  if (!on_) return;
  tell(news::Told{id, memory_.text_of(id), state, lots});
  const bool alive = state == RequestState::waiting || state == RequestState::working ||
                     state == RequestState::partly_executed;
  if (!alive) memory_.end(id);
}

void SeatNews::RequestRefused(RequestId id, RequestCode code, std::string_view text) {
  if (on_) tell(news::Refused{id, memory_.text_of(id), code, std::string{text}}, "D");
}

void SeatNews::ExecutionsTold(std::span<const Execution> fills, bool complete) {
  std::size_t at = 0;
  do {
    const std::size_t count = std::min(fills_at_once, fills.size() - at);
    const auto part = fills.subspan(at, count);
    at += count;
    tell(news::Fills{{part.begin(), part.end()}, complete, at == fills.size()});
  } while (at < fills.size());
}

}  // namespace tutti
