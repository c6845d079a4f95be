// The main window's commands: menus, keys and what they do.

#include <QActionGroup>
#include <QLineEdit>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <set>

#include "gui/csv_export.h"
#include "gui/frmMdiNew_window.h"
#include "gui/list_text.h"
#include "gui/screen.h"
#include "gui/svg_icon.h"

namespace tutti {

QMenu& FrmMdiNewWindow::menu(const QString& title) {
  return *menuBar()->addMenu(title);
}

void FrmMdiNewWindow::make_commands() {
  make_file_menu();
  make_accounts_menu();
  make_orders_menu();
  make_view_menu();
  make_tools_menu();
  make_help_menu();
}

void FrmMdiNewWindow::make_file_menu() {
  QMenu& file = menu(QStringLiteral("&File"));
  command(file, {QStringLiteral("load"), QStringLiteral("&Load list..."), Qt::CTRL | Qt::Key_O,
                 QStringLiteral("open"), [this] { main_.accounts().mnuload_Click(); }});
  command(file,
          {QStringLiteral("save_as"), QStringLiteral("&Save list as..."), Qt::CTRL | Qt::SHIFT | Qt::Key_S,
           QStringLiteral("save"), [this] { main_.accounts().mnusaveas_Click(); }});
  command(file, {QStringLiteral("copy"), QStringLiteral("&Copy rows"), QKeySequence::Copy,
                 QStringLiteral("copy"), [this] {
                   if (const RowListView* list = active_list()) copy_selected(*list);
                 }});
  command(file, {QStringLiteral("export"), QStringLiteral("&Export to CSV..."),
                 Qt::CTRL | Qt::SHIFT | Qt::Key_E, QStringLiteral("export"), [this] { export_active(); }});
  file.addSeparator();
  command(file,
          {QStringLiteral("quit"), QStringLiteral("&Quit"), Qt::CTRL | Qt::Key_Q, {}, [this] { close(); }});
}

void FrmMdiNewWindow::make_accounts_menu() {
  QMenu& accounts = menu(QStringLiteral("&Accounts"));
  frmMain& form = main_.accounts();
  const auto selected = [&form] { return form.mainClientListItem() != nullptr; };
  const auto any = [&form] { return !form.lvwClients.empty(); };
  command(accounts, {QStringLiteral("add"), QStringLiteral("&Add account..."), Qt::Key_Insert,
                     QStringLiteral("add"), [&form] { form.add_account(); }});
  command(accounts, {QStringLiteral("edit"), QStringLiteral("&Edit account..."), Qt::Key_F2,
                     QStringLiteral("edit"), [&form] { form.edit_account(); }, selected});
  command(accounts, {QStringLiteral("notes"),
                     QStringLiteral("Edit &notes"),
                     Qt::Key_F4,
                     {},
                     [this] { accounts_->edit_notes(); },
                     selected});
  command(accounts, {QStringLiteral("remove"), QStringLiteral("&Remove..."), Qt::CTRL | Qt::Key_Delete,
                     QStringLiteral("remove"), [this] { remove_selected(); }, selected});
  command(accounts, {QStringLiteral("remove_all"),
                     QStringLiteral("Remove all..."),
                     Qt::CTRL | Qt::SHIFT | Qt::Key_Delete,
                     {},
                     [this] { main_.sure().GeneralQuestionMsg("Remove All"); },
                     any});
  accounts.addSeparator();
  command(accounts, {QStringLiteral("connect"), QStringLiteral("&Connect"), Qt::Key_F5,
                     QStringLiteral("connect"), [&form] { form.MnuConnecte_Click(); }, selected});
  command(accounts, {QStringLiteral("connect_all"),
                     QStringLiteral("Connect all disconnected"),
                     Qt::CTRL | Qt::Key_F5,
                     {},
                     [&form] { form.cmdfunlogin(); },
                     any});
  command(accounts, {QStringLiteral("disconnect"), QStringLiteral("&Disconnect"), Qt::Key_F6,
                     QStringLiteral("disconnect"), [&form] { form.MnuDisconnecte_Click(); }, selected});
  command(accounts, {QStringLiteral("logout_all"),
                     QStringLiteral("Logout all..."),
                     Qt::CTRL | Qt::Key_F6,
                     {},
                     [this] { main_.sure().GeneralQuestionMsg("Logout All"); },
                     any});
  accounts.addSeparator();
  command(accounts, {QStringLiteral("find_account"), QStringLiteral("&Find account"), Qt::CTRL | Qt::Key_F,
                     QStringLiteral("find"), [this] { find_account(); }});
  command(accounts, {QStringLiteral("history"), QStringLiteral("&History of account"), Qt::CTRL | Qt::Key_H,
                     QStringLiteral("history"), [this] { show_history(); }, selected});
}

void FrmMdiNewWindow::make_orders_menu() {
  QMenu& orders = menu(QStringLiteral("&Orders"));
  const frmMdiNew& shell = main_.window();
  frmorder& form = main_.market_order();
  frmPriceChanged& requote = main_.requote();
  // A command-bar control that is not available switches its command off, whatever the window behind it says.
  const auto trading = [&shell](int control) {
    return shell.control(StatusDesk::first_trade_control + control).enabled;
  };
  command(orders, {QStringLiteral("distribute"), QStringLiteral("&Distribute"), Qt::Key_F9,
                   QStringLiteral("distribute"), [this] { market_order_->distribute(); },
                   [&form, trading] { return trading(0) && form.cmddis.enabled(); }});
  command(orders, {QStringLiteral("buy"), QStringLiteral("&Buy"), Qt::CTRL | Qt::SHIFT | Qt::Key_B,
                   QStringLiteral("buy"), [this] { market_order_->buy(); },
                   [&form, trading] { return trading(1) && form.cmdbuy.enabled(); }});
  command(orders, {QStringLiteral("sell"), QStringLiteral("&Sell"), Qt::CTRL | Qt::SHIFT | Qt::Key_L,
                   QStringLiteral("sell"), [this] { market_order_->sell(); },
                   [&form, trading] { return trading(2) && form.cmdsell.enabled(); }});
  command(orders, {QStringLiteral("tick_all"), QStringLiteral("&Tick all accounts"), Qt::CTRL | Qt::Key_T,
                   QStringLiteral("tick-all"), [this] { market_order_->tick_all(); }});
  orders.addSeparator();
  frmlimitorder& entry = main_.entry_order();
  command(orders, {QStringLiteral("distribute_entry"),
                   QStringLiteral("Distribute entry order"),
                   Qt::SHIFT | Qt::Key_F9,
                   {},
                   [this] { entry_order_->distribute(); },
                   [&entry, trading] { return trading(0) && entry.cmdlimiorderdis.enabled(); }});
  command(orders, {QStringLiteral("submit_entry"), QStringLiteral("S&ubmit entry order"),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_U, QStringLiteral("entry-order"),
                   [this] { entry_order_->submit(); },
                   [&entry, trading] { return trading(0) && entry.cmdsubmitlimiorder.enabled(); }});
  command(orders, {QStringLiteral("cancel_entry"),
                   QStringLiteral("Clear entry order"),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_X,
                   {},
                   [this] { entry_order_->cancel(); }});
  command(orders, {QStringLiteral("tick_all_entry"),
                   QStringLiteral("Tick all accounts for entry order"),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_T,
                   {},
                   [this] { entry_order_->tick_all(); }});
  orders.addSeparator();
  command(orders, {QStringLiteral("close_selected"), QStringLiteral("&Close selected positions"),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_C, QStringLiteral("close-positions"),
                   [this] { trade_->close_selected(); }, [trading] { return trading(3); }});
  command(orders, {QStringLiteral("cancel_selected"), QStringLiteral("Cancel selected &orders"),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_D, QStringLiteral("cancel-orders"),
                   [this] { pending_->cancel_selected(); }, [trading] { return trading(3); }});
  command(orders, {QStringLiteral("edit_stops"),
                   QStringLiteral("Edit SL/TP of position"),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_Return,
                   {},
                   [this] {
                     RowList& positions = main_.trade().lvwOpenPos;
                     if (Row* row = positions.current()) positions.activate(*row);
                   },
                   [this] { return main_.trade().lvwOpenPos.current() != nullptr; }});
  command(orders, {QStringLiteral("edit_order"),
                   QStringLiteral("&Edit pending order"),
                   Qt::CTRL | Qt::Key_Return,
                   {},
                   [this] { pending_->edit_current(); },
                   [this] { return main_.pending().lvwPending.current() != nullptr; }});
  orders.addSeparator();
  add_closing_commands(orders);
  orders.addSeparator();
  const auto requoted = [&requote] { return requote.Displayed(); };
  command(orders, {QStringLiteral("accept_requote"), QStringLiteral("&Accept requote"), Qt::Key_F7,
                   QStringLiteral("requote"), [this] { requote_->accept_requote(); }, requoted});
  command(orders, {QStringLiteral("reject_requote"),
                   QStringLiteral("&Reject requote"),
                   Qt::Key_F8,
                   {},
                   [this] { requote_->reject_requote(); },
                   requoted});
}

// What is marked is acted on only where it can be seen.
void FrmMdiNewWindow::add_closing_commands(QMenu& orders) {
  const frmClosePos& form = main_.close_positions();
  const auto available = [this, &form] {
    return form.Displayed() && main_.window().control(StatusDesk::last_trade_control).enabled;
  };
  command(orders, {QStringLiteral("close_marked"), QStringLiteral("Close &marked positions"),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_K, QStringLiteral("close-positions"),
                   [this] { close_positions_->close_marked(); }, available});
  command(orders, {QStringLiteral("mark_all"),
                   QStringLiteral("Mark all positions"),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_A,
                   {},
                   [this] { close_positions_->mark_all(); },
                   [&form] { return form.Displayed(); }});
  command(orders, {QStringLiteral("close_net"),
                   QStringLiteral("Close accounts of net position..."),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_N,
                   {},
                   [this] { main_.net_trade().close_accounts.click(); },
                   [this] { return net_trade_->isVisible() && main_.net_trade().can_close(); }});
  command(orders, {QStringLiteral("close_block"),
                   QStringLiteral("Close selected accounts x symbols..."),
                   Qt::CTRL | Qt::SHIFT | Qt::Key_M,
                   {},
                   [this] { net_matrix_->close_selected(); },
                   [this] { return net_matrix_->can_close(); }});
}

void FrmMdiNewWindow::make_view_menu() {
  QMenu& view = menu(QStringLiteral("&View"));
  const std::pair<QString, QString> texts[] = {
      {QStringLiteral("&Accounts list"), {}},
      {QStringLiteral("Market &watch"), {}},
      {QStringLiteral("Market &order"), QStringLiteral("market-order")},
      {QStringLiteral("&Trade"), {}},
      {QStringLiteral("&Pending orders"), {}},
      {QStringLiteral("&Journal"), QStringLiteral("journal")},
      {QStringLiteral("&Entry order"), QStringLiteral("entry-order")},
      {QStringLiteral("&Net positions"), {}},
      {QStringLiteral("Accounts x &symbols"), {}},
      {QStringLiteral("&Close positions"), QStringLiteral("close-positions")},
  };
  int number = 0;
  for (const auto& [text, icon] : texts) {
    const QString name = panes_[static_cast<std::size_t>(number)].name;
    ++number;
    command(view, {name, text, Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number % 10), icon,
                   [this, name] { bring_up(name); }});
  }
  view.addSeparator();
  command(view,
          {QStringLiteral("live_journal"), QStringLiteral("&Live journal"), Qt::CTRL | Qt::Key_L, {}, [this] {
             journal_->show_live();
           }});
  command(view, {QStringLiteral("full_screen"), QStringLiteral("&Full screen"), Qt::Key_F11, {}, [this] {
                   setWindowState(windowState() ^ Qt::WindowFullScreen);
                 }});
  command(view,
          {QStringLiteral("reset_layout"), QStringLiteral("&Reset layout"), Qt::CTRL | Qt::SHIFT | Qt::Key_R,
           QStringLiteral("reset-layout"), [this] { reset_layout(); }});
}

