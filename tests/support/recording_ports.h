#pragma once

#include <deque>
#include <string>
#include <vector>

#include "core/file_dialog.h"
#include "core/frmMsgBox.h"
#include "core/frmSure.h"
#include "core/prompt.h"
#include "core/sound_port.h"

namespace tutti::testing {

// Records every box and answers it at once: with the next queued button, else with button 1.
class RecordingPrompt final : public Prompt {
 public:
  struct Shown {
    std::string text;
    std::string caption;
    std::string
        buttons;  // captions of the visible buttons with "|" between them; "system" for the system box
    std::string details = {};
  };

  void run(frmMsgBox& box) override {
    shown.push_back({box.label.text(), box.caption(),
                     box.cmd1.caption() + (box.cmd2.visible() ? "|" + box.cmd2.caption() : ""),
                     box.label2.text()});
    if (screen != nullptr) return screen->run(box);
    if (while_open) while_open();
    const int button = next_answer();
    if (button == 1) box.cmd1.click();
    if (button == 2) box.cmd2.click();
    if (button == escape) box.escape();
  }
  void run(frmSure& box) override {
    shown.push_back({box.label.text(), "", box.cmd1.caption() + "|" + box.cmd2.caption()});
    if (screen != nullptr) return screen->run(box);
    (next_answer() == 1 ? box.cmd1 : box.cmd2).click();
  }
  void system_box(std::string_view text, std::string_view caption) override {
    shown.push_back({std::string{text}, std::string{caption}, "system"});
    if (screen != nullptr) screen->system_box(text, caption);
  }

  // What the boxes told in their second label since the last call; forgets them.
  std::vector<std::string> take_details() {
    std::vector<std::string> out;
    for (const Shown& box : std::exchange(shown, {}))
      out.push_back(box.details);
    return out;
  }

  // Texts shown since the last call.
  std::vector<std::string> take_texts() {
    std::vector<std::string> out;
    for (const Shown& box : shown)
      out.push_back(box.text);
    shown.clear();
    return out;
  }

  // Shows the boxes instead of answering them when set.
  Prompt* screen = nullptr;

  static constexpr int escape = 27;
  std::vector<Shown> shown;
  std::deque<int> answers;
  std::function<void()> while_open;

 private:
  int next_answer() {
    if (answers.empty()) return 1;
    const int button = answers.front();
    answers.pop_front();
    return button;
  }
};

class RecordingSound final : public SoundPort {
 public:
  // File names only, in order.
  void play(const std::string& name) override { played.push_back(name.substr(name.find_last_of("/\\") + 1)); }
  std::vector<std::string> take() { return std::exchange(played, {}); }
  std::vector<std::string> played;
};

class FakeFileDialog final : public FileDialog {
 public:
  std::string open_file(std::string_view title, std::string_view, std::string_view) override {
    titles.emplace_back(title);
    return answer;
  }
  std::string save_file(std::string_view title, std::string_view, std::string_view,
                        std::string_view name) override {
    titles.emplace_back(title);
    proposed = name;
    return answer;
  }
  std::string answer;
  std::string proposed;  // name of the last file to be saved
  std::vector<std::string> titles;
};

}  // namespace tutti::testing
