#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <tsl/robin_set.h>

#include "books/books.h"
#include "core/MGeneral.h"
#include "ledger/ledger_queries.h"
#include "sessions/CClientAPIManagers.h"

namespace tutti {

// Sends the rest of a ticket again: exactly those of its requests that have had no effect for sure, each with
// the lots and prices it had, as a ticket of its own. What was sent again before is not sent once more.
//
// What the operator settled by hand as not executed is no part of that: his word may be wrong. It is sent
// again by an act of its own, after a question of its own.
class TicketRetry {
 public:
  TicketRetry(MGeneral& general, CClientAPIManagers& sessions, const Books& books)
      : general_(general), sessions_(sessions), books_(books) {}

  // The operator's: asks, with count and sum, then sends. Answers what was sent; it stays as long as the
  // terminal. What can't be sent now - its account is not connected, its position is gone - is told and stays
  // as it is.
  std::vector<const SentOrder*> send(std::int64_t ticket, const std::vector<TicketRequest>& requests,
                                     RetryPart part = RetryPart::no_effect);
  // A script's, whose act was broken off: without a question, and what nothing is known of stays as it is.
  // What was stored and never left leaves under the id it has; what the broker says it never took is sent
  // again.
  std::vector<const SentOrder*> go_on(std::int64_t ticket, const std::vector<TicketRequest>& requests);

  // What would be sent now, in the order of the ids, and how it is asked about. Nothing would be where
  // `requests` is empty: then the question is why.
  struct Plan {
    std::vector<RequestId> requests;
    std::string question;
    std::string details;
  };
  Plan plan(std::int64_t ticket, const std::vector<TicketRequest>& requests,
            RetryPart part = RetryPart::no_effect) const;
  // Sends what can be now, without a question: somebody has answered it.
  std::vector<const SentOrder*> send_agreed(std::int64_t ticket, const std::vector<TicketRequest>& requests,
                                            RetryPart part = RetryPart::no_effect);
  // This run has sent it again already, whether the ledger says so by now or not.
  bool was_sent_again(RequestId request) const { return sent_.contains(request); }

 private:
  // What is to be sent again, and who sends it.
  struct Rest {
    const TicketRequest* request = nullptr;
    CClientAPIManager* session = nullptr;
  };

  using Wanted = std::function<bool(const TicketRequest&)>;
  static Wanted of(RetryPart part) {
    return [part](const TicketRequest& each) { return each.may_be_retried(part); };
  }
  std::vector<Rest> rest_of(const std::vector<TicketRequest>& requests, const Wanted& wanted,
                            std::vector<std::string>& left_out) const;
  std::vector<const SentOrder*> send_again(std::int64_t ticket, const std::vector<Rest>& rest);
  const SentOrder& send_stored(const Rest& rest);
  // Why it can't be sent by this session now; empty when it can.
  std::string obstacle(const TicketRequest& request, const CClientAPIManager* session) const;
  const SentOrder& send(const Rest& rest);

  MGeneral& general_;
  CClientAPIManagers& sessions_;
  const Books& books_;
  tsl::robin_set<RequestId> sent_;  // by this run
};

}  // namespace tutti
