#include "limits/limits.h"

namespace tutti {
namespace {

constexpr double most_lots = 1e6;
constexpr double most_money = 1e12;
constexpr double hour = 3600.0;

constexpr LimitField fields[set_limits] = {
    {.key = "ticket_lots",
     .name = "Lots of one order, all accounts together",
     .unit = "lots",
     .initially = {},
     .low = 0.001,
     .high = most_lots,
     .meaning = "Lots of one order or entry order, over all its accounts together."},
    {.key = "account_lots",
     .name = "Lots for one account",
     .unit = "lots",
     .initially = 10.0,
     .low = 0.001,
     .high = most_lots,
     .meaning = "Lots of one order for one account."},
    {.key = "lots_per_1000_equity",
     .name = "Lots for each 1000 of an account's equity",
     .unit = "lots",
     .initially = {},
     .low = 0.00001,
     .high = most_lots,
     .meaning = "Lots of one order for each 1000 of the account's equity, in its own currency."},
    {.key = "account_value",
     .name = "Value for one account",
     .unit = "money",
     .initially = {},
     .low = 0.01,
     .high = most_money,
     .meaning = "What the lots of one order are worth at the price, in the currency of the account."},
    {.key = "quote_seconds",
     .name = "Age of the quote",
     .unit = "s",
     .initially = 10.0,
     .low = 0.1,
     .high = hour,
     .meaning = "Seconds since the symbol's last price, by the clock of this machine."},
    {.key = "price_points",
     .name = "Price gone since the click",
     .unit = "points",
     .initially = {},
     .low = 0.0,
     .high = most_lots,
     .meaning = "Points (of the last decimal) between the price at the click and the newest one."},
    {.key = "same_ticket_seconds",
     .name = "The same order again within",
     .unit = "s",
     .initially = {},
     .low = 0.1,
     .high = hour,
     .meaning = "Seconds within which the same order, with the same lots, is held."},
    {.key = "tickets_per_minute",
     .name = "Orders of the operator in a minute",
     .unit = "orders",
     .initially = {},
     .low = 1.0,
     .high = 1000.0,
     .whole = true,
     .meaning = "How often in a minute the operator may send, for however many accounts."},
    {.key = "orders_per_second",
     .name = "Requests that leave in a second",
     .unit = "requests",
     .initially = {},
     .low = 1.0,
     .high = 100'000.0,
     .whole = true,
     .meaning = "How many requests leave in a second; the rest waits. Closes and cancels never wait."},
    {.key = "queue_seconds",
     .name = "Longest wait for that",
     .unit = "s",
     .initially = 10.0,
     .low = 0.1,
     .high = hour,
     .meaning = "Seconds after which a request that waits for its turn is dropped."},
    {.key = "odd_shares",
     .name = "Shares at or below 0, or above the total",
     .unit = "",
     .initially = {},
     .low = 1.0,
     .high = 1.0,
     .meaning = "\"hold\": an order with a share at or below 0, or above its total, is held."},
};

// What is no setting.
constexpr LimitField always_judged[] = {
    {.key = "unknown",
     .name = "Unknown outcome",
     .unit = "",
     .initially = {},
     .meaning = "A request of the symbol has an unknown outcome."},
    {.key = "restored",
     .name = "Requests missing here",
     .unit = "",
     .initially = {},
     .meaning = "The server has taken requests of this terminal that its ledger lacks."},
    {.key = "not_stored",
     .name = "Not stored",
     .unit = "",
     .initially = {},
     .meaning = "The ledger can't store it."},
};

}  // namespace

std::span<const LimitField, set_limits> limit_fields() {
  return fields;
}

const LimitField& field_of(Limit limit) {
  const auto place = static_cast<std::size_t>(limit);
  return place < set_limits ? fields[place] : always_judged[place - set_limits];
}

Limits Limits::of_new_home() {
  Limits out;
  for (std::size_t place = 0; place < set_limits; ++place)
    out.values_[place] = fields[place].initially;
  return out;
}

}  // namespace tutti
