#include "sessions/session_records.h"

#include <cmath>

namespace tutti {
namespace {

// What lies beyond is no trade of any account, but a damaged record.
constexpr double largest_lots = 1e6;
constexpr double largest_price = 1e9;
constexpr double largest_money = 1e12;

bool usable(const OpenPosition& p) {
  // Not "greater than", so that what is no number is refused too.
  const auto within = [](double most, auto... values) { return ((std::fabs(values) <= most) && ...); };
  return p.amount >= 0.0 && within(largest_lots, p.amount) &&
         within(largest_price, p.open_price, p.current_price, p.stop_loss, p.take_profit) &&
         within(largest_money, p.commission, p.interest, p.floating_pl);
}

bool usable(const PendingOrder& o) {
  return std::isfinite(o.amount) && std::isfinite(o.price) && std::isfinite(o.stop_loss) &&
         std::isfinite(o.take_profit);
}

}  // namespace

const OpenPosition* SessionRecords::open_position(std::int64_t ticket) const {
  for (int index = 1; index <= scope_.client.OpenPositionCount(); ++index) {
    const OpenPosition* position = scope_.client.OpenPositionItem(index);
    if (position != nullptr && position->ticket == ticket) return position;
  }
  return nullptr;
}

const PendingOrder* SessionRecords::pending_order(std::int64_t order) const {
  for (int index = 1; index <= scope_.client.PendingOrderCount(); ++index) {
    const PendingOrder* item = scope_.client.PendingOrderItem(index);
    if (item != nullptr && item->order == order) return item;
  }
  return nullptr;
}

std::int64_t SessionRecords::stops_order_of(std::int64_t ticket) const {
  std::int64_t out = 0;
  for (int index = 1; index <= scope_.client.PendingOrderCount(); ++index) {
    const PendingOrder* item = scope_.client.PendingOrderItem(index);
    if (item != nullptr && item->kind == OrderKind::stops && item->reference == ticket) out = item->order;
  }
  return out;
}

void SessionRecords::refresh_position(std::int64_t ticket) {
  if (const OpenPosition* there = open_position(ticket)) return position(*there);
  position_gone({.ticket = ticket, .account = scope_.account, .symbol = {}});
}

void SessionRecords::refresh_pending(std::int64_t number) {
  if (const PendingOrder* item = pending_order(number)) order(*item);
}

void SessionRecords::positions_loaded() {
  for (int index = 1; index <= scope_.client.OpenPositionCount(); ++index) {
    if (const OpenPosition* item = scope_.client.OpenPositionItem(index)) position(*item);
  }
  has_positions_ = true;
}

void SessionRecords::position(const OpenPosition& position) {
  if (!usable(position)) return scope_.refuse("Position #", position.ticket);
  lists_account_ = true;
  scope_.positions.write(position, scope_.symbols.digits(position.symbol));
}

void SessionRecords::position_gone(const OpenPosition& position) {
  scope_.positions.remove(position.ticket, position.account);
}

void SessionRecords::floating_changed(const OpenPosition& position) {
  if (!usable(position)) return scope_.refuse("The profit of position #", position.ticket);
  scope_.positions.write_worth(position);
}

void SessionRecords::orders_loaded() {
  for (int index = 1; index <= scope_.client.PendingOrderCount(); ++index) {
    if (const PendingOrder* item = scope_.client.PendingOrderItem(index)) order(*item);
  }
}

void SessionRecords::order(const PendingOrder& order) {
  if (!usable(order)) return scope_.refuse("Order #", order.order);
  lists_account_ = true;
  list(order);
}

void SessionRecords::list(const PendingOrder& order) {
  const Symbol* symbol = scope_.client.SymbolRecord(order.symbol);
  scope_.orders.write(order, symbol == nullptr ? 5 : symbol->digits);
}

void SessionRecords::order_gone(const PendingOrder& order) {
  scope_.orders.remove(order.order, order.account);
}

}  // namespace tutti
