#include "gui/shell/frmMdiNew_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QStringList>
#include <QTabBar>

#include "gui/kit/screen.h"
#include "gui/kit/svg_icon.h"
#include "gui/shell/about_window.h"
#include "gui/shell/shell_head.h"
#include "gui/shell/status_strip.h"
#include "gui/shell/tool_strip.h"
#include "gui/windows/frmHeld_window.h"
#include "gui/windows/frmLimits_window.h"
#include "gui/windows/frmStop_window.h"
#include "gui/windows/ticket_orders_window.h"
#include "shell/holdings.h"

namespace tutti {

namespace {

QString title_of(const Main& main) {
  QStringList parts{QStringLiteral("Tutti")};
  if (const std::string broker = main.broker().name; !broker.empty()) {
    parts.append(QString::fromStdString(broker));
  }
  if (main.simulated()) parts.append(QStringLiteral("SIMULATION"));
  return parts.join(QStringLiteral(" - "));
}

}  // namespace

FrmMdiNewWindow::FrmMdiNewWindow(Main& main, Screen& screen, DesktopPrompt& prompt, DesktopSound& sound,
                                 FileDialog& files)
    : main_(main),
      panes_(*this, main, screen),
      layout_(*this, panes_, main.general().paths.file("\\manage\\layout.dat")) {
  setObjectName(QStringLiteral("frmMdiNew"));
  setWindowTitle(title_of(main_));
  setWindowIcon(svg_icon(QStringLiteral("tutti")));
  setDockOptions(AllowNestedDocks | AllowTabbedDocks | GroupedDragging);
  setTabPosition(Qt::AllDockWidgetAreas, QTabWidget::North);

  tab_clicked_.setSingleShot(true);
  connect(&tab_clicked_, &QTimer::timeout, this, [this] { panes_.work_in(clicked_tab_); });
  on_screen_.setSingleShot(true);
  connect(&on_screen_, &QTimer::timeout, this, [this] { panes_.raise_floats(); });
  setStatusBar(new StatusStrip{main_, screen});
  new ShellHead{main_, panes_, screen, *menuBar()};
  prompt.set_parent(this);
  account_dialog_ = new FrmaccountWindow{main_.accounts().account_dialog(), screen, this};
  requote_ = new FrmPriceChangedWindow{main_.requote(), screen, this};
  new FrmLimitsWindow{main_.limits(), screen, this};
  new FrmStopWindow{main_.stop_form(), screen, this};
  new FrmHeldWindow{main_.held(), screen, this};
  new TicketOrdersWindow{main_.ticket_orders_form(), screen, this};
  messages_ = std::make_unique<MessageQueueWindow>(main_.messages(), screen, main_.general().clock, *this);
  help_ = new HelpWindow{this};
  const CommandTargets targets{*this,
                               main_,
                               screen,
                               panes_,
                               sound,
                               files,
                               *requote_,
                               *messages_,
                               [this] { reset_layout(); },
                               [this] { tools_->find_account(); }};
  commands_ = std::make_unique<MainCommands>(targets, [this](const QString& title) -> QMenu& {
    QMenu* menu = menuBar()->addMenu(title);
    menu->setToolTipsVisible(true);
    return *menu;
  });
  tools_ = new ToolStrip{commands(), panes_.accounts(), screen};
  addToolBar(tools_);
  connect_forms();
  reset_layout();
}

FrmMdiNewWindow::~FrmMdiNewWindow() = default;

void FrmMdiNewWindow::connect_forms() {
  const auto bring_up = [this](const char* pane) {
    return [this, pane] { panes_.bring_up(QLatin1String{pane}); };
  };
  main_.help().show = [this](const std::string& topic) { help_->open(topic); };
  main_.accounts().show_about = [this] { show_about(); };
  main_.window().set_command(frmMdiNew::show_accounts, bring_up("accounts"));
  main_.window().set_command(frmMdiNew::show_journal, bring_up("journal"));
  main_.market_order().show = bring_up("market_order");
  main_.entry_order().show = bring_up("entry_order");
  main_.close_positions().show = [this] { panes_.put_in_front(QStringLiteral("close_positions")); };
}

void FrmMdiNewWindow::save_layout() {
  if (const auto saved = layout_.save(); !saved) {
    main_.general().log("Layout not saved: " + saved.error().text(), -1);
  }
}

// Orders go on at the dealing server whether anybody sees their answers or not.
void FrmMdiNewWindow::closeEvent(QCloseEvent* event) {
  const Holdings held{main_.positions(), main_.sessions()};
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
  if (!what.empty() && main_.general().msg_box.GeneralQuestionMsg(what, held.text()) != 1)
    return event->ignore();
  save_layout();
  event->accept();
  QApplication::quit();
}

// The toolkit makes a bar of tabs wherever panes are stacked. A click there is about the pane it names, also
// when that is in front already; which it is once the toolkit has dealt with the click.
void FrmMdiNewWindow::childEvent(QChildEvent* event) {
  QMainWindow::childEvent(event);
  auto* tabs = event->polished() ? qobject_cast<QTabBar*>(event->child()) : nullptr;
  if (tabs == nullptr) return;
  connect(tabs, &QTabBar::tabBarClicked, this, [this, tabs](int tab) {
    clicked_tab_ = tabs->tabText(tab);
    tab_clicked_.start();
  });
}

void FrmMdiNewWindow::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  // It is on the screen only after this.
  if (!event->spontaneous()) on_screen_.start();
}

void FrmMdiNewWindow::show_about() {
  AboutWindow about{main_.broker(), this};
  about.exec();
}

}  // namespace tutti
