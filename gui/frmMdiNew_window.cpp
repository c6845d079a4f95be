#include "gui/frmMdiNew_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <cassert>

#include "gui/about_window.h"
#include "gui/in_sight.h"
#include "gui/screen.h"
#include "gui/shell_label.h"
#include "gui/status_strip.h"
#include "gui/svg_icon.h"
#include "shell/holdings.h"

namespace tutti {

namespace {

// Raised when panes come or go, so that older layouts are not applied to them.
constexpr int layout_version = 2;
constexpr QSize standard_size{1600, 900};
constexpr int room_for_two = 2200;  // width from which positions and journal stand side by side

}  // namespace

FrmMdiNewWindow::FrmMdiNewWindow(Main& main, Screen& screen, DesktopPrompt& prompt, DesktopSound& sound,
                                 FileDialog& files)
    : main_(main),
      screen_(screen),
      sound_(sound),
      files_(files),
      commands_(*this, screen,
                {.in_sight = [this](const QString& pane) { return in_sight(*pane_named(pane).widget); },
                 .bring_up = [this](const QString& pane) { put_in_front(pane); }}),
      layout_(main.general().paths.file("\\manage\\layout.dat")) {
  setObjectName(QStringLiteral("frmMdiNew"));
  const std::string broker = main_.broker().name;
  setWindowTitle(broker.empty() ? QStringLiteral("Tutti") : QString::fromStdString("Tutti - " + broker));
  setWindowIcon(svg_icon(QStringLiteral("tutti")));
  setDockOptions(AllowNestedDocks | AllowTabbedDocks | GroupedDragging);
  setTabPosition(Qt::AllDockWidgetAreas, QTabWidget::North);
  setCorner(Qt::TopRightCorner, Qt::RightDockWidgetArea);
  setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
  setCorner(Qt::TopLeftCorner, Qt::LeftDockWidgetArea);
  setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);

  // Before everything else, so that what a form does as it comes into sight shows in the same frame.
  screen_.on_refresh(*this, [this] { follow_displayed(); });
  make_panes();
  setStatusBar(new StatusStrip{main_, screen_});
  make_labels();
  make_commands();
  make_tool_bar();
  add_context_menus();

  prompt.set_parent(this);
  account_dialog_ = new FrmaccountWindow{main_.accounts().account_dialog(), screen_, this};
  requote_ = new FrmPriceChangedWindow{main_.requote(), screen_, this};
  messages_ = std::make_unique<MessageQueueWindow>(main_.messages(), screen_, main_.general().clock, *this);
  help_ = new HelpWindow{this};
  main_.help().show = [this](const std::string& topic) { help_->open(topic); };
  main_.accounts().show_about = [this] { show_about(); };
  main_.window().set_command(frmMdiNew::show_accounts, [this] { bring_up(QStringLiteral("accounts")); });
  main_.window().set_command(frmMdiNew::show_journal, [this] { bring_up(QStringLiteral("journal")); });
  main_.market_order().show = [this] { bring_up(QStringLiteral("market_order")); };
  main_.entry_order().show = [this] { bring_up(QStringLiteral("entry_order")); };
  main_.close_positions().show = [this] { put_in_front(QStringLiteral("close_positions")); };
  reset_layout();
}

Pane& FrmMdiNewWindow::add_pane(const QString& name, const QString& title, const char* help, QWidget* widget,
                                RowListView* list) {
  auto* dock = new QDockWidget{title, this};
  dock->setObjectName(name);
  dock->setWidget(widget);
  return panes_.emplace_back(Pane{name, help, widget, list, dock});
}

