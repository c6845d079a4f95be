#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/clock.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/request_id.h"

namespace tutti {

enum class TradeKind : std::uint8_t {
  open,          // market order
  close,         // of a position, whole or in part
  entry,         // new entry order
  update_entry,  // changes price, stop loss and take profit of an entry order
  set_stops,     // sets, changes or takes away the stop loss and take profit of a position
  cancel_entry,  // takes an entry order away
  cancel_stops,  // takes an SL/TP order away
};

// A request that the server has taken and not yet answered for good.
struct TradeRequest {
  // How far a market order or close has come; the others are only ever `sent`.
  enum class Stage : std::uint8_t {
    sent,      // on its way to the dealer
    dealing,   // pending, with the dealer; or requoted, with the operator
    accepted,  // the operator took the new price
    rejected,  // the operator, or time, refused it
  };

  // Order number; the position it opens gets it as its ticket, the SL/TP order it makes as its number.
  std::int64_t number = 0;
  std::int32_t account = 0;
  RequestId id = 0;  // that it came with; 0: none
  TradeKind kind = TradeKind::open;
  std::int64_t reference = 0;  // position to close or to set stops of, order to change or cancel; else 0
  Operation operation{};       // operation:: code of the order, or of the position or order it refers to
  std::string symbol;
  double amount = 0.0;     // lots
  double price = 0.0;      // of an entry order; agreed on, once a market request is in dealing; else 0
  double stop_loss = 0.0;  // 0: none, and with a change: none any more
  double take_profit = 0.0;
  Stage stage = Stage::sent;
  TimePoint due{};  // when the next thing happens to it by itself

  // Number by which the client knows it: it speaks of a close or of stops by the ticket, of a change or a
  // cancellation by the order.
  std::int64_t known_as() const { return reference != 0 ? reference : number; }

  bool operator==(const TradeRequest&) const = default;
};

// As the book names them.
std::string_view name_of(TradeKind kind);
std::string_view name_of(TradeRequest::Stage stage);

}  // namespace tutti
