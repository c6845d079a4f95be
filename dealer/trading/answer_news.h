#pragma once

#include <cstdint>

#include "sessions/contract/order_report.h"

namespace tutti {

// What a request, or an order that a price set off, came to. Of most only number, result and id count.
struct AnswerNews {
  enum class Event : std::uint8_t {
    order,
    close,
    accepted,
    rejected,
    entry,
    update_entry,
    new_stops,
    update_stops,
    cancel_entry,
    cancel_stops,
    entry_done,  // a price set an entry order off, or an SL/TP order
    entry_no_money,
    entry_no_hedging,
    stops_done,
    stops_no_money,
  };
  Event event = Event::order;
  OrderReport report;
};

}  // namespace tutti
