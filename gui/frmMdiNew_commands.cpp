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
#include "shell/holdings.h"

namespace tutti {

using namespace Qt::StringLiterals;

namespace {

constexpr auto harmless = Commands::Effect::harmless;
constexpr auto grave = Commands::Effect::grave;
constexpr auto ctrl_shift = Qt::CTRL | Qt::SHIFT;

std::string name_of(const Row& account) {
  return account.text(frmMain::user_name) + " " + account.text(frmMain::account);
}

}  // namespace

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
  QMenu& file = menu(u"&File"_s);
  // Logs out whoever was in the list before.
  command(file, {u"load"_s,
                 u"&Load list..."_s,
                 grave,
                 Qt::CTRL | Qt::Key_O,
                 [this] { main_.accounts().mnuload_Click(); },
                 {.icon = u"open"_s}});
  command(file, {u"save_as"_s,
                 u"&Save list as..."_s,
                 harmless,
                 ctrl_shift | Qt::Key_S,
                 [this] { main_.accounts().mnusaveas_Click(); },
                 {.icon = u"save"_s}});
  command(file, {u"copy"_s,
                 u"&Copy rows"_s,
                 harmless,
                 QKeySequence::Copy,
                 [this] {
                   if (const RowListView* list = active_list()) copy_selected(*list);
                 },
                 {.icon = u"copy"_s}});
  command(file, {u"export"_s,
                 u"&Export to CSV..."_s,
                 harmless,
                 ctrl_shift | Qt::Key_E,
                 [this] { export_active(); },
                 {.icon = u"export"_s}});
  file.addSeparator();
  command(file, {u"quit"_s, u"&Quit"_s, grave, Qt::CTRL | Qt::Key_Q, [this] { close(); }});
}

void FrmMdiNewWindow::make_accounts_menu() {
  QMenu& accounts = menu(u"&Accounts"_s);
  frmMain& form = main_.accounts();
  const QString pane = u"accounts"_s;
  const auto selected = [&form] { return form.mainClientListItem() != nullptr; };
  const auto any = [&form] { return !form.lvwClients.empty(); };
  command(accounts, {u"add"_s,
                     u"&Add account..."_s,
                     harmless,
                     Qt::Key_Insert,
                     [&form] { form.add_account(); },
                     {.icon = u"add"_s}});
  command(accounts, {u"edit"_s,
                     u"&Edit account..."_s,
                     harmless,
                     Qt::Key_F2,
                     [&form] { form.edit_account(); },
                     {.pane = pane, .icon = u"edit"_s, .available = selected}});
  command(accounts, {u"notes"_s,
                     u"Edit &notes"_s,
                     harmless,
                     Qt::Key_F4,
                     [this] { accounts_->edit_notes(); },
                     {.pane = pane, .available = selected}});
  command(accounts, {u"remove"_s,
                     u"&Remove..."_s,
                     grave,
                     Qt::CTRL | Qt::Key_Delete,
                     [this] { remove_selected(); },
                     {.pane = pane, .icon = u"remove"_s, .available = selected}});
  command(accounts, {u"remove_all"_s,
                     u"Remove all..."_s,
                     grave,
                     ctrl_shift | Qt::Key_Delete,
                     [this] { main_.sure().GeneralQuestionMsg("Remove All"); },
                     {.pane = pane, .available = any}});
  accounts.addSeparator();
  command(accounts, {u"connect"_s,
                     u"&Connect"_s,
                     harmless,
                     Qt::Key_F5,
                     [&form] { form.MnuConnecte_Click(); },
                     {.pane = pane, .icon = u"connect"_s, .available = selected}});
  command(accounts, {u"connect_all"_s,
                     u"Connect all disconnected"_s,
                     harmless,
                     Qt::CTRL | Qt::Key_F5,
                     [&form] { form.cmdfunlogin(); },
                     {.pane = pane, .available = any}});
  command(accounts, {u"disconnect"_s,
                     u"&Disconnect"_s,
                     grave,
                     Qt::SHIFT | Qt::Key_F6,
                     [this] { disconnect_selected(); },
                     {.pane = pane, .icon = u"disconnect"_s, .available = selected}});
  command(accounts, {u"logout_all"_s,
                     u"Logout all..."_s,
                     grave,
                     ctrl_shift | Qt::Key_F6,
                     [this] { main_.sure().GeneralQuestionMsg("Logout All"); },
                     {.pane = pane, .available = any}});
  command(accounts, {u"refresh_summaries"_s,
                     u"Refresh &summaries"_s,
                     harmless,
                     Qt::CTRL | Qt::Key_R,
                     [&form] { form.refresh_summaries(); },
                     {.pane = pane, .available = selected}});
  accounts.addSeparator();
  command(accounts, {u"find_account"_s,
                     u"&Find account"_s,
                     harmless,
                     Qt::CTRL | Qt::Key_F,
                     [this] { find_account(); },
                     {.icon = u"find"_s}});
  command(accounts, {u"history"_s,
                     u"&History of account"_s,
                     harmless,
                     Qt::CTRL | Qt::Key_H,
                     [this] { show_history(); },
                     {.pane = pane, .icon = u"history"_s, .available = selected}});
}

