#include "core/event_sources.h"

namespace tutti {

bool EventSources::deliver_next() {
  EventSource* const before = last_;
  for (std::size_t tried = 0; tried < sources_.size(); ++tried) {
    // Noted first: what a handler throws is reported for this source's account.
    last_ = sources_[next_];
    next_ = (next_ + 1) % sources_.size();
    if (last_->deliver_next()) return true;
  }
  last_ = before;
  return false;
}

}  // namespace tutti
