#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "core/numbers.h"
#include "gui/frmMW_window.h"
#include "gui/frmorder_window.h"
#include "gui/price_label.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;

struct OrderWindowRig : GuiRig {
  explicit OrderWindowRig(int accounts = 4)
      : GuiRig(DealerConfig::sample(accounts)),
        form(main().market_order()),
        window(form, main().symbols(), screen) {
    show(window, {420, 700});
    run(50ms);
  }

  template <class W>
  W& find(const char* name) {
    return *window.findChild<W*>(QString::fromLatin1(name));
  }
  void click(const char* button) { QTest::mouseClick(&find<QAbstractButton>(button), Qt::LeftButton); }
  void key(QWidget& widget, Qt::Key key) { QTest::keyClick(&widget, key); }
  RowListView& list() { return window.list(); }
  QLineEdit& amount() { return find<QLineEdit>("txtammount"); }
  std::string line(const char* name) { return find<QLabel>(name).text().toStdString(); }
  // By the keyboard: symbol and rule from their lists, then the amount.
  void enter(const char* text, const char* symbol_start = "EURU") {
    find<QComboBox>("cbsymbols").setFocus();
    QTest::keyClicks(&find<QComboBox>("cbsymbols"), QString::fromLatin1(symbol_start));
    key(find<QComboBox>("CBdis"), Qt::Key_Down);
    QTest::keyClicks(&amount(), QString::fromLatin1(text));
  }
  // Which of Distribute, Sell and Buy can be pressed.
  std::string available() {
    return std::string{find<QWidget>("cmddis").isEnabled() ? "D" : ""} +
           (find<QWidget>("cmdsell").isEnabled() ? "S" : "") +
           (find<QWidget>("cmdbuy").isEnabled() ? "B" : "");
  }
  // Lots of all positions that an account has at the server.
  std::vector<double> positions(std::size_t account) {
    std::vector<double> out;
    const std::int32_t number = terminal.server.config().accounts[account].number;
    for (const Row& row : main().trade().lvwOpenPos) {
      if (row.text(1) == std::to_string(number)) out.push_back(row.cell(4).number());
    }
    return out;
  }

  frmorder& form;
  FrmorderWindow window;
};

TEST(MarketOrderWindow, OneOrderForManyAccountsByMouseAndKeyboard) {
  OrderWindowRig rig;
  EXPECT_EQ(rig.available(), "D");
  rig.enter("1.2.3x");
  EXPECT_EQ(rig.form.symbol(), "EURUSD");
  EXPECT_EQ(rig.form.CBdis.index(), 0);
  EXPECT_EQ(rig.amount().text(), QStringLiteral("1.23"));
  QGuiApplication::clipboard()->setText(QStringLiteral("12,5a"));
  rig.amount().selectAll();
  rig.amount().paste();
  EXPECT_EQ(rig.form.txtammount.text(), "125");
  // What is typed over is gone: its point does not count.
  for (const char* const typed : {".5", "1.2"}) {
    rig.amount().selectAll();
    QTest::keyClicks(&rig.amount(), QString::fromLatin1(typed));
    EXPECT_EQ(rig.form.txtammount.text(), typed);
  }

  click_tick(rig.list(), 0);
  click_cell(rig.list(), 1, 1);
  rig.key(rig.list(), Qt::Key_Space);
  click_tick(rig.list(), 2);
  EXPECT_EQ(rig.form.lvwConClients.checked_count(), 3U);

  // Enter distributes, and never sends.
  rig.amount().setFocus();
  rig.key(rig.amount(), Qt::Key_Return);
  EXPECT_EQ(rig.available(), "SB");
  EXPECT_EQ(rig.line("shares_line"), "Shares 1.2 of 1.2 lots");
  rig.key(rig.amount(), Qt::Key_Return);
  EXPECT_EQ(rig.available(), "SB");

  double_click_cell(rig.list(), 1, 1);
  auto& editor = rig.find<QLineEdit>("txtLvw");
  ASSERT_TRUE(editor.isVisible());
  QTest::keyClicks(&editor, QStringLiteral("0x.5"));
  rig.key(editor, Qt::Key_Return);
  EXPECT_FALSE(editor.isVisible());
  EXPECT_EQ(rig.form.lvwConClients.row(1).text(1), "0.5");
  EXPECT_EQ(rig.line("shares_line"), "Shares 1.3 of 1.2 lots, difference +0.1");

  rig.click("filter_waiting");
  QPushButton& buy = rig.find<QPushButton>("cmdbuy");
  QTest::mouseClick(&buy, Qt::LeftButton);
  QTest::mouseDClick(&buy, Qt::LeftButton);
  rig.window.buy();
  EXPECT_EQ(rig.available(), "D");
  EXPECT_EQ(rig.line("answers_line"), "3 waiting");
  EXPECT_EQ(rig.list().rows().rowCount(), 3);
  EXPECT_TRUE(rig.find<QProgressBar>("answers_progress").isVisible());
  rig.run(1s);
  EXPECT_EQ(rig.line("answers_line"), "3 accepted; 3 ticked accounts are not shown");
  EXPECT_FALSE(rig.find<QProgressBar>("answers_progress").isVisible());
  double lots = 0.0;
  std::size_t orders = 0;
  for (std::size_t account = 0; account < 4; ++account) {
    EXPECT_LE(rig.positions(account).size(), 1U);
    for (const double each : rig.positions(account)) {
      lots += each;
      ++orders;
    }
  }
  EXPECT_EQ(orders, 3U);
  EXPECT_DOUBLE_EQ(lots, 1.3);
}