// All panes exist before a layout is restored.
void FrmMdiNewWindow::make_panes() {
  accounts_ = new FrmMainWindow{main_.accounts(), screen_};
  setCentralWidget(accounts_);
  panes_.emplace_back(Pane{QStringLiteral("accounts"), "accounts", accounts_, &accounts_->list()});

  market_watch_ = new FrmMWWindow{main_.market_watch(), screen_};
  add_pane(QStringLiteral("market_watch"), QStringLiteral("Market watch"), "market-watch", market_watch_,
           &market_watch_->list());
  market_order_ = new FrmorderWindow{main_.market_order(), main_.symbols(), screen_};
  add_pane(QStringLiteral("market_order"), QStringLiteral("Market order"), "market-order", market_order_,
           &market_order_->list());
  trade_ = new FrmTradeWindow{main_.trade(), screen_};
  add_pane(QStringLiteral("trade"), QString::fromUtf8(frmTrade::caption.data()), "positions", trade_,
           &trade_->list());
  pending_ = new FrmPendingWindow{main_.pending(), screen_};
  add_pane(QStringLiteral("pending"), QStringLiteral("Pending orders"), "pending-orders", pending_,
           &pending_->list());
  journal_ = new FrmJournalWindow{main_.journal_window(), main_.journal(), screen_};
  add_pane(QStringLiteral("journal"), QStringLiteral("Journal"), "journal", journal_, &journal_->list());
  entry_order_ = new FrmlimitorderWindow{main_.entry_order(), main_.symbols(), screen_};
  add_pane(QStringLiteral("entry_order"), QStringLiteral("Entry order"), "entry-order", entry_order_,
           &entry_order_->list());
  net_trade_ = new FrmNetTradeWindow{main_.net_trade(), screen_};
  add_pane(QStringLiteral("net_trade"), QStringLiteral("Net positions"), "net-positions", net_trade_,
           &net_trade_->list());
  net_matrix_ = new NetMatrixWindow{main_.net_matrix(), screen_};
  add_pane(QStringLiteral("net_matrix"), QStringLiteral("Accounts x symbols"), "net-positions", net_matrix_,
           &net_matrix_->list());
  close_positions_ = new FrmClosePosWindow{main_.close_positions(), screen_, main_.general().clock};
  add_pane(QStringLiteral("close_positions"), QStringLiteral("Close positions"), "close-positions",
           close_positions_, &close_positions_->list());
  for (const Pane& pane : panes_)
    screen_.add_pane(*pane.widget);
}

void FrmMdiNewWindow::make_labels() {
  auto* corner = new QWidget{this};
  auto* row = new QHBoxLayout{corner};
  row->setContentsMargins(0, 3, 10, 3);
  row->setSpacing(8);
  auto* accounts = new ShellLabel{main_.colours(), corner};
  auto* ticked = new ShellLabel{main_.colours(), corner};
  auto* server = new ShellLabel{main_.colours(), corner};
  for (QWidget* label : {accounts, ticked, server})
    row->addWidget(label);
  menuBar()->setCornerWidget(corner);
  screen_.on_refresh(*corner, [this, corner, accounts, ticked, server] {
    const std::size_t chosen = main_.market_order().lvwConClients.checked_count();
    accounts->show_text(QStringLiteral("Accounts %1").arg(main_.accounts().lvwClients.size()), false);
    ticked->show_text(QStringLiteral("Ticked %1").arg(chosen), chosen > 0);
    server->show_text(QString::fromStdString(main_.accounts().login_options().CurrentServerDesc()), false);
    // The menu bar looks at the size of its corner only when it is given one.
    if (corner->sizeHint() == corner->size()) return;
    corner->adjustSize();
    menuBar()->setCornerWidget(corner);
    corner->show();
  });
}

void FrmMdiNewWindow::make_tool_bar() {
  auto* bar = new QToolBar{QStringLiteral("Tool bar"), this};
  bar->setObjectName(QStringLiteral("tool_bar"));
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  bar->setIconSize({16, 16});
  bar->setMovable(false);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  addToolBar(bar);
  for (const char* const name : {"connect", "disconnect", "", "distribute", "tick_all", "", "close_selected",
                                 "cancel_selected", "", "market_order", "entry_order", "journal"}) {
    if (*name == '\0') {
      bar->addSeparator();
    } else {
      bar->addAction(commands_.find(QString::fromLatin1(name)));
    }
  }
  auto* gap = new QWidget{bar};
  gap->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  bar->addWidget(gap);
  find_ = new QLineEdit{bar};
  find_->setObjectName(QStringLiteral("find"));
  find_->setPlaceholderText(QStringLiteral("Find account  (Ctrl+F)"));
  find_->addAction(svg_icon(QStringLiteral("find")), QLineEdit::LeadingPosition);
  find_->setClearButtonEnabled(true);
  find_->setFixedWidth(190);
  bar->addWidget(find_);
  connect(find_, &QLineEdit::textEdited, this, [this](const QString& text) {
    accounts_->find(text);
    screen_.acted();
  });
  connect(find_, &QLineEdit::returnPressed, this, [this] { accounts_->list().setFocus(); });
  auto* leave = new QAction{find_};
  leave->setShortcut(Qt::Key_Escape);
  leave->setShortcutContext(Qt::WidgetShortcut);
  connect(leave, &QAction::triggered, this, [this] {
    find_->clear();
    accounts_->find({});
    accounts_->list().setFocus();
    screen_.acted();
  });
  find_->addAction(leave);
  bar->addAction(commands_.find(QStringLiteral("mute")));
  if (auto* mute = qobject_cast<QToolButton*>(bar->widgetForAction(commands_.find(QStringLiteral("mute"))))) {
    mute->setToolButtonStyle(Qt::ToolButtonIconOnly);
  }
}

