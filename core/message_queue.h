#pragma once

#include <cstddef>
#include <deque>
#include <utility>

#include "core/for_now.h"
#include "core/message.h"

namespace tutti {

// Messages from event handlers, first in first out. A handler never waits: what it says is shown later, one
// message at a time, while the rest wait behind and can be dismissed together.
class MessageQueue {
 public:
  // Held by the pump while a handler runs.
  class HandlerScope {
   public:
    explicit HandlerScope(MessageQueue& queue) : queue_(queue) { ++queue_.handlers_; }
    ~HandlerScope() { --queue_.handlers_; }
    HandlerScope(const HandlerScope&) = delete;
    HandlerScope& operator=(const HandlerScope&) = delete;

   private:
    MessageQueue& queue_;
  };

  // Held while somebody else than the operator acts: what would be a box that waits is queued, and a question
  // is answered with no.
  class QuietScope {
   public:
    explicit QuietScope(MessageQueue& queue) : quiet_(queue.quiet_, true) {}

   private:
    ForNow<bool> quiet_;
  };

  bool in_handler() const { return handlers_ > 0; }
  bool quiet() const { return quiet_; }
  void post(Message message) { waiting_.push_back(std::move(message)); }

  // The message on show, nullptr when none.
  const Message* current() const { return waiting_.empty() ? nullptr : &waiting_.front(); }
  // How many wait behind the one on show.
  std::size_t behind() const { return waiting_.empty() ? 0 : waiting_.size() - 1; }
  void dismiss() {
    if (!waiting_.empty()) waiting_.pop_front();
  }
  void dismiss_all() { waiting_.clear(); }

 private:
  std::deque<Message> waiting_;
  int handlers_ = 0;
  bool quiet_ = false;
};

}  // namespace tutti
