#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/clock.h"
#include "ledger/entries.h"
#include "ledger/ledger_file.h"

namespace tutti {

// What is known last of a request.
struct RequestOutcome {
  RequestId id = 0;
  LedgerAccount account{};
  RequestKind kind = RequestKind::open;
  LedgerState state = LedgerState::stored;
  std::string reason{};
  TimePoint asked{};  // when the operator did
};

// Of every request there is, in the order of their ids. Throws as the file does.
std::vector<RequestOutcome> request_outcomes(LedgerFile& file);

}  // namespace tutti
