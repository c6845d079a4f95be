#pragma once

#include <cstddef>
#include <vector>

#include <tsl/robin_map.h>

#include "benchmarks/bench_terminal.h"
#include "orders/close_helper.h"

namespace tutti::bench {

// A terminal whose accounts hold positions that are closed, each by a request of its own.
class CloseDriver {
 public:
  CloseDriver(const BenchMarket& market, std::size_t accounts, std::size_t positions);

  // Each answers nanoseconds per position. Requests alone, through the close helper:
  double requests();
  // The client found by its account, and both texts made and sent.
  double requests_floor();
  // Request, answer, and the position gone from every list; all of them, which are opened anew before.
  double all_closed();

 private:
  OpenPosition position(std::size_t index) const;
  BenchClient& client_of(std::size_t index) { return *clients_[index % clients_.size()]; }
  void open_all();
  void answer(std::size_t index);

  const BenchMarket& market_;
  std::size_t positions_;
  BenchTerminal terminal_;
  CloseHelper helper_;
  std::vector<BenchClient*> clients_;
  tsl::robin_map<std::int32_t, ClientAPI*> client_of_account_;
};

}  // namespace tutti::bench
