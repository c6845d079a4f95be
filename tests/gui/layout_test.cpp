// The main window: panes, what can be seen of them, and their layout.

#include <QLayout>
#include <QMenuBar>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QToolBar>

#include "gui/kit/in_sight.h"
#include "tests/gui/desktop_rig.h"

namespace tutti::testing {
namespace {

// What a mouse does that takes a float by its title and lets it go in the middle of another one.
void drag_onto(QDockWidget& dock, QWidget& other) {
  const auto send = [&dock](QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons) {
    QMouseEvent event{type, dock.mapFromGlobal(at), at, button, buttons, {}};
    QApplication::sendEvent(&dock, &event);
  };
  // A title of its own: without one the window manager's frame, which is not here, takes the mouse.
  dock.setTitleBarWidget(new QLabel{QStringLiteral("title"), &dock});
  dock.layout()->activate();
  const QPoint from = dock.mapToGlobal(QPoint{60, 8});
  const QPoint to = other.frameGeometry().center();
  send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
  for (const QPoint at : {from + QPoint{30, 30}, to - QPoint{5, 5}, to})
    send(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton);
  QApplication::processEvents();
  send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
  QApplication::processEvents();
  delete dock.titleBarWidget();
}

struct LayoutTest : DesktopRig {
  // The forms that say they can be seen, by their first letters; "N" for either net window.
  std::string displayed() {
    Main& main = rig.main();
    const std::pair<char, bool> forms[] = {
        {'m', main.window().Displayed()},          {'a', main.accounts().Displayed()},
        {'w', main.market_watch().Displayed()},    {'t', main.open_positions().Displayed()},
        {'p', main.pending_orders().Displayed()},  {'j', main.journal().Displayed()},
        {'e', main.entry_order().Displayed()},     {'N', main.net_positions().Displayed()},
        {'c', main.close_positions().Displayed()},
    };
    std::string out;
    for (const auto& [letter, shown] : forms)
      if (shown) out += letter;
    return out;
  }
  // All that a command can change without a question.
  std::string state() {
    Main& main = rig.main();
    std::string out = std::to_string(rig.terminal.journal().size()) + " " +
                      std::to_string(rig.asked().size()) + main.entry_order().mode();
    for (const auto* list : {&main.market_order().lvwConClients, &main.entry_order().lvwConClients}) {
      out += "/";
      for (const Row& row : *list)
        out += row.checked() ? "x" + row.text(1) : "-";
    }
    return out + "/" + std::to_string(main.close_positions().marked_count()) +
           main.entry_order().txtlimitorderammount.text();
  }
};

TEST_F(LayoutTest, FormsAreDisplayedWhileTheirPanesCanBeSeen) {
  struct Case {
    const char* what;
    std::function<void()> act;
    const char* displayed;
  };
  const auto tab = [this](const char* name) { return [this, name] { dock(name).raise(); }; };
  const Case cases[] = {
      {"first arrangement", [] {}, "mawt"},
      {"behind a tab", tab("journal"), "mawj"},
      {"before it", tab("close_positions"), "mawc"},
      {"one of two nets", tab("net_matrix"), "mawN"},
      {"floated", [this] { dock("journal").setFloating(true); }, "mawjN"},
      {"closed", [this] { dock("market_watch").close(); }, "majN"},
      {"among other tabs", tab("entry_order"), "majeN"},
      {"main window minimised", [this] { window->showMinimized(); }, "j"},
      {"and up again", [this] { window->showNormal(); }, "majeN"},
      {"float put back", [this] { dock("journal").setFloating(false); }, "maeN"},
      {"hidden", [this] { window->hide(); }, ""},
  };
  // Coming to the front is what chooses the first type and symbol, once.
  EXPECT_EQ(rig.main().entry_order().cblimiordertype.index(), -1);
  for (const Case& each : cases) {
    each.act();
    rig.run(10ms);
    EXPECT_EQ(displayed(), each.displayed) << each.what;
  }
  EXPECT_EQ(rig.main().entry_order().cblimiordertype.index(), 0);
}

TEST_F(LayoutTest, PanesBehindTabsRestAndCatchUpInFront) {
  const auto bid = [this] { return part<QLabel>(*window, "lblcondition").text().toStdString(); };
  to_front("entry_order");
  const std::string before = bid();
  ASSERT_FALSE(before.empty());
  to_front("market_order");
  rig.buy("12");
  rig.run(5s);
  EXPECT_EQ(bid(), before);
  EXPECT_EQ(rig.main().net_trade().lvwNet.size(), 0U);
  dock("entry_order").raise();
  dock("net_trade").raise();
  rig.screen.refresh();
  EXPECT_NE(bid(), before);
  EXPECT_EQ(bid(), rig.main().entry_order().lblcondition.text());
  EXPECT_EQ(window->panes().net_trade().list().model()->rowCount(), 1);
}

TEST_F(LayoutTest, TheHeaderCountsTheTicksOfTheOrderWindowInFront) {
  rig.main().market_order().chkAllClients.click();
  rig.main().entry_order().lvwConClients.row(0).set_checked(true);
  const std::string all = "Ticked " + std::to_string(rig.main().market_order().lvwConClients.checked_count());
  const auto ticked = [&] {
    rig.run(1ms);
    return part<QLabel>(*window, "ticked").text().toStdString();
  };
  to_front("market_order");
  EXPECT_EQ(ticked(), all);
  to_front("entry_order");
  EXPECT_EQ(ticked(), "Ticked 1");
  // In another pane it is the one in sight; with both in sight, the one worked in last.
  to_front("journal");
  EXPECT_EQ(ticked(), "Ticked 1");
  dock("market_order").raise();
  EXPECT_EQ(ticked(), all);
  dock("entry_order").setFloating(true);
  to_front("entry_order");
  to_front("journal");
  EXPECT_EQ(ticked(), "Ticked 1");
}

TEST_F(LayoutTest, TheKeyboardLeavesAPaneThatGoesBehindAnother) {
  to_front("close_positions");
  part(window->panes().close_positions(), "LblCheck").setFocus();
  dock("trade").raise();
  rig.run(1ms);
  EXPECT_EQ(QApplication::focusWidget(), &window->panes().trade().list());
  part(window->panes().close_positions(), "LblCheck").setFocus();  // as Tab does
  rig.run(1ms);
  EXPECT_EQ(QApplication::focusWidget(), &window->panes().trade().list());

  // A click on a tab, the one in front included, is about its pane wherever the keyboard was.
  for (const char* title : {"Trade", "Journal", "Journal"}) {
    window->panes().accounts().list().setFocus();
    for (QTabBar* tabs : window->findChildren<QTabBar*>())
      for (int tab = 0; tab < tabs->count(); ++tab)
        if (tabs->tabText(tab) == QLatin1String{title})
          QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(tab).center());
    rig.run(1ms);
    EXPECT_EQ(window->panes().active().name, QString::fromLatin1(title).toLower());
  }
}

TEST_F(LayoutTest, AGlanceAtAnotherTabLosesNoPlaceAndNoMark) {
  rig.buy("12");
  rig.run(5s);
  frmClosePos& form = rig.main().close_positions();
  to_front("close_positions");
  form.CloseSymbols.choose("EURUSD");
  rig.run(1s);
  RowListView& grid = window->panes().close_positions().list();
  QScrollBar& bar = *grid.verticalScrollBar();
  bar.setValue(bar.maximum());
  for (int i = 0; i < 2; ++i)
    rig.run(1s);
  const int bottom = bar.value();
  ASSERT_GT(bottom, 0);
  click_cell(grid, 23, frmClosePos::account);
  ASSERT_NE(form.MSH.current(), nullptr);
  const RowKey current = form.MSH.current()->key();
  dock("trade").raise();
  rig.run(1s);
  dock("close_positions").raise();
  rig.run(1s);
  EXPECT_EQ(bar.value(), bottom);
  ASSERT_NE(form.MSH.current(), nullptr);
  EXPECT_EQ(form.MSH.current()->key(), current);
  EXPECT_EQ(form.marked_count(), 1U);
}

// Each command once with its pane behind another, then closed, with everything ready for it.
TEST_F(LayoutTest, CommandsNeedTheirPaneInFront) {
  rig.main().close_positions().CloseSymbols.choose("EURUSD");
  rig.buy("12");
  rig.run(5s);
  rig.distribute("24");
  for (const Pane& pane : window->panes().all()) {
    to_front(pane.name.toLatin1());
    pane.list->selectAll();
  }
  for (Row& row : rig.main().trade().lvwOpenPos)
    row.set_checked(true);
  rig.main().close_positions().check_all();
  rig.main().entry_order().txtlimitorderammount.type("12");
  std::set<QString> without;
  for (const auto& [command, action] : window->commands().all()) {
    const QString& pane = command.options.pane;
    if (pane.isEmpty()) {
      if (command.effect == Commands::Effect::grave) without.insert(command.name);
      continue;
    }
    if (pane == QStringLiteral("accounts")) continue;
    const bool right = pane == QStringLiteral("market_order") || pane == QStringLiteral("entry_order");
    const char* other = pane == QStringLiteral("market_order") ? "entry_order"
                        : right                                ? "market_order"
                                                               : "journal";
    for (const bool closed : {false, true}) {
      to_front(other);
      if (closed) dock(pane.toLatin1()).close();
      rig.run(1ms);
      const std::string before = state();
      press(static_cast<Qt::Key>(command.key[0].key()), command.key[0].keyboardModifiers());
      EXPECT_EQ(state(), before) << command.name.toStdString();
      EXPECT_TRUE(in_sight(dock(pane.toLatin1()))) << command.name.toStdString();
      const Pane* keyboard = nullptr;
      for (const Pane& each : window->panes().all())
        if (each.widget->isAncestorOf(QApplication::focusWidget())) keyboard = &each;
      EXPECT_TRUE(keyboard != nullptr && keyboard->name == pane) << command.name.toStdString();
    }
  }
  EXPECT_EQ(without, (std::set<QString>{QStringLiteral("accept_requote"), QStringLiteral("load"),
                                        QStringLiteral("quit"), QStringLiteral("reject_requote")}));
  // Nor behind a float, which goes back to its place.
  to_front("market_order");
  dock("journal").setFloating(true);
  dock("journal").setGeometry(window->geometry().adjusted(-50, -50, 50, 50));
  rig.run(1ms);
  EXPECT_FALSE(in_sight(dock("market_order")));
  const std::string before = state();
  press(Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(state(), before);
  EXPECT_TRUE(in_sight(dock("market_order")) && !dock("journal").isFloating());
  // Nor behind several in one float.
  for (const char* name : {"journal", "net_trade"}) {
    dock(name).setFloating(true);
    dock(name).setGeometry(window->geometry().adjusted(-50, -50, 50, 50));
  }
  rig.run(1ms);
  drag_onto(dock("net_trade"), dock("journal"));
  ASSERT_TRUE(dock("journal").window() == dock("net_trade").window());
  ASSERT_FALSE(dock("journal").isFloating());
  EXPECT_FALSE(in_sight(dock("market_order")));
  press(Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(state(), before);
  EXPECT_TRUE(in_sight(dock("market_order")));
  EXPECT_TRUE(dock("journal").window() == window.get() && dock("net_trade").window() == window.get());
  EXPECT_TRUE(window->tabifiedDockWidgets(&dock("trade")).contains(&dock("net_trade")));
  // Together again, they come up with the window and go back with the layout.
  for (const char* name : {"journal", "net_trade"})
    dock(name).setFloating(true);
  dock("journal").setGeometry(window->geometry());
  rig.run(1ms);
  drag_onto(dock("net_trade"), dock("journal"));
  QSignalSpy came{&dock("net_trade"), &QDockWidget::visibilityChanged};
  window->hide();
  window->show();
  rig.run(1ms);
  EXPECT_EQ(came.size(), 4);  // both with it, and both once more
  trigger("reset_layout");
  rig.run(1ms);
  EXPECT_TRUE(dock("journal").window() == window.get() && dock("net_trade").window() == window.get());
  // In front the same keys do their work; marked rows that are scrolled out take part.
  rig.main().close_positions().check_all();
  EXPECT_EQ(rig.main().close_positions().marked_count(), 0U);
  to_front("close_positions");
  press(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(rig.main().close_positions().marked_count(), 12U);
  to_front("market_order");
  press(Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
  rig.run(5s);
  EXPECT_EQ(rig.main().trade().lvwOpenPos.size(), 24U);
}

// What a window manager leaves of a laptop's screen, of a scaled one, and of a large one.
TEST_F(LayoutTest, TheFirstWindowHasRoomForADealersDay) {
  // None of them fits the screen of the tests, nor does what was saved on a larger one.
  window->save_layout();
  window->restore_layout();
  EXPECT_TRUE(window->isMaximized());
  EXPECT_EQ(window->size(), window->size().boundedTo(window->screen()->availableSize()));
  window->setWindowState(Qt::WindowNoState);
  for (const QSize size : {QSize{1358, 728}, QSize{1272, 680}, QSize{1600, 900}}) {
    window->setFixedSize(size);
    window->reset_layout();
    rig.run(10ms);
    const std::string what = std::to_string(size.width());
    for (const char* name : {"cmdbuy", "cmdsell", "find", "totals", "connected", "server_time"}) {
      const auto& each = part(*window, name);
      const QRect place{each.mapTo(window.get(), QPoint{}), each.size()};
      EXPECT_TRUE(each.isVisible() && window->rect().contains(place)) << what << " " << name;
    }
    const auto& tools = part<QToolBar>(*window, "tool_bar");
    for (const QAction* action : tools.actions())
      EXPECT_TRUE(tools.widgetForAction(const_cast<QAction*>(action))->isVisible()) << what;
    RowListView& watch = window->panes().market_watch().list();
    const QRect time = watch.visualRect(watch.model()->index(5, frmMW::time));
    EXPECT_TRUE(watch.viewport()->rect().contains(time)) << what;
  }
  EXPECT_EQ(window->windowTitle(), QStringLiteral("Tutti - SIMULATION"));
  std::string badges;
  for (const Pane& pane : window->panes().all())
    if (pane.widget->findChild<QLabel*>(QStringLiteral("simulation")) != nullptr)
      badges += pane.name.toStdString() + " ";
  EXPECT_EQ(badges, "market_order entry_order ");
  EXPECT_TRUE(part(*window->menuBar()->cornerWidget(), "simulation").isVisible());
}

TEST_F(LayoutTest, ResettingTheLayoutBringsBackWhatFloats) {
  for (const Pane& pane : window->panes().all()) {
    if (pane.dock == nullptr) continue;
    pane.dock->setFloating(true);
    pane.dock->setVisible(pane.name != QStringLiteral("trade"));
  }
  press(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
  for (const Pane& pane : window->panes().all()) {
    if (pane.dock == nullptr) continue;
    EXPECT_FALSE(pane.dock->isFloating()) << pane.name.toStdString();
    // That one comes up when it is asked for.
    EXPECT_EQ(pane.dock->isVisibleTo(window.get()), pane.name != QStringLiteral("unknown"))
        << pane.name.toStdString();
  }
  rig.run(1ms);
  EXPECT_EQ(QApplication::focusWidget(), &window->panes().accounts().list());
  to_front("unknown");
  EXPECT_TRUE(dock("unknown").widget()->isVisible());
  EXPECT_FALSE(dock("unknown").isFloating());
}

TEST_F(LayoutTest, LayoutIsKeptAndADamagedOneIsReplacedByTheStandard) {
  dock("journal").setFloating(true);
  dock("market_watch").close();
  window->panes().journal().list().setColumnWidth(2, 333);
  window->close();
  open();
  EXPECT_TRUE(dock("journal").isFloating());
  // What was on the screen before its main window comes up once more, before that.
  QSignalSpy came{&dock("journal"), &QDockWidget::visibilityChanged};
  window->hide();
  window->show();
  rig.run(1ms);
  ASSERT_FALSE(came.isEmpty());
  EXPECT_TRUE(came.last().first().toBool());
  EXPECT_TRUE(dock("market_watch").isHidden());
  EXPECT_EQ(window->panes().journal().list().columnWidth(2), 333);
  // A closed pane's form knows, and its key brings it back.
  EXPECT_FALSE(rig.main().market_watch().Displayed());
  press(Qt::Key_2, Qt::ControlModifier);
  rig.run(10ms);
  EXPECT_TRUE(rig.main().market_watch().Displayed());

  for (const std::string damaged :
       {"panes=AAAA\ngeometry=!!\ncolumns.journal=/w==\n", "", "\xff\xfe no layout"}) {
    window.reset();
    rig.terminal.home->write("manage/layout.dat", damaged);
    open();
    EXPECT_FALSE(dock("journal").isFloating()) << damaged;
    EXPECT_FALSE(dock("market_watch").isHidden()) << damaged;
    EXPECT_FALSE(window->panes().journal().list().columns().widths_dragged()) << damaged;
  }
}

}  // namespace
}  // namespace tutti::testing
