#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include <tsl/robin_map.h>

#include "books/books.h"
#include "books/request_book.h"
#include "core/clock.h"
#include "ledger/ledger.h"
#include "limits/judging.h"
#include "sessions/contract/account_client.h"

namespace tutti {

// Judges tickets by the limits: looks the figures up that the limits are set for, and remembers what was
// sent, for those that count over time. Of tickets of earlier runs it knows no more than their sums, and
// takes those for the same that may be.
class TicketJudge {
 public:
  using Requests = std::span<SentOrder* const>;
  using Breaches = std::vector<limits::Breach>;
  // The connection of a sender.
  using ClientOf = std::function<const AccountClient&(Sender)>;

  TicketJudge(const Books& books, const RequestBook& book, const Clock& clock, const Ledger& ledger,
              ClientOf client_of);

  const Limits& limits() const { return limits_; }
  void set(const Limits& limits) { limits_ = limits; }

  // Whether the limits are for it at all: not for closes, cancels and answers to requotes, which must not
  // wait.
  static bool judged(const SentOrder& request) {
    return request.kind != RequestKind::close && request.kind != RequestKind::cancel &&
           request.kind != RequestKind::requote;
  }
  // Whether it opens something, and one of these, whose outcome nobody knows, is of its account and symbol.
  using Unknown = std::vector<const SentOrder*>;
  bool unknown_before(const SentOrder& request, const Unknown& unknown) const;
  Unknown unknown() const { return book_.all_unknown(); }
  // What is wrong with a ticket now.
  Breaches judge(Requests ticket, const LedgerTicket& about) const;
  // What is wrong with one of its requests as it is about to leave.
  std::optional<limits::Breach> judge_leaving(const SentOrder& request, const LedgerTicket& about) const;
  // The ticket is sent.
  void note(Requests ticket);

 private:
  struct Past {
    std::chrono::milliseconds time{0};  // elapsed
    std::uint64_t digest = 0;
  };
  void forget_before(std::chrono::milliseconds time);

  std::string symbol_of(const SentOrder& request) const;
  std::string symbol_of_unknown(const SentOrder& request) const;
  // What changes by time alone, and the newest price, 0: there is none.
  limits::RequestFigures market_figures(const SentOrder& request, const LedgerTicket& about,
                                        double& newest) const;
  limits::RequestFigures figures(const SentOrder& request, const LedgerTicket& about) const;
  limits::TicketFigures figures(Requests ticket, const LedgerTicket& about) const;
  static std::uint64_t digest(Requests ticket);
  bool may_be(const LedgerPastTicket& earlier, Requests ticket) const;

  const Books& books_;
  const RequestBook& book_;
  const Clock& clock_;
  const Ledger& ledger_;
  ClientOf client_of_;
  std::deque<Past> past_;                                               // of this run, of the last hour
  tsl::robin_map<std::uint64_t, std::chrono::milliseconds> last_same_;  // of these, by digest
  Limits limits_;
};

}  // namespace tutti
