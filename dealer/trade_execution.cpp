#include "dealer/trade_execution.h"

#include <algorithm>
#include <utility>

#include "dealer/dealer_session.h"

namespace tutti {

PendingOrder TradeExecution::row_of(const TradeRequest& request, TimePoint at) {
  PendingOrder order;
  order.order = request.known_as();
  order.kind = request.kind == TradeKind::open ? "OP" : request.kind == TradeKind::close ? "CP" : "LO";
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
  if (DealerSession* session = account.session()) session->tell_order(false, added);
}

void TradeExecution::remove_row(TradingAccount& account, std::int64_t order) {
  const PendingOrder* found = account.find_order(order);
  if (found == nullptr) return;
  if (DealerSession* session = account.session()) session->tell_order(true, *found);
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
    case TradeKind::cancel_entry:
    case TradeKind::cancel_stops:
      return remove_row(account, request.reference);
  }
}

void TradeExecution::open_position(const TradeRequest& request, TradingAccount& account, double price,
                                   TimePoint at) const {
  const std::size_t symbol = *market_.find(request.symbol);
  OpenPosition position;
  position.ticket = request.number;
  position.side = request.operation;
  position.amount = request.amount;
  position.open_price = price;
  position.open_time = at;
  position.commission = -account.commission(symbol, request.amount);
  account.open(std::move(position), symbol);
  account.revalue();
  if (DealerSession* session = account.session())
    session->tell_position(PositionNews::Change::opened, account.find_position(request.number)->record);
}

void TradeExecution::close_position(const TradeRequest& request, TradingAccount& account, double price) {
  TradingAccount::Position& position = *account.find_position(request.reference);
  const OpenPosition before = position.record;
  const bool gone = account.close(position, request.amount, price);
  account.revalue();
  DealerSession* session = account.session();
  if (session != nullptr && gone) session->tell_position(PositionNews::Change::closed, before);
  if (session != nullptr && !gone)
    session->tell_position(PositionNews::Change::changed, account.find_position(request.reference)->record);
  if (!gone) return;
  // Stop loss and take profit go with their position.
  const auto belongs = [&](const PendingOrder& order) {
    return order.kind == "ST" && order.reference == request.reference;
  };
  const auto& orders = account.orders();
  for (auto at = std::find_if(orders.begin(), orders.end(), belongs); at != orders.end();
       at = std::find_if(orders.begin(), orders.end(), belongs))
    remove_row(account, at->order);
}

}  // namespace tutti
