// The main window: panes and their layout, commands and their keys, status bar, closing.

#include <gtest/gtest.h>

#include <QClipboard>
#include <QDockWidget>
#include <QFile>
#include <QMenuBar>

#include "gui/elided_label.h"
#include "gui/frmMdiNew_window.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;

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

TEST_F(DesktopTest, LayoutIsKeptAndADamagedOneIsReplacedByTheStandard) {
  dock("journal").setFloating(true);
  dock("market_watch").close();
  window->journal().list().setColumnWidth(2, 333);
  window->close();
  open();
  EXPECT_TRUE(dock("journal").isFloating());
  EXPECT_TRUE(dock("market_watch").isHidden());
  EXPECT_EQ(window->journal().list().columnWidth(2), 333);
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
    EXPECT_FALSE(window->journal().list().widths_dragged()) << damaged;
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

TEST_F(DesktopTest, ClosingAsksWhileAnswersAreMissing) {
  rig.buy("12");
  when_modal([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); });
  EXPECT_FALSE(window->close());
  EXPECT_NE(rig.asked().back().find("12 requests have no answer yet"), std::string::npos);
  rig.run(1s);
  EXPECT_TRUE(window->close());
}

TEST_F(DesktopTest, RemovingSelectedAccountsAsksAndLeavesTheRest) {
  click_cell(window->accounts().list(), 1, 1);
  click_cell(window->accounts().list(), 3, 1, Qt::ShiftModifier);
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
  click_cell(window->net_trade().list(), 0, frmNetTrade::net);
  rig.screen.acted();
  EXPECT_TRUE(close.isEnabled());

  RowListView& accounts = window->net_trade().accounts();
  click_cell(accounts, 2, frmNetTrade::account);
  window->commands().find(QStringLiteral("copy"))->trigger();
  EXPECT_EQ(QGuiApplication::clipboard()->text().section(QLatin1Char{'\t'}, 0, 0).toStdString(),
            accounts.rows().row_at(2)->text(frmNetTrade::account));
  rig.terminal.file_dialog.answer = (rig.terminal.home->path() / "out.csv").string();
  window->commands().find(QStringLiteral("export"))->trigger();
  EXPECT_TRUE(rig.terminal.home->read("out.csv").starts_with("Account,"));

  // Handed over, the marks are safe from the next key.
  close.trigger();
  rig.run(10ms);
  EXPECT_EQ(rig.main().close_positions().marked_count(), 1U);
  EXPECT_EQ(QApplication::focusWidget(), &window->close_positions().list());
  press(Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("CloseSymbols"));
}

}  // namespace
}  // namespace tutti::testing
