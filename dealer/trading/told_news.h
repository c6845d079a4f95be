#pragma once

#include <vector>

#include "sessions/contract/execution.h"
#include "sessions/contract/request_id.h"
#include "sessions/contract/request_state.h"

namespace tutti {

// What became of a request that was asked about, or came again; `lots` is how much of it was executed.
struct RequestTold {
  RequestId id = 0;
  RequestState state = RequestState::not_told;
  double lots = 0.0;
};

// Fills that were asked for, oldest first; not `complete` when the server's log of them begins later.
struct FillsTold {
  std::vector<Execution> fills;
  bool complete = false;
};

}  // namespace tutti
