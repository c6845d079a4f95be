#include "dealer/order_desk.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "dealer/dealer_session.h"
#include "dealer/random.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

// Amounts closer than this are the same; it lies below anything an operator can type.
constexpr double tolerance = 1e-9;

double price_of(const Quote& quote, std::int32_t side) {
  return side == operation::buy ? quote.ask : quote.bid;
}

}  // namespace

OrderDesk::OrderDesk(const DealerConfig& config, const Market& market)
    : config_(config), market_(market), next_number_(config.first_number) {}

std::int32_t OrderDesk::open(TradingAccount& account, std::int32_t side, std::optional<std::size_t> symbol,
                             double amount, TimePoint now) {
  if (account.config().reply_request > request::taken) return account.config().reply_request;
  if (!account.config().privilege) return request::no_privilege;
  if (side != operation::buy && side != operation::sell) return request::silent;
  if (!std::isfinite(amount) || amount <= 0.0 || amount > config_.max_lot + tolerance)
    return request::invalid_lots;
  if (!symbol || !market_.quote(*symbol).known() || !account.rates_known(*symbol))
    return request::invalid_price;
  take(account, {next_number_++, account.config().number, 0, side, market_.symbol(*symbol).name, amount},
       now);
  return request::taken;
}

std::int32_t OrderDesk::close(TradingAccount& account, std::int64_t ticket, double amount, TimePoint now) {
  if (!account.config().privilege) return request::no_privilege;
  const TradingAccount::Position* position = account.find_position(ticket);
  if (position == nullptr) return request::invalid_ticket;
  const OpenPosition& record = position->record;
  if (!std::isfinite(amount) || amount <= 0.0 || amount > record.amount + tolerance)
    return request::invalid_lots;
  take(account, {next_number_++, account.config().number, ticket, record.side, record.symbol, amount}, now);
  return request::taken;
}

void OrderDesk::take(TradingAccount& account, MarketRequest request, TimePoint now) {
  const auto number = static_cast<std::uint64_t>(request.number);
  const auto latency = with_jitter(config_.order_latency, scatter(config_.seed, number));
  requests_.emplace(now + latency, InFlight{&account, std::move(request)});
  ++revision_;
}

void OrderDesk::resume(TradingAccount& account, const MarketRequest& request, TimePoint now) {
  take(account, request, now);
}

std::vector<MarketRequest> OrderDesk::requests() const {
  std::vector<MarketRequest> requests;
  for (const auto& [due, flight] : requests_)
    requests.push_back(flight.request);
  return requests;
}

std::optional<TimePoint> OrderDesk::next_due() const {
  if (requests_.empty()) return std::nullopt;
  return requests_.begin()->first;
}

// The requests wait here for nothing but their time. A requote or a pending state would be a further station
// between the gate and the two routines below.
void OrderDesk::run(TimePoint at) {
  while (!requests_.empty() && requests_.begin()->first <= at) {
    const InFlight flight = std::move(requests_.extract(requests_.begin()).mapped());
    flight.account->revalue();
    if (flight.request.closes())
      execute_close(*flight.account, flight.request);
    else
      execute_open(*flight.account, flight.request, at);
    ++revision_;
  }
}

std::int32_t OrderDesk::trading_result(const TradingAccount& account, std::size_t symbol) const {
  switch (market_.symbol(symbol).trading) {
    case Trading::closed:
      return result::trading_closed;
    case Trading::halted:
      return result::market_conditions;
    case Trading::open:
      break;
  }
  // A request from an earlier run may come due before its symbol has a price in this one.
  const bool priced = market_.quote(symbol).known() && account.rates_known(symbol);
  return priced ? result::succeeded : result::market_conditions;
}

std::int32_t OrderDesk::judge_open(const TradingAccount& account, const MarketRequest& request,
                                   std::size_t symbol) const {
  if (account.config().reply_result > result::succeeded) return account.config().reply_result;
  if (const auto code = trading_result(account, symbol); code != result::succeeded) return code;
  if (!account.config().hedging && account.opposed(symbol, request.side)) return result::hedging_not_allowed;
  if (!tradable(request.amount)) return result::invalid_amount;
  if (account.free_margin_with(symbol, request.amount) < 0.0) return result::not_enough_money;
  return result::succeeded;
}

void OrderDesk::execute_open(TradingAccount& account, const MarketRequest& request, TimePoint at) {
  const std::size_t symbol = *market_.find(request.symbol);
  OrderReport report;
  report.number = request.number;
  report.account = request.account;
  report.result = judge_open(account, request, symbol);
  report.request_kind = request_kind::open;
  report.operation = request.side;
  report.amount = request.amount;
  report.symbol = request.symbol;
  report.price = price_of(market_.quote(symbol), request.side);
  const bool done = report.result == result::succeeded;
  if (done) {
    report.state = order_state::executed;
    OpenPosition position;
    position.ticket = request.number;
    position.side = request.side;
    position.amount = request.amount;
    position.open_price = report.price;
    position.open_time = at;
    account.open(std::move(position), symbol);
    account.revalue();
  }
  DealerSession* session = account.session();
  if (session == nullptr) return;
  session->tell_report(false, report);
  if (done)
    session->tell_position(PositionNews::Change::opened, account.find_position(request.number)->record);
  session->tell_summary(done);
}

void OrderDesk::execute_close(TradingAccount& account, const MarketRequest& request) {
  const std::size_t symbol = *market_.find(request.symbol);
  TradingAccount::Position* position = account.find_position(request.ticket);
  OrderReport report;
  report.number = request.ticket;
  report.account = request.account;
  report.request_kind = request_kind::close;
  report.operation = request.side;
  report.amount = request.amount;
  report.symbol = request.symbol;
  report.price = price_of(market_.quote(symbol), -request.side);
  report.result = trading_result(account, symbol);
  if (position == nullptr) {
    report.result = result::position_closed;
  } else if (report.result == result::succeeded) {
    const double rest = position->record.amount - request.amount;
    if (rest < -tolerance || (rest > tolerance && !tradable(request.amount)))
      report.result = result::invalid_amount;
  }
  const bool done = report.result == result::succeeded;
  DealerSession* session = account.session();
  if (done) report.state = order_state::executed;
  if (session != nullptr) session->tell_report(true, report);
  if (done) {
    const OpenPosition before = position->record;
    const bool gone = account.close(*position, request.amount);
    account.revalue();
    if (session != nullptr && gone) session->tell_position(PositionNews::Change::closed, before);
    if (session != nullptr && !gone)
      session->tell_position(PositionNews::Change::changed, account.find_position(request.ticket)->record);
  }
  if (session != nullptr) session->tell_summary(done);
}

bool OrderDesk::tradable(double amount) const {
  if (amount < config_.min_lot - tolerance) return false;
  if (config_.lot_step <= 0.0) return true;
  const double steps = amount / config_.lot_step;
  return std::fabs(steps - std::nearbyint(steps)) < 1e-6;
}

}  // namespace tutti
