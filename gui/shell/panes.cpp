#include "gui/shell/panes.h"

#include <QApplication>
#include <algorithm>
#include <cassert>
#include <set>
#include <utility>

#include "gui/kit/in_sight.h"
#include "gui/kit/screen.h"
#include "gui/windows/quote_panel.h"
#include "shell/Main.h"

namespace tutti {

Panes::Panes(QMainWindow& window, Main& main, Screen& screen) : window_(window), main_(main) {
  // Before everything else, so that what a form does as it comes into sight shows in the same frame.
  screen.on_refresh(window_, [this] { follow_displayed(); });
  make_panes(screen);
  for (const Pane& pane : panes_) {
    screen.add_pane(*pane.widget);
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

// All panes exist before a layout is restored.
void Panes::make_panes(Screen& screen) {
  Main& main = main_;
  const AccountBook& accounts = main.account_book();
  const auto text = [](const char* name) { return QString::fromLatin1(name); };
  const auto tell = [](auto& form) { return [&form](bool seen) { form.Displayed(seen); }; };

  accounts_ = new FrmMainWindow{main.accounts(), screen};
  market_watch_ = new FrmMWWindow{main.market_watch(), screen};
  market_order_ = new FrmorderWindow{main.market_order(), main.symbols(), screen};
  trade_ = new FrmTradeWindow{main.trade(), accounts, screen};
  pending_ = new FrmPendingWindow{main.pending(), screen};
  journal_ = new FrmJournalWindow{main.journal_window(), main.journal(), screen};
  entry_order_ = new FrmlimitorderWindow{main.entry_order(), main.symbols(), screen};
  net_trade_ = new FrmNetTradeWindow{main.net_trade(), accounts, screen};
  net_matrix_ = new NetMatrixWindow{main.net_matrix(), accounts, screen};
  close_positions_ = new FrmClosePosWindow{main.close_positions(), screen, main.general().clock};
  tickets_ = new TicketBoardWindow{main.tickets(), screen};
  fills_ = new FillListWindow{main.fills(), screen};
  unknown_ = new UnknownListWindow{main.unknown(), screen};

  using Area = Pane::Area;
  add({text("accounts"),
       {},
       "&Accounts list",
       "",
       "accounts",
       Qt::Key_1,
       Area::centre,
       accounts_,
       &accounts_->list(),
       {},
       tell(main.accounts())});
  add({text("market_watch"),
       text("Market watch"),
       "Market &watch",
       "",
       "market-watch",
       Qt::Key_2,
       Area::watch,
       market_watch_,
       &market_watch_->list(),
       {},
       tell(main.market_watch())});
  add({text("market_order"), text("Market order"), "Market &order", "market-order", "market-order", Qt::Key_3,
       Area::orders, market_order_, &market_order_->list(), [this] { market_order_->focus_amount(); }});
  add({text("trade"),
       QString::fromUtf8(frmTrade::caption.data()),
       "&Trade",
       "",
       "positions",
       Qt::Key_4,
       Area::bottom,
       trade_,
       &trade_->list(),
       {},
       tell(main.open_positions())});
  add({text("pending"),
       text("Pending orders"),
       "&Pending orders",
       "",
       "pending-orders",
       Qt::Key_5,
       Area::bottom,
       pending_,
       &pending_->list(),
       {},
       tell(main.pending_orders())});
  add({text("journal"),
       text("Journal"),
       "&Journal",
       "journal",
       "journal",
       Qt::Key_6,
       Area::further,
       journal_,
       &journal_->list(),
       {},
       tell(main.journal())});
  // Bringing this one to the front is an event of its own.
  add({text("entry_order"), text("Entry order"), "&Entry order", "entry-order", "entry-order", Qt::Key_7,
       Area::orders, entry_order_, &entry_order_->list(), [this] { entry_order_->focus_amount(); },
       [&form = main.entry_order()](bool seen) {
         if (form.Displayed() != seen) form.Displayed(seen);
       }});
  // Two panes over one form.
  add({text("net_trade"),
       text("Net positions"),
       "&Net positions",
       "",
       "net-positions",
       Qt::Key_8,
       Area::bottom,
       net_trade_,
       &net_trade_->list(),
       {},
       [this](bool seen) { main_.net_positions().Displayed(seen || in_sight(*net_matrix_)); }});
  add({text("net_matrix"), text("Accounts x symbols"), "Accounts x &symbols", "", "net-positions", Qt::Key_9,
       Area::bottom, net_matrix_, &net_matrix_->list()});
  add({text("close_positions"), text("Close positions"), "&Close positions", "close-positions",
       "close-positions", Qt::Key_0, Area::bottom, close_positions_, &close_positions_->list(),
       [this] { close_positions_->focus_symbol(); }, tell(main.close_positions())});
  add({text("tickets"),
       text("Tickets"),
       "Tic&kets",
       "",
       "tickets",
       Qt::Key_Y,
       Area::bottom,
       tickets_,
       &tickets_->list(),
       {},
       tell(main.tickets())});
  add({text("fills"),
       text("Fills"),
       "F&ills",
       "",
       "tickets",
       Qt::Key_D,
       Area::bottom,
       fills_,
       &fills_->list(),
       {},
       tell(main.fills())});
  add({text("unknown"),
       text("Unknown"),
       "&Unknown requests",
       "",
       "tickets",
       Qt::Key_E,
       Area::bottom,
       unknown_,
       &unknown_->list(),
       {},
       tell(main.unknown())});
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
  const Pane& now = in_front == panes_.end() ? panes_.front() : *in_front;
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
  return pane == nullptr ? panes_.front() : *pane;
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
