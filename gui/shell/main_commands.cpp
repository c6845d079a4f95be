#include "gui/shell/main_commands.h"

#include <QMenu>
#include <QTableView>
#include <cassert>
#include <set>
#include <utility>
#include <vector>

#include "core/texts.h"
#include "core/time_texts.h"
#include "gui/kit/desktop_sound.h"
#include "gui/kit/in_sight.h"
#include "gui/kit/screen.h"
#include "gui/kit/svg_icon.h"
#include "gui/list/csv_export.h"
#include "gui/list/list_text.h"
#include "gui/shell/message_queue_window.h"
#include "gui/shell/panes.h"
#include "gui/windows/frmPriceChanged_window.h"
#include "shell/Main.h"
#include "shell/holdings.h"

namespace tutti {

namespace {

constexpr auto harmless = Commands::Effect::harmless;
constexpr auto grave = Commands::Effect::grave;
constexpr auto ctrl_shift = Qt::CTRL | Qt::SHIFT;

constexpr const char* none_selected = "Select an account first";
constexpr const char* empty_list = "There is no account in the list";
constexpr const char* no_trading = "No account has been connected yet";

QString text_of(const char* text) {
  return QString::fromLatin1(text);
}

auto needs_selected(const frmMain& form) {
  return [&form] { return form.mainClientListItem() == nullptr ? none_selected : nullptr; };
}

auto needs_any(const frmMain& form) {
  return [&form] { return form.lvwClients.empty() ? empty_list : nullptr; };
}

std::string name_of(const AccountEntry& account) {
  return upper(account.user) + " " + std::to_string(account.account);
}

}  // namespace

MainCommands::MainCommands(CommandTargets targets, const std::function<QMenu&(const QString&)>& make_menu)
    : to_(std::move(targets)),
      commands_(to_.window, to_.screen,
                {.in_sight = [this](const QString& pane) { return in_sight(*to_.panes.named(pane).widget); },
                 .bring_up = [this](const QString& pane) { to_.panes.put_in_front(pane); }}) {
  const std::pair<const char*, void (MainCommands::*)()> menus[] = {
      {"&File", &MainCommands::make_file_menu},     {"&Accounts", &MainCommands::make_accounts_menu},
      {"&Orders", &MainCommands::make_orders_menu}, {"&View", &MainCommands::make_view_menu},
      {"&Tools", &MainCommands::make_tools_menu},   {"&Help", &MainCommands::make_help_menu},
  };
  for (const auto& [title, make] : menus) {
    menu_ = &make_menu(text_of(title));
    (this->*make)();
  }
  add_context_menus();
  explain_buttons();
}

QAction& MainCommands::add(const char* name, const char* text, Commands::Effect effect,
                           const QKeySequence& key, std::function<void()> run,
                           const CommandOptions& options) {
  return commands_.add(*menu_, {text_of(name),
                                text_of(text),
                                effect,
                                key,
                                std::move(run),
                                {text_of(options.pane), text_of(options.icon), options.off}});
}

void MainCommands::separate() {
  menu_->addSeparator();
}

void MainCommands::make_file_menu() {
  frmMain& form = to_.main.accounts();
  // Logs out whoever was in the list before.
  add("load", "&Load list...", grave, Qt::CTRL | Qt::Key_O, [&form] { form.mnuload_Click(); },
      {.icon = "open"});
  add("save_as", "&Save list as...", harmless, ctrl_shift | Qt::Key_S, [&form] { form.mnusaveas_Click(); },
      {.icon = "save"});
  const auto copy = [this] {
    if (const RowListView* list = to_.panes.active_list()) copy_selected(*list);
  };
  add("copy", "&Copy rows", harmless, QKeySequence::Copy, copy, {.icon = "copy"});
  add("export", "&Export to CSV...", harmless, ctrl_shift | Qt::Key_E, [this] { export_active(); },
      {.icon = "export"});
  separate();
  add("quit", "&Quit", grave, Qt::CTRL | Qt::Key_Q, [this] { to_.window.close(); });
}

void MainCommands::make_accounts_menu() {
  frmMain& form = to_.main.accounts();
  const auto selected = needs_selected(form);
  const auto any = needs_any(form);
  add("add", "&Add account...", harmless, Qt::Key_Insert, [&form] { form.add_account(); }, {.icon = "add"});
  add("edit", "&Edit account...", harmless, Qt::Key_F2, [&form] { form.edit_account(); },
      {.pane = "accounts", .icon = "edit", .off = selected});
  add("notes", "Edit &notes", harmless, Qt::Key_F4, [this] { to_.panes.accounts().edit_notes(); },
      {.pane = "accounts", .off = selected});
  add("remove", "&Remove...", grave, Qt::CTRL | Qt::Key_Delete, [this] { remove_selected(); },
      {.pane = "accounts", .icon = "remove", .off = selected});
  add("remove_all", "Remove all...", grave, ctrl_shift | Qt::Key_Delete,
      [this] { to_.main.sure().GeneralQuestionMsg("Remove All"); }, {.pane = "accounts", .off = any});
  separate();
  add_connection_commands();
  separate();
  add("find_account", "&Find account", harmless, Qt::CTRL | Qt::Key_F, to_.find_account, {.icon = "find"});
  add("history", "&History of account", harmless, Qt::CTRL | Qt::Key_H, [this] { show_history(); },
      {.pane = "accounts", .icon = "history", .off = selected});
}

void MainCommands::add_connection_commands() {
  frmMain& form = to_.main.accounts();
  const auto selected = needs_selected(form);
  const auto any = needs_any(form);
  add("connect", "&Connect", harmless, Qt::Key_F5, [&form] { form.MnuConnecte_Click(); },
      {.pane = "accounts", .icon = "connect", .off = selected});
  add("connect_all", "Connect all disconnected", harmless, Qt::CTRL | Qt::Key_F5,
      [&form] { form.cmdfunlogin(); }, {.pane = "accounts", .off = any});
  add("disconnect", "&Disconnect", grave, Qt::SHIFT | Qt::Key_F6, [this] { disconnect_selected(); },
      {.pane = "accounts", .icon = "disconnect", .off = selected});
  add("logout_all", "Logout all...", grave, ctrl_shift | Qt::Key_F6,
      [this] { to_.main.sure().GeneralQuestionMsg("Logout All"); }, {.pane = "accounts", .off = any});
  add("refresh_summaries", "Refresh &summaries", harmless, Qt::CTRL | Qt::Key_R,
      [&form] { form.refresh_summaries(); }, {.pane = "accounts", .off = selected});
}

void MainCommands::make_orders_menu() {
  add_market_order_commands();
  separate();
  add_entry_order_commands();
  separate();
  add_position_commands();
  separate();
  add_closing_commands();
  separate();
  add_requote_commands();
  separate();
  add("stop_all", "STOP ALL...", harmless, Qt::Key_Pause,
      [this] { to_.main.stop_form().stop("the operator"); }, {.icon = "stop"});
}

// A command-bar control that is not available switches its command off, whatever the window behind it says.
bool MainCommands::trading(int control) const {
  return to_.main.window().control(StatusDesk::first_trade_control + control).enabled;
}

void MainCommands::add_market_order_commands() {
  const frmorder& form = to_.main.market_order();
  FrmorderWindow& window = to_.panes.market_order();
  const auto needs = [this](int control, const Button& button, const char* otherwise) {
    return [this, control, &button, otherwise] {
      if (!trading(control)) return no_trading;
      return button.enabled() ? nullptr : otherwise;
    };
  };
  constexpr const char* first = "Distribute the total first";
  add("distribute", "&Distribute", harmless, Qt::Key_F9, [&window] { window.distribute(); },
      {.pane = "market_order",
       .icon = "distribute",
       .off = needs(0, form.cmddis, "The shares are distributed; choose the symbol or type the total anew")});
  add("buy", "&Buy", grave, ctrl_shift | Qt::Key_B, [&window] { window.buy(); },
      {.pane = "market_order", .icon = "buy", .off = needs(1, form.cmdbuy, first)});
  add("sell", "&Sell", grave, ctrl_shift | Qt::Key_L, [&window] { window.sell(); },
      {.pane = "market_order", .icon = "sell", .off = needs(2, form.cmdsell, first)});
  add("tick_all", "&Tick all accounts", harmless, Qt::CTRL | Qt::Key_T, [&window] { window.tick_all(); },
      {.pane = "market_order", .icon = "tick-all"});
}

void MainCommands::add_entry_order_commands() {
  const frmlimitorder& form = to_.main.entry_order();
  FrmlimitorderWindow& window = to_.panes.entry_order();
  const auto needs = [this](const Button& button, const char* otherwise) {
    return [this, &button, otherwise] {
      if (!trading(0)) return no_trading;
      return button.enabled() ? nullptr : otherwise;
    };
  };
  add("distribute_entry", "Distribute entry order", harmless, Qt::SHIFT | Qt::Key_F9,
      [&window] { window.distribute(); },
      {.pane = "entry_order",
       .off = needs(form.cmdlimiorderdis, "An order that stands already is not distributed again")});
  add("submit_entry", "S&ubmit entry order", grave, ctrl_shift | Qt::Key_U, [&window] { window.submit(); },
      {.pane = "entry_order",
       .icon = "entry-order",
       .off = needs(form.cmdsubmitlimiorder, "An account is connecting, or waits for the dealing server")});
  add("cancel_entry", "Clear entry order", harmless, ctrl_shift | Qt::Key_X, [&window] { window.cancel(); },
      {.pane = "entry_order"});
  add("tick_all_entry", "Tick all accounts for entry order", harmless, ctrl_shift | Qt::Key_T,
      [&window] { window.tick_all(); }, {.pane = "entry_order"});
}

void MainCommands::add_position_commands() {
  const auto connected = [this] { return trading(3) ? nullptr : no_trading; };
  add("close_selected", "&Close ticked positions", grave, ctrl_shift | Qt::Key_P,
      [this] { to_.panes.trade().close_selected(); },
      {.pane = "trade", .icon = "close-positions", .off = connected});
  add("cancel_selected", "Cancel selected &orders", grave, ctrl_shift | Qt::Key_G,
      [this] { to_.panes.pending().cancel_selected(); },
      {.pane = "pending", .icon = "cancel-orders", .off = connected});
  RowList& positions = to_.main.trade().lvwOpenPos;
  const auto edit_stops = [&positions] {
    if (Row* row = positions.current()) positions.activate(*row);
  };
  add("edit_stops", "Edit SL/TP of position", harmless, ctrl_shift | Qt::Key_Return, edit_stops,
      {.pane = "trade",
       .off = [&positions] { return positions.current() == nullptr ? "Select a position first" : nullptr; }});
  const RowList& pending = to_.main.pending().lvwPending;
  add("edit_order", "&Edit pending order", harmless, Qt::CTRL | Qt::Key_Return,
      [this] { to_.panes.pending().edit_current(); },
      {.pane = "pending", .off = [&pending] {
         return pending.current() == nullptr ? "Select a pending order first" : nullptr;
       }});
}

void MainCommands::add_closing_commands() {
  constexpr int closing = StatusDesk::last_trade_control - StatusDesk::first_trade_control;
  FrmClosePosWindow& marks = to_.panes.close_positions();
  add("close_marked", "Close &marked positions", grave, ctrl_shift | Qt::Key_K,
      [&marks] { marks.close_marked(); },
      {.pane = "close_positions", .icon = "close-positions", .off = [this] {
         return trading(closing) ? nullptr : no_trading;
       }});
  add("mark_all", "Mark all positions", harmless, ctrl_shift | Qt::Key_A, [&marks] { marks.mark_all(); },
      {.pane = "close_positions"});
  // These two send nothing yet, but what they pick is closed next.
  frmNetTrade& net = to_.main.net_trade();
  add("close_net", "Close accounts of net position...", grave, Qt::SHIFT | Qt::Key_F12,
      [&net] { net.close_accounts.click(); },
      {.pane = "net_trade",
       .off = [&net] { return net.can_close() ? nullptr : "Select a net position first"; }});
  NetMatrixWindow& matrix = to_.panes.net_matrix();
  add("close_block", "Close selected accounts x symbols...", grave, ctrl_shift | Qt::Key_F12,
      [&matrix] { matrix.close_selected(); },
      {.pane = "net_matrix",
       .off = [&matrix] { return matrix.can_close() ? nullptr : "Select cells that hold positions first"; }});
}

// Answers to what stands before everything else.
void MainCommands::add_requote_commands() {
  const auto requoted = [this] {
    return to_.main.requote().Displayed() ? nullptr : "No requote waits for an answer";
  };
  add("accept_requote", "&Accept requote", grave, Qt::Key_F7, [this] { to_.requote.accept_requote(); },
      {.icon = "requote", .off = requoted});
  add("reject_requote", "&Reject requote", grave, ctrl_shift | Qt::Key_F8,
      [this] { to_.requote.reject_requote(); }, {.off = requoted});
}

void MainCommands::make_view_menu() {
  for (const Pane& pane : to_.panes.all()) {
    add(pane.name.toLatin1(), pane.menu, harmless, Qt::CTRL | pane.key,
        [this, name = pane.name] { to_.panes.bring_up(name); }, {.icon = pane.icon});
  }
  separate();
  add("live_journal", "&Live journal", harmless, Qt::CTRL | Qt::Key_J,
      [this] { to_.panes.journal().show_live(); });
  add("full_screen", "&Full screen", harmless, Qt::Key_F11,
      [this] { to_.window.setWindowState(to_.window.windowState() ^ Qt::WindowFullScreen); });
  const auto reset = [this] {
    to_.reset_layout();
    to_.panes.bring_up(QStringLiteral("accounts"));
  };
  add("reset_layout", "&Reset layout", harmless, ctrl_shift | Qt::Key_R, reset, {.icon = "reset-layout"});
}

void MainCommands::make_tools_menu() {
  QAction& mute = add("mute", "&Mute sounds", harmless, Qt::CTRL | Qt::Key_M,
                      [this] { to_.sound.set_muted(!to_.sound.muted()); }, {.icon = "sound-on"});
  mute.setCheckable(true);
  to_.screen.on_refresh(mute, [this, &mute, shown = false]() mutable {
    if (to_.sound.muted() == shown) return;
    shown = to_.sound.muted();
    mute.setChecked(shown);
    mute.setIcon(svg_icon(text_of(shown ? "sound-off" : "sound-on")));
  });
  add("limits", "&Limits...", harmless, ctrl_shift | Qt::Key_M, [this] { to_.main.limits().show(); });
  const auto waiting = [this] {
    return to_.main.messages().current() == nullptr ? "No message waits" : nullptr;
  };
  add("next_message", "&Next message", harmless, Qt::CTRL | Qt::Key_Space, [this] { to_.messages.next(); },
      {.off = waiting});
  add("dismiss_all", "&Dismiss all messages", harmless, ctrl_shift | Qt::Key_Space,
      [this] { to_.messages.dismiss_all(); }, {.off = waiting});
}

void MainCommands::make_help_menu() {
  CHTMLHELP& help = to_.main.help();
  add("help", "&Help", harmless, Qt::Key_F1, [this, &help] { help.open(to_.panes.active().help); },
      {.icon = "help"});
  add("keyboard", "&Keyboard map", harmless, Qt::SHIFT | Qt::Key_F1, [&help] { help.open("keyboard"); },
      {.icon = "keyboard"});
  separate();
  add("about", "&About", harmless, ctrl_shift | Qt::Key_F1, [this] { to_.main.accounts().MnuAbout_Click(); },
      {.icon = "about"});
}

void MainCommands::add_context_menus() {
  for (const Pane& pane : to_.panes.all()) {
    std::vector<const char*> names = pane.commands;
    names.insert(names.end(), {"copy", "export"});
    for (QTableView* table : pane.widget->findChildren<QTableView*>()) {
      if (dynamic_cast<RowListView*>(table) == nullptr) continue;
      for (const char* const name : names)
        table->addAction(commands_.find(text_of(name)));
    }
  }
}

void MainCommands::explain_buttons() {
  struct Button {
    const char* pane;
    const char* name;
    const char* command;
  };
  constexpr Button buttons[] = {{"market_order", "cmddis", "distribute"},
                                {"market_order", "cmdbuy", "buy"},
                                {"market_order", "cmdsell", "sell"},
                                {"entry_order", "cmdlimiorderdis", "distribute_entry"},
                                {"entry_order", "cmdsubmitlimiorder", "submit_entry"},
                                {"entry_order", "cmdcancel", "cancel_entry"},
                                {"trade", "lbbClose", "close_selected"},
                                {"pending", "lbbCancel", "cancel_selected"},
                                {"close_positions", "LblCheck", "close_marked"},
                                {"net_trade", "close_accounts", "close_net"},
                                {"net_matrix", "close_block", "close_block"}};
  for (const Button& each : buttons) {
    auto* button = to_.panes.named(text_of(each.pane)).widget->findChild<QWidget*>(text_of(each.name));
    assert(button != nullptr);
    commands_.explain(*button, text_of(each.command));
  }
}

void MainCommands::export_active() {
  const RowListView* list = to_.panes.active_list();
  if (list == nullptr) return;
  if (list == &to_.panes.journal().list()) to_.panes.journal().show_all();
  const Pane& pane = to_.panes.active();
  const QString title = pane.dock == nullptr ? QStringLiteral("Accounts") : pane.dock->windowTitle();
  // Colons are no part of a file's name everywhere.
  const QString now =
      QString::fromStdString(now_text(to_.main.general().clock)).replace(QLatin1Char{':'}, QLatin1Char{'-'});
  export_csv(*list, QStringLiteral("%1 %2").arg(title, now).toStdString(), to_.files,
             [this](const std::string& text) { to_.main.general().message_box(text); });
}

bool MainCommands::confirm(const std::string& question, const std::string& details) {
  return to_.main.general().msg_box.GeneralQuestionMsg(question, details) == 1;
}

// Events may select another row while a question stands: acted on is what it was asked about.
void MainCommands::disconnect_selected() {
  frmMain& form = to_.main.accounts();
  std::set<std::string> meant;
  std::set<std::int32_t> numbers;
  for (const Row* row : form.lvwClients.selected()) {
    const AccountEntry& account = form.record_of(*row);
    if (!account.connected()) continue;
    meant.insert(name_of(account));
    numbers.insert(account.account);
  }
  if (meant.size() <= 1) return form.MnuDisconnecte_Click();
  if (!confirm("Log out " + std::to_string(meant.size()) + " accounts?",
               Holdings{to_.main.positions(), to_.main.sessions(), numbers}.text()))
    return;
  std::vector<RowKey> keys;
  for (const Row& row : form.lvwClients)
    if (form.record_of(row).connected() && meant.contains(name_of(form.record_of(row))))
      keys.push_back(row.key());
  for (const RowKey key : keys)
    form.LogoutClient(key);
}

void MainCommands::remove_selected() {
  frmMain& form = to_.main.accounts();
  std::set<std::string> meant;
  for (const Row* row : form.lvwClients.selected())
    meant.insert(name_of(form.record_of(*row)));
  if (meant.empty()) return;
  const std::string what = meant.size() == 1 ? "account " + *meant.begin()
                                             : "the " + std::to_string(meant.size()) + " selected accounts";
  if (!confirm("Remove " + what + " from the list?")) return;
  for (Row& row : form.lvwClients)
    row.set_selected(meant.contains(name_of(form.record_of(row))));
  form.mnuRemove_Click();
}

void MainCommands::show_history() {
  const Row* row = to_.main.accounts().mainClientListItem();
  if (row == nullptr) return;
  to_.panes.journal().show_history(to_.main.accounts().record_of(*row).account);
  to_.panes.bring_up(QStringLiteral("journal"));
}

}  // namespace tutti
