#pragma once

#include <cstdint>

namespace tutti {

// A queue of events that a pump empties. Implemented by whatever stands behind the trading clients.
class EventSource {
 public:
  virtual ~EventSource() = default;
  // Delivers the oldest waiting event to its sink; false when none waits. What a handler throws passes
  // through, and the event counts as delivered.
  virtual bool deliver_next() = 0;
  // Account of the event delivered last, for the report of a handler's error; -1 when none.
  virtual std::int32_t delivered_account() const = 0;
};

}  // namespace tutti
