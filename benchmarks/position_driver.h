#pragma once

#include <cstddef>
#include <vector>

#include "benchmarks/bench_terminal.h"
#include "benchmarks/position_floor.h"

namespace tutti::bench {

// A terminal whose accounts hold positions, opened as fan-outs open them: one symbol in all accounts, then
// the next. Their profits change in that order, as they do when one symbol after the other moves.
class PositionDriver {
 public:
  PositionDriver(const BenchMarket& market, std::size_t accounts, std::size_t positions);

  // Each answers nanoseconds per event, of runs of a few thousand events.
  double profits();
  double profits_floor();

 private:
  struct Open {
    CLAPICLASS* sink;
    std::size_t account;
    std::size_t symbol;
  };

  OpenPosition position(std::size_t index) const;
  // Tells one position after the other what it is worth now.
  template <class Tell>
  double per_event(std::size_t& next, Tell&& tell);
  // Both ways must have led to the same sums.
  void check();

  const BenchMarket& market_;
  BenchTerminal terminal_;
  PositionFloor floor_;
  std::vector<Open> open_;
  std::vector<OpenPosition> events_;
  std::size_t next_ = 0;        // event of the terminal's
  std::size_t next_floor_ = 0;  // event of the floor's
};

}  // namespace tutti::bench
