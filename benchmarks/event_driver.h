#pragma once

#include <cstddef>
#include <vector>

#include "benchmarks/bench_terminal.h"
#include "benchmarks/event_floor.h"

namespace tutti::bench {

// The values that summary events bring, one after the other.
std::vector<AccountSummary> changing_summaries();

// A terminal and the trading library's view of it: the sinks of all sessions, told changing values in turn;
// and the bare stores for as many sessions.
class EventDriver {
 public:
  EventDriver(const BenchMarket& market, std::size_t sessions);

  static constexpr std::size_t events_per_run = 5000;

  // Each answers nanoseconds per event, of one run.
  double summaries();
  double summaries_floor();
  double prices();
  double prices_floor();

 private:
  template <class Pass>
  double per_event(Pass&& pass) const;

  BenchTerminal terminal_;
  EventFloor floor_;
  std::vector<CLAPICLASS*> sinks_;
  std::vector<AccountSummary> summaries_;
  std::vector<Symbol> prices_;
  std::size_t next_ = 0;
};

}  // namespace tutti::bench