void FrmMdiNewWindow::make_tools_menu() {
  QMenu& tools = menu(QStringLiteral("&Tools"));
  QAction& mute =
      command(tools, {QStringLiteral("mute"), QStringLiteral("&Mute sounds"), Qt::CTRL | Qt::Key_M,
                      QStringLiteral("sound-on"), [this] { sound_.set_muted(!sound_.muted()); }});
  mute.setCheckable(true);
  screen_.on_refresh(mute, [this, &mute, shown = false]() mutable {
    if (sound_.muted() == shown) return;
    shown = sound_.muted();
    mute.setChecked(shown);
    mute.setIcon(svg_icon(shown ? QStringLiteral("sound-off") : QStringLiteral("sound-on")));
  });
  const auto waiting = [this] { return main_.messages().current() != nullptr; };
  command(tools, {QStringLiteral("next_message"),
                  QStringLiteral("&Next message"),
                  Qt::CTRL | Qt::Key_Space,
                  {},
                  [this] { messages_->next(); },
                  waiting});
  command(tools, {QStringLiteral("dismiss_all"),
                  QStringLiteral("&Dismiss all messages"),
                  Qt::CTRL | Qt::SHIFT | Qt::Key_Space,
                  {},
                  [this] { messages_->dismiss_all(); },
                  waiting});
}

