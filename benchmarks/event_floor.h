#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "benchmarks/interleaved.h"
#include "sessions/contract/account_summary.h"
#include "sessions/contract/symbol.h"

namespace tutti::bench {

// The least that an event can cost: its values stored in flat arrays, one per value, and a dirty bit set.
class EventFloor {
 public:
  EventFloor(std::size_t sessions, std::size_t symbols)
      : symbols_(symbols),
        summaries_(7, std::vector<double>(sessions)),
        bids_(sessions * symbols),
        asks_(sessions * symbols),
        dirty_(sessions * symbols / 64 + 1) {}

  // One event for each session, with the values from `next` on and around; answers which one comes next.
  std::size_t summaries(const std::vector<AccountSummary>& values, std::size_t next) {
    double* const balance = summaries_[0].data();
    double* const floating_pl = summaries_[1].data();
    double* const credit = summaries_[2].data();
    double* const equity = summaries_[3].data();
    double* const used_margin = summaries_[4].data();
    double* const margin_level = summaries_[5].data();
    double* const free_margin = summaries_[6].data();
    std::uint64_t* const dirty = dirty_.data();
    const std::size_t sessions = summaries_[0].size();
    const AccountSummary* const first = values.data();
    const std::size_t count = values.size();
    for (std::size_t session = 0; session < sessions; ++session) {
      const AccountSummary& event = first[next];
      balance[session] = event.balance;
      floating_pl[session] = event.floating_pl;
      credit[session] = event.credit;
      equity[session] = event.equity;
      used_margin[session] = event.used_margin;
      margin_level[session] = event.margin_level;
      free_margin[session] = event.free_margin;
      dirty[session / 64] |= std::uint64_t{1} << session % 64;
      memory_barrier();
      if (++next == count) next = 0;
    }
    return next;
  }

  std::size_t prices(const std::vector<Symbol>& values, std::size_t next) {
    double* const bids = bids_.data();
    double* const asks = asks_.data();
    std::uint64_t* const dirty = dirty_.data();
    const std::size_t end = bids_.size();
    const Symbol* const first = values.data();
    const std::size_t count = values.size();
    for (std::size_t session = 0; session < end; session += symbols_) {
      const Symbol& event = first[next];
      const std::size_t place = session + static_cast<std::size_t>(event.id) - 1;
      bids[place] = event.bid;
      asks[place] = event.ask;
      dirty[place / 64] |= std::uint64_t{1} << place % 64;
      memory_barrier();
      if (++next == count) next = 0;
    }
    return next;
  }

 private:
  std::size_t symbols_;
  std::vector<std::vector<double>> summaries_;  // by value, then session
  std::vector<double> bids_;                    // by session, then symbol
  std::vector<double> asks_;
  std::vector<std::uint64_t> dirty_;
};

}  // namespace tutti::bench
