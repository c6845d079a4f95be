#include "gui/shell/panes.h"

#include <QApplication>
#include <algorithm>
#include <cassert>
#include <set>
#include <utility>

#include "gui/kit/in_sight.h"
#include "gui/kit/screen.h"
#include "gui/windows/fill_list_window.h"
#include "gui/windows/quote_panel.h"
#include "gui/windows/ticket_board_window.h"
#include "gui/windows/unknown_list_window.h"
#include "shell/Main.h"

namespace tutti {

Panes::Panes(QMainWindow& window, Main& main, Screen& screen) : window_(window), main_(main) {
  // Before everything else, so that what a form does as it comes into sight shows in the same frame.
  screen.on_refresh(window_, [this] { follow_displayed(); });
  make_panes(screen);
  for (const Pane& pane : panes_) {
    auto* quote = main.simulated() ? pane.widget->findChild<QuotePanel*>(QStringLiteral("quote")) : nullptr;
    if (quote != nullptr) quote->show_simulation();
  }
}

void Panes::add(Pane pane) {
  if (pane.area == Pane::Area::centre) {
    window_.setCentralWidget(pane.widget);
  } else {
    pane.dock = new QDockWidget{pane.title, &window_};
    pane.dock->setObjectName(pane.name);
    pane.dock->setWidget(pane.widget);
  }
  panes_.push_back(std::move(pane));
}

int Panes::edition() {
  return 4;
}

// All panes exist before a layout is restored.
void Panes::make_panes(Screen& screen) {
  Main& main = main_;
  const AccountBook& accounts = main.account_book();
  const auto text = [](const char* name) { return QString::fromLatin1(name); };
  const auto tell = [](auto& form) { return [&form](bool seen) { form.Displayed(seen); }; };

  const auto shown = [&screen](auto* window) {
    screen.add_pane(*window);
    return window;
  };
  accounts_ = shown(new FrmMainWindow{main.accounts(), screen});
  market_watch_ = shown(new FrmMWWindow{main.market_watch(), screen});
  market_order_ = shown(new FrmorderWindow{main.market_order(), main.symbols(), screen});
  trade_ = shown(new FrmTradeWindow{main.trade(), accounts, screen});
  pending_ = shown(new FrmPendingWindow{main.pending(), screen});
  journal_ = shown(new FrmJournalWindow{main.journal_window(), main.journal(), screen});
  entry_order_ = shown(new FrmlimitorderWindow{main.entry_order(), main.symbols(), screen});
  net_trade_ = shown(new FrmNetTradeWindow{main.net_trade(), accounts, screen});
  net_matrix_ = shown(new NetMatrixWindow{main.net_matrix(), accounts, screen});
  close_positions_ = shown(new FrmClosePosWindow{main.close_positions(), screen, main.general().clock});
  auto* tickets = shown(new TicketBoardWindow{main.tickets(), screen});
  auto* fills = shown(new FillListWindow{main.fills(), screen});
  auto* unknown = shown(new UnknownListWindow{main.unknown(), screen});

  using Area = Pane::Area;
  add({.name = text("accounts"),
       .menu = "&Accounts list",
       .help = "accounts",
       .key = Qt::Key_1,
       .area = Area::centre,
       .widget = accounts_,
       .list = &accounts_->list(),
       .commands = {"connect", "connect_all", "disconnect", "refresh_summaries", "edit", "notes", "remove",
                    "history"},
       .displayed = tell(main.accounts())});
  add({.name = text("market_watch"),
       .title = text("Market watch"),
       .menu = "Market &watch",
       .help = "market-watch",
       .key = Qt::Key_2,
       .area = Area::watch,
       .widget = market_watch_,
       .list = &market_watch_->list(),
       .displayed = tell(main.market_watch())});
  add({.name = text("market_order"),
       .title = text("Market order"),
       .menu = "Market &order",
       .icon = "market-order",
       .help = "market-order",
       .key = Qt::Key_3,
       .area = Area::orders,
       .widget = market_order_,
       .list = &market_order_->list(),
       .commands = {"tick_all", "distribute"},
       .focus = [this] { market_order_->focus_amount(); }});
  add({.name = text("trade"),
       .title = QString::fromUtf8(frmTrade::caption.data()),
       .menu = "&Trade",
       .help = "positions",
       .key = Qt::Key_4,
       .area = Area::bottom,
       .widget = trade_,
       .list = &trade_->list(),
       .commands = {"edit_stops", "close_selected"},
       .displayed = tell(main.open_positions())});
  add({.name = text("pending"),
       .title = text("Pending orders"),
       .menu = "&Pending orders",
       .help = "pending-orders",
       .key = Qt::Key_5,
       .beside = text("trade"),
       .widget = pending_,
       .list = &pending_->list(),
       .commands = {"edit_order", "cancel_selected"},
       .displayed = tell(main.pending_orders())});
  add({.name = text("journal"),
       .title = text("Journal"),
       .menu = "&Journal",
       .icon = "journal",
       .help = "journal",
       .key = Qt::Key_6,
       .area = Area::further,
       .beside = text("trade"),
       .widget = journal_,
       .list = &journal_->list(),
       .commands = {"live_journal"},
       .displayed = tell(main.journal())});
  // Bringing this one to the front is an event of its own.
  add({.name = text("entry_order"),
       .title = text("Entry order"),
       .menu = "&Entry order",
       .icon = "entry-order",
       .help = "entry-order",
       .key = Qt::Key_7,
       .beside = text("market_order"),
       .widget = entry_order_,
       .list = &entry_order_->list(),
       .commands = {"tick_all_entry", "distribute_entry"},
       .focus = [this] { entry_order_->focus_amount(); },
       .displayed =
           [&form = main.entry_order()](bool seen) {
             if (form.Displayed() != seen) form.Displayed(seen);
           }});
  // Two panes over one form.
  add({.name = text("net_trade"),
       .title = text("Net positions"),
       .menu = "&Net positions",
       .help = "net-positions",
       .key = Qt::Key_8,
       .beside = text("trade"),
       .widget = net_trade_,
       .list = &net_trade_->list(),
       .commands = {"close_net"},
       .displayed = [this](bool seen) { main_.net_positions().Displayed(seen || in_sight(*net_matrix_)); }});
  add({.name = text("net_matrix"),
       .title = text("Accounts x symbols"),
       .menu = "Accounts x &symbols",
       .help = "net-positions",
       .key = Qt::Key_9,
       .beside = text("trade"),
       .widget = net_matrix_,
       .list = &net_matrix_->list(),
       .commands = {"close_block"}});
  add({.name = text("close_positions"),
       .title = text("Close positions"),
       .menu = "&Close positions",
       .icon = "close-positions",
       .help = "close-positions",
       .key = Qt::Key_0,
       .beside = text("trade"),
       .widget = close_positions_,
       .list = &close_positions_->list(),
       .commands = {"mark_all", "close_marked"},
       .focus = [this] { close_positions_->focus_symbol(); },
       .displayed = tell(main.close_positions())});
  add({.name = text("tickets"),
       .title = text("Tickets"),
       .menu = "Tic&kets",
       .help = "tickets",
       .key = Qt::Key_Y,
       .beside = text("trade"),
       .widget = tickets,
       .list = &tickets->list(),
       .displayed = tell(main.tickets())});
  add({.name = text("fills"),
       .title = text("Fills"),
       .menu = "F&ills",
       .help = "tickets",
       .key = Qt::Key_D,
       .beside = text("trade"),
       .widget = fills,
       .list = &fills->list(),
       .displayed = tell(main.fills())});
  // Empty on most days.
  add({.name = text("unknown"),
       .title = text("Unknown"),
       .menu = "&Unknown requests",
       .help = "tickets",
       .key = Qt::Key_E,
       .beside = text("trade"),
       .hidden_at_first = true,
       .widget = unknown,
       .list = &unknown->list(),
       .displayed = tell(main.unknown())});
}

// The forms go by whether their windows can be seen.
void Panes::follow_displayed() {
  main_.window().Displayed(in_sight(window_));
  for (const Pane& pane : panes_)
    if (pane.displayed) pane.displayed(in_sight(*pane.widget));
  keep_keyboard_in_sight();
  for (const Pane& pane : panes_)
    if (pane.dock != nullptr) show_title(*pane.dock);
}

// A pane that goes behind another keeps the keyboard, and Tab goes on into what stands behind: keys would act
// on what nobody sees.
void Panes::keep_keyboard_in_sight() {
  const Pane* pane = pane_of(QApplication::focusWidget());
  if (pane == nullptr || pane->dock == nullptr) return;
  if (in_sight(*pane->widget) || !in_sight(*pane->widget->window())) return;
  const QList<QDockWidget*> beside = window_.tabifiedDockWidgets(pane->dock);
  // Tabs that float have a window of their own, which shows one pane.
  const QWidget* floats_in = pane->widget->window() == &window_ ? nullptr : pane->widget->window();
  const auto in_front = std::find_if(panes_.begin(), panes_.end(), [&](const Pane& other) {
    return (beside.contains(other.dock) || other.widget->window() == floats_in) && in_sight(*other.widget);
  });
  const Pane& now = in_front == panes_.end() ? at(Pane::Area::centre) : *in_front;
  if (now.list != nullptr) now.list->setFocus(Qt::OtherFocusReason);
}

// A pane among tabs has its title on its tab already.
void Panes::show_title(QDockWidget& dock) {
  const bool tabbed = !dock.isFloating() && !window_.tabifiedDockWidgets(&dock).isEmpty();
  if (tabbed == (dock.titleBarWidget() != nullptr)) return;
  QWidget* before = dock.titleBarWidget();
  dock.setTitleBarWidget(tabbed ? new QWidget{&dock} : nullptr);
  delete before;
}

const RowList& Panes::order_list_in_front() {
  const QWidget* now = active().widget;
  if (now == market_order_ || now == entry_order_) entry_in_front_ = now == entry_order_;
  const bool entry = in_sight(*entry_order_);
  if (entry != in_sight(*market_order_)) entry_in_front_ = entry;
  return entry_in_front_ ? main_.entry_order().lvwConClients : main_.market_order().lvwConClients;
}

const Pane* Panes::pane_of(const QWidget* widget) const {
  const auto at = std::find_if(panes_.begin(), panes_.end(), [widget](const Pane& pane) {
    return widget != nullptr && (pane.widget == widget || pane.widget->isAncestorOf(widget));
  });
  return at == panes_.end() ? nullptr : &*at;
}

const Pane& Panes::active() const {
  const Pane* pane = pane_of(QApplication::focusWidget());
  return pane == nullptr ? at(Pane::Area::centre) : *pane;
}

const Pane& Panes::at(Pane::Area area) const {
  const auto stands = [area](const Pane& pane) { return pane.area == area; };
  assert(area != Pane::Area::tab && std::count_if(panes_.begin(), panes_.end(), stands) == 1);
  return *std::find_if(panes_.begin(), panes_.end(), stands);
}

const Pane& Panes::named(const QString& name) const {
  const auto at =
      std::find_if(panes_.begin(), panes_.end(), [&name](const Pane& pane) { return pane.name == name; });
  assert(at != panes_.end());
  return *at;
}

RowListView* Panes::active_list() const {
  const Pane& pane = active();
  for (QWidget* at = QApplication::focusWidget(); at != nullptr && pane.widget->isAncestorOf(at);
       at = at->parentWidget()) {
    if (auto* list = dynamic_cast<RowListView*>(at)) return list;
  }
  return pane.list;
}

void Panes::bring_up(const QString& name) {
  const Pane& pane = named(name);
  if (pane.dock != nullptr) {
    pane.dock->show();
    pane.dock->raise();
  }
  QWidget& window = *pane.widget->window();
  if (window.isMinimized()) window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  if (!window.isActiveWindow()) window.activateWindow();
  uncover(pane);
  if (pane.focus) return pane.focus();
  if (pane.list != nullptr) pane.list->setFocus(Qt::ShortcutFocusReason);
}

// A float stays before the main window whatever is raised there: one that hides the pane goes back to its
// place.
void Panes::uncover(const Pane& pane) {
  const QWidget* before = float_before(*pane.widget);
  if (before == nullptr || pane.widget->window() != &window_) return;
  for (const Pane& other : panes_)
    if (other.dock != nullptr && other.widget->window() == before) dock_again(*other.dock);
  if (pane.dock != nullptr) pane.dock->raise();
}

// One float remembers its place. Several that share a window remember only each other, and go behind the tabs
// at the bottom.
void Panes::dock_again(QDockWidget& dock) {
  if (dock.isFloating()) return dock.setFloating(false);
  const auto beside = std::find_if(panes_.begin(), panes_.end(), [this](const Pane& pane) {
    return pane.dock != nullptr && pane.dock->isVisible() && pane.widget->window() == &window_ &&
           window_.dockWidgetArea(pane.dock) == Qt::BottomDockWidgetArea;
  });
  dock.setFloating(true);
  window_.addDockWidget(Qt::BottomDockWidgetArea, &dock);
  if (beside != panes_.end()) window_.tabifyDockWidget(beside->dock, &dock);
}

void Panes::put_in_front(const QString& name) {
  bring_up(name);
  // Not into the symbol's box: one key there would choose another symbol, without the marks.
  if (named(name).widget == close_positions_) close_positions_->setFocus(Qt::OtherFocusReason);
}

void Panes::work_in(const QString& title) {
  const auto at = std::find_if(panes_.begin(), panes_.end(), [&title](const Pane& pane) {
    return pane.dock != nullptr && pane.dock->windowTitle() == title;
  });
  if (at == panes_.end() || at->list == nullptr || !in_sight(*at->widget)) return;
  if (pane_of(QApplication::focusWidget()) != &*at) at->list->setFocus(Qt::MouseFocusReason);
}

// A float that came onto the screen before its main window stands behind it, whoever it belongs to.
void Panes::raise_floats() {
  std::set<QWidget*> floats;
  for (const Pane& pane : panes_)
    if (pane.widget->window() != &window_ && pane.widget->window()->isVisible())
      floats.insert(pane.widget->window());
  for (QWidget* each : floats) {
    each->hide();
    each->show();
    each->raise();
  }
}

}  // namespace tutti
