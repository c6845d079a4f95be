#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "benchmarks/bench_terminal.h"
#include "benchmarks/order_floor.h"

namespace tutti::bench {

// A terminal whose accounts are all ticked, for distributing an amount by equity and buying a symbol with it,
// and the bare work for the same accounts.
class OrderDriver {
 public:
  OrderDriver(const BenchMarket& market, std::size_t accounts);

  // Each answers nanoseconds per account, of runs over a few thousand accounts.
  double distribute();
  double distribute_floor();
  double fan_out();
  double fan_out_floor();

 private:
  // Tells every session that its order was executed, and lets the terminal do what it does each second.
  void answer_orders();
  // Both ways must have led to the same shares and orders.
  void check() const;
  std::size_t runs() const;
  double per_account(double time) const;

  std::vector<AccountSummary> values_;
  std::vector<const AccountSummary*> current_values_;
  std::vector<BenchClient*> clients_;
  std::string symbol_;
  BenchTerminal terminal_;
  OrderFloor floor_;
  std::int64_t answered_ = 0;  // number of the last order that was answered
};

}  // namespace tutti::bench
