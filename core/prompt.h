#pragma once

#include <string_view>

namespace tutti {

class frmMsgBox;
class frmSure;

// Port to the operator's eyes for what must be answered before an action goes on. Each call returns when the
// box is closed; events go on meanwhile.
class Prompt {
 public:
  virtual ~Prompt() = default;
  virtual void run(frmMsgBox& box) = 0;
  virtual void run(frmSure& box) = 0;
  // The machine's own message box with one OK button.
  virtual void system_box(std::string_view text, std::string_view caption) = 0;
};

}  // namespace tutti
