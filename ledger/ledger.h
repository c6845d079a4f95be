#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "books/books.h"
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
  using Requests = std::span<SentOrder* const>;
  // Hands a part of a ticket's requests over, to be stored whole or not at all; what their accounts hold now
  // is noted in them. `about` tells the prices at the click; the rest the requests say, and the books of what
  // they are about. A part after the first continues the mark that the first one was given; else this is 0.
  virtual Mark store(const LedgerTicket& about, Requests ticket, Requests part, Mark continues,
                     const Books& books) = 0;
  // Whether they are on the disk. What is not and will not be may be there all the same: who gives up says so
  // by events.
  virtual Stored state(Mark mark) const = 0;
  // The same once it is settled, or when this time is over.
  virtual Stored wait(Mark mark, std::chrono::milliseconds most) = 0;
  // Notes that a stored request is about to leave, so that a crash leaves no doubt about it. When this fails
  // it must not.
  virtual bool leaves(RequestId request) = 0;
  // It has left; its request code is what the call answered. Stored as what is noted is.
  virtual void sent(const SentOrder& request) = 0;
  // Stored within 50 ms. Of a request that is not in the ledger the fill alone is kept.
  virtual void note(LedgerEvent event) = 0;
  // Why nothing can be stored now; empty when it can.
  virtual std::string fault() const = 0;
  // Requests of earlier runs whose outcome is unknown, oldest first.
  virtual const std::vector<LedgerUnknown>& unknown() const = 0;
  // Requests of earlier runs that are stored and never left, of tickets that have a name; oldest first.
  virtual const std::vector<LedgerUnknown>& never_left() const = 0;
  // Entry orders of earlier runs that work, as far as it knows; oldest first.
  virtual const std::vector<LedgerUnknown>& working() const = 0;
  // Which ledger it is, 32 hexadecimal digits; empty where nothing is kept.
  virtual std::string id() const = 0;
  // How many requests have left for the account, answers to requotes not counted, and how many more the
  // operator knows to be missing.
  virtual std::int64_t left(Sender sender) const = 0;
  // The operator goes on although so many more are missing.
  virtual void accept_missing(Sender sender, std::int64_t requests) = 0;
  // When earlier runs stored something last; the epoch when none has.
  virtual TimePoint known_until() const = 0;
  // Tickets that earlier runs sent within the hour before this one, but for closes and cancels.
  virtual const std::vector<LedgerPastTicket>& recent() const = 0;
};

}  // namespace tutti
