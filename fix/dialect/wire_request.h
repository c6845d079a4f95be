#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "core/clock.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/entry_order.h"
#include "sessions/contract/request_id.h"

namespace tutti {

enum class RequestKind : std::uint8_t {
  open,
  close,
  entry,
  update_entry,
  cancel_entry,
  set_stops,
  cancel_stops,
  accept_requote,
  reject_requote,
};

// An operation of the contract as it goes over the wire. What a kind does not have stays as it is here.
struct WireRequest {
  RequestKind kind = RequestKind::open;
  RequestId id = 0;
  std::string id_text{};  // as it stands in the message
  // Of the last request of the order that the broker accepted; empty when that is not known.
  std::string original_text{};
  std::int64_t number = 0;  // order or ticket that it is about
  std::string symbol{};
  Operation operation{};  // of the order, with its kind; of a close, of what closes
  double lots = 0.0;
  double price = 0.0;
  StopPrices stops{};
  TimePoint time{};
};

// What a client asks for beside its orders.
namespace ask {
struct Symbols {};
struct Prices {
  std::vector<std::string> symbols;
};
struct Positions {};
struct Orders {};
struct Summary {};
struct Request {
  RequestId id = 0;
  std::string id_text{};
  BookEra era = 0;
};
struct Fills {
  TimePoint since{};
};
}  // namespace ask

using WireAsk = std::variant<WireRequest, ask::Symbols, ask::Prices, ask::Positions, ask::Orders,
                             ask::Summary, ask::Request, ask::Fills>;

}  // namespace tutti
