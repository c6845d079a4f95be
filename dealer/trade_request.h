#pragma once

#include <cstdint>
#include <string>

namespace tutti {

enum class TradeKind : std::uint8_t {
  open,          // market order
  close,         // of a position, whole or in part
  entry,         // new entry order
  cancel_entry,  // takes an entry order away
  cancel_stops,  // takes the stop loss and take profit of a position away
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

  std::int64_t number = 0;  // order number; the position it opens gets the same number as its ticket
  std::int32_t account = 0;
  TradeKind kind = TradeKind::open;
  std::int64_t reference = 0;  // position to close, order to cancel; else 0
  std::int32_t operation = 0;  // operation:: code of the order, or of the position or order it refers to
  std::string symbol;
  double amount = 0.0;  // lots
  double price = 0.0;   // of an entry order; agreed on, once a market request is in dealing; else 0
  double stop_loss = 0.0;
  double take_profit = 0.0;
  Stage stage = Stage::sent;

  // Number by which the client knows it: it speaks of a close by its ticket, of a cancellation by the order.
  std::int64_t known_as() const { return reference != 0 ? reference : number; }
};

}  // namespace tutti
