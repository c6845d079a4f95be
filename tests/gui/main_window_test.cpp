// The main window: panes and their layout, commands and their keys, status bar, closing.

#include <gtest/gtest.h>

#include <QClipboard>
#include <QDockWidget>
#include <QFile>
#include <QLayout>
#include <QListWidget>
#include <QMenuBar>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QToolBar>

#include "core/numbers.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/in_sight.h"
#include "gui/shell/frmMdiNew_window.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;

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

// The whole desktop on a terminal whose accounts are logged in.
struct DesktopTest : ::testing::Test {
  void SetUp() override { open(); }
  void open() {
    rig.terminal.prompt.screen = &prompt;
    window.reset();
    window =
        std::make_unique<FrmMdiNewWindow>(rig.main(), rig.screen, prompt, sound, rig.terminal.file_dialog);
    window->restore_layout();
    show(*window, {1280, 800});
    window->activateWindow();
    rig.run(10ms);
  }
  QDockWidget& dock(const char* name) { return part<QDockWidget>(*window, name); }
  void trigger(const char* name) { window->commands().find(QString::fromLatin1(name))->trigger(); }
  void to_front(const char* name) {
    window->panes().bring_up(QString::fromLatin1(name));
    rig.run(1ms);
  }
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

  GuiRig rig;
  DesktopPrompt prompt{rig.screen};
  DesktopSound sound{rig.terminal.home->path()};
  std::unique_ptr<FrmMdiNewWindow> window;
};

TEST_F(DesktopTest, EveryCommandHasAKeyOfItsOwnAndStandsInTheKeyboardMap) {
  QFile page{QStringLiteral(":/help/keyboard.md")};
  ASSERT_TRUE(page.open(QIODevice::ReadOnly));
  const QString map = QString::fromUtf8(page.readAll());
  std::set<QString> keys;
  for (const auto& [command, action] : window->commands().all()) {
    const QString key = command.key.toString(QKeySequence::PortableText);
    EXPECT_FALSE(key.isEmpty()) << command.name.toStdString();
    EXPECT_TRUE(keys.insert(key).second) << key.toStdString();
    const QString text = QString{command.text}.remove(QLatin1Char{'&'});
    // What stands in brackets tells more about the command.
    const QRegularExpression line{
        QStringLiteral("\\| %1 (\\([^|]*)?\\| %2 \\|")
            .arg(QRegularExpression::escape(text), QRegularExpression::escape(key))};
    EXPECT_TRUE(map.contains(line)) << text.toStdString() << " " << key.toStdString();
  }
}

// Beside each other in a row of the keyboard, with the same keys held down, or one of these more or less.
bool near(QKeyCombination a, QKeyCombination b) {
  static const auto place = [](int key) {
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12) return key - Qt::Key_F1;
    const std::string_view rows = "`1234567890-=  QWERTYUIOP[]  ASDFGHJKL;'  ZXCVBNM,./";
    const auto at = key < 128 ? rows.find(static_cast<char>(key)) : std::string_view::npos;
    return at == std::string_view::npos ? key : 100 + static_cast<int>(at);
  };
  if (a.key() == b.key())
    return qPopulationCount(static_cast<quint32>((a.keyboardModifiers() ^ b.keyboardModifiers()).toInt())) ==
           1;
  return a.keyboardModifiers() == b.keyboardModifiers() && std::abs(place(a.key()) - place(b.key())) == 1;
}

TEST_F(DesktopTest, NoHarmlessKeyIsNextToOneThatSendsClosesOrLogsOut) {
  EXPECT_TRUE(near(Qt::Key_F5, Qt::Key_F6) && near(Qt::CTRL | Qt::Key_L, Qt::CTRL | Qt::SHIFT | Qt::Key_L) &&
              near(Qt::CTRL | Qt::Key_9, Qt::CTRL | Qt::Key_0) && !near(Qt::Key_F5, Qt::Key_F7) &&
              !near(Qt::Key_L, Qt::CTRL | Qt::SHIFT | Qt::Key_L) && !near(Qt::Key_P, Qt::Key_L));
  std::set<QString> grave;
  for (const auto& [command, action] : window->commands().all()) {
    if (command.effect == Commands::Effect::harmless) continue;
    grave.insert(command.name);
    for (const auto& [other, its_action] : window->commands().all()) {
      EXPECT_FALSE(other.effect == Commands::Effect::harmless && near(command.key[0], other.key[0]))
          << command.name.toStdString() << " " << other.name.toStdString();
    }
  }
  for (const char* name : {"buy", "sell", "submit_entry", "close_selected", "cancel_selected", "close_marked",
                           "accept_requote", "disconnect", "logout_all", "remove_all", "quit"})
    EXPECT_TRUE(grave.contains(QString::fromLatin1(name))) << name;
}