// The forms go by whether their windows can be seen.
void FrmMdiNewWindow::follow_displayed() {
  main_.window().Displayed(in_sight(*this));
  main_.accounts().Displayed(in_sight(*accounts_));
  main_.market_watch().Displayed(in_sight(*market_watch_));
  // Bringing this one to the front is an event of its own.
  if (main_.entry_order().Displayed() != in_sight(*entry_order_)) {
    main_.entry_order().Displayed(in_sight(*entry_order_));
  }
  main_.open_positions().Displayed(in_sight(*trade_));
  main_.net_positions().Displayed(in_sight(*net_trade_) || in_sight(*net_matrix_));
  main_.close_positions().Displayed(in_sight(*close_positions_));
  main_.pending_orders().Displayed(in_sight(*pending_));
  main_.journal().Displayed(in_sight(*journal_));
  keep_keyboard_in_sight();
  for (const Pane& pane : panes_)
    if (pane.dock != nullptr) show_title(*pane.dock);
}

// A pane that goes behind another keeps the keyboard, and Tab goes on into what stands behind: keys would act
// on what nobody sees.
void FrmMdiNewWindow::keep_keyboard_in_sight() {
  const Pane* pane = pane_of(QApplication::focusWidget());
  if (pane == nullptr || pane->dock == nullptr) return;
  if (in_sight(*pane->widget) || !in_sight(*pane->widget->window())) return;
  const QList<QDockWidget*> beside = tabifiedDockWidgets(pane->dock);
  const auto in_front = std::find_if(panes_.begin(), panes_.end(), [&beside](const Pane& other) {
    return beside.contains(other.dock) && in_sight(*other.widget);
  });
  const Pane& now = in_front == panes_.end() ? panes_.front() : *in_front;
  if (now.list != nullptr) now.list->setFocus(Qt::OtherFocusReason);
}

// A pane among tabs has its title on its tab already.
void FrmMdiNewWindow::show_title(QDockWidget& dock) {
  const bool tabbed = !dock.isFloating() && !tabifiedDockWidgets(&dock).isEmpty();
  if (tabbed == (dock.titleBarWidget() != nullptr)) return;
  QWidget* before = dock.titleBarWidget();
  dock.setTitleBarWidget(tabbed ? new QWidget{&dock} : nullptr);
  delete before;
}

const Pane* FrmMdiNewWindow::pane_of(const QWidget* widget) const {
  const auto at = std::find_if(panes_.begin(), panes_.end(), [widget](const Pane& pane) {
    return widget != nullptr && (pane.widget == widget || pane.widget->isAncestorOf(widget));
  });
  return at == panes_.end() ? nullptr : &*at;
}

const Pane& FrmMdiNewWindow::active_pane() const {
  const Pane* pane = pane_of(QApplication::focusWidget());
  return pane == nullptr ? panes_.front() : *pane;
}

const Pane& FrmMdiNewWindow::pane_named(const QString& name) const {
  const auto at =
      std::find_if(panes_.begin(), panes_.end(), [&name](const Pane& pane) { return pane.name == name; });
  assert(at != panes_.end());
  return *at;
}

RowListView* FrmMdiNewWindow::active_list() const {
  const Pane& pane = active_pane();
  for (QWidget* at = QApplication::focusWidget(); at != nullptr && pane.widget->isAncestorOf(at);
       at = at->parentWidget()) {
    if (auto* list = dynamic_cast<RowListView*>(at)) return list;
  }
  return pane.list;
}

void FrmMdiNewWindow::bring_up(const QString& name) {
  const Pane& pane = pane_named(name);
  if (pane.dock != nullptr) {
    pane.dock->show();
    pane.dock->raise();
  }
  QWidget& window = *pane.widget->window();
  if (window.isMinimized()) window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  if (pane.dock == nullptr || &window != this) window.activateWindow();
  if (pane.widget == market_order_) return market_order_->focus_amount();
  if (pane.widget == entry_order_) return entry_order_->focus_amount();
  if (pane.widget == close_positions_) return close_positions_->focus_symbol();
  if (pane.list != nullptr) pane.list->setFocus(Qt::ShortcutFocusReason);
}

