#pragma once

#include <QMainWindow>
#include <deque>

#include "gui/shell/pane.h"
#include "gui/windows/frmClosePos_window.h"
#include "gui/windows/frmJournal_window.h"
#include "gui/windows/frmMW_window.h"
#include "gui/windows/frmMain_window.h"
#include "gui/windows/frmNetTrade_window.h"
#include "gui/windows/frmPending_window.h"
#include "gui/windows/frmTrade_window.h"
#include "gui/windows/frmlimitorder_window.h"
#include "gui/windows/frmorder_window.h"
#include "gui/windows/net_matrix_window.h"

namespace tutti {

class Main;
class Screen;

// The windows within the main window: the accounts list in its middle, and everything else as a pane that
// docks, tabs and floats. Knows which is which, which of them the operator sees and works in, and tells the
// forms.
class Panes {
 public:
  // Makes all of them, in the order of the keys that bring them up. Where they stand is PaneLayout's
  // business.
  Panes(QMainWindow& window, Main& main, Screen& screen);

  const std::deque<Pane>& all() const { return panes_; }
  // Asserts that there is one.
  const Pane& named(const QString& name) const;
  // The one that stands in an area, tabs left aside.
  const Pane& at(Pane::Area area) const;
  // Raised when panes come or go, so that older layouts are not applied to them.
  static int edition();
  // The pane that has the keyboard; the accounts list while none has.
  const Pane& active() const;
  // Its list that has the keyboard, or its main one; nullptr when it has none.
  RowListView* active_list() const;
  // The accounts list of the order window in front; of both in sight, the one worked in last.
  const RowList& order_list_in_front();
  // Brings a pane to the front, floating ones included, with the keyboard where its work begins.
  void bring_up(const QString& name);
  // The same, with the keyboard where a key by mistake does least.
  void put_in_front(const QString& name);
  // The keyboard goes to the list of the pane with this title, if that is in front and has it not already.
  void work_in(const QString& title);
  // Puts what floats before the main window, which has just come onto the screen.
  void raise_floats();

  // Those that commands work in.
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

 private:
  void make_panes(Screen& screen);
  void add(Pane pane);
  // The pane that a widget is in; nullptr when it is in none.
  const Pane* pane_of(const QWidget* widget) const;
  void uncover(const Pane& pane);
  void dock_again(QDockWidget& dock);
  void follow_displayed();
  void keep_keyboard_in_sight();
  void show_title(QDockWidget& dock);

  QMainWindow& window_;
  Main& main_;
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
  bool entry_in_front_ = false;
};

}  // namespace tutti
