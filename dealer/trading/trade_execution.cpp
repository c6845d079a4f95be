#include "dealer/trading/trade_execution.h"

#include <utility>

namespace tutti {

PendingOrder TradeExecution::row_of(const TradeRequest& request, TimePoint at) {
  PendingOrder order;
  order.order = request.known_as();
  order.kind = request.kind == TradeKind::open    ? OrderKind::open
               : request.kind == TradeKind::close ? OrderKind::close
                                                  : OrderKind::entry;
  order.reference = request.reference;
  order.operation = request.operation;
  order.symbol = request.symbol;
  order.amount = request.amount;
  order.price = request.price;
  order.stop_loss = request.stop_loss;
  order.take_profit = request.take_profit;
  order.time = at;
  return order;
}

void TradeExecution::add_row(TradingAccount& account, const PendingOrder& order) {
  const PendingOrder& added = account.add_order(order);
  if (AccountListener* listener = account.listener()) listener->tell_order(false, added);
}

void TradeExecution::remove_row(TradingAccount& account, std::int64_t order) {
  const PendingOrder* found = account.find_order(order);
  if (found == nullptr) return;
  if (AccountListener* listener = account.listener()) listener->tell_order(true, *found);
  account.remove_order(order);
}

void TradeExecution::execute(const TradeRequest& request, TradingAccount& account, double price,
                             TimePoint at) const {
  switch (request.kind) {
    case TradeKind::open:
      return open_position(request, account, price, at);
    case TradeKind::close:
      return close_position(request, account, price);
    case TradeKind::entry:
      return add_row(account, row_of(request, at));
    case TradeKind::update_entry:
      return update_entry(request, account);
    case TradeKind::set_stops:
      return set_stops(request, account, at);
    case TradeKind::cancel_entry:
      return remove_row(account, request.reference);
    case TradeKind::cancel_stops:
      return cancel_stops(account, request.reference);
  }
}

void TradeExecution::replace_row(TradingAccount& account, PendingOrder order) {
  account.remove_order(order.order);
  add_row(account, order);
}

void TradeExecution::update_entry(const TradeRequest& request, TradingAccount& account) {
  PendingOrder order = *account.find_order(request.reference);
  order.price = request.price;
  order.stop_loss = request.stop_loss;
  order.take_profit = request.take_profit;
  replace_row(account, std::move(order));
}

void TradeExecution::set_stops(const TradeRequest& request, TradingAccount& account, TimePoint at) {
  const OpenPosition& position = account.find_position(request.reference)->record;
  const PendingOrder* found = account.stops_of(request.reference);
  PendingOrder order;
  if (found != nullptr) {
    order = *found;
  } else {
    order.order = request.number;
    order.kind = OrderKind::stops;
    order.reference = position.ticket;
    order.operation = opposite(position.side);  // what it does when its time comes
    order.symbol = position.symbol;
    order.amount = position.amount;
    order.price = position.open_price;
    order.time = at;
  }
  order.stop_loss = request.stop_loss;
  order.take_profit = request.take_profit;
  if (order.stop_loss > 0.0 || order.take_profit > 0.0)
    replace_row(account, std::move(order));
  else
    remove_row(account, order.order);
  note_stops(account, request.reference, request.stop_loss, request.take_profit);
}

void TradeExecution::cancel_stops(TradingAccount& account, std::int64_t order) {
  const std::int64_t ticket = account.find_order(order)->reference;
  remove_row(account, order);
  note_stops(account, ticket, 0.0, 0.0);
}

void TradeExecution::note_stops(TradingAccount& account, std::int64_t ticket, double stop_loss,
                                double take_profit) {
  TradingAccount::Position* position = account.find_position(ticket);
  if (position == nullptr) return;
  OpenPosition& record = position->record;
  if (record.stop_loss == stop_loss && record.take_profit == take_profit) return;
  record.stop_loss = stop_loss;
  record.take_profit = take_profit;
  if (AccountListener* listener = account.listener())
    listener->tell_position(PositionChange::changed, record);
}

void TradeExecution::open_position(const TradeRequest& request, TradingAccount& account, double price,
                                   TimePoint at) const {
  const std::size_t symbol = *market_.find(request.symbol);
  OpenPosition position;
  position.ticket = request.number;
  position.side = request.operation;
  position.amount = request.amount;
  position.open_price = price;
  position.stop_loss = request.stop_loss;
  position.take_profit = request.take_profit;
  position.open_time = at;
  position.commission = -account.commission(symbol, request.amount);
  account.open(std::move(position), symbol);
  account.revalue();
  if (AccountListener* listener = account.listener())
    listener->tell_position(PositionChange::opened, account.find_position(request.number)->record);
}

void TradeExecution::close_position(const TradeRequest& request, TradingAccount& account, double price) {
  TradingAccount::Position& position = *account.find_position(request.reference);
  const OpenPosition before = position.record;
  const bool gone = account.close(position, request.amount, price);
  account.revalue();
  AccountListener* listener = account.listener();
  if (listener != nullptr && gone) listener->tell_position(PositionChange::closed, before);
  if (listener != nullptr && !gone)
    listener->tell_position(PositionChange::changed, account.find_position(request.reference)->record);
  // Stop loss and take profit shrink and go with their position.
  const PendingOrder* stops = account.stops_of(request.reference);
  if (!gone && stops != nullptr) {
    PendingOrder rest = *stops;
    rest.amount = account.find_position(request.reference)->record.amount;
    replace_row(account, std::move(rest));
  }
  for (; gone && stops != nullptr; stops = account.stops_of(request.reference))
    remove_row(account, stops->order);
}

}  // namespace tutti
