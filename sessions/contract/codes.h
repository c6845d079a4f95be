#pragma once

#include <cstdint>
#include <string_view>
#include <type_traits>

namespace tutti {

// Every code is kept as it came: one that the contract does not name has its number in the record, and texts
// of its own where the texts below say so.

// What an order operation answers at once. `taken`: the outcome follows in an event.
enum class RequestCode : std::int32_t {
  none = 0,  // nothing was sent
  taken = 1,
  no_privilege = 2,
  invalid_account = 3,
  cannot_change_price = 4,
  silent = 5,  // refused without a text of its own
  timer_expired = 6,
  invalid_ticket = 7,
  invalid_lots = 8,
  invalid_symbol_id = 9,
  invalid_order_id = 10,
  invalid_price = 21,
  other_request = 30,  // the id was given to another request before
  id_burnt = 31,       // the id was asked about before it came, and told as never taken
};
namespace request {
using enum RequestCode;
// Text the operator sees for a refused request, trailing blanks included; empty for `taken`, `silent` and
// codes the contract does not name.
std::string_view text(RequestCode code);
}  // namespace request

// Carried by result events and by the summary query.
enum class ResultCode : std::int32_t {
  none = 0,  // no result came yet
  succeeded = 1,
  not_enough_money = 2,
  trading_closed = 3,
  market_conditions = 4,
  bad_connection = 5,
  position_closed = 6,
  position_pending = 7,  // has no text in the general table
  has_pending_orders = 8,
  invalid_amount = 9,
  order_not_found = 10,
  all_managed = 11,
  unable = 12,
  hedging_not_allowed = 13,
  failed = 100,
};
namespace result {
using enum ResultCode;
}

// What an order or a position does in the market. The sign is the side; positions and market orders are
// bought or sold, of entry orders the stop orders have operations of their own.
enum class Operation : std::int32_t {
  none = 0,  // not known
  buy = 1,
  sell = -1,
  buy_stop = 2,
  sell_stop = -2,
};
namespace operation {
using enum Operation;
}
constexpr bool buys(Operation operation) {
  return static_cast<std::int32_t>(operation) > 0;
}
// 1 of what buys, -1 of everything else: what lots and price differences are multiplied with.
constexpr double sign(Operation operation) {
  return buys(operation) ? 1.0 : -1.0;
}
// The other side of the same kind.
constexpr Operation opposite(Operation operation) {
  return Operation{-static_cast<std::int32_t>(operation)};
}

// What a pending order is.
enum class OrderKind : std::int32_t {
  none = 0,   // not known
  open = 1,   // a new market order in dealing
  close = 2,  // a close in dealing
  entry = 3,
  stops = 4,  // SL/TP of a position
};
namespace order_kind {
// "OP", "CP", "LO" and "ST", as files have them; empty for `none`.
std::string_view text(OrderKind kind);
// The kind with that text; `none` when there is no such.
OrderKind of_text(std::string_view text);
}  // namespace order_kind

// How far the market order or close of a report has come.
enum class OrderState : std::int32_t { none = 0, executed = 1, pending = 2 };
namespace order_state {
using enum OrderState;
}

// What a market request asked for, in MarketOrderAccepted and MarketOrderRejected.
enum class MarketRequest : std::int32_t { none = 0, open = 1, close = 2 };
namespace request_kind {
using enum MarketRequest;
}

// What the server says of a connection on its way.
enum class ConnectionMode : std::int32_t { normal = 0, waiting = 1, connecting = 2 };
namespace waiting_mode {
using enum ConnectionMode;
}

template <class Type>
concept ContractCode = std::is_same_v<Type, RequestCode> || std::is_same_v<Type, ResultCode> ||
    std::is_same_v<Type, Operation> || std::is_same_v<Type, OrderState> ||
    std::is_same_v<Type, MarketRequest>;

// The number of a code, which files, scripts and hashes have; what the formatting library prints of it.
constexpr std::int32_t format_as(ContractCode auto code) {
  return static_cast<std::int32_t>(code);
}

// Which price EvaluateSLTPPrice is asked about.
namespace evaluate {
inline constexpr std::string_view stop_loss = "SL";
inline constexpr std::string_view take_profit = "TP";
}  // namespace evaluate

}  // namespace tutti
