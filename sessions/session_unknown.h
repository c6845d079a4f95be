#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <span>
#include <string_view>

#include "ledger/ledger.h"
#include "sessions/sent_requests.h"

namespace tutti {

// What nobody knows the outcome of: gives up waiting for an account session's requests, asks the broker what
// became of them, and tells what it learns in the journal and in the rows that show them.
class SessionUnknown {
 public:
  SessionUnknown(SessionScope& scope, SentRequests& sent, const Ledger& ledger)
      : scope_(scope), sent_(sent), ledger_(ledger), told_until_(ledger.known_until()) {
    sent_.on_conflict = [this](const SentOrder& request) { in_conflict(request); };
  }

  // Gives up waiting for it, journaled. `reason`: "late" or "lost", for the ledger.
  void give_up(SentOrder& request, std::string_view reason);
  // The same for all that have left.
  void give_up_all(std::string_view reason);
  // The same for one that no word came for in too long while the connection stands: its row says so, and it
  // is asked for.
  void overdue(SentOrder& request);
  // Its outcome has become known by other ways than its answer: its row says so.
  void known(const SentOrder& request);

  // What was known of it for good is contradicted: message and alarm, journal, and its row say so.
  void in_conflict(const SentOrder& request);

  // Asks what became of all of them, of entry orders that the account lists no more, and what was filled
  // while nobody was logged in: a stop loss waits for nobody. To be called once the account's data are there.
  // `whole`: the ledger lacks nothing that the server has; else no position tells anything.
  void ask(bool whole);
  // What the broker answers to that.
  void told(RequestId id, RequestState state, double lots);
  // Reads back what was filled of late and brings no report with it. What comes twice is kept once.
  void read_fills(std::chrono::milliseconds of_late);
  // `complete`: the broker keeps all that was asked for.
  void fills_told(std::span<const Execution> fills, bool complete);
  // How many of these answers are still to come.
  int asked() const { return asked_; }

 private:
  // False where the broker can't be asked.
  bool ask(SentOrder& request);
  // Who can't be asked may show all the same what became of a market order: by its position, where that
  // leaves no doubt.
  void look_at_positions(SentOrder& request);
  bool is_of_another(std::int64_t ticket, const SentOrder& request) const;
  // nullptr when nobody knew of it before this run.
  const LedgerUnknown* earlier(const SentOrder& request) const;
  void tell_row(const SentOrder& request, std::string_view text, std::string_view text_of_cancel);

  SessionScope& scope_;
  SentRequests& sent_;
  const Ledger& ledger_;
  int asked_ = 0;
  TimePoint told_until_;  // what was filled before has been told
  bool whole_ = true;     // as `ask` was told
  // What was asked for, in the order in which it is answered: fills since what was told last with some time
  // before to be sure, exactly since then, or others.
  enum class Reads : std::uint8_t { others, since_told, exactly };
  bool read(TimePoint since, Reads what);
  std::deque<Reads> reads_;
};

}  // namespace tutti
