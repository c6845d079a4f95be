#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <tsl/robin_map.h>

#include "books/books.h"
#include "books/request_book.h"
#include "core/MGeneral.h"
#include "core/for_now.h"
#include "core/stop_sign.h"
#include "ledger/ledger.h"
#include "sessions/held_ticket.h"
#include "sessions/ticket_judge.h"

namespace tutti {

// Who says what may go: the stop, the limits, and what nobody knows the outcome of. The gate asks before it
// stores a ticket, and again as each request is about to leave.
//
// A ticket over a limit is held whole until the operator lets it go or refuses it. What is refused is stored
// with its ticket, and told once.
class Admission {
 public:
  Admission(RequestBook& book, MGeneral& general, const Books& books, Ledger& ledger, StopSign& stop,
            TicketJudge::ClientOf client_of);

  // Leaves in `asked` what may be stored and sent, which may be nothing; what is held or refused is told.
  // Notes the quote of this moment in `about`, unless it has one.
  void admit(LedgerTicket& about, AskedRequests& asked);
  // Why a request that is stored may not leave now; nothing: it may.
  struct Refusal {
    NotSent why;
    std::string text;
  };
  std::optional<Refusal> leaving(const SentOrder& request, const LedgerTicket& about) const;

  // Oldest first.
  const std::deque<HeldTicket>& held() const { return held_; }
  // The operator's second key: takes a held ticket out, to be stored and sent. Nothing when there is none of
  // this number, or when it has come over a limit that it was not over before: then it is held for that too.
  std::optional<HeldTicket> let_go(int number, std::string_view reason);
  void refuse(int number);
  // From now on a ticket over a limit goes all the same, and is stored with this reason.
  void override_limits(std::string reason) { override_ = std::move(reason); }
  // The next ticket that the operator asks for has this name, and this plan; see LedgerTicket.
  void name_next(std::string key, std::string plan) {
    key_ = std::move(key);
    plan_ = std::move(plan);
  }
  // The same for as long as what it answers is held; with an empty one nothing goes so meanwhile.
  ForNow<std::string> override_for_now(std::string reason) { return {override_, std::move(reason)}; }
  const std::string& override_reason() const { return override_; }
  // The server has taken so many requests of this sender's account that the ledger lacks, 0 or below where it
  // lacks none: what opens or changes something is held until the operator lets one such ticket go, which
  // says that he knows.
  void home_lacks(Sender sender, std::int32_t account, std::int64_t requests);
  // Holds closes and cancels that can't be stored; let go, they are sent all the same.
  void hold_not_stored(LedgerTicket about, AskedRequests asked);
  // A close of this position is held.
  bool holds_close(std::int64_t ticket, std::int32_t account) const;
  // Requests of this sender's account are missing, and nobody has let that go.
  bool lacks(Sender sender) const { return override_.empty() && missing_.contains(sender); }
  // What is held of a connection that is over is refused; while trading is stopped, all of it.
  void drop_held(Sender sender);
  bool look_at_stop();

  const Limits& limits() const { return judge_.limits(); }
  void set_limits(const Limits& limits) { judge_.set(limits); }
  StopSign& stop() { return stop_; }
  // Told when what is held has changed.
  std::function<void()> on_held;

 private:
  TicketJudge::Breaches lacking(const AskedRequests& asked) const;
  // The operator has seen these.
  void accept_missing(const AskedRequests& asked, const TicketJudge::Breaches& breaches);
  void quote_at_click(LedgerTicket& about, const SentOrder& request) const;
  bool passes_stop(const SentOrder& request, const LedgerTicket& about) const;
  void hold(LedgerTicket about, AskedRequests asked, TicketJudge::Breaches breaches, NotSent why);
  void refuse(const HeldTicket& ticket, const AskedRequests& asked, NotSent why);
  // `stores`: with their ticket.
  void refuse(const LedgerTicket& about, const AskedRequests& asked, NotSent why, bool stores = true);
  void tell(const std::string& text);
  void held_changed() const {
    if (on_held) on_held();
  }

  RequestBook& book_;
  MGeneral& general_;
  const Books& books_;
  Ledger& ledger_;
  StopSign& stop_;
  TicketJudge judge_;
  std::deque<HeldTicket> held_;
  int last_number_ = 0;
  std::string override_;
  tsl::robin_map<Sender, std::int64_t> missing_;  // requests that the ledger lacks
  std::string key_;
  std::string plan_;
};

}  // namespace tutti
