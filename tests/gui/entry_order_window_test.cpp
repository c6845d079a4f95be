#include <cmath>

#include "core/numbers.h"
#include "gui/windows/price_sketch_view.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;

struct EntryWindowRig : PaneRig<&Panes::entry_order> {
  explicit EntryWindowRig(int accounts = 12) : PaneRig(DealerConfig::sample(accounts), {420, 800}) {
    form.Displayed(true);
    run(50ms);
  }

  void type(const char* box, const std::string& text) {
    find<QLineEdit>(box).setFocus();
    find<QLineEdit>(box).selectAll();
    keys(text);
  }
  std::string boxes() {
    std::string out;
    for (const char* name : {"txtlimitorderammount", "txtatprice", "txtsl", "txttp"})
      out += find<QLineEdit>(name).text().toStdString() + "/";
    return out;
  }
  // What can be used, of everything that edit modes disable.
  std::string available() {
    std::string out;
    for (const char* name : {"cblimitordersymbols", "cblimiordertype", "txtlimitorderammount",
                             "CBlimitorderdis", "cmdlimiorderdis", "txtatprice", "txtsl"})
      out += find(name).isEnabled() ? 'x' : '-';
    return out;
  }
  double bid() { return main().symbols().entry(main().symbols().find("EURUSD")).bid; }
  // A price that many points from the bid.
  std::string price(int points) { return fixed_text(bid() + points * 1e-5, 5); }
  RowList& orders() { return main().pending().lvwPending; }
  // A Buy Limit of 0.1 for everybody, 500 points below the market; all but Submit.
  void enter() {
    click("chkAllClients");
    QTest::keyClick(&find("CBlimitorderdis"), Qt::Key_Down);
    type("txtlimitorderammount", fixed_text(0.1 * static_cast<double>(form.lvwConClients.size()), 1));
    type("txtatprice", price(-500));
    window.distribute();
  }

  frmlimitorder& form = main().entry_order();
  FrmPendingWindow& pending = desktop.panes().pending();
};

