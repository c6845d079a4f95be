#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "core/clock.h"
#include "core/lot_limits.h"
#include "sessions/contract/account_info.h"
#include "sessions/contract/account_summary.h"
#include "sessions/contract/execution.h"
#include "sessions/contract/open_position.h"
#include "sessions/contract/order_report.h"
#include "sessions/contract/pending_order.h"
#include "sessions/contract/request_id.h"
#include "sessions/contract/request_state.h"
#include "sessions/contract/requote.h"
#include "sessions/contract/symbol.h"

namespace tutti {

// Which event of the contract a report is. The numbers stand in messages.
enum class Answer : std::uint8_t {
  order = 1,
  close,
  accepted,  // what was pending
  rejected,
  entry,
  update_entry,
  new_stops,
  update_stops,
  cancel_entry,
  cancel_stops,
  entry_done,  // a price set an entry order off, or the stops of a position
  entry_no_money,
  entry_no_hedging,
  stops_done,
  stops_no_money,
  cancelled,  // an order is gone without an event of its own
};
inline constexpr auto last_answer = Answer::cancelled;

// What a server tells, as it goes over the wire.
namespace news {

struct SymbolEntry {
  Symbol symbol;
  double limit_distance = 0.0;  // points
  double stop_distance = 0.0;
  bool carried = true;
};
// A part of the list of symbols.
struct Symbols {
  std::vector<SymbolEntry> entries;
  bool last = true;
};
struct Price {
  std::string symbol;
  double bid = 0.0;
  double ask = 0.0;
  double high = 0.0;  // 0 when not told
  double low = 0.0;
  TimePoint time{};

  bool operator==(const Price&) const = default;
};
// The list of positions begins, and has so many; they follow.
struct PositionList {
  std::int64_t count = 0;
};
struct Position {
  OpenPosition position;
  bool listed = false;  // part of that list, else a change
  bool gone = false;
  std::int64_t count = 0;  // of the list, where it begins without a word of its own
};
struct Order {
  PendingOrder order;
  std::string id_text{};  // of the request that was accepted last
  bool listed = false;
  bool gone = false;
  std::int64_t count = 0;  // of a list: how many there are; with none of them the order is empty
  bool last = false;
};
struct Report {
  Answer answer = Answer::order;
  OrderReport report;
  std::string id_text{};
  std::string original_text{};
};
// A request that was not taken.
struct Refused {
  RequestId id = 0;
  std::string id_text{};
  RequestCode code = RequestCode::silent;
  std::string text{};
};
struct Told {
  RequestId id = 0;
  std::string id_text{};
  RequestState state = RequestState::not_told;
  double lots = 0.0;
};
struct Fills {
  std::vector<Execution> fills;
  bool complete = true;
  bool last = true;
};
struct Summary {
  AccountSummary summary;
  AccountInfo info;
  bool owned = true;
  BookEra era = 0;
  LotLimits lots;
};
// A new price for an order in dealing, for so many seconds.
struct Offer {
  Requote requote;
};
struct Time {
  TimePoint time{};
};

}  // namespace news

using WireNews =
    std::variant<news::Symbols, news::Price, news::PositionList, news::Position, news::Order, news::Report,
                 news::Refused, news::Told, news::Fills, news::Summary, news::Offer, news::Time>;

}  // namespace tutti
