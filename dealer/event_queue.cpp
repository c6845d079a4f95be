#include "dealer/event_queue.h"

#include <utility>

namespace tutti {

void EventQueue::push(DealerSession& session, News news) {
  events_.push_back({&session, std::move(news)});
}

bool EventQueue::pop(Event& event) {
  if (head_ == events_.size()) return false;
  event = std::move(events_[head_++]);
  ++popped_;
  // Rewinds when empty; when events keep coming, moves the rest down once it is the smaller part.
  if (head_ == events_.size() || head_ >= 4096 + events_.size() / 2) {
    events_.erase(events_.begin(), events_.begin() + static_cast<std::ptrdiff_t>(head_));
    head_ = 0;
  }
  return true;
}

void EventQueue::forget(const DealerSession& session) {
  for (Event& event : events_)
    if (event.session == &session) event.session = nullptr;
}

void EventQueue::forget_connection(const DealerSession& session) {
  for (Event& event : events_) {
    if (event.session != &session) continue;
    if (std::holds_alternative<ConnectionNews>(event.news)) continue;
    if (std::holds_alternative<WaitingNews>(event.news)) continue;
    if (std::holds_alternative<std::unique_ptr<AnswerNews>>(event.news)) continue;
    event.session = nullptr;
  }
}

}  // namespace tutti
