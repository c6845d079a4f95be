#include "core/notices.h"

namespace tutti {

void Notices::log_skipped(std::string_view text) {
  lines_skipped_ = true;
  log(text, no_account);
  tell_outside(text);
}

void Notices::message_box(std::string_view text, std::string_view caption) {
  msg_box.MessageBox(
      {std::string{text}, std::string{caption == default_caption ? "Alert" : caption}, "OK", ""},
      frmMsgBox::Icon::stop);
}

void Notices::queue_message(std::string_view text) {
  messages_.post({std::string{text}, "Alert", "OK", ""});
}

}  // namespace tutti
