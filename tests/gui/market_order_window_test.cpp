#include <QClipboard>
#include <QListWidget>
#include <QWheelEvent>

#include "core/numbers.h"
#include "core/texts.h"
#include "gui/windows/frmMW_window.h"
#include "gui/windows/price_label.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

struct OrderWindowRig : PaneRig<&Panes::market_order> {
  explicit OrderWindowRig(int accounts = 4) : PaneRig(DealerConfig::sample(accounts), {420, 700}) {
    run(50ms);
  }

  QLineEdit& amount() { return find<QLineEdit>("txtammount"); }
  // By the keyboard: symbol and rule from their lists, then the amount.
  void enter(const char* text) {
    find("cbsymbols").setFocus();
    keys("EURU");
    key(Qt::Key_Return);
    QTest::keyClick(&find("CBdis"), Qt::Key_Down);
    QTest::keyClicks(&amount(), QString::fromLatin1(text));
  }
  // Which of Distribute, Sell and Buy can be pressed.
  std::string available() {
    std::string out;
    for (const char* name : {"cmddis", "cmdsell", "cmdbuy"})
      out += find(name).isEnabled() ? caption(name)[0] : '-';
    return out;
  }
  // "side lots" of every account's positions, as the list is sorted.
  Texts positions() {
    Texts out;
    for (const std::string& account : sorted(texts_of(form.lvwConClients, 0))) {
      out.emplace_back();
      for (const Row& row : main().trade().lvwOpenPos)
        if (row.text(frmTrade::account) == account)
          out.back() += row.text(frmTrade::type) + " " + row.text(frmTrade::amount);
    }
    return out;
  }

  frmorder& form = main().market_order();
};

TEST(MarketOrderWindow, OneOrderForManyAccountsByMouseAndKeyboard) {
  OrderWindowRig rig;
  EXPECT_EQ(rig.caption("cmddis") + rig.caption("cmdbuy") + rig.caption("cmdsell"), "Distribute BuySell");
  EXPECT_EQ(rig.available(), "D--");
  rig.enter("1.2.3x");
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

  click_tick(rig.list, 0);
  click_cell(rig.list, 1, 1);
  rig.key(Qt::Key_Space);
  click_tick(rig.list, 2);

  // Enter distributes, and never sends.
  rig.amount().setFocus();
  rig.key(Qt::Key_Return);
  EXPECT_EQ(rig.available(), "-SB");
  EXPECT_EQ(rig.line("shares_line"), "Shares 1.2 of 1.2 lots");
  EXPECT_EQ(rig.line("lot_limits"), "0.01 to 100 lots");
  rig.key(Qt::Key_Return);
  EXPECT_EQ(rig.available(), "-SB");

  double_click_cell(rig.list, 1, 1);
  rig.keys("0x.5");
  rig.key(Qt::Key_Return);
  EXPECT_FALSE(rig.find("txtLvw").isVisible());
  EXPECT_EQ(rig.line("shares_line"), "Shares 1.3 of 1.2 lots, difference +0.1");

  rig.click("filter_waiting");
  auto& buy = rig.find("cmdbuy");
  QTest::mouseClick(&buy, Qt::LeftButton);
  QTest::mouseDClick(&buy, Qt::LeftButton);
  rig.window.buy();
  EXPECT_EQ(rig.available(), "D--");
  EXPECT_EQ(rig.line("answers_line"), "3 waiting");
  EXPECT_EQ(rig.list.rows().rowCount(), 3);
  rig.run(1s);
  EXPECT_EQ(rig.line("answers_line"), "3 accepted; 3 ticked accounts are not shown");
  EXPECT_EQ(rig.positions(), (Texts{"Buy 0.4", "Buy 0.5", "Buy 0.4", ""}));
}

