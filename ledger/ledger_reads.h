#pragma once

#include <functional>
#include <string>

#include "ledger/ledger_queries.h"

namespace tutti {

// Where questions to the ledger are put that its reader does not wait for. One thread calls, and forms that
// ask live until nothing is delivered any more.
class LedgerReads {
 public:
  using Show = std::function<void()>;
  // Reads, on whatever thread, and answers what is to run on the caller's with what was read.
  using Read = std::function<Show(LedgerQueries&)>;
  // Why it could not be read.
  using Failed = std::function<void(const std::string&)>;

  virtual ~LedgerReads() = default;

  virtual void ask(Read read, Failed failed) = 0;
  // Runs what has been read by now.
  virtual void deliver() = 0;
};

}  // namespace tutti
