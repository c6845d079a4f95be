// The main window: commands and their keys, status bar, closing.

#include <QClipboard>
#include <QFile>
#include <QListWidget>

#include "core/numbers.h"
#include "gui/kit/elided_label.h"
#include "tests/gui/desktop_rig.h"

namespace tutti::testing {
namespace {

using DesktopTest = DesktopRig;

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
  requote.SetData(*rig.main().sessions().by_account(500100), 77, 500100, operation::buy, 0.5, "EURUSD", 1.08,
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
  watch.findChild<QAction*>(QStringLiteral("to_market_order"))->trigger();
  EXPECT_EQ(market.cbsymbols.text(), name(0));
}

TEST_F(DesktopTest, StatusBarShowsTotalsConnectionsAndServerTime) {
  const auto label = [this](const char* name) { return part<QLabel>(*window, name).text().toStdString(); };
  auto& totals = part<ElidedLabel>(*window, "totals");
  EXPECT_EQ(totals.text().toStdString(), rig.main().window().totals_pane());
  EXPECT_EQ(label("connected"), "12 / 12 connected");
  EXPECT_EQ(label("server_time"), rig.main().window().server_time_pane());

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
  const auto connected = [this] { return rig.main().account_book().counts().connected; };
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
