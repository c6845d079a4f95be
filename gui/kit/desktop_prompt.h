#pragma once

#include <QPointer>
#include <QWidget>
#include <cstddef>
#include <functional>
#include <optional>

#include "core/prompt.h"
#include "gui/kit/message_window.h"

namespace tutti {

class Screen;

// Shows the boxes that must be answered before an action goes on, modal, in the middle of the main window's
// screen.
// A box is off the screen before its answer is carried out, since what follows may show the next one.
class DesktopPrompt final : public Prompt {
 public:
  explicit DesktopPrompt(Screen& screen) : screen_(screen) {}

  // Boxes stand over this window; without one, as at start-up, in the middle of the screen.
  void set_parent(QWidget* parent) { parent_ = parent; }

  // Whether a box stands that the operator must answer before he goes on, of whatever part of the program.
  static bool box_stands();

  void run(frmMsgBox& box) override;
  void run(frmSure& box) override;
  void system_box(std::string_view text, std::string_view caption) override;

 private:
  // The button's index; nothing after Esc, and when the form is no longer `displayed`.
  std::optional<std::size_t> ask(MessageWindow::Content content, const std::function<bool()>& displayed);

  Screen& screen_;
  QPointer<QWidget> parent_;
};

}  // namespace tutti
