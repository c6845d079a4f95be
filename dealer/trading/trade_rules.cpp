#include "dealer/trading/trade_rules.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "dealer/config/bounds.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

// Amounts closer than this are the same; it lies below anything an operator can type.
constexpr double tolerance = 1e-9;

// A stop loss below and a take profit above the price of a bought order; the other way round for a sold one.
bool fits(const Instruction& order) {
  const double side = sign(order.side);
  const auto away = [&](bool given, double price, double direction) {
    return !given || (bounds::is_price(price) && (price - order.price) * side * direction > 0.0);
  };
  return away(order.stops.has_stop_loss, order.stops.stop_loss, -1.0) &&
         away(order.stops.has_take_profit, order.stops.take_profit, 1.0);
}

bool is_side(Operation side) {
  return side == operation::buy || side == operation::sell;
}

}  // namespace

RequestCode TradeRules::admit(const TradingAccount& account, const Instruction& wanted) const {
  const AccountConfig& config = account.config();
  if (wanted.kind == TradeKind::open && config.reply_request > request::taken) return config.reply_request;
  if (wanted.kind == TradeKind::close && config.reply_close_request > request::taken)
    return config.reply_close_request;
  if (!config.privilege) return request::no_privilege;
  switch (wanted.kind) {
    case TradeKind::open:
      return admit_open(account, wanted);
    case TradeKind::close:
      return admit_close(account, wanted);
    case TradeKind::entry:
      return admit_entry(account, wanted);
    case TradeKind::update_entry:
      return admit_update(account, wanted);
    case TradeKind::set_stops:
      return admit_stops(account, wanted);
    case TradeKind::cancel_entry:
    case TradeKind::cancel_stops:
      break;
  }
  const OrderKind kind = wanted.kind == TradeKind::cancel_entry ? OrderKind::entry : OrderKind::stops;
  return account.find_order(wanted.reference, kind) != nullptr ? request::taken : request::invalid_order_id;
}

RequestCode TradeRules::admit_open(const TradingAccount& account, const Instruction& wanted) const {
  if (!is_side(wanted.side)) return request::silent;
  if (!orderable(wanted.amount)) return request::invalid_lots;
  return wanted.symbol && priced(account, *wanted.symbol) ? request::taken : request::invalid_price;
}

RequestCode TradeRules::admit_close(const TradingAccount& account, const Instruction& wanted) const {
  const TradingAccount::Position* position = account.find_position(wanted.reference);
  if (position == nullptr) return request::invalid_ticket;
  const bool within =
      wanted.amount >= bounds::smallest_lots && wanted.amount <= position->record.amount + tolerance;
  return within ? request::taken : request::invalid_lots;
}

RequestCode TradeRules::admit_entry(const TradingAccount& account, const Instruction& wanted) const {
  if (!is_side(wanted.side)) return request::silent;
  if (!orderable(wanted.amount)) return request::invalid_lots;
  return wanted.symbol && well_priced(account, wanted, *wanted.symbol) ? request::taken
                                                                       : request::invalid_price;
}

RequestCode TradeRules::admit_update(const TradingAccount& account, const Instruction& wanted) const {
  const PendingOrder* found = account.find_order(wanted.reference, OrderKind::entry);
  if (found == nullptr) return request::invalid_order_id;
  const bool limit = found->operation == operation::buy || found->operation == operation::sell;
  Instruction changed = wanted;
  changed.side = buys(found->operation) ? operation::buy : operation::sell;
  changed.entry = limit ? EntryKind::limit : EntryKind::stop;
  return well_priced(account, changed, *market_.find(found->symbol)) ? request::taken
                                                                     : request::invalid_price;
}

bool TradeRules::well_priced(const TradingAccount& account, const Instruction& order,
                             std::size_t symbol) const {
  const Quote& quote = market_.quote(symbol);
  if (!quote.known() || !bounds::is_price(order.price) || !fits(order)) return false;
  // A buy limit and a sell stop lie below the market, the other two above it.
  const bool limit = order.entry == EntryKind::limit;
  const double market = order.side == operation::buy ? quote.ask : quote.bid;
  const double gap = (order.price - market) * sign(limit ? opposite(order.side) : order.side);
  const double points = limit ? account.limit_distance(symbol) : account.stop_distance(symbol);
  return gap >= scaled(symbol, points) - tolerance;
}

RequestCode TradeRules::admit_stops(const TradingAccount& account, const Instruction& wanted) const {
  const TradingAccount::Position* position = account.find_position(wanted.reference);
  if (position == nullptr) return request::invalid_ticket;
  const std::size_t symbol = position->symbol;
  const Quote& quote = market_.quote(symbol);
  if (!quote.known()) return request::invalid_price;
  const double side = sign(position->record.side);
  const double market = side > 0.0 ? quote.bid : quote.ask;
  const auto far = [&](bool given, double price, double direction, double points) {
    if (!given) return true;
    const double gap = (price - market) * side * direction;
    return bounds::is_price(price) && gap > 0.0 && gap >= scaled(symbol, points) - tolerance;
  };
  const StopPrices& stops = wanted.stops;
  const bool fit = far(stops.has_stop_loss, stops.stop_loss, -1.0, account.stop_distance(symbol)) &&
                   far(stops.has_take_profit, stops.take_profit, 1.0, account.limit_distance(symbol));
  return fit ? request::taken : request::invalid_price;
}