void FrmMdiNewWindow::put_in_front(const QString& name) {
  bring_up(name);
  // Not into the symbol's box: one key there would choose another symbol, without the marks.
  if (pane_named(name).widget == close_positions_) close_positions_->setFocus(Qt::OtherFocusReason);
}

void FrmMdiNewWindow::reset_layout() {
  const auto dock = [this](std::size_t pane) { return panes_[pane].dock; };
  for (std::size_t pane = 1; pane < panes_.size(); ++pane) {
    removeDockWidget(dock(pane));
    dock(pane)->setFloating(false);
  }
  // Split before they are tabbed: the other way round a tab of its own comes off.
  addDockWidget(Qt::RightDockWidgetArea, dock(1));
  splitDockWidget(dock(1), dock(2), Qt::Vertical);
  tabifyDockWidget(dock(2), dock(6));
  addDockWidget(Qt::BottomDockWidgetArea, dock(3));
  // Beside the journal only a large screen has room for the profit, the last column of the positions.
  const bool wide = width() >= room_for_two;
  if (wide) splitDockWidget(dock(3), dock(5), Qt::Horizontal);
  for (const std::size_t pane : {4U, 7U, 8U, 9U})
    tabifyDockWidget(dock(3), dock(pane));
  if (!wide) tabifyDockWidget(dock(3), dock(5));
  for (std::size_t pane = 1; pane < panes_.size(); ++pane)
    dock(pane)->show();
  dock(2)->raise();
  dock(3)->raise();
  resizeDocks({dock(1)}, {std::clamp(width() * 28 / 100, 340, 500)}, Qt::Horizontal);
  resizeDocks({dock(1), dock(2)}, {height() / 5, height() * 4 / 5}, Qt::Vertical);
  resizeDocks({dock(3)}, {std::clamp(height() / 3, 220, 320)}, Qt::Vertical);
  if (wide) resizeDocks({dock(3), dock(5)}, {width() * 7 / 10, width() * 3 / 10}, Qt::Horizontal);
  for (const Pane& pane : panes_) {
    if (pane.list != nullptr) pane.list->follow_percentages();
  }
}

void FrmMdiNewWindow::restore_layout() {
  if (!restoreGeometry(layout_.value(QStringLiteral("geometry")))) resize(standard_size);
  if (!restoreState(layout_.value(QStringLiteral("panes")), layout_version)) return reset_layout();
  for (const Pane& pane : panes_) {
    const QByteArray columns = layout_.value(QStringLiteral("columns.") + pane.name);
    if (pane.list != nullptr && !columns.isEmpty()) pane.list->restore_columns(columns);
  }
}

void FrmMdiNewWindow::save_layout() {
  layout_.set(QStringLiteral("geometry"), saveGeometry());
  layout_.set(QStringLiteral("panes"), saveState(layout_version));
  for (const Pane& pane : panes_) {
    if (pane.list != nullptr) layout_.set(QStringLiteral("columns.") + pane.name, pane.list->save_columns());
  }
  if (const auto saved = layout_.save(); !saved) {
    main_.general().log("Layout not saved: " + saved.error().text(), -1);
  }
}

bool FrmMdiNewWindow::confirm(const std::string& question, const std::string& details) {
  return main_.general().msg_box.GeneralQuestionMsg(question, details) == 1;
}

// Orders go on at the dealing server whether anybody sees their answers or not.
void FrmMdiNewWindow::closeEvent(QCloseEvent* event) {
  const Holdings held{main_.trade(), main_.accounts().sessions()};
  const auto counted = [](int count, const char* one, const char* more) {
    return std::to_string(count) + (count == 1 ? one : more);
  };
  std::string what;
  if (held.on_their_way() > 0) {
    what = counted(held.on_their_way(), " request has", " requests have") +
           " no answer yet. Their outcome will be journaled as unknown. Close all the same?";
  } else if (held.positions() > 0) {
    what = counted(held.positions(), " position is", " positions are") +
           " open. Close the terminal all the same?";
  }
  if (!what.empty() && !confirm(what, held.text())) return event->ignore();
  save_layout();
  event->accept();
  QApplication::quit();
}

void FrmMdiNewWindow::show_about() {
  AboutWindow about{main_.broker(), this};
  about.exec();
}

}  // namespace tutti
