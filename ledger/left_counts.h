#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include <tsl/robin_map.h>

#include "ledger/entries.h"

namespace tutti {

// How many requests have left for each account over all runs, so that a server that has taken more shows what
// the ledger lacks. Answers to requotes are not counted.
class LeftCounts {
 public:
  // Of earlier runs.
  void begin(std::map<LedgerAccount, std::int64_t> earlier) { counts_ = std::move(earlier); }
  void know(Sender sender, const LedgerAccount& account) { of_[sender] = &counts_[account]; }
  void add(Sender sender, std::int64_t requests) {
    if (const auto at = of_.find(sender); at != of_.end()) *at->second += requests;
  }
  std::int64_t of(Sender sender) const {
    const auto at = of_.find(sender);
    return at == of_.end() ? 0 : *at->second;
  }

 private:
  std::map<LedgerAccount, std::int64_t> counts_;
  tsl::robin_map<Sender, std::int64_t*> of_;  // within them
};

}  // namespace tutti
