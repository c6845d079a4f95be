#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/clock.h"
#include "ledger/entries.h"

namespace tutti {

// An execution, as the ledger has it.
struct FillRecord {
  std::int64_t seq = 0;
  TimePoint time{};         // the server's; ours where it told none
  TimePoint heard{};        // ours, when it was heard of
  std::int64_t ticket = 0;  // of the request; 0 when the fill is of no request of ours
  RequestId request = 0;    // 0 as well
  LedgerAccount account{};
  bool closes = false;
  std::int64_t order = 0;  // of a close the position, 0 when not told
  std::string symbol{};    // empty when not told
  Operation side{};        // of what it did in the market; `none` when not told
  double lots = 0.0;
  double price = 0.0;                  // 0 when not told
  int price_digits = 0;                // as many as one of the symbol's prices here has
  std::optional<double> profit{};      // interest included; nothing when not told
  std::optional<double> commission{};  // below 0 when charged
  std::string currency{};              // of these two; empty when not told
  std::string execution{};             // the broker's name for it
};

// Which of them; what is empty does not narrow.
struct FillFilter {
  std::optional<TimePoint> since{};  // this moment included
  std::optional<TimePoint> until{};  // this one not
  std::vector<std::int32_t> accounts{};
  std::string symbol{};
  std::int64_t ticket = 0;
  std::int64_t after = 0;  // seq: only those that were stored behind it
};

// How many requests of a ticket have come to the same.
struct TicketOutcome {
  LedgerState state = LedgerState::stored;
  std::string reason{};   // as the event has it; whose code the next is: "request code", "result code"
  std::int64_t code = 0;  // 0 without
  int requests = 0;
};

// What was filled of a ticket in all; prices count where one symbol was meant.
struct TicketFills {
  int fills = 0;
  double lots = 0.0;
  double average = 0.0;  // price, by lots
  double least = 0.0;
  double most = 0.0;
  int price_digits = 0;
};

// An act of the operator, and what became of it.
struct TicketRecord {
  std::int64_t number = 0;
  TimePoint time{};
  RequestKind kind = RequestKind::open;
  std::string symbol{};         // empty where several are meant
  Operation side{};             // `none` where several are meant
  double total = 0.0;           // lots
  double price_at_click = 0.0;  // 0: not known
  double price = 0.0;           // of an entry order
  std::string by{};
  std::int64_t retry_of = 0;
  std::vector<TicketOutcome> outcomes{};  // in the order of their states
  TicketFills filled{};
};

// Which of a ticket's requests are sent again: those that had no effect for sure, or those of which only the
// operator says so.
enum class RetryPart : std::uint8_t { no_effect, settled_by_hand };

// A request of a ticket, and what became of it.
struct TicketRequest {
  RequestId id = 0;
  std::int64_t ticket = 0;
  LedgerAccount account{};
  RequestKind kind = RequestKind::open;
  std::string symbol{};
  Operation side{};
  double lots = 0.0;
  double price = 0.0;       // asked for, 0 without
  std::int64_t number = 0;  // order or position, 0 when not told
  LedgerState state = LedgerState::stored;
  std::string reason{};
  std::int64_t code = 0;
  std::string note{};
  std::optional<std::chrono::milliseconds> answered{};  // after the click, to what is known last
  double filled = 0.0;
  double fill_price = 0.0;  // by lots, 0 without
  int price_digits = 0;     // of it
  TimePoint filled_at{};    // of the last fill; the server's, ours where it told none
  RequestId retried_by = 0;
  StopPrices stops{};  // of an entry order, an update, and stops

  // It belongs to these, and was not sent again yet.
  bool may_be_retried(RetryPart part = RetryPart::no_effect) const;
  // An earlier run stored it and ended before it left.
  bool was_left_behind() const { return state == LedgerState::stored && !reason.empty(); }
};

// A ticket that the operator gave a name.
struct NamedTicket {
  std::int64_t number = 0;
  bool same_plan = false;  // as the one that it is asked for with again
  int planned = 0;         // requests
  bool operator==(const NamedTicket&) const = default;
};

}  // namespace tutti