ResultCode TradeRules::judge(const TradingAccount& account, const TradeRequest& request, double price) const {
  switch (request.kind) {
    case TradeKind::open:
      return judge_open(account, request, price);
    case TradeKind::close:
      return judge_close(account, request);
    case TradeKind::entry:
      if (const auto code = judge_symbol(account, place(request)); code != result::succeeded) return code;
      return tradable(request.amount) ? result::succeeded : result::invalid_amount;
    case TradeKind::update_entry:
      return judge_update(account, request);
    case TradeKind::set_stops:
      return judge_stops(account, request);
    case TradeKind::cancel_entry:
    case TradeKind::cancel_stops:
      break;
  }
  // The ticket of an executed entry order is its number, so that a close in dealing may have it too.
  const OrderKind kind = request.kind == TradeKind::cancel_entry ? OrderKind::entry : OrderKind::stops;
  return account.find_order(request.reference, kind) != nullptr ? result::succeeded : result::order_not_found;
}

ResultCode TradeRules::judge_update(const TradingAccount& account, const TradeRequest& request) const {
  if (account.find_order(request.reference, OrderKind::entry) == nullptr) return result::order_not_found;
  return judge_symbol(account, place(request));
}

ResultCode TradeRules::judge_stops(const TradingAccount& account, const TradeRequest& request) const {
  if (account.find_position(request.reference) == nullptr) return result::position_closed;
  const bool none = request.stop_loss == 0.0 && request.take_profit == 0.0;
  if (none && account.stops_of(request.reference) == nullptr) return result::order_not_found;
  return judge_symbol(account, place(request));
}

ResultCode TradeRules::judge_open(const TradingAccount& account, const TradeRequest& request,
                                  double price) const {
  const std::size_t symbol = place(request);
  if (const auto code = judge_symbol(account, symbol); code != result::succeeded) return code;
  if (!account.config().hedging && account.opposed(symbol, request.operation))
    return result::hedging_not_allowed;
  if (!tradable(request.amount)) return result::invalid_amount;
  return account.free_margin_with(symbol, request.operation, request.amount, price) < 0.0
             ? result::not_enough_money
             : result::succeeded;
}

ResultCode TradeRules::judge_close(const TradingAccount& account, const TradeRequest& request) const {
  const TradingAccount::Position* position = account.find_position(request.reference);
  if (position == nullptr) return result::position_closed;
  // While one close of a position is in dealing, another can't be.
  if (request.stage == TradeRequest::Stage::sent && account.find_order(request.reference) != nullptr)
    return result::position_pending;
  if (const auto code = judge_symbol(account, place(request)); code != result::succeeded) return code;
  const double rest = position->record.amount - request.amount;
  const bool fits = rest >= -tolerance && (rest <= tolerance || tradable(request.amount));
  return fits ? result::succeeded : result::invalid_amount;
}

ResultCode TradeRules::judge_symbol(const TradingAccount& account, std::size_t symbol) const {
  switch (market_.symbol(symbol).trading) {
    case Trading::closed:
      return result::trading_closed;
    case Trading::halted:
      return result::market_conditions;
    case Trading::open:
      break;
  }
  // A request from an earlier run may come due before its symbol has a price in this one.
  return priced(account, symbol) ? result::succeeded : result::market_conditions;
}

bool TradeRules::lacks_price(const TradingAccount& account, const TradeRequest& request) const {
  const bool cancels = request.kind == TradeKind::cancel_entry || request.kind == TradeKind::cancel_stops;
  return !cancels && request.stage != TradeRequest::Stage::rejected && !priced(account, place(request));
}

ResultCode TradeRules::configured_result(const TradingAccount& account, TradeKind kind) {
  const AccountConfig& config = account.config();
  if (kind == TradeKind::open && config.reply_result > result::succeeded) return config.reply_result;
  if (kind == TradeKind::close && config.reply_close_result > result::succeeded)
    return config.reply_close_result;
  return ResultCode::none;
}

bool TradeRules::buys_in_market(const TradeRequest& request) {
  return (request.kind == TradeKind::close) != (request.operation == operation::buy);
}

double TradeRules::price(const TradeRequest& request) const {
  const Quote& quote = market_.quote(place(request));
  return buys_in_market(request) ? quote.ask : quote.bid;
}

double TradeRules::worse_price(const TradeRequest& request, double price, double points) const {
  const std::int32_t digits = market_.symbol(place(request)).digits;
  const double point = std::pow(10.0, -digits);
  const double worse = round_half_even(price + (buys_in_market(request) ? points : -points) * point, digits);
  return std::clamp(worse, point, bounds::highest_price);
}

std::chrono::milliseconds TradeRules::dealing_time(const TradingAccount& account,
                                                   const TradeRequest& request) const {
  return std::max(account.config().dealing, market_.symbol(place(request)).dealing);
}

double TradeRules::scaled(std::size_t symbol, double points) const {
  return points / std::pow(10.0, market_.symbol(symbol).digits);
}

bool TradeRules::orderable(double amount) const {
  return amount >= bounds::smallest_lots &&
         amount <= std::min(config_.max_lot + tolerance, bounds::most_lots);
}

bool TradeRules::tradable(double amount) const {
  if (amount < config_.min_lot - tolerance) return false;
  if (config_.lot_step <= 0.0) return true;
  const double steps = amount / config_.lot_step;
  return std::fabs(steps - std::nearbyint(steps)) < 1e-6;
}

}  // namespace tutti
