#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "ledger/ledger_queries.h"

namespace tutti {

// A fill of a ticket, by price and time.
struct FillPoint {
  std::int32_t account = 0;
  bool buys = false;  // in the market
  double lots = 0.0;
  double price = 0.0;
  std::chrono::milliseconds after{0};  // from the click until it was heard of, both by our clock; 0 and up
  std::optional<double> worse{};       // than the price at the click, above 0; nothing where that is unknown
  bool operator==(const FillPoint&) const = default;
};

// The fills of the opened ticket as they lie over price and time.
struct TicketPicture {
  enum class State : std::uint8_t {
    shown,
    nothing_filled,   // or not yet
    several_symbols,  // which have no price in common
  };

  State state = State::nothing_filled;
  double price_at_click = 0.0;      // 0: not known
  int digits = 0;                   // decimals of the prices
  std::vector<FillPoint> points{};  // in the order in which they were stored; none unless they are shown
  bool operator==(const TicketPicture&) const = default;

  // `fills` are all of the ticket's.
  static TicketPicture of(const TicketRecord& ticket, const std::vector<FillRecord>& fills);
  // Lots of all points.
  double lots() const;
};

}  // namespace tutti
