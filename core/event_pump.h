#pragma once

#include <cstddef>

#include "core/event_source.h"
#include "core/journal.h"
#include "core/message_queue.h"

namespace tutti {

// Delivers library events one at a time on the calling thread. Stays shut until start-up is over. An error
// raised in a handler ends that handler, is journaled for its account, and the next event follows.
class EventPump {
 public:
  EventPump(EventSource& source, Journal& journal, MessageQueue& messages)
      : source_(source), journal_(journal), messages_(messages) {}

  void open() { open_ = true; }
  // Delivers up to `limit` events and answers how many; 0 while shut and when called from a handler.
  std::size_t deliver(std::size_t limit = static_cast<std::size_t>(-1));

 private:
  EventSource& source_;
  Journal& journal_;
  MessageQueue& messages_;
  bool open_ = false;
};

}  // namespace tutti
