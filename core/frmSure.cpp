#include "core/frmSure.h"

namespace tutti {

frmSure::frmSure(Prompt& prompt) : prompt_(prompt) {
  cmd1.on_click = [this] { cmd1_Click(); };
  cmd2.on_click = [this] { cmd2_Click(); };
}

void frmSure::GeneralQuestionMsg(std::string_view mode) {
  if (mode == "Logout All") {
    label.set_text(" Are you sure to logout all accounts?");
    mode_ = "L";
  } else if (mode == "Remove All") {
    label.set_text(" Are you sure to remove all accounts?");
    mode_ = "R";
  }
  displayed_ = true;
  prompt_.run(*this);
  displayed_ = false;
}

void frmSure::cmd1_Click() {
  const auto& command = mode_ == "L" ? logout_all : remove_all;
  if (!mode_.empty() && command) command();
  displayed_ = false;
}

void frmSure::cmd2_Click() {
  displayed_ = false;
}

}  // namespace tutti
