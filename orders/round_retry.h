#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

#include "core/button.h"
#include "core/clock.h"
#include "ledger/ledger_reads.h"
#include "orders/ticket_retry.h"

namespace tutti {

// "Send the rest again..." of an order window: what of its last round has had no effect, through the retry of
// the ticket that the round is in the ledger. The button can be pressed once the ledger has said of such a
// request what the window knows of it.
class RoundRetry {
 public:
  // What the window sent last, in any order; none before it has sent anything.
  using Round = std::function<std::vector<const SentOrder*>()>;

  static constexpr std::chrono::milliseconds interval{250};
  static constexpr std::chrono::milliseconds longest_pause{8000};

  RoundRetry(const Clock& clock, Round round);

  Button button{"Send the rest again..."};

  // `reads`: nullptr where there is no ledger; nothing is sent again then. Both outlive this; set by
  // start-up.
  void attach(TicketRetry& retry, LedgerReads* reads);
  // Looks whether something may be sent again. To be called often, outside of handlers.
  void poll();

 private:
  // Requests of the round that had no effect, as far as is known here, and were not sent again.
  std::vector<RequestId> without_effect() const;
  void look();
  void read(std::vector<RequestId> requests);
  void press();

  const Clock& clock_;
  Round round_;
  TicketRetry* retry_ = nullptr;
  LedgerReads* reads_ = nullptr;
  bool asked_ = false;  // and not answered
  std::chrono::milliseconds looked_at_{-interval};
  std::chrono::milliseconds pause_{interval};  // until it looks again
  std::vector<RequestId> wanted_;              // of the last look
  std::vector<TicketRequest> requests_;        // of the round's tickets, as the ledger had them last
};

}  // namespace tutti
