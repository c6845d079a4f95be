#pragma once

#include <cstddef>
#include <vector>

#include "benchmarks/bench_terminal.h"
#include "benchmarks/event_floor.h"

namespace tutti::bench {

// The events of all accounts of a terminal, one account after the other, each with other values than its
// last.
class GuiEvents {
 public:
  explicit GuiEvents(BenchTerminal& terminal);

  // The whole event, from the session's sink to row and totals.
  void summaries(std::size_t count);
  // Just what it does to the accounts list: the seven numbers of the account's row.
  void rows(std::size_t count);
  // The row that the next event is about.
  std::size_t place() const { return account_; }
  // What rows() brings, stored in flat arrays; see EventFloor. In passes over all accounts.
  void floor(std::size_t passes);

 private:
  // The next event's values, and on to the account after.
  const AccountSummary& advance();

  BenchTerminal& terminal_;
  std::vector<AccountSummary> values_;
  std::vector<CLAPICLASS*> sinks_;
  std::vector<Row*> rows_;
  EventFloor floor_;
  std::size_t account_ = 0;
  std::size_t next_ = 0;
};

}  // namespace tutti::bench
