#pragma once

#include <cstdint>
#include <string_view>

namespace tutti {

// Request code: what an order operation answers at once. 1 means taken; the outcome follows in an event.
namespace request {
inline constexpr std::int32_t taken = 1;
inline constexpr std::int32_t no_privilege = 2;
inline constexpr std::int32_t invalid_account = 3;
inline constexpr std::int32_t cannot_change_price = 4;
inline constexpr std::int32_t silent = 5;  // refused without a text of its own
inline constexpr std::int32_t timer_expired = 6;
inline constexpr std::int32_t invalid_ticket = 7;
inline constexpr std::int32_t invalid_lots = 8;
inline constexpr std::int32_t invalid_order_id = 10;
inline constexpr std::int32_t invalid_price = 21;
inline constexpr std::int32_t other_request = 30;  // the id was given to another request before
inline constexpr std::int32_t id_burnt =
    31;  // the id was asked about before it came, and told as never taken

// Text the operator sees for a refused request, trailing blanks included; empty for `taken`, `silent` and
// codes the contract does not name.
std::string_view text(std::int32_t code);
}  // namespace request

// Result code: carried by result events and by the summary query.
namespace result {
inline constexpr std::int32_t succeeded = 1;
inline constexpr std::int32_t not_enough_money = 2;
inline constexpr std::int32_t trading_closed = 3;
inline constexpr std::int32_t market_conditions = 4;
inline constexpr std::int32_t bad_connection = 5;
inline constexpr std::int32_t position_closed = 6;
inline constexpr std::int32_t position_pending = 7;  // has no text in the general table
inline constexpr std::int32_t has_pending_orders = 8;
inline constexpr std::int32_t invalid_amount = 9;
inline constexpr std::int32_t order_not_found = 10;
inline constexpr std::int32_t all_managed = 11;
inline constexpr std::int32_t unable = 12;
inline constexpr std::int32_t hedging_not_allowed = 13;
inline constexpr std::int32_t failed = 100;
}  // namespace result

// Operation type of orders and positions. Market orders are sent with buy or sell; the sign is the side.
namespace operation {
inline constexpr std::int32_t buy = 1;
inline constexpr std::int32_t sell = -1;
inline constexpr std::int32_t buy_stop = 2;
inline constexpr std::int32_t sell_stop = -2;
}  // namespace operation

// State of a market order in NewOrderResult.
namespace order_state {
inline constexpr std::int32_t executed = 1;
inline constexpr std::int32_t pending = 2;
}  // namespace order_state

// What a market request asked for, in MarketOrderAccepted and MarketOrderRejected.
namespace request_kind {
inline constexpr std::int32_t open = 1;
inline constexpr std::int32_t close = 2;
}  // namespace request_kind

// Which price EvaluateSLTPPrice is asked about.
namespace evaluate {
inline constexpr std::string_view stop_loss = "SL";
inline constexpr std::string_view take_profit = "TP";
}  // namespace evaluate

// Modes of the WaitingMode event.
namespace waiting_mode {
inline constexpr std::int32_t normal = 0;
inline constexpr std::int32_t waiting = 1;
inline constexpr std::int32_t connecting = 2;
}  // namespace waiting_mode

}  // namespace tutti