TEST(MarketOrderWindow, AHeldKeySendsOnce) {
  OrderWindowRig rig;
  rig.enter("0.4");
  rig.click("chkAllClients");
  rig.click("cmddis");
  QPushButton& buy = rig.find<QPushButton>("cmdbuy");
  buy.setFocus();
  QTest::keyPress(&buy, Qt::Key_Space);
  for (int i = 0; i < 5; ++i) {
    QTest::simulateEvent(&buy, true, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
    QTest::simulateEvent(&buy, false, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
  }
  QTest::keyRelease(&buy, Qt::Key_Space);
  rig.key(buy, Qt::Key_Space);
  rig.key(buy, Qt::Key_Return);
  rig.run(1s);
  for (std::size_t account = 0; account < 4; ++account)
    EXPECT_EQ(rig.positions(account), std::vector<double>{0.1});
}

TEST(MarketOrderWindow, TabGoesTheWayOfAnOrder) {
  OrderWindowRig rig;
  rig.click("chkAllClients");
  rig.enter("0.4");
  rig.find<QWidget>("cbsymbols").setFocus();
  std::string way;
  const auto follow = [&](int steps) {
    for (int i = 0; i < steps; ++i) {
      way += rig.window.focusWidget()->objectName().toStdString() + " ";
      rig.key(*rig.window.focusWidget(), Qt::Key_Tab);
    }
  };
  follow(4);
  rig.window.distribute();
  rig.list().setFocus();
  follow(3);
  EXPECT_EQ(way, "cbsymbols txtammount CBdis cmddis lvwConClients cmdsell cmdbuy ");
  rig.window.focus_amount();
  EXPECT_EQ(rig.amount().selectedText(), QStringLiteral("0.4"));
}

// Of each fifty accounts one does not see the symbol, one is broke, and one may not trade.
TEST(MarketOrderWindow, FiltersFollowTheAnswers) {
  OrderWindowRig rig{60};
  const auto filter = [&](const char* name) {
    rig.click(name);
    return rig.list().rows().rowCount();
  };
  const auto caption = [&](const char* name) { return rig.find<QAbstractButton>(name).text().toStdString(); };
  rig.enter("60");
  rig.click("chkAllClients");
  EXPECT_EQ(filter("filter_ticked"), 59);
  EXPECT_EQ(filter("filter_refused"), 1);
  rig.click("cmddis");
  EXPECT_EQ(filter("filter_waiting"), 0);
  rig.click("cmdsell");
  const int sent = rig.list().rows().rowCount();
  EXPECT_GT(sent, 50);
  EXPECT_EQ(caption("filter_waiting"), "Waiting " + std::to_string(sent));
  rig.run(1s);
  EXPECT_EQ(rig.list().rows().rowCount(), 0);
  const int refused = filter("filter_refused");
  EXPECT_EQ(caption("filter_refused"), "Refused " + std::to_string(refused));
  ASSERT_GT(refused, 0);
  for (int place = 0; place < refused; ++place)
    EXPECT_NE(rig.list().rows().row_at(place)->text(2), "Market Order Accepted");
  EXPECT_EQ(filter("filter_all"), 60);
}

TEST(MarketOrderWindow, AnAccountGoesWhileItsShareIsEdited) {
  OrderWindowRig rig;
  rig.enter("0.4");
  rig.click("chkAllClients");
  rig.click("cmddis");
  click_cell(rig.list(), 1, 0);
  rig.key(rig.list(), Qt::Key_F3);
  auto& editor = rig.find<QLineEdit>("txtLvw");
  ASSERT_TRUE(editor.isVisible());
  QTest::keyClicks(&editor, QStringLiteral("9"));
  rig.form.remove_account(static_cast<std::int32_t>(rig.form.lvwConClients.row(1).key().number()));
  rig.screen.acted();
  EXPECT_FALSE(editor.isVisible());
  ASSERT_EQ(rig.form.lvwConClients.size(), 3U);
  for (const Row& row : rig.form.lvwConClients)
    EXPECT_EQ(row.text(1), "0.1");

  // By command: what stands in the editor is sent, and given up by a new distribution.
  click_cell(rig.list(), 0, 0);
  rig.key(rig.list(), Qt::Key_Return);
  QTest::keyClicks(&editor, QStringLiteral("0.3"));
  rig.window.sell();
  EXPECT_EQ(rig.form.lvwConClients.row(0).text(1), "0.3");
  rig.run(1s);
  rig.list().setFocus();
  rig.key(rig.list(), Qt::Key_F3);
  QTest::keyClicks(&editor, QStringLiteral("7"));
  rig.window.distribute();
  EXPECT_FALSE(editor.isVisible());
  EXPECT_NE(rig.form.lvwConClients.row(0).text(1), "7");
}

TEST(MarketOrderWindow, ShowsWhatTheFormSays) {
  OrderWindowRig rig;
  const auto caption = [&](const char* name) { return rig.find<QAbstractButton>(name).text().toStdString(); };
  EXPECT_EQ(caption("cmddis") + caption("cmdbuy") + caption("cmdsell"), "Distribute BuySell");
  EXPECT_FALSE(rig.find<QWidget>("txtEditPrice").isVisible());
  QTest::mouseClick(&rig.find<QLabel>("LblCheck"), Qt::LeftButton);
  EXPECT_TRUE(rig.find<QCheckBox>("chkAllClients").isChecked());
  EXPECT_EQ(rig.line("LblCheck"), "Uncheck All");
  EXPECT_EQ(rig.form.lvwConClients.checked_count(), 4U);
  rig.click("cmddis");
  EXPECT_EQ(rig.available(), "D");
}

TEST(MarketOrderWindow, PricesFollowTheSymbol) {
  OrderWindowRig rig{1};
  auto& bid = static_cast<PriceLabel&>(rig.find<QWidget>("quote_bid"));
  auto& ask = static_cast<PriceLabel&>(rig.find<QWidget>("buy_price"));
  EXPECT_TRUE(bid.text().isEmpty());

  FrmMWWindow watch{rig.main().market_watch(), rig.screen};
  show(watch, {420, 300});
  double_click_cell(watch.list(), 0, 0);
  EXPECT_EQ(rig.form.symbol(), watch.list().rows().row_at(0)->text(0));
  const SymbolHandle handle = rig.main().symbols().find(rig.form.symbol());
  rig.screen.refresh();
  for (const auto& [move, ink] :
       {std::pair{1.0, Ink::green}, {0.0, Ink::green}, {-1.0, Ink::red}, {0.0, Ink::red}}) {
    const SymbolCollection::Entry now = rig.main().symbols().entry(handle);
    Symbol next;
    next.bid = now.bid + move;
    next.ask = now.ask + move;
    rig.main().symbols().set_prices(handle, next);
    rig.screen.refresh();
    EXPECT_EQ(bid.text().toStdString(), fixed_text(next.bid, now.digits));
    EXPECT_EQ(ask.text().toStdString(), fixed_text(next.ask, now.digits));
    // The colour stays until the next move; the one on a button is the button's own.
    EXPECT_EQ(bid.ink(), ink);
    EXPECT_EQ(ask.ink(), Ink::plain);
  }
  click_cell(watch.list(), 1, 0);
  rig.key(watch.list(), Qt::Key_Return);
  EXPECT_EQ(rig.form.symbol(), watch.list().rows().row_at(1)->text(0));
  EXPECT_EQ(bid.ink(), Ink::plain);
}

}  // namespace
}  // namespace tutti::testing