TEST(EntryOrderWindow, AWholeOrderByTheKeyboard) {
  EntryWindowRig rig;
  rig.find("cblimitordersymbols").setFocus();
  std::string way;
  for (const std::string& typed :
       Texts{"EURU", "Sell", "1.2.x", "Dist", "", rig.price(500), rig.price(800), rig.price(100)}) {
    rig.keys(typed);
    way += rig.tab(1);
  }
  rig.key(Qt::Key_Home);
  QTest::keyClick(&rig.list, Qt::Key_A, Qt::ControlModifier);
  rig.key(Qt::Key_Space);
  // Enter in a price sends nothing, that in the amount distributes.
  rig.find("txtatprice").setFocus();
  rig.key(Qt::Key_Return);
  EXPECT_FALSE(rig.form.submitted());
  rig.window.focus_amount();
  rig.key(Qt::Key_Return);
  EXPECT_EQ(rig.line("shares_line"), "Shares 1.2 of 1.2 lots");
  rig.list.setFocus();
  way += rig.tab(2);
  EXPECT_EQ(way,
            "cblimitordersymbols cblimiordertype txtlimitorderammount CBlimitorderdis cmdlimiorderdis "
            "txtatprice txtsl txttp lvwConClients cmdsubmitlimiorder ");
  QTest::keyClick(rig.window.focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
  rig.key(Qt::Key_Space);
  EXPECT_EQ(rig.line("answers_line"), "12 waiting");
  EXPECT_EQ(rig.boxes(), "////");
  rig.run(2s);
  EXPECT_EQ(rig.line("answers_line"), "12 accepted");
  for (const Row& row : rig.orders()) {
    EXPECT_GT(row.cell(frmPending::stop_loss).number(), row.cell(frmPending::price).number());
    EXPECT_EQ(row.text(frmPending::amount), "0.1");
  }
}

TEST(EntryOrderWindow, BoundsAndWhatStopsBringFollowTheLastDigit) {
  EntryWindowRig rig{2};
  const std::string full = rig.price(-500);
  rig.type("txtatprice", full.substr(0, full.size() - 1) + "1");
  const std::string before = rig.line("lblslbound");
  rig.key(Qt::Key_Backspace);
  rig.keys("2");
  EXPECT_EQ(rig.line("lblpricecondition") + rig.line("lblslcondition") + rig.line("lbltpcondition"), "<<>");
  EXPECT_NEAR(std::stod(rig.line("lblslbound")) - std::stod(before), 1e-5, 1e-9);
  EXPECT_EQ(rig.line("lblcondition").size(), full.size());

  // What the stops bring needs the amount.
  rig.type("txtlimitorderammount", "1");
  rig.type("txtsl", rig.price(-1000));
  rig.type("txttp", rig.price(500));
  EXPECT_LT(std::stod(rig.line("lblslchanged")), 0.0);
  EXPECT_GT(std::stod(rig.line("lbltpchanged")), 0.0);
  EXPECT_EQ(rig.find<PriceSketchView>("price_sketch").marks().size(), 8U);
}

TEST(EntryOrderWindow, ABrokenBoundIsMarkedAndARefusedPriceEntered) {
  EntryWindowRig rig{2};
  // Which of at-price, stop loss and take profit is marked.
  const auto marked = [&] {
    std::string out;
    for (const auto& [box, bound] :
         {std::pair{"txtatprice", "lblcondition"}, {"txtsl", "lblslbound"}, {"txttp", "lbltpbound"}}) {
      const bool warned = rig.find(bound).property("warn").toBool();
      EXPECT_EQ(rig.find(box).property("breaks").toBool(), warned);
      out += warned ? 'x' : '-';
    }
    return out;
  };
  rig.enter();
  EXPECT_EQ(marked(), "---");
  rig.type("txtatprice", rig.price(500));
  EXPECT_EQ(marked(), "x--");
  rig.type("txtatprice", rig.price(-500));
  rig.type("txtsl", rig.price(-499));
  rig.type("txttp", rig.price(-501));
  EXPECT_EQ(marked(), "-xx");
  const auto entered = [&] {
    rig.find("cmdsubmitlimiorder").setFocus();
    rig.window.submit();
    return rig.window.focusWidget()->objectName().toStdString();
  };
  EXPECT_EQ(entered(), "txtsl");
  EXPECT_EQ(rig.asked(), Texts{"Invalid Price"});
  rig.keys(rig.price(-900));
  EXPECT_EQ(rig.boxes(), "0.2/" + rig.price(-500) + "/" + rig.price(-900) + "/" + rig.price(-501) + "/");
  EXPECT_EQ(marked(), "--x");
  EXPECT_EQ(entered(), "txttp");
  rig.keys(rig.price(-100));
  EXPECT_EQ(marked(), "---");
  EXPECT_EQ(entered(), "cmdsubmitlimiorder");
  EXPECT_EQ(rig.asked(), Texts{});
}

TEST(EntryOrderWindow, SubmitSendsOnce) {
  EntryWindowRig rig{3};
  rig.enter();
  auto& submit = rig.find("cmdsubmitlimiorder");
  QTest::mouseClick(&submit, Qt::LeftButton);
  QTest::mouseDClick(&submit, Qt::LeftButton);
  QTest::mouseRelease(&submit, Qt::LeftButton);
  EXPECT_TRUE(rig.asked().empty());
  EXPECT_EQ(rig.line("answers_line"), "3 waiting");
  rig.window.submit();
  rig.run(2s);
  EXPECT_EQ(rig.orders().size(), 3U);
}

TEST(EntryOrderWindow, EditsAnOrderOfThePendingList) {
  EntryWindowRig rig{2};
  rig.enter();
  rig.click("cmdsubmitlimiorder");
  rig.run(2s);
  show(rig.pending, {900, 200});
  EXPECT_FALSE(rig.find("mode").isVisible());
  EXPECT_EQ(rig.available(), "xxxxxxx");
  double_click_cell(rig.pending.list(), 1, 1);
  const Row& order = *rig.pending.list().rows().row_at(1);
  EXPECT_EQ(rig.available(), "-----xx");
  EXPECT_TRUE(rig.find("mode").isVisible());
  EXPECT_EQ(rig.line("mode"), "Editing order #" + order.text(frmPending::order_number) + " of account " +
                                  order.text(frmPending::account) +
                                  ". Submit sends price, SL and TP; the amount stays.");
  EXPECT_EQ(rig.list.rows().row_at(rig.list.currentIndex().row())->text(0), order.text(frmPending::account));
  // Its share is not for editing.
  double_click_cell(rig.list, 1, 1);
  EXPECT_FALSE(rig.find("txtEditPrice").isVisible());

  // Cancel leaves the mode, and the order as it was.
  rig.type("txtatprice", "1.05");
  rig.click("cmdcancel");
  EXPECT_FALSE(rig.find("mode").isVisible());
  EXPECT_EQ(rig.available(), "xxxxxxx");
  EXPECT_EQ(rig.boxes(), "////");
  rig.run(1s);
  EXPECT_NE(rig.orders().row(1).text(frmPending::price), "1.05000");
}

TEST(EntryOrderWindow, WhatStandsInTheEditorIsSent) {
  EntryWindowRig rig{3};
  rig.enter();
  click_cell(rig.list, 0, 0);
  rig.key(Qt::Key_F3);
  rig.keys("0.3");
  rig.window.submit();
  rig.run(2s);
  ASSERT_EQ(rig.orders().size(), 3U);
  const std::string edited = rig.list.rows().row_at(0)->text(0);
  for (const Row& row : rig.orders())
    EXPECT_EQ(row.text(frmPending::amount), row.text(frmPending::account) == edited ? "0.3" : "0.1");
}

TEST(EntryOrderWindow, WideAndNarrowListsHaveTheirWidths) {
  EntryWindowRig rig{1};
  for (const auto& [size, widths] : {std::pair{QSize{420, 800}, "20,12,67"},
                                     {QSize{1000, 420}, "14,12,73"},
                                     {QSize{720, 600}, "20,12,67"}}) {
    show(rig.window, size);
    rig.screen.acted();
    EXPECT_EQ(rig.form.ColumnWidthsPer(), widths);
  }
}

}  // namespace
}  // namespace tutti::testing
