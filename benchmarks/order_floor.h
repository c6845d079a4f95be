#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "benchmarks/bench_market.h"
#include "sessions/contract/ClientAPI.h"
#include "sessions/contract/codes.h"

namespace tutti::bench {

// The least that splitting and sending can cost: flat arrays, and the calls of the trading library that
// nobody can do without.
class OrderFloor {
 public:
  OrderFloor(const BenchMarket& market, std::vector<ClientAPI*> clients);

  // Splits by equity: who is logged in and carries the symbol, the sum of their equities, then the same
  // questions again for the shares.
  void distribute(double amount, std::string_view symbol, int decimals);
  // One order per account: its identifier of the symbol looked up by name, the order made, and sent.
  void fan_out(Operation side, std::string_view symbol);

  const std::vector<double>& shares() const { return shares_; }

 private:
  struct Order {
    double amount = 0.0;
    Operation side{};
    std::int32_t symbol_id = 0;
    RequestCode request_code{};
  };

  std::vector<ClientAPI*> clients_;
  std::vector<BenchMarket::Identifiers> identifiers_;  // of each account's symbols
  std::vector<double> shares_;
  std::vector<Order> orders_;
};

}  // namespace tutti::bench
