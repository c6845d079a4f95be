#pragma once

#include "ledger/ledger.h"

namespace tutti {

// Keeps nothing and says that all is stored: for measuring and testing what has nothing to do with the disk.
class NoLedger final : public Ledger {
 public:
  void know(Sender, const LedgerAccount&) override {}
  Mark store(const LedgerTicket&, Requests, Requests, Mark, const Books&) override { return 1; }
  Stored state(Mark) const override { return Stored::yes; }
  Stored wait(Mark, std::chrono::milliseconds) override { return Stored::yes; }
  bool leaves(RequestId) override { return true; }
  void sent(const SentOrder&) override {}
  void note(LedgerEvent) override {}
  std::string fault() const override { return {}; }
  const std::vector<LedgerUnknown>& unknown() const override { return unknown_; }
  const std::vector<LedgerUnknown>& working() const override { return unknown_; }
  std::string id() const override { return {}; }
  std::int64_t left(Sender) const override { return 0; }
  void accept_missing(Sender, std::int64_t) override {}
  TimePoint known_until() const override { return {}; }
  const std::vector<LedgerUnknown>& never_left() const override { return unknown_; }
  const std::vector<LedgerPastTicket>& recent() const override { return recent_; }

 private:
  std::vector<LedgerUnknown> unknown_;
  std::vector<LedgerPastTicket> recent_;
};

}  // namespace tutti