TEST_F(DesktopTest, SummariesOfTheSelectedAccountsAreAskedForAnew) {
  RowList& list = rig.main().accounts().lvwClients;
  for (Row& row : list)
    row.set_text(frmMain::balance, "old");
  list.select(list.row(1));
  to_front("accounts");
  trigger("refresh_summaries");
  EXPECT_EQ(list.row(0).text(frmMain::balance), "old");
  EXPECT_NE(list.row(1).text(frmMain::balance), "old");
}

TEST_F(DesktopTest, FormsAreDisplayedWhileTheirPanesCanBeSeen) {
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

TEST_F(DesktopTest, PanesBehindTabsRestAndCatchUpInFront) {
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

TEST_F(DesktopTest, TheHeaderCountsTheTicksOfTheOrderWindowInFront) {
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

TEST_F(DesktopTest, TheKeyboardLeavesAPaneThatGoesBehindAnother) {
  to_front("close_positions");
  part(window->panes().close_positions(), "LblCheck").setFocus();
  dock("trade").raise();
  rig.run(1ms);
  EXPECT_EQ(QApplication::focusWidget(), &window->panes().trade().list());
  part(window->panes().close_positions(), "LblCheck").setFocus();  // as Tab does
  rig.run(1ms);
  EXPECT_EQ(QApplication::focusWidget(), &window->panes().trade().list());
}

TEST_F(DesktopTest, AGlanceAtAnotherTabLosesNoPlaceAndNoMark) {
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
TEST_F(DesktopTest, CommandsNeedTheirPaneInFront) {
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
TEST_F(DesktopTest, TheFirstWindowHasRoomForADealersDay) {
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

TEST_F(DesktopTest, ResettingTheLayoutBringsBackWhatFloats) {
  for (const Pane& pane : window->panes().all()) {
    if (pane.dock == nullptr) continue;
    pane.dock->setFloating(true);
    pane.dock->setVisible(pane.name != QStringLiteral("trade"));
  }
  press(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
  for (const Pane& pane : window->panes().all())
    EXPECT_TRUE(pane.dock == nullptr || (!pane.dock->isFloating() && pane.dock->isVisibleTo(window.get())))
        << pane.name.toStdString();
  rig.run(1ms);
  EXPECT_EQ(QApplication::focusWidget(), &window->panes().accounts().list());
}

TEST_F(DesktopTest, QuestionsStandInTheMiddleOfTheScreen) {
  QPoint middle;
  when_modal([&](QWidget& box) {
    middle = box.frameGeometry().center();
    QTest::keyClick(&box, Qt::Key_Escape);
  });
  window->move(-500, 300);
  rig.main().sure().GeneralQuestionMsg("Logout All");
  EXPECT_LE((middle - window->screen()->availableGeometry().center()).manhattanLength(), 8);
}

TEST_F(DesktopTest, TheMainJobByKeyboardAlone) {
  frmorder& form = rig.main().market_order();
  press(Qt::Key_3, Qt::ControlModifier);
  form.cbsymbols.choose("EURUSD");
  form.CBdis.choose(0);
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("12"));
  press(Qt::Key_T, Qt::ControlModifier);
  press(Qt::Key_F9);
  press(Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
  press(Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
  rig.run(1s);
  EXPECT_EQ(form.answers().accepted, 12);
  EXPECT_EQ(rig.main().trade().lvwOpenPos.size(), 12U);
}

TEST_F(DesktopTest, AnOpenSymbolListLeavesKeysAndTheScreenToTheOthers) {
  auto& box = part<QLineEdit>(*window, "cbsymbols");
  const auto& list = *box.findChild<QListWidget*>(QStringLiteral("found_symbols"));
  const auto search = [&] {
    to_front("market_order");
    window->activateWindow();
    QCoreApplication::processEvents();
    box.setFocus();
    box.selectAll();
    QTest::keyClicks(&box, QStringLiteral("eur"));
    return list.isVisible();
  };
  ASSERT_TRUE(search());
  bool told = false;  // that it was not taken
  when_modal([&](QWidget& box) {
    told = !list.isVisible();
    QTest::keyClick(&box, Qt::Key_Escape);
  });
  press(Qt::Key_F9);
  EXPECT_TRUE(told);
  EXPECT_TRUE(search());
  press(Qt::Key_2, Qt::ControlModifier);
  EXPECT_FALSE(list.isVisible() || box.hasFocus());
  EXPECT_TRUE(search());
  frmPriceChanged& requote = rig.main().requote();
  requote.SetData(*rig.main().accounts().sessions().by_account(500100), 77, 500100, 1, 0.5, "EURUSD", 1.08,
                  1.09, 10, 10);
  rig.run(10ms);
  EXPECT_TRUE(requote.Displayed() && !list.isVisible());
  rig.run(dead_time);
  EXPECT_TRUE(search());
  press(Qt::Key_F7);
  EXPECT_FALSE(requote.Displayed());
}

TEST_F(DesktopTest, TheMarketWatchHandsItsSymbolOver) {
  RowListView& watch = window->panes().market_watch().list();
  const auto name = [&](int place) { return watch.rows().row_at(place)->text(frmMW::symbol_name); };
  const auto keyboard = [&] {
    rig.run(10ms);
    return QApplication::focusWidget()->objectName().toStdString();
  };
  frmorder& market = rig.main().market_order();
  for (const bool floats : {true, false}) {
    dock("market_watch").setFloating(floats);
    to_front("entry_order");
    if (floats) dock("market_watch").activateWindow();
    double_click_cell(watch, floats ? 2 : 1, 1);
    EXPECT_EQ(keyboard() + " " + market.cbsymbols.text(), "txtammount " + name(floats ? 2 : 1));
    EXPECT_TRUE(window->isActiveWindow());
  }
  type("7");
  click_cell(watch, 1, 1);
  QTest::keyClick(&watch, Qt::Key_Return);
  EXPECT_EQ(keyboard() + " " + market.txtammount.text(), "txtammount 7");
  click_cell(watch, 0, 1);
  watch.findChild<QAction*>(QStringLiteral("to_entry_order"))->trigger();
  EXPECT_EQ(keyboard() + " " + rig.main().entry_order().cblimitordersymbols.text(),
            "txtlimitorderammount " + name(0));
  EXPECT_EQ(market.txtammount.text(), "7");
}

TEST_F(DesktopTest, LayoutIsKeptAndADamagedOneIsReplacedByTheStandard) {
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
    EXPECT_FALSE(window->panes().journal().list().widths_dragged()) << damaged;
  }
}

TEST_F(DesktopTest, StatusBarShowsTotalsConnectionsAndServerTime) {
  const auto label = [this](const char* name) { return part<QLabel>(*window, name).text().toStdString(); };
  auto& totals = part<ElidedLabel>(*window, "totals");
  EXPECT_EQ(totals.text().toStdString(), rig.main().window().totals_pane());
  EXPECT_EQ(label("connected"), "12 / 12 connected");
  EXPECT_EQ(label("server_time"), rig.main().window().server_time_pane());
  totals.resize(200, 20);
  EXPECT_TRUE(totals.toolTip().contains(QStringLiteral("Margin")));

  rig.main().accounts().LogoutClient(rig.terminal.client(500100).key());
  rig.run(1s);
  EXPECT_EQ(label("connected"), "11 / 12 connected");
  EXPECT_EQ(totals.text().toStdString(), rig.main().window().totals_pane());
}

TEST_F(DesktopTest, LeavingAsksWhileAnythingIsHeldOrOnItsWay) {
  // No question at all where nothing is held: nobody would answer it here.
  const auto quits = [this](Qt::Key answer) {
    if (answer != Qt::Key_unknown) when_modal([answer](QWidget& box) { QTest::keyClick(&box, answer); });
    return window->close();
  };
  const auto told = [this](const char* what) { return rig.asked().back().find(what) != std::string::npos; };
  rig.buy("12");
  EXPECT_FALSE(quits(Qt::Key_Escape));
  EXPECT_TRUE(told("12 requests have no answer yet")) << rig.asked().back();
  rig.run(1s);
  EXPECT_FALSE(quits(Qt::Key_N));
  const std::string profit = fixed_text(rig.main().net_positions().total().floating_total(), 2);
  EXPECT_EQ(rig.terminal.prompt.shown.back().details,
            "12 open positions\nEURUSD 12 lots\nFloating P/L " + profit);
  EXPECT_EQ(rig.asked(), Texts{"12 positions are open. Close the terminal all the same?"});
  EXPECT_TRUE(quits(Qt::Key_Y));
  open();
  rig.main().accounts().logout_all();
  rig.run(1s);
  EXPECT_TRUE(quits(Qt::Key_unknown));
  EXPECT_EQ(rig.asked().size(), 1U);
}

TEST_F(DesktopTest, LoggingOutSeveralAccountsAsksWithWhatTheyHold) {
  rig.buy("12");
  rig.run(1s);
  const auto connected = [this] { return rig.main().accounts().connections().connected; };
  const auto disconnect = [this](int first, int last, Qt::Key answer) {
    to_front("accounts");
    click_cell(window->panes().accounts().list(), first, 1);
    click_cell(window->panes().accounts().list(), last, 1, Qt::ShiftModifier);
    if (answer != Qt::Key_unknown) {
      when_modal([this, answer](QWidget& box) {
        // Meanwhile another row gets selected.
        rig.main().accounts().lvwClients.select(rig.main().accounts().lvwClients.row(11));
        QTest::keyClick(&box, answer);
      });
    }
    press(Qt::Key_F6, Qt::ShiftModifier);
    rig.run(1s);
  };
  rig.asked();
  disconnect(0, 0, Qt::Key_unknown);
  EXPECT_EQ(connected(), 11);
  EXPECT_EQ(rig.asked().size(), 0U);
  disconnect(0, 3, Qt::Key_N);
  EXPECT_EQ(connected(), 11);
  const std::string held = rig.terminal.prompt.shown.back().details;
  EXPECT_TRUE(held.starts_with("3 open positions\nEURUSD 3 lots\nFloating P/L ")) << held;
  EXPECT_EQ(rig.asked(), Texts{"Log out 3 accounts?"});
  disconnect(0, 3, Qt::Key_Y);
  EXPECT_EQ(connected(), 8);
  EXPECT_EQ(rig.main().accounts().lvwClients.row(11).text(frmMain::state), "Connected");
  // The form itself never asks.
  rig.asked();
  for (Row& row : rig.main().accounts().lvwClients)
    row.set_selected(true);
  rig.main().accounts().MnuDisconnecte_Click();
  rig.run(1s);
  EXPECT_EQ(connected(), 0);
  EXPECT_EQ(rig.asked().size(), 0U);
}

TEST_F(DesktopTest, RemovingSelectedAccountsAsksAndLeavesTheRest) {
  click_cell(window->panes().accounts().list(), 1, 1);
  click_cell(window->panes().accounts().list(), 3, 1, Qt::ShiftModifier);
  when_modal([](QWidget& box) { QTest::keyClick(&box, Qt::Key_N); });
  press(Qt::Key_Delete, Qt::ControlModifier);
  EXPECT_EQ(rig.main().accounts().lvwClients.size(), 12U);
  when_modal([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Y); });
  press(Qt::Key_Delete, Qt::ControlModifier);
  EXPECT_EQ(rig.main().accounts().lvwClients.size(), 9U);
}

TEST_F(DesktopTest, HelpOpensOnThePaneInUse) {
  press(Qt::Key_6, Qt::ControlModifier);
  press(Qt::Key_F1);
  EXPECT_EQ(rig.main().help().topic(), "journal");
  EXPECT_TRUE(window->help().isVisible());
  window->help().close();
}

TEST_F(DesktopTest, CopyAndCloseTakeTheListThatHasTheKeyboard) {
  rig.buy("12");
  rig.run(1s);
  press(Qt::Key_8, Qt::ControlModifier);
  rig.run(10ms);
  QAction& close = *window->commands().find(QStringLiteral("close_net"));
  EXPECT_FALSE(close.isEnabled());
  const QWidget& button = part(window->panes().net_trade(), "close_accounts");
  const QString tip = QStringLiteral("Close accounts of net position  (Shift+F12)");
  EXPECT_EQ(button.toolTip(), tip + QStringLiteral("\nSelect a net position first"));
  click_cell(window->panes().net_trade().list(), 0, frmNetTrade::net);
  rig.screen.acted();
  EXPECT_TRUE(close.isEnabled());
  EXPECT_EQ(button.toolTip(), tip);

  RowListView& accounts = window->panes().net_trade().accounts();
  click_cell(accounts, 2, frmNetTrade::account);
  window->commands().find(QStringLiteral("copy"))->trigger();
  EXPECT_EQ(QGuiApplication::clipboard()->text().section(QLatin1Char{'\t'}, 0, 0).toStdString(),
            accounts.rows().row_at(2)->text(frmNetTrade::account));
  rig.terminal.file_dialog.answer = (rig.terminal.home->path() / "out.csv").string();
  window->commands().find(QStringLiteral("export"))->trigger();
  EXPECT_TRUE(rig.terminal.home->read("out.csv").starts_with("Account,"));
  EXPECT_EQ(rig.terminal.file_dialog.proposed.substr(0, 16), "Net positions 20");
  EXPECT_TRUE(rig.terminal.file_dialog.proposed.ends_with(".csv"));
  EXPECT_EQ(rig.terminal.file_dialog.proposed.find(':'), std::string::npos);

  // Handed over, the marks are safe from the next key.
  close.trigger();
  rig.run(10ms);
  EXPECT_EQ(rig.main().close_positions().marked_count(), 1U);
  EXPECT_EQ(QApplication::focusWidget(), &window->panes().close_positions().list());
  press(Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("CloseSymbols"));
}

}  // namespace
}  // namespace tutti::testing