void FrmMdiNewWindow::make_help_menu() {
  QMenu& help = menu(QStringLiteral("&Help"));
  command(help, {QStringLiteral("help"), QStringLiteral("&Help"), Qt::Key_F1, QStringLiteral("help"),
                 [this] { main_.help().open(active_pane().help); }});
  command(help, {QStringLiteral("keyboard"), QStringLiteral("&Keyboard map"), Qt::SHIFT | Qt::Key_F1,
                 QStringLiteral("keyboard"), [this] { main_.help().open("keyboard"); }});
  help.addSeparator();
  command(help, {QStringLiteral("about"), QStringLiteral("&About"), Qt::CTRL | Qt::SHIFT | Qt::Key_F1,
                 QStringLiteral("about"), [this] { main_.accounts().MnuAbout_Click(); }});
}

void FrmMdiNewWindow::add_context_menus() {
  const auto fill = [this](QWidget& list, std::initializer_list<const char*> names) {
    for (const char* const name : names)
      list.addAction(commands_.find(QString::fromLatin1(name)));
    for (const QString& name : {QStringLiteral("copy"), QStringLiteral("export")})
      list.addAction(commands_.find(name));
  };
  fill(accounts_->list(), {"connect", "connect_all", "disconnect", "edit", "notes", "remove", "history"});
  fill(market_order_->list(), {"tick_all", "distribute"});
  fill(entry_order_->list(), {"tick_all_entry", "distribute_entry"});
  fill(trade_->list(), {"edit_stops", "close_selected"});
  fill(pending_->list(), {"edit_order", "cancel_selected"});
  fill(journal_->list(), {"live_journal"});
  fill(market_watch_->list(), {"market_order"});
  fill(close_positions_->list(), {"mark_all", "close_marked"});
  fill(net_trade_->list(), {"close_net"});
  fill(net_trade_->accounts(), {"close_net"});
  fill(net_matrix_->list(), {"close_block"});
}

