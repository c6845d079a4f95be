#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/clock.h"
#include "ledger/entries.h"
#include "ledger/ledger_file.h"
#include "ledger/ledger_records.h"

namespace tutti {

// Reads what the ledger has, for whoever shows it. Throws as the file does.
class LedgerQueries {
 public:
  explicit LedgerQueries(LedgerFile& file) : file_(file) {}

  // Another one than before when something was stored since.
  std::int64_t version();
  // Oldest first.
  std::vector<FillRecord> fills(const FillFilter& filter);
  // Newest first, so many at most.
  std::vector<TicketRecord> newest_tickets(int count);
  std::optional<TicketRecord> ticket(std::int64_t number);
  // In the order of their ids.
  std::vector<TicketRequest> requests_of(std::int64_t ticket);
  // Those of these requests that are stored, with the others of their tickets; in the order of their ids.
  std::vector<TicketRequest> with_tickets_of(std::span<const RequestId> requests);
  // Those whose outcome nobody knows, oldest first; `more` are so too, and the file does not say it yet.
  std::vector<LedgerUnknown> unknown(std::span<const LedgerEvent> more = {});
  // When the last commit was made; the epoch while there is none.
  TimePoint last_commit();
  // Those that never left, of tickets that have a name; oldest first.
  std::vector<LedgerUnknown> never_left();
  // Entry orders that wait for their price; oldest first.
  std::vector<LedgerUnknown> working();
  std::optional<NamedTicket> named(const std::string& key, const std::string& plan);
  // How many requests have left by the number of their account, answers to requotes not counted, with those
  // that the operator knows to be missing.
  std::map<std::int32_t, std::int64_t> left();
  // Tickets since a time that were not refused here, but for closes and cancels; of the last thousand.
  std::vector<LedgerPastTicket> recent(TimePoint since);

 private:
  // By its number in the file.
  const LedgerAccount& account(std::int64_t number);
  std::vector<TicketRecord> tickets(const std::string& which, std::int64_t value);
  void add_outcomes(TicketRecord& ticket);
  void add_taken_since(LedgerUnknown& unknown);
  void add_open(const std::string& which, RequestId id, std::vector<LedgerUnknown>& out);

  LedgerFile& file_;
  std::map<std::int64_t, LedgerAccount> accounts_;  // that were looked up
};

}  // namespace tutti
