#pragma once

#include <cstddef>
#include <deque>
#include <utility>

#include "fix/client/client_event.h"

namespace tutti {

// The events of all clients of a broker, first in, first out.
class EventLine {
 public:
  void push(ClientEvent event) { events_.push_back(std::move(event)); }
  bool empty() const { return events_.empty(); }
  // There is one.
  ClientEvent pop() {
    ClientEvent event = std::move(events_.front());
    events_.pop_front();
    return event;
  }
  // Takes back what waits for a client: all of it, or what does not outlive its connection.
  void forget(const FixClient& client, bool all) {
    for (ClientEvent& event : events_)
      if (event.client == &client && (all || !event.outlives)) event.client = nullptr;
  }

 private:
  std::deque<ClientEvent> events_;
};

}  // namespace tutti