void FrmMdiNewWindow::export_active() {
  const RowListView* list = active_list();
  if (list == nullptr) return;
  export_csv(*list, files_, [this](const std::string& text) { main_.general().message_box(text); });
}

void FrmMdiNewWindow::find_account() {
  find_->setFocus(Qt::ShortcutFocusReason);
  find_->selectAll();
}

// Events may select another row while the question stands: removed is what it was asked about.
void FrmMdiNewWindow::remove_selected() {
  RowList& list = main_.accounts().lvwClients;
  const auto name = [](const Row& row) {
    return row.text(frmMain::user_name) + " " + row.text(frmMain::account);
  };
  std::set<std::string> meant;
  for (const Row* row : list.selected())
    meant.insert(name(*row));
  if (meant.empty()) return;
  const std::string what = meant.size() == 1 ? "account " + *meant.begin()
                                             : "the " + std::to_string(meant.size()) + " selected accounts";
  if (!confirm("Remove " + what + " from the list?")) return;
  for (Row& row : list)
    row.set_selected(meant.contains(name(row)));
  main_.accounts().mnuRemove_Click();
}

void FrmMdiNewWindow::show_history() {
  const Row* row = main_.accounts().mainClientListItem();
  if (row == nullptr) return;
  journal_->show_history(static_cast<std::int32_t>(row->cell(frmMain::account).stored_number()));
  bring_up(QStringLiteral("journal"));
}

}  // namespace tutti
