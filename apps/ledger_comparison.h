#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "dealer/link/dealing_server.h"
#include "ledger/ledger_queries.h"
#include "ledger/request_outcomes.h"

namespace tutti {

// Compares what the ledger says became of each request, and what was filled, with what the dealing server
// keeps of the same for good. To be run when all is stored and no request is on its way.
class LedgerComparison {
 public:
  // Who the server's accounts are in the ledger, by their numbers: the same number may stand there under
  // other servers and users too.
  using Accounts = std::map<std::int32_t, LedgerAccount>;

  // Of these accounts. What the server has from before the ledger's first request is left out.
  LedgerComparison(const DealingServer& server, Accounts compared)
      : server_(server), compared_(std::move(compared)) {}

  // One line per difference, empty when there is none. Both as the ledger has them, oldest first.
  std::vector<std::string> run(const std::vector<RequestOutcome>& requests,
                               const std::vector<FillRecord>& fills);
  // Fills of the ledger that are of nobody's request here.
  int elsewhere() const { return elsewhere_; }

 private:
  bool compared(const LedgerAccount& account) const;
  void differ(std::int32_t account, const std::string& what);
  void compare_requests(const std::vector<RequestOutcome>& requests, const HistoryState& booked);
  void compare_fills(const std::vector<FillRecord>& fills, const HistoryState& booked,
                     const RequestOutcome& first);

  const DealingServer& server_;
  Accounts compared_;
  std::vector<std::string> differences_;
  int elsewhere_ = 0;
};

}  // namespace tutti
