#pragma once

#include <string>
#include <string_view>

#include "apps/console.h"
#include "core/file_dialog.h"
#include "core/prompt.h"
#include "core/sound_port.h"

namespace tutti {

// Messages and questions on a terminal without a screen: texts go to the console's messages, questions are
// answered at once, and nothing waits for anybody.
class ConsolePrompt final : public Prompt {
 public:
  // `yes` answers every question with yes, otherwise with no.
  ConsolePrompt(Console& console, bool yes) : console_(console), yes_(yes) {}

  void run(frmMsgBox& box) override;
  void run(frmSure& box) override;
  void system_box(std::string_view text, std::string_view caption) override;

 private:
  Console& console_;
  bool yes_;
};

// Asks that way what somebody else is to do; true: yes.
bool agreed(Console& console, bool yes, std::string_view question, std::string_view details = {});

class SilentSound final : public SoundPort {
 public:
  void play(const std::string&) override {}
};

// There is nobody to choose a file.
class NoFileDialog final : public FileDialog {
 public:
  std::string open_file(std::string_view, std::string_view, std::string_view) override { return {}; }
  std::string save_file(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return {};
  }
};

}  // namespace tutti
