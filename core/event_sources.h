#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "core/event_source.h"

namespace tutti {

// Several sources as one. They take turns event by event, so that a broker with much to tell holds up no
// other. The sources outlive it.
class EventSources final : public EventSource {
 public:
  explicit EventSources(std::vector<EventSource*> sources) : sources_(std::move(sources)) {}

  bool deliver_next() override;
  std::int32_t delivered_account() const override {
    return last_ == nullptr ? -1 : last_->delivered_account();
  }

 private:
  std::vector<EventSource*> sources_;
  std::size_t next_ = 0;
  EventSource* last_ = nullptr;  // that delivered, or was about to
};

}  // namespace tutti
