#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

#include "ledger/ledger.h"
#include "sessions/asked_requests.h"

namespace tutti {

// What the gate has handed to the ledger, and sends once it is stored: whole, or where it is large in parts,
// each of which leaves when it is stored.
struct WaitingTicket {
  // Of more requests than `whole` each part of so many is stored and sent for itself.
  static constexpr std::size_t whole = 1000;
  static constexpr std::size_t part = 500;

  std::vector<Ledger::Mark> marks;  // of its parts; none: it is stored
  std::chrono::milliseconds since{0};
  LedgerTicket about{};
  AskedRequests asked;
  bool unrecorded = false;  // the operator has it sent although it can't be stored
  std::size_t first = 0;    // of the part that is next; those before it have left

  static std::size_t step(std::size_t all) { return all > whole ? part : all; }
  Ledger::Mark mark() const { return marks[first / step(asked.size())]; }
  std::size_t end() const { return std::min(first + step(asked.size()), asked.size()); }
  bool done() const { return first >= asked.size(); }
};

}  // namespace tutti
