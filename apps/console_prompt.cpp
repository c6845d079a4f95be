#include "apps/console_prompt.h"

#include "core/frmMsgBox.h"
#include "core/frmSure.h"
#include "core/texts.h"

namespace tutti {

void ConsolePrompt::run(frmMsgBox& box) {
  const bool question = box.cmd2.visible();
  console_.tell("{}: {}{}", box.caption(), box.label.text(),
                question ? (yes_ ? " Yes" : " No (--yes answers yes)") : "");
  for (const std::string_view line : split(box.label2.text(), "\n"))
    if (!line.empty()) console_.tell("  {}", line);
  if (question && !yes_) {
    box.cmd2_Click();
  } else {
    box.cmd1_Click();
  }
}

void ConsolePrompt::run(frmSure& box) {
  console_.tell("{} {}", box.label.text(), yes_ ? "Yes" : "No (--yes answers yes)");
  if (yes_) {
    box.cmd1_Click();
  } else {
    box.cmd2_Click();
  }
}

bool agreed(Console& console, bool yes, std::string_view question, std::string_view details) {
  ConsolePrompt prompt{console, yes};
  MessageQueue nothing_waits;
  constexpr int pressed_yes = 1;
  return frmMsgBox{prompt, nothing_waits}.GeneralQuestionMsg(question, details) == pressed_yes;
}

void ConsolePrompt::system_box(std::string_view text, std::string_view caption) {
  console_.tell("{}: {}", caption, text);
}

}  // namespace tutti
