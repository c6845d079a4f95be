#pragma once

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "fix/client/line_news.h"

namespace tutti {

// What the wire's thread leaves for the thread that decides. Each of the two takes one short lock.
class LineInbox {
 public:
  // `wake` is called on the wire's thread when there is something after there was nothing. Set before any
  // line is opened.
  void set_wake(std::function<void()> wake) { wake_ = std::move(wake); }

  void put(LineNote note) {
    bool first = false;
    {
      const std::lock_guard lock(mutex_);
      first = notes_.empty();
      notes_.push_back(std::move(note));
    }
    if (first && wake_) wake_();
  }
  std::vector<LineNote> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(notes_, {});
  }
  bool empty() const {
    const std::lock_guard lock(mutex_);
    return notes_.empty();
  }

 private:
  mutable std::mutex mutex_;
  std::vector<LineNote> notes_;
  std::function<void()> wake_;
};

}  // namespace tutti
