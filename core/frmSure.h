#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/button.h"
#include "core/label.h"
#include "core/prompt.h"

namespace tutti {

// Confirmation form for "Logout All" and "Remove All".
class frmSure {
 public:
  explicit frmSure(Prompt& prompt);

  Label label;
  Button cmd1{"Yes"};
  Button cmd2{"No"};

  // `mode` is "Logout All" or "Remove All"; any other text asks again what was asked last.
  void GeneralQuestionMsg(std::string_view mode);
  void cmd1_Click();
  void cmd2_Click();

  bool Displayed() const { return displayed_; }
  // "L" logout all, "R" remove all.
  const std::string& mode() const { return mode_; }

  std::function<void()> logout_all;
  std::function<void()> remove_all;

 private:
  Prompt& prompt_;
  std::string mode_;
  bool displayed_ = false;
};

}  // namespace tutti
