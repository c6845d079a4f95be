#pragma once

#include <vector>

#include "dealer/trading/request_record.h"
#include "sessions/contract/execution.h"

namespace tutti {

// Requests by their ids, and fills, as they are stored.
struct HistoryState {
  std::vector<RequestRecord> requests;
  std::vector<Execution> fills;  // in order of time

  bool empty() const { return requests.empty() && fills.empty(); }
};

}  // namespace tutti
