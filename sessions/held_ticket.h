#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ledger/entries.h"
#include "limits/judging.h"
#include "sessions/asked_requests.h"

namespace tutti {

// A ticket over a limit: nothing of it is stored or sent until the operator says what becomes of it.
struct HeldTicket {
  int number = 0;  // of this run
  LedgerTicket about{};
  std::vector<limits::Breach> breaches;
  AskedRequests asked;

  // It is held because the ledger did not say in time, or said no, that it stored it: it is not handed to it
  // again.
  bool not_stored() const { return breaches.front().limit == Limit::not_stored; }
  // "account 500123: 104.2 lots, above the limit of 10 for one account", and how many more there are.
  std::string text() const;
};

}  // namespace tutti
