#pragma once

#include <string>
#include <string_view>

#include "core/file_dialog.h"
#include "core/frmMsgBox.h"
#include "core/frmSure.h"
#include "core/prompt.h"
#include "core/sound_port.h"

namespace tutti::bench {

// Nobody sits at a bench: boxes close at once, sounds are silent, no file is chosen.

class QuietPrompt final : public Prompt {
 public:
  void run(frmMsgBox& box) override { box.cmd1.click(); }
  void run(frmSure& box) override { box.cmd2.click(); }
  void system_box(std::string_view, std::string_view) override {}
};

class QuietSound final : public SoundPort {
 public:
  void play(const std::string&) override {}
};

class QuietFileDialog final : public FileDialog {
 public:
  std::string open_file(std::string_view, std::string_view, std::string_view) override { return {}; }
  std::string save_file(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return {};
  }
};

}  // namespace tutti::bench
