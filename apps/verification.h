#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "dealer/link/dealing_server.h"
#include "shell/Main.h"

namespace tutti {

// Compares what the terminal shows with the dealing server's own books: every account's values, the totals,
// the positions and their net sums, the pending orders, and what the journal and the sessions say became of
// each order.
//
// To be run when no event waits; a difference is then a fault on either side. Money is compared to half a
// cent, prices and amounts exactly as shown.
class Verification {
 public:
  // Long, average long, short, average short, net, profit.
  using NetValues = std::array<double, 6>;

  Verification(Main& main, const DealingServer& server) : main_(main), server_(server) {}

  // One line per difference, empty when there is none.
  std::vector<std::string> run();

 private:
  void differ(std::int32_t account, const std::string& what);
  void compare(std::int32_t account, const std::string& what, double shown, double booked, double tolerance);
  void check_account(const AccountSummary& shown, const TradingAccount& booked);
  void check_totals();
  void check_positions();
  void check_net();
  void compare_net(std::int32_t account, const std::string& of, const NetValues& shown,
                   const NetValues& booked);
  void check_orders();
  void check_outcomes();
  // The account as booked, when the terminal shows it as connected.
  const TradingAccount* connected(std::int32_t account) const;

  Main& main_;
  const DealingServer& server_;
  std::vector<std::string> differences_;
};

}  // namespace tutti
