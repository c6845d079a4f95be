#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/clock.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/realised.h"
#include "sessions/contract/request_id.h"

namespace tutti {

// One fill, as the dealing server's log or the broker's history has it.
struct Execution {
  std::string execution;    // the server's name for this fill, unique within the account and day
  RequestId id = 0;         // request it is a fill of; 0 when it is none of a terminal's
  std::int64_t number = 0;  // order number; of a close the ticket of its position
  std::int32_t account = 0;
  bool closes = false;  // else it opened, or added to, a position
  Operation operation{};
  std::string symbol;
  double lots = 0.0;  // of this fill
  double price = 0.0;
  TimePoint time{};                    // the server's
  std::optional<Realised> realised{};  // nothing where it isn't told
};

}  // namespace tutti
