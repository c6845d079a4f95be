#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "ledger/stored_form.h"

namespace tutti::testing {

// A ledger whose disk the test turns: it says what the test says, and keeps what it is told.
class ScriptedLedger : public Ledger {
 public:
  Stored says = Stored::yes;
  std::string why;                  // nothing can be stored
  std::size_t may_leave = 1000000;  // so many more
  std::vector<std::pair<LedgerTicket, std::vector<LedgerRequest>>> stored;
  std::vector<LedgerEvent> events;
  int waits = 0;
  std::vector<LedgerPastTicket> recent_;

  void know(Sender, const LedgerAccount&) override {}
  Mark store(const LedgerTicket& about, Requests ticket, Requests part, Mark, const Books& books) override {
    stored.emplace_back(ticket_of(about, stored_form(ticket, books)), stored_form(part, books));
    return stored.size();
  }
  Stored state(Mark) const override { return says; }
  Stored wait(Mark, std::chrono::milliseconds) override {
    ++waits;
    return says;
  }
  bool leaves(RequestId) override { return may_leave > 0 && may_leave-- > 0; }
  void sent(const SentOrder& request) override { events.push_back(answer_of(request)); }
  void note(LedgerEvent event) override { events.push_back(std::move(event)); }
  std::string fault() const override { return why; }
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
};

}  // namespace tutti::testing