// A command-bar control that is not available switches its command off, whatever the window behind it says.
bool FrmMdiNewWindow::trading(int control) const {
  return main_.window().control(StatusDesk::first_trade_control + control).enabled;
}

void FrmMdiNewWindow::make_orders_menu() {
  QMenu& orders = menu(u"&Orders"_s);
  add_market_order_commands(orders);
  orders.addSeparator();
  add_entry_order_commands(orders);
  orders.addSeparator();
  add_position_commands(orders);
  orders.addSeparator();
  add_closing_commands(orders);
  orders.addSeparator();
  // Answers to what stands before everything else.
  const auto requoted = [this] { return main_.requote().Displayed(); };
  command(orders, {u"accept_requote"_s,
                   u"&Accept requote"_s,
                   grave,
                   Qt::Key_F7,
                   [this] { requote_->accept_requote(); },
                   {.icon = u"requote"_s, .available = requoted}});
  command(orders, {u"reject_requote"_s,
                   u"&Reject requote"_s,
                   grave,
                   ctrl_shift | Qt::Key_F8,
                   [this] { requote_->reject_requote(); },
                   {.available = requoted}});
}

void FrmMdiNewWindow::add_market_order_commands(QMenu& orders) {
  const frmorder& form = main_.market_order();
  const QString pane = u"market_order"_s;
  command(orders, {u"distribute"_s,
                   u"&Distribute"_s,
                   harmless,
                   Qt::Key_F9,
                   [this] { market_order_->distribute(); },
                   {.pane = pane, .icon = u"distribute"_s, .available = [this, &form] {
                      return trading(0) && form.cmddis.enabled();
                    }}});
  command(orders, {u"buy"_s,
                   u"&Buy"_s,
                   grave,
                   ctrl_shift | Qt::Key_B,
                   [this] { market_order_->buy(); },
                   {.pane = pane, .icon = u"buy"_s, .available = [this, &form] {
                      return trading(1) && form.cmdbuy.enabled();
                    }}});
  command(orders, {u"sell"_s,
                   u"&Sell"_s,
                   grave,
                   ctrl_shift | Qt::Key_L,
                   [this] { market_order_->sell(); },
                   {.pane = pane, .icon = u"sell"_s, .available = [this, &form] {
                      return trading(2) && form.cmdsell.enabled();
                    }}});
  command(orders, {u"tick_all"_s,
                   u"&Tick all accounts"_s,
                   harmless,
                   Qt::CTRL | Qt::Key_T,
                   [this] { market_order_->tick_all(); },
                   {.pane = pane, .icon = u"tick-all"_s}});
}

void FrmMdiNewWindow::add_entry_order_commands(QMenu& orders) {
  const frmlimitorder& form = main_.entry_order();
  const QString pane = u"entry_order"_s;
  command(orders, {u"distribute_entry"_s,
                   u"Distribute entry order"_s,
                   harmless,
                   Qt::SHIFT | Qt::Key_F9,
                   [this] { entry_order_->distribute(); },
                   {.pane = pane,
                    .available = [this, &form] { return trading(0) && form.cmdlimiorderdis.enabled(); }}});
  command(orders, {u"submit_entry"_s,
                   u"S&ubmit entry order"_s,
                   grave,
                   ctrl_shift | Qt::Key_U,
                   [this] { entry_order_->submit(); },
                   {.pane = pane, .icon = u"entry-order"_s, .available = [this, &form] {
                      return trading(0) && form.cmdsubmitlimiorder.enabled();
                    }}});
  command(orders, {u"cancel_entry"_s,
                   u"Clear entry order"_s,
                   harmless,
                   ctrl_shift | Qt::Key_X,
                   [this] { entry_order_->cancel(); },
                   {.pane = pane}});
  command(orders, {u"tick_all_entry"_s,
                   u"Tick all accounts for entry order"_s,
                   harmless,
                   ctrl_shift | Qt::Key_T,
                   [this] { entry_order_->tick_all(); },
                   {.pane = pane}});
}

