#pragma once

#include <QMainWindow>
#include <QTimer>
#include <memory>

#include "gui/kit/desktop_prompt.h"
#include "gui/kit/desktop_sound.h"
#include "gui/shell/help_window.h"
#include "gui/shell/main_commands.h"
#include "gui/shell/message_queue_window.h"
#include "gui/shell/pane_layout.h"
#include "gui/shell/panes.h"
#include "gui/windows/frmPriceChanged_window.h"
#include "gui/windows/frmaccount_window.h"
#include "shell/Main.h"

namespace tutti {

class ToolStrip;

// Main window: menus, tool bar and status bar around the accounts list, and every other window as a pane that
// docks, tabs and floats. Owns all windows of the terminal; made after start-up, and gone before the
// terminal.
class FrmMdiNewWindow final : public QMainWindow {
 public:
  FrmMdiNewWindow(Main& main, Screen& screen, DesktopPrompt& prompt, DesktopSound& sound, FileDialog& files);
  ~FrmMdiNewWindow() override;

  // The arrangement that was saved last, the standard one when there is none that fits.
  void restore_layout() { layout_.restore(); }
  void reset_layout() { layout_.reset(); }
  void save_layout();

  Commands& commands() { return commands_->commands(); }
  Panes& panes() { return panes_; }
  FrmPriceChangedWindow& requote() { return *requote_; }
  FrmaccountWindow& account_dialog() { return *account_dialog_; }
  MessageQueueWindow& messages() { return *messages_; }
  HelpWindow& help() { return *help_; }
  void show_about();

 protected:
  void childEvent(QChildEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void connect_forms();

  Main& main_;
  Panes panes_;
  PaneLayout layout_;
  FrmPriceChangedWindow* requote_ = nullptr;
  FrmaccountWindow* account_dialog_ = nullptr;
  HelpWindow* help_ = nullptr;
  ToolStrip* tools_ = nullptr;
  QTimer on_screen_;    // runs once when the window has come onto the screen
  QTimer tab_clicked_;  // runs once when the toolkit has dealt with a click on a pane's tab
  QString clicked_tab_;
  std::unique_ptr<MessageQueueWindow> messages_;
  std::unique_ptr<MainCommands> commands_;
};

}  // namespace tutti
