#pragma once

#include <QString>
#include <functional>

#include "gui/shell/commands.h"

namespace tutti {

class DesktopSound;
class FileDialog;
class FrmPriceChangedWindow;
class Main;
class MessageQueueWindow;
class Panes;
class Screen;

// What the main window's commands work on. All of it outlives them.
struct CommandTargets {
  QWidget& window;
  Main& main;
  Screen& screen;
  Panes& panes;
  DesktopSound& sound;
  FileDialog& files;
  FrmPriceChangedWindow& requote;
  MessageQueueWindow& messages;
  std::function<void()> reset_layout;
  std::function<void()> find_account;  // takes the keyboard to the find box
};

// What a command may have besides; see Commands::Options.
struct CommandOptions {
  const char* pane = "";
  const char* icon = "";
  std::function<const char*()> off = {};
};

// The one table of the main window's commands: menus, keys and what they do.
class MainCommands {
 public:
  // Makes all commands; `make_menu` gives a new menu of the menu bar.
  MainCommands(CommandTargets targets, const std::function<QMenu&(const QString&)>& make_menu);

  Commands& commands() { return commands_; }

 private:
  QAction& add(const char* name, const char* text, Commands::Effect effect, const QKeySequence& key,
               std::function<void()> run, const CommandOptions& options = {});
  void separate();
  void make_file_menu();
  void make_accounts_menu();
  void add_connection_commands();
  void make_orders_menu();
  void add_market_order_commands();
  void add_entry_order_commands();
  void add_position_commands();
  void add_closing_commands();
  void add_requote_commands();
  void make_view_menu();
  void make_tools_menu();
  void make_help_menu();
  void add_context_menus();
  void explain_buttons();

  bool trading(int control) const;
  void export_active();
  void disconnect_selected();
  void remove_selected();
  void show_history();
  // Asks for yes or no in an operator's action; true on yes.
  bool confirm(const std::string& question, const std::string& details = {});

  CommandTargets to_;
  Commands commands_;
  QMenu* menu_ = nullptr;  // that commands are added to
};

}  // namespace tutti
