#pragma once

#include <optional>

#include "core/clock.h"
#include "core/message_queue.h"
#include "gui/kit/message_window.h"

namespace tutti {

class Screen;

// Shows what event handlers had to say, one message at a time, over `parent` without taking its focus. Opens
// and closes with the queue; the operator goes on working meanwhile. To be destroyed before `parent`.
class MessageQueueWindow {
 public:
  MessageQueueWindow(MessageQueue& queue, Screen& screen, const Clock& clock, QWidget& parent);

  // Dismisses the message on show, or all of them.
  void next();
  void dismiss_all();

  MessageWindow& window() { return window_; }

 private:
  void follow();
  void close();
  void show_current();
  // A click aimed at something else must not dismiss what has just appeared under the pointer.
  bool just_appeared() const;

  MessageQueue& queue_;
  Screen& screen_;
  const Clock& clock_;
  MessageWindow window_;
  Message shown_;
  std::optional<std::chrono::milliseconds> appeared_;  // when a message came on show by itself
};

}  // namespace tutti