void FrmMdiNewWindow::add_position_commands(QMenu& orders) {
  const QString positions = u"trade"_s;
  const QString pending = u"pending"_s;
  command(orders,
          {u"close_selected"_s,
           u"&Close ticked positions"_s,
           grave,
           ctrl_shift | Qt::Key_P,
           [this] { trade_->close_selected(); },
           {.pane = positions, .icon = u"close-positions"_s, .available = [this] { return trading(3); }}});
  command(orders,
          {u"cancel_selected"_s,
           u"Cancel selected &orders"_s,
           grave,
           ctrl_shift | Qt::Key_G,
           [this] { pending_->cancel_selected(); },
           {.pane = pending, .icon = u"cancel-orders"_s, .available = [this] { return trading(3); }}});
  command(orders, {u"edit_stops"_s,
                   u"Edit SL/TP of position"_s,
                   harmless,
                   ctrl_shift | Qt::Key_Return,
                   [this] {
                     RowList& list = main_.trade().lvwOpenPos;
                     if (Row* row = list.current()) list.activate(*row);
                   },
                   {.pane = positions,
                    .available = [this] { return main_.trade().lvwOpenPos.current() != nullptr; }}});
  command(orders, {u"edit_order"_s,
                   u"&Edit pending order"_s,
                   harmless,
                   Qt::CTRL | Qt::Key_Return,
                   [this] { pending_->edit_current(); },
                   {.pane = pending,
                    .available = [this] { return main_.pending().lvwPending.current() != nullptr; }}});
}

void FrmMdiNewWindow::add_closing_commands(QMenu& orders) {
  const QString marks = u"close_positions"_s;
  command(orders, {u"close_marked"_s,
                   u"Close &marked positions"_s,
                   grave,
                   ctrl_shift | Qt::Key_K,
                   [this] { close_positions_->close_marked(); },
                   {.pane = marks, .icon = u"close-positions"_s, .available = [this] {
                      return main_.window().control(StatusDesk::last_trade_control).enabled;
                    }}});
  command(orders, {u"mark_all"_s,
                   u"Mark all positions"_s,
                   harmless,
                   ctrl_shift | Qt::Key_A,
                   [this] { close_positions_->mark_all(); },
                   {.pane = marks}});
  // These two send nothing yet, but what they pick is closed next.
  command(orders, {u"close_net"_s,
                   u"Close accounts of net position..."_s,
                   grave,
                   Qt::SHIFT | Qt::Key_F12,
                   [this] { main_.net_trade().close_accounts.click(); },
                   {.pane = u"net_trade"_s, .available = [this] { return main_.net_trade().can_close(); }}});
  command(orders, {u"close_block"_s,
                   u"Close selected accounts x symbols..."_s,
                   grave,
                   ctrl_shift | Qt::Key_F12,
                   [this] { net_matrix_->close_selected(); },
                   {.pane = u"net_matrix"_s, .available = [this] { return net_matrix_->can_close(); }}});
}

void FrmMdiNewWindow::make_view_menu() {
  QMenu& view = menu(u"&View"_s);
  const std::pair<QString, QString> texts[] = {
      {u"&Accounts list"_s, {}},
      {u"Market &watch"_s, {}},
      {u"Market &order"_s, u"market-order"_s},
      {u"&Trade"_s, {}},
      {u"&Pending orders"_s, {}},
      {u"&Journal"_s, u"journal"_s},
      {u"&Entry order"_s, u"entry-order"_s},
      {u"&Net positions"_s, {}},
      {u"Accounts x &symbols"_s, {}},
      {u"&Close positions"_s, u"close-positions"_s},
  };
  int number = 0;
  for (const auto& [text, icon] : texts) {
    const QString name = panes_[static_cast<std::size_t>(number)].name;
    ++number;
    command(view, {name,
                   text,
                   harmless,
                   Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number % 10),
                   [this, name] { bring_up(name); },
                   {.icon = icon}});
  }
  view.addSeparator();
  command(view, {u"live_journal"_s, u"&Live journal"_s, harmless, Qt::CTRL | Qt::Key_J,
                 [this] { journal_->show_live(); }});
  command(view, {u"full_screen"_s, u"&Full screen"_s, harmless, Qt::Key_F11,
                 [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); }});
  command(view, {u"reset_layout"_s,
                 u"&Reset layout"_s,
                 harmless,
                 ctrl_shift | Qt::Key_R,
                 [this] { reset_layout(); },
                 {.icon = u"reset-layout"_s}});
}

