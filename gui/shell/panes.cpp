#include "gui/shell/panes.h"

#include <QApplication>
#include <algorithm>
#include <cassert>
#include <set>

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

void Panes::add(const char* name, const QString& title, const char* help, QWidget* widget,
                RowListView* list) {
  auto* dock = new QDockWidget{title, &window_};
  dock->setObjectName(QLatin1String{name});
  dock->setWidget(widget);
  panes_.emplace_back(Pane{QLatin1String{name}, help, widget, list, dock});
}

// All panes exist before a layout is restored.
void Panes::make_panes(Screen& screen) {
  accounts_ = new FrmMainWindow{main_.accounts(), screen};
  window_.setCentralWidget(accounts_);
  panes_.emplace_back(Pane{QStringLiteral("accounts"), "accounts", accounts_, &accounts_->list()});

  market_watch_ = new FrmMWWindow{main_.market_watch(), screen};
  add("market_watch", QStringLiteral("Market watch"), "market-watch", market_watch_, &market_watch_->list());
  market_order_ = new FrmorderWindow{main_.market_order(), main_.symbols(), screen};
  add("market_order", QStringLiteral("Market order"), "market-order", market_order_, &market_order_->list());
  trade_ = new FrmTradeWindow{main_.trade(), main_.accounts().lvwClients, screen};
  add("trade", QString::fromUtf8(frmTrade::caption.data()), "positions", trade_, &trade_->list());
  pending_ = new FrmPendingWindow{main_.pending(), screen};
  add("pending", QStringLiteral("Pending orders"), "pending-orders", pending_, &pending_->list());
  journal_ = new FrmJournalWindow{main_.journal_window(), main_.journal(), screen};
  add("journal", QStringLiteral("Journal"), "journal", journal_, &journal_->list());
  entry_order_ = new FrmlimitorderWindow{main_.entry_order(), main_.symbols(), screen};
  add("entry_order", QStringLiteral("Entry order"), "entry-order", entry_order_, &entry_order_->list());
  net_trade_ = new FrmNetTradeWindow{main_.net_trade(), main_.accounts().lvwClients, screen};
  add("net_trade", QStringLiteral("Net positions"), "net-positions", net_trade_, &net_trade_->list());
  net_matrix_ = new NetMatrixWindow{main_.net_matrix(), main_.accounts().lvwClients, screen};
  add("net_matrix", QStringLiteral("Accounts x symbols"), "net-positions", net_matrix_, &net_matrix_->list());
  close_positions_ = new FrmClosePosWindow{main_.close_positions(), screen, main_.general().clock};
  add("close_positions", QStringLiteral("Close positions"), "close-positions", close_positions_,
      &close_positions_->list());
}

// The forms go by whether their windows can be seen.
void Panes::follow_displayed() {
  main_.window().Displayed(in_sight(window_));
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
  if (pane.widget == market_order_) return market_order_->focus_amount();
  if (pane.widget == entry_order_) return entry_order_->focus_amount();
  if (pane.widget == close_positions_) return close_positions_->focus_symbol();
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
