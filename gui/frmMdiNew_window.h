#pragma once

#include <QMainWindow>
#include <deque>
#include <memory>

#include "gui/commands.h"
#include "gui/desktop_prompt.h"
#include "gui/desktop_sound.h"
#include "gui/frmClosePos_window.h"
#include "gui/frmJournal_window.h"
#include "gui/frmMW_window.h"
#include "gui/frmMain_window.h"
#include "gui/frmNetTrade_window.h"
#include "gui/frmPending_window.h"
#include "gui/frmPriceChanged_window.h"
#include "gui/frmTrade_window.h"
#include "gui/frmaccount_window.h"
#include "gui/frmlimitorder_window.h"
#include "gui/frmorder_window.h"
#include "gui/help_window.h"
#include "gui/message_queue_window.h"
#include "gui/net_matrix_window.h"
#include "gui/pane.h"
#include "gui/saved_layout.h"
#include "shell/Main.h"

class QLineEdit;

namespace tutti {

// Main window: menus, tool bar and status bar around the accounts list, and every other window as a pane that
// docks, tabs and floats. Owns all windows of the terminal; made after start-up, and gone before the
// terminal.
class FrmMdiNewWindow final : public QMainWindow {
 public:
  FrmMdiNewWindow(Main& main, Screen& screen, DesktopPrompt& prompt, DesktopSound& sound, FileDialog& files);

  // The arrangement that was saved last, the standard one when there is none that fits.
  void restore_layout();
  void reset_layout();
  void save_layout();

  Commands& commands() { return commands_; }
  const std::deque<Pane>& panes() const { return panes_; }
  FrmMainWindow& accounts() { return *accounts_; }
  FrmorderWindow& market_order() { return *market_order_; }
  FrmlimitorderWindow& entry_order() { return *entry_order_; }
  FrmMWWindow& market_watch() { return *market_watch_; }
  FrmTradeWindow& trade() { return *trade_; }
  FrmPendingWindow& pending() { return *pending_; }
  FrmClosePosWindow& close_positions() { return *close_positions_; }
  FrmNetTradeWindow& net_trade() { return *net_trade_; }
  NetMatrixWindow& net_matrix() { return *net_matrix_; }
  FrmJournalWindow& journal() { return *journal_; }
  FrmPriceChangedWindow& requote() { return *requote_; }
  FrmaccountWindow& account_dialog() { return *account_dialog_; }
  MessageQueueWindow& messages() { return *messages_; }
  HelpWindow& help() { return *help_; }
  void show_about();
  // Brings a pane to the front, floating ones included, with the keyboard where its work begins.
  void bring_up(const QString& pane);
  // The same, with the keyboard where a key by mistake does least.
  void put_in_front(const QString& pane);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  Pane& add_pane(const QString& name, const QString& title, const char* help, QWidget* widget,
                 RowListView* list);
  void make_panes();
  const Pane& pane_named(const QString& name) const;
  void follow_displayed();
  void keep_keyboard_in_sight();
  void show_title(QDockWidget& dock);
  void make_labels();
  void make_tool_bar();

  // frmMdiNew_commands.cpp
  void make_commands();
  void make_file_menu();
  void make_accounts_menu();
  void make_orders_menu();
  bool trading(int control) const;
  void add_market_order_commands(QMenu& orders);
  void add_entry_order_commands(QMenu& orders);
  void add_position_commands(QMenu& orders);
  void add_closing_commands(QMenu& orders);
  void make_view_menu();
  void make_tools_menu();
  void make_help_menu();
  void add_context_menus();

  QAction& command(QMenu& menu, Commands::Command command) { return commands_.add(menu, std::move(command)); }
  QMenu& menu(const QString& title);
  // The pane that a widget is in; nullptr when it is in none.
  const Pane* pane_of(const QWidget* widget) const;
  // The pane that has the keyboard; the accounts list while none has.
  const Pane& active_pane() const;
  // Its list that has the keyboard, or its main one; nullptr when it has none.
  RowListView* active_list() const;
  void export_active();
  void find_account();
  void disconnect_selected();
  void remove_selected();
  void show_history();
  // Asks for yes or no in an operator's action; true on yes.
  bool confirm(const std::string& question, const std::string& details = {});

  Main& main_;
  Screen& screen_;
  DesktopSound& sound_;
  FileDialog& files_;
  Commands commands_;
  SavedLayout layout_;
  std::deque<Pane> panes_;
  FrmMainWindow* accounts_ = nullptr;
  FrmorderWindow* market_order_ = nullptr;
  FrmlimitorderWindow* entry_order_ = nullptr;
  FrmMWWindow* market_watch_ = nullptr;
  FrmTradeWindow* trade_ = nullptr;
  FrmPendingWindow* pending_ = nullptr;
  FrmClosePosWindow* close_positions_ = nullptr;
  FrmNetTradeWindow* net_trade_ = nullptr;
  NetMatrixWindow* net_matrix_ = nullptr;
  FrmJournalWindow* journal_ = nullptr;
  FrmPriceChangedWindow* requote_ = nullptr;
  FrmaccountWindow* account_dialog_ = nullptr;
  HelpWindow* help_ = nullptr;
  QLineEdit* find_ = nullptr;
  std::unique_ptr<MessageQueueWindow> messages_;
};

}  // namespace tutti