void FrmMdiNewWindow::make_tools_menu() {
  QMenu& tools = menu(u"&Tools"_s);
  QAction& mute = command(tools, {u"mute"_s,
                                  u"&Mute sounds"_s,
                                  harmless,
                                  Qt::CTRL | Qt::Key_M,
                                  [this] { sound_.set_muted(!sound_.muted()); },
                                  {.icon = u"sound-on"_s}});
  mute.setCheckable(true);
  screen_.on_refresh(mute, [this, &mute, shown = false]() mutable {
    if (sound_.muted() == shown) return;
    shown = sound_.muted();
    mute.setChecked(shown);
    mute.setIcon(svg_icon(shown ? u"sound-off"_s : u"sound-on"_s));
  });
  const auto waiting = [this] { return main_.messages().current() != nullptr; };
  command(tools, {u"next_message"_s,
                  u"&Next message"_s,
                  harmless,
                  Qt::CTRL | Qt::Key_Space,
                  [this] { messages_->next(); },
                  {.available = waiting}});
  command(tools, {u"dismiss_all"_s,
                  u"&Dismiss all messages"_s,
                  harmless,
                  ctrl_shift | Qt::Key_Space,
                  [this] { messages_->dismiss_all(); },
                  {.available = waiting}});
}

void FrmMdiNewWindow::make_help_menu() {
  QMenu& help = menu(u"&Help"_s);
  command(help, {u"help"_s,
                 u"&Help"_s,
                 harmless,
                 Qt::Key_F1,
                 [this] { main_.help().open(active_pane().help); },
                 {.icon = u"help"_s}});
  command(help, {u"keyboard"_s,
                 u"&Keyboard map"_s,
                 harmless,
                 Qt::SHIFT | Qt::Key_F1,
                 [this] { main_.help().open("keyboard"); },
                 {.icon = u"keyboard"_s}});
  help.addSeparator();
  command(help, {u"about"_s,
                 u"&About"_s,
                 harmless,
                 ctrl_shift | Qt::Key_F1,
                 [this] { main_.accounts().MnuAbout_Click(); },
                 {.icon = u"about"_s}});
}

void FrmMdiNewWindow::add_context_menus() {
  const auto fill = [this](QWidget& list, std::initializer_list<const char*> names) {
    for (const char* const name : names)
      list.addAction(commands_.find(QString::fromLatin1(name)));
    for (const QString& name : {QStringLiteral("copy"), QStringLiteral("export")})
      list.addAction(commands_.find(name));
  };
  fill(accounts_->list(),
       {"connect", "connect_all", "disconnect", "refresh_summaries", "edit", "notes", "remove", "history"});
  fill(market_order_->list(), {"tick_all", "distribute"});
  fill(entry_order_->list(), {"tick_all_entry", "distribute_entry"});
  fill(trade_->list(), {"edit_stops", "close_selected"});
  fill(pending_->list(), {"edit_order", "cancel_selected"});
  fill(journal_->list(), {"live_journal"});
  fill(market_watch_->list(), {});
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

// Events may select another row while a question stands: acted on is what it was asked about.
void FrmMdiNewWindow::disconnect_selected() {
  frmMain& form = main_.accounts();
  std::set<std::string> meant;
  std::set<std::int32_t> numbers;
  for (const Row* row : form.lvwClients.selected()) {
    if (!row->reads(frmMain::state, "Connected")) continue;
    meant.insert(name_of(*row));
    numbers.insert(static_cast<std::int32_t>(row->cell(frmMain::account).stored_number()));
  }
  if (meant.size() <= 1) return form.MnuDisconnecte_Click();
  if (!confirm("Log out " + std::to_string(meant.size()) + " accounts?",
               Holdings{main_.trade(), form.sessions(), numbers}.text()))
    return;
  std::vector<RowKey> keys;
  for (const Row& row : form.lvwClients)
    if (meant.contains(name_of(row)) && row.reads(frmMain::state, "Connected")) keys.push_back(row.key());
  for (const RowKey key : keys)
    form.LogoutClient(key);
}

void FrmMdiNewWindow::remove_selected() {
  RowList& list = main_.accounts().lvwClients;
  std::set<std::string> meant;
  for (const Row* row : list.selected())
    meant.insert(name_of(*row));
  if (meant.empty()) return;
  const std::string what = meant.size() == 1 ? "account " + *meant.begin()
                                             : "the " + std::to_string(meant.size()) + " selected accounts";
  if (!confirm("Remove " + what + " from the list?")) return;
  for (Row& row : list)
    row.set_selected(meant.contains(name_of(row)));
  main_.accounts().mnuRemove_Click();
}

void FrmMdiNewWindow::show_history() {
  const Row* row = main_.accounts().mainClientListItem();
  if (row == nullptr) return;
  journal_->show_history(static_cast<std::int32_t>(row->cell(frmMain::account).stored_number()));
  bring_up(QStringLiteral("journal"));
}

}  // namespace tutti
