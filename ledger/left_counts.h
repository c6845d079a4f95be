#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include <tsl/robin_map.h>

#include "ledger/entries.h"

namespace tutti {

// How many requests have left for each account over all runs, so that a server that has taken more shows what
// the ledger lacks. Answers to requotes are not counted. What stands under one number counts together: the
// same account may be written with another address of its server, or be another user's, too.
class LeftCounts {
 public:
  // Of earlier runs.
  void begin(std::map<std::int32_t, std::int64_t> earlier) { counts_ = std::move(earlier); }
  void know(Sender sender, const LedgerAccount& account) { of_[sender] = &counts_[account.account]; }
  void add(Sender sender, std::int64_t requests) {
    if (const auto at = of_.find(sender); at != of_.end()) *at->second += requests;
  }
  std::int64_t of(Sender sender) const {
    const auto at = of_.find(sender);
    return at == of_.end() ? 0 : *at->second;
  }

 private:
  std::map<std::int32_t, std::int64_t> counts_;  // by the number of the account
  tsl::robin_map<Sender, std::int64_t*> of_;     // within them
};

}  // namespace tutti
