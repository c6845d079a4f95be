#include "dealer/link/event_queue.h"

#include <utility>

namespace tutti {

void EventQueue::push(DealerSession& session, News news) {
  events_.push_back({&session, std::move(news)});
}

Event EventQueue::pop() {
  Event event = std::move(events_.front());
  events_.pop_front();
  ++popped_;
  return event;
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
