#include "core/frmMsgBox.h"

namespace tutti {
namespace {
constexpr int yes = 1;
constexpr int no = 2;
}  // namespace

frmMsgBox::frmMsgBox(Prompt& prompt, MessageQueue& queue) : prompt_(prompt), queue_(queue) {
  cmd1.on_click = [this] { cmd1_Click(); };
  cmd2.on_click = [this] { cmd2_Click(); };
}

int frmMsgBox::GeneralStopMsg(std::string_view text) {
  return MessageBox({std::string{text}, "Warning", "Ok", ""}, Icon::stop);
}

int frmMsgBox::GeneralNoteMsg(std::string_view text) {
  return MessageBox({std::string{text}, "Note", "Ok", ""}, Icon::note);
}

int frmMsgBox::GeneralQuestionMsg(std::string_view text, std::string_view details) {
  return MessageBox({std::string{text}, "Alert", "Yes", "No", std::string{details}}, Icon::question);
}

int frmMsgBox::MessageBox(const Message& message, Icon icon) {
  const bool question = !message.button2.empty();
  if (queue_.in_handler() || queue_.quiet()) {
    queue_.post(message);
    return question ? no : 0;
  }
  label.set_text(message.text);
  label2.set_text(message.details);
  caption_ = message.caption;
  icon_ = icon;
  cmd1.set_caption(message.button1);
  cmd2.set_caption(message.button2);
  cmd2.set_visible(question);
  pressed_ = 0;
  displayed_ = true;
  CentralizeForm();
  prompt_.run(*this);
  displayed_ = false;
  return pressed_ == 0 && question ? no : pressed_;
}

void frmMsgBox::cmd1_Click() {
  press(yes);
}
void frmMsgBox::cmd2_Click() {
  press(no);
}
void frmMsgBox::escape() {
  press(no);
}

void frmMsgBox::press(int button) {
  pressed_ = button;
  if (ButtonPessed) ButtonPessed(button);
  displayed_ = false;
}

}  // namespace tutti
