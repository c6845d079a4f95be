#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "ledger/entries.h"

namespace tutti {

// Where requests are stored before they leave, and what becomes of them afterwards. One thread calls; nothing
// but `wait` waits.
class Ledger {
 public:
  enum class Stored : std::uint8_t { waiting, yes, no };
  // What was handed over together; ascends, 0 is none.
  using Mark = std::uint64_t;

  virtual ~Ledger() = default;

  // Who sends under this number from now on.
  virtual void know(Sender sender, const LedgerAccount& account) = 0;
  // Hands requests over, to be stored whole or not at all. Those of `continues`, a mark given before, go on
  // with its ticket; `planned` is how many the whole ticket has.
  virtual Mark store(const LedgerTicket& ticket, std::size_t planned, std::vector<LedgerRequest> requests,
                     Mark continues) = 0;
  // Whether they are on the disk. What is not and will not be may be there all the same: who gives up says so
  // by events.
  virtual Stored state(Mark mark) const = 0;
  // The same once it is settled, or when this time is over.
  virtual Stored wait(Mark mark, std::chrono::milliseconds most) = 0;
  // Notes that a stored request is about to leave, so that a crash leaves no doubt about it. When this fails
  // it must not.
  virtual bool leaves(RequestId request) = 0;
  // Stored within 50 ms. Of a request that is not in the ledger the fill alone is kept.
  virtual void note(LedgerEvent event) = 0;
  // Why nothing can be stored now; empty when it can.
  virtual std::string fault() const = 0;
  // Requests of earlier runs whose outcome is unknown, oldest first.
  virtual const std::vector<LedgerUnknown>& unknown() const = 0;
};

}  // namespace tutti
