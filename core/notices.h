#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/frmMsgBox.h"
#include "core/journal.h"

namespace tutti {

// Caption that stands for the default one.
inline constexpr std::string_view default_caption = "##DEF##";

// The ways in which the operator is told something.
class Notices {
 public:
  Notices(Prompt& prompt, MessageQueue& messages) : msg_box(prompt, messages), messages_(messages) {}

  frmMsgBox msg_box;
  // Set by start-up.
  Journal* journal = nullptr;
  std::function<void(std::string_view text)> outside;  // standard error of the program; may be empty

  // Box with one "OK" button; default_caption shows as "Alert".
  void message_box(std::string_view text, std::string_view caption);
  void message_box(std::string_view text) { message_box(text, default_caption); }
  // The same box without waiting for the button: it stands behind the messages of events.
  void queue_message(std::string_view text);
  // True while an event handler runs.
  bool in_handler() const { return messages_.in_handler(); }
  void log(std::string_view message, std::int32_t account) {
    if (journal != nullptr) journal->log(message, account);
  }
  // Says something where it is seen even though nobody reads the journal.
  void tell_outside(std::string_view text) {
    if (outside) outside(text);
  }
  // Journals that lines of a data file were skipped, and tells it outside.
  void log_skipped(std::string_view text);
  bool lines_skipped() const { return lines_skipped_; }

 private:
  MessageQueue& messages_;
  bool lines_skipped_ = false;
};

}  // namespace tutti
