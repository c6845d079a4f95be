#pragma once

#include <gtest/gtest.h>

#include <QDockWidget>
#include <memory>
#include <utility>

#include "gui/shell/frmMdiNew_window.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {

// The whole desktop on a terminal whose accounts are logged in.
struct DesktopRig : ::testing::Test {
  explicit DesktopRig(DealerConfig config = DealerConfig::sample()) : rig(std::move(config)) {}
  void SetUp() override { open(); }
  void open() {
    rig.terminal.prompt.screen = &prompt;
    window.reset();
    window =
        std::make_unique<FrmMdiNewWindow>(rig.main(), rig.screen, prompt, sound, rig.terminal.file_dialog);
    window->restore_layout();
    show(*window, {1280, 800});
    window->activateWindow();
    rig.run(std::chrono::milliseconds{10});
  }
  QDockWidget& dock(const char* name) { return part<QDockWidget>(*window, name); }
  void trigger(const char* name) { window->commands().find(QString::fromLatin1(name))->trigger(); }
  void to_front(const char* name) {
    window->panes().bring_up(QString::fromLatin1(name));
    rig.run(std::chrono::milliseconds{1});
  }

  GuiRig rig;
  DesktopPrompt prompt{rig.screen};
  DesktopSound sound{rig.terminal.home->path()};
  std::unique_ptr<FrmMdiNewWindow> window;
};

}  // namespace tutti::testing