TEST(MarketOrderWindow, AHeldKeySendsOnce) {
  OrderWindowRig rig;
  rig.distribute("0.4");
  auto& buy = rig.find("cmdbuy");
  buy.setFocus();
  QTest::keyPress(&buy, Qt::Key_Space);
  for (int i = 0; i < 5; ++i) {
    QTest::simulateEvent(&buy, true, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
    QTest::simulateEvent(&buy, false, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
  }
  QTest::keyRelease(&buy, Qt::Key_Space);
  QTest::keyClick(&buy, Qt::Key_Return);
  rig.run(1s);
  EXPECT_EQ(rig.positions(), Texts(4, "Buy 0.1"));
}

TEST(MarketOrderWindow, TabGoesTheWayOfAnOrder) {
  OrderWindowRig rig;
  rig.click("LblCheck");
  EXPECT_TRUE(rig.find<QAbstractButton>("chkAllClients").isChecked());
  rig.enter("0.4");
  rig.find("cbsymbols").setFocus();
  std::string way = rig.tab(4);
  rig.window.distribute();
  rig.list.setFocus();
  way += rig.tab(3);
  EXPECT_EQ(way, "cbsymbols txtammount CBdis cmddis lvwConClients cmdsell cmdbuy ");
  rig.window.focus_amount();
  EXPECT_EQ(rig.amount().selectedText(), QStringLiteral("0.4"));
}

// Of each fifty accounts one does not see the symbol, one is broke, and one may not trade.
TEST(MarketOrderWindow, FiltersFollowTheAnswers) {
  OrderWindowRig rig{60};
  const auto filter = [&](const char* name) {
    rig.click(name);
    return rig.list.rows().rowCount();
  };
  rig.enter("60");
  rig.click("chkAllClients");
  EXPECT_EQ(filter("filter_ticked"), 59);
  EXPECT_EQ(filter("filter_refused"), 1);
  EXPECT_EQ(rig.line("shares_line"), "No shares yet; 1 left out (No Balance)");
  rig.click("cmddis");
  EXPECT_EQ(filter("filter_waiting"), 0);
  rig.click("cmdsell");
  const int sent = rig.list.rows().rowCount();
  EXPECT_GT(sent, 50);
  EXPECT_EQ(rig.caption("filter_waiting"), "Waiting " + std::to_string(sent));
  rig.run(1s);
  EXPECT_EQ(rig.list.rows().rowCount(), 0);
  const int refused = filter("filter_refused");
  EXPECT_EQ(rig.caption("filter_refused"), "Refused " + std::to_string(refused));
  ASSERT_GT(refused, 0);
  for (int place = 0; place < refused; ++place)
    EXPECT_NE(rig.list.rows().row_at(place)->text(2), "Market Order Accepted");
  EXPECT_EQ(filter("filter_all"), 60);
}

TEST(MarketOrderWindow, WhatStandsInTheEditorIsSentAndGivenUpByANewDistribution) {
  OrderWindowRig rig;
  rig.distribute("0.4");
  click_cell(rig.list, 1, 0);
  rig.key(Qt::Key_Return);
  rig.keys("0.3");
  rig.window.sell();
  rig.run(1s);
  EXPECT_EQ(rig.positions(), (Texts{"Sell 0.1", "Sell 0.3", "Sell 0.1", "Sell 0.1"}));
  rig.list.setFocus();
  rig.key(Qt::Key_F3);
  rig.keys("7");
  rig.window.distribute();
  EXPECT_FALSE(rig.find("txtLvw").isVisible());
  EXPECT_EQ(shown(rig.list.rows(), frmorder::amount), Texts(4, "0.1"));
}

// Accounts log in in any order.
TEST(MarketOrderWindow, AccountsStandByTheirNumberAndAreFound) {
  OrderWindowRig rig{12};
  const Texts own = texts_of(rig.form.lvwConClients, 0);
  const auto listed = [&] { return shown(rig.list.rows(), 0); };
  EXPECT_NE(own, sorted(own));
  EXPECT_EQ(listed(), sorted(own));
  rig.terminal.server.drop(500'103);
  rig.run(1s);
  rig.main().accounts().LoginClient(rig.terminal.client(500'103).key());
  rig.run(2s);
  EXPECT_EQ(listed(), sorted(own));
  const Row& row = *rig.list.rows().row_at(3);
  const std::string user = rig.terminal.client(500'103).text(frmMain::user_name);
  EXPECT_EQ(rig.list.delegate().tip(row, 0), user);
  EXPECT_NE(rig.list.delegate().tip(row, 1), user);

  rig.form.chkAllClients.click();
  auto& find = rig.find<QLineEdit>("find_account");
  find.setFocus();
  Texts of_user;
  for (const std::string& account : sorted(own))
    if (rig.terminal.client(std::stoi(account)).text(frmMain::user_name) == user) of_user.push_back(account);
  for (const auto& [typed, found] :
       {std::pair{std::string{"0103"}, Texts{"500103"}}, {folded(user.substr(1)), of_user}}) {
    find.setFocus();
    find.selectAll();
    rig.keys(typed);
    EXPECT_EQ(listed(), found);
    EXPECT_EQ(rig.line("answers_line"), "Nothing sent in this round; " + std::to_string(12 - found.size()) +
                                            " ticked accounts are not shown");
  }
  rig.key(Qt::Key_Return);
  EXPECT_EQ(rig.window.focusWidget(), &rig.list);
  find.setFocus();
  rig.key(Qt::Key_Escape);
  // The order the operator asks for.
  for (const bool downwards : {true, false}) {
    click_header(rig.list, 0);
    Texts wanted = sorted(own);
    std::reverse(wanted.begin(), wanted.end());
    EXPECT_EQ(listed(), downwards ? wanted : texts_of(rig.form.lvwConClients, 0));
  }
}

TEST(MarketOrderWindow, PricesFollowTheSymbol) {
  OrderWindowRig rig{1};
  auto& bid = static_cast<PriceLabel&>(rig.find("quote_bid"));
  auto& ask = static_cast<PriceLabel&>(rig.find("buy_price"));
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
  rig.form.cbsymbols.choose(watch.list().rows().row_at(1)->text(0));
  rig.screen.refresh();
  EXPECT_EQ(bid.ink(), Ink::plain);
}

TEST(MarketOrderWindow, ASymbolIsFoundHoweverSlowlyAndOnlyTakenOnPurpose) {
  OrderWindowRig rig{1};
  auto& box = rig.find<QLineEdit>("cbsymbols");
  auto& list = rig.find<QListWidget>("found_symbols");
  ComboBox& symbols = rig.form.cbsymbols;
  symbols.set_items({"US500", "AUDUSD", "EURUSD", "EURGBP", "GBPUSD"});
  int chosen = 0;
  const auto handler = symbols.on_choose;
  symbols.on_choose = [&] {
    ++chosen;
    handler();
  };
  symbols.choose("GBPUSD");
  rig.screen.acted();
  // "text in the box, how it is marked, highlighted line, chosen symbol and how often one was chosen"
  const auto state = [&] {
    const QListWidgetItem* item = list.isVisible() ? list.currentItem() : nullptr;
    return (box.text() + QLatin1Char{' '} + box.property("search").toString() + QLatin1Char{' '} +
            (item == nullptr ? QString{} : item->text()))
               .toStdString() +
           " " + symbols.text() + std::to_string(chosen);
  };
  const auto type = [&](const char* text) {
    box.setFocus();
    box.selectAll();
    for (const char* at = text; *at != '\0'; ++at) {
      rig.keys(std::string{*at});
      rig.run(1s);
    }
  };
  type("eur");
  EXPECT_EQ(state(), "eur not_taken EURUSD GBPUSD1");
  rig.key(Qt::Key_Down);
  EXPECT_EQ(state(), "eur not_taken EURGBP GBPUSD1");
  rig.key(Qt::Key_Return);
  EXPECT_EQ(state(), "EURGBP   EURGBP2");
  // Arrows and the wheel choose nothing, nor does Enter on what is chosen.
  rig.key(Qt::Key_Up);
  rig.key(Qt::Key_Up);
  EXPECT_EQ(state(), "EURGBP  EURUSD EURGBP2");
  rig.key(Qt::Key_Escape);
  QWheelEvent wheel{{5, 5}, box.mapToGlobal(QPointF{5, 5}), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false};
  QCoreApplication::sendEvent(&box, &wheel);
  rig.key(Qt::Key_Return);
  rig.key(Qt::Key_Down);
  rig.key(Qt::Key_Return);
  rig.key(Qt::Key_Down);
  rig.key(Qt::Key_Tab);
  EXPECT_EQ(state(), "EURGBP   EURGBP2");
  // What is no symbol is marked and takes nothing, what is left alone stays marked.
  type("xy");
  rig.key(Qt::Key_Return);
  EXPECT_EQ(state(), "xy nothing  EURGBP2");
  EXPECT_FALSE(box.toolTip().isEmpty());
  type("5");
  QTest::mouseClick(&rig.amount(), Qt::LeftButton);
  EXPECT_TRUE(rig.amount().hasFocus() && !list.isVisible());
  rig.run(1s);
  EXPECT_EQ(state(), "5 not_taken  EURGBP2");
  box.setFocus();
  rig.key(Qt::Key_Escape);
  EXPECT_EQ(state(), "EURGBP   EURGBP2");
  // Emptied, it means none of those that are listed.
  type("a");
  rig.key(Qt::Key_Backspace);
  rig.key(Qt::Key_Return);
  EXPECT_EQ(state(), " not_taken  EURGBP2");
  // A part of the name, taken by Tab, and a click.
  type("0");
  rig.key(Qt::Key_Tab);
  EXPECT_EQ(state(), "US500   US5003");
  EXPECT_EQ(rig.window.focusWidget(), &rig.amount());
  type("usd");
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(1)).center());
  EXPECT_EQ(state(), "EURUSD   EURUSD4");
}

}  // namespace
}  // namespace tutti::testing
