#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/button.h"
#include "core/label.h"
#include "core/message.h"
#include "core/message_queue.h"
#include "core/prompt.h"

namespace tutti {

// Message form: the box for warnings, notes and questions.
//
// Called from an operator's action it waits for the button; called while an event handler runs it queues the
// message and returns 0 at once, since a handler never waits. So it does where somebody else acts.
class frmMsgBox {
 public:
  enum class Icon { none, stop, note, question };

  frmMsgBox(Prompt& prompt, MessageQueue& queue);

  Label label;
  // What the text is about, such as what a yes would close. Lines of plain text, empty for most boxes.
  Label label2;
  Button cmd1{"Ok"};
  Button cmd2{""};

  // 1 or 2 as pressed, 0 when queued. A question that no one could be asked is answered 2 (no).
  int GeneralStopMsg(std::string_view text);
  int GeneralNoteMsg(std::string_view text);
  int GeneralQuestionMsg(std::string_view text, std::string_view details = {});
  int MessageBox(const Message& message, Icon icon = Icon::none);
  // Asks the window to stand in the middle of the screen.
  void CentralizeForm() { centred_ = true; }

  void cmd1_Click();
  void cmd2_Click();
  // Esc on either button.
  void escape();

  bool Displayed() const { return displayed_; }
  bool centred() const { return centred_; }
  Icon icon() const { return icon_; }
  const std::string& caption() const { return caption_; }

  // 1 for cmd1; 2 for cmd2 or Esc.
  std::function<void(int)> ButtonPessed;

 private:
  void press(int button);

  Prompt& prompt_;
  MessageQueue& queue_;
  std::string caption_;
  Icon icon_ = Icon::none;
  int pressed_ = 0;
  bool displayed_ = false;
  bool centred_ = false;
};

}  // namespace tutti
