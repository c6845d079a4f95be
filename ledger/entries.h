#pragma once

#include <chrono>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "books/sent_order.h"
#include "core/clock.h"
#include "sessions/contract/entry_order.h"
#include "sessions/contract/realised.h"

namespace tutti {

// What the ledger is told, as plain values: no text is made and no file is touched where they are made.

// Who an account is, for good: its number alone may stand under several users and servers.
struct LedgerAccount {
  std::string server;  // "address:port"
  std::string user;
  std::int32_t account = 0;

  auto operator<=>(const LedgerAccount&) const = default;
};

// Whose act it is: the operator's trading, or that he stopped it.
enum class TicketOrigin : std::uint8_t { here, stop };

// What the operator did with one act, and had sent.
struct LedgerTicket {
  RequestKind kind = RequestKind::open;
  std::string symbol{};                     // empty where several are meant
  Operation side{};                         // `none` where several are meant
  double total = 0.0;                       // lots of all its requests together
  double price_at_click = 0.0;              // 0: not known
  std::chrono::milliseconds quote_age{-1};  // of that price; below 0: not known
  std::int64_t retry_of = 0;                // number of the ticket whose rest is sent again, 0 none
  TicketOrigin origin = TicketOrigin::here;
  std::string override_reason{};  // why it went over a limit; empty: it did not
  double typed_total = 0.0;       // lots that the operator split, 0: not known; not stored
  std::string key{};              // the operator's own name for it, unique over all tickets; empty: none
  std::string plan{};             // what an act of this name has to be asked for with; its digest is stored
};

// What is known of a ticket of an earlier run.
struct LedgerPastTicket {
  RequestKind kind = RequestKind::open;
  std::string symbol;
  Operation side{};
  double total = 0.0;
  std::size_t count = 0;  // of its requests
  TimePoint time{};
};

// One request as it is to leave. `round` and `stops_order` of a sent order are the windows' own.
struct LedgerRequest {
  RequestId id = 0;
  Sender sender = 0;
  RequestKind kind = RequestKind::open;
  std::string symbol{};
  Operation side{};    // of what it does in the market
  double lots = 0.0;   // 0 where it has none
  double price = 0.0;  // 0 where it has none
  StopPrices stops{};
  std::int64_t reference = 0;  // order or ticket that it is about
  RequestId retry_of = 0;      // the one that is sent again with it, 0 none
  bool accepts = false;        // of an answer to a requote
  BookEra era = 0;             // of the server's book at that time
  // What the account held then: lots of the symbol, sold ones below 0, and the greatest number of a position
  // or order.
  double net_before = 0.0;
  std::int64_t greatest_before = 0;
};

// How far a request has come. What is stored and has not left has no event.
enum class LedgerState : std::uint8_t {
  stored,        // it never left, and the run that was to send it is over
  refused_here,  // the gate did not let it out
  dropped,       // it was stored and did not leave
  taken,
  refused,
  pending,
  working,  // an entry order that waits for its price
  part,     // executed in part, the rest alive
  filled,
  part_filled,  // executed in part, the rest ended
  done,         // what opens and closes nothing
  cancelled,
  unknown,
  never,  // the broker says for good that it has not taken it
  gone,   // the broker has another book than the one it was sent to
  hand,   // the operator's word
};

// What is known of it from: the broker's answer, the broker asked later, the account's positions, the
// operator, or the time gone by.
enum class LedgerEvidence : std::uint8_t { answer, asked, positions, hand, clock };

// What the operator says that he saw, as the reason of `hand`.
inline constexpr std::string_view hand_filled = "filled";
inline constexpr std::string_view hand_not_executed = "not-executed";

// The reason of what contradicts an outcome that was final.
inline constexpr std::string_view ledger_conflict = "conflict";

// Something that became of a request, and what was filled with it.
struct LedgerEvent {
  RequestId request = 0;  // 0: that of the working order `order`; with a fill perhaps nobody's
  Sender sender = 0;
  LedgerState state = LedgerState::taken;
  LedgerEvidence evidence = LedgerEvidence::answer;
  std::string reason{};
  std::int32_t code = 0;    // request or result code, 0 without
  std::int64_t order = 0;   // the broker's number, 0 when not told
  std::string note{};       // the broker's own words
  TimePoint server_time{};  // the epoch when it tells none
  TimePoint time{};         // here
  std::string execution{};  // of the fill
  bool closes = false;
  bool fill_alone = false;  // read back: of the request nothing is told, and `state` does not count
  double filled = 0.0;      // lots of the fill, 0 without
  double price = 0.0;       // of the fill
  std::string symbol{};
  Operation side{};        // of what the fill did in the market
  std::string currency{};  // of the account
  std::optional<Realised> realised{};
};

// A request of an earlier run that nobody knows the outcome of, that never left, or that works.
struct LedgerUnknown {
  RequestId id = 0;
  LedgerAccount account;
  RequestKind kind = RequestKind::open;
  std::string symbol;
  Operation side{};
  double lots = 0.0;
  double price = 0.0;
  std::int64_t number = 0;  // order or ticket, 0 when none was told
  BookEra era = 0;
  std::string why;  // "late", "lost", "crash"
  TimePoint since{};
  std::int64_t greatest_before = -1;        // as LedgerRequest has it; below 0: not known
  std::vector<std::int64_t> taken_since{};  // greater numbers that other requests of the account were given
};

}  // namespace tutti
