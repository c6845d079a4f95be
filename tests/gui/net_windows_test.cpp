// Net positions, and accounts x symbols: selecting, handing over, totals, columns that come.

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QScrollBar>

#include "gui/kit/elided_label.h"
#include "gui/list/list_text.h"
#include "gui/list/total_row.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;
using Blocks = std::vector<std::pair<std::string, std::vector<std::int32_t>>>;

template <auto of_panes>
struct NetTest : ::testing::Test, PaneRig<of_panes> {
  explicit NetTest(QSize size) : PaneRig<of_panes>(DealerConfig::sample(1), size) {}
  // Lots below 0 are sold.
  void hold(std::int32_t account, const char* symbol, double lots, double profit) {
    const OpenPosition position{.ticket = ++ticket,
                                .account = account,
                                .side = lots > 0.0 ? operation::buy : operation::sell,
                                .floating_pl = profit,
                                .symbol = symbol,
                                .amount = std::abs(lots)};
    sink.NewOpenPosition(position);
  }
  void hold_some() {
    hold(1, "EURUSD", 1.0, 10.0);
    hold(2, "EURUSD", 0.5, -4.5);
    hold(2, "EURUSD", -2.0, 3.0);
    hold(2, "GBPUSD", -1.5, 7.0);
    hold(3, "GBPUSD", 3.0, -1.25);
    this->run(0ms);
  }
  // What a form hands over.
  void take(std::vector<PositionBlock> blocks) {
    for (PositionBlock& block : blocks)
      handed_over.emplace_back(std::move(block.symbol), std::move(block.accounts));
  }
  Blocks handed() { return std::exchange(handed_over, {}); }

  CLAPICLASS& sink = *this->main().sessions().Item(1);
  std::int64_t ticket = 0;
  Blocks handed_over;
};

struct NetTradeTest : NetTest<&Panes::net_trade> {
  NetTradeTest() : NetTest({1100, 280}) {
    form.close = [this](auto blocks) { take(std::move(blocks)); };
  }
  frmNetTrade& form = main().net_trade();
  RowListView& accounts = window.accounts();
  TotalRow& total = part<TotalRow>(window, "total");
  QWidget& close = part(window, "close_accounts");
};

TEST_F(NetTradeTest, ASymbolShowsItsAccountsAndHandsThemOver) {
  EXPECT_FALSE(close.isEnabled());
  hold_some();
  EXPECT_EQ(shown(list.rows(), frmNetTrade::symbol), (Texts{"EURUSD", "GBPUSD"}));

  auto& missing = part<ElidedLabel>(window, "not_connected");
  EXPECT_FALSE(missing.isVisible());
  terminal.server.drop(500'100);
  run(1s);
  EXPECT_TRUE(missing.isVisible());
  EXPECT_EQ(missing.text(), QStringLiteral("1 account is not connected; what it holds is not in this view"));

  click_cell(list, 0, frmNetTrade::net);
  EXPECT_EQ(shown(accounts.rows(), frmNetTrade::account), (Texts{"1", "2"}));
  double_click_cell(accounts, 1, frmNetTrade::of_net);
  EXPECT_EQ(handed(), (Blocks{{"EURUSD", {2}}}));

  // A selection stays while values and rows change around it.
  hold(4, "EURUSD", 1.0, 0.0);
  screen.acted();
  QTest::mouseClick(&close, Qt::LeftButton);
  EXPECT_EQ(handed(), (Blocks{{"EURUSD", {2}}}));

  click_cell(list, 1, frmNetTrade::symbol);
  EXPECT_EQ(part<ElidedLabel>(window, "accounts_head").text(), QStringLiteral("GBPUSD: 2 accounts"));
  QTest::mouseClick(&close, Qt::LeftButton);
  EXPECT_EQ(handed(), (Blocks{{"GBPUSD", {}}}));
  QTest::keyClick(&accounts, Qt::Key_A, Qt::ControlModifier);
  QTest::mouseClick(&close, Qt::LeftButton);
  EXPECT_EQ(handed(), (Blocks{{"GBPUSD", {2, 3}}}));
}

struct MatrixTest : NetTest<&Panes::net_matrix> {
  MatrixTest() : NetTest({700, 280}) {
    form.close = [this](auto blocks) { take(std::move(blocks)); };
    screen.acted();
    hold_some();
  }
  QPoint at(int place, int column) { return cell_point(list, place, column); }
  void drag(QPoint from, QPoint to, Qt::KeyboardModifiers keys = {}) {
    QTest::mousePress(list.viewport(), Qt::LeftButton, keys, from);
    QTest::mouseMove(list.viewport(), (from + to) / 2);
    QTest::mouseMove(list.viewport(), to);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, keys, to);
    screen.acted();
  }
  // A click on what is selected already counts when the button goes up; the screen follows with its next
  // frame.
  void click(int place, int column, Qt::KeyboardModifiers keys = {}) {
    click_cell(list, place, column, keys);
    screen.acted();
  }
  std::string line() { return part<ElidedLabel>(window, "selection_line").text().toStdString(); }

  NetMatrix& form = main().net_matrix();
  TotalRow& total = part<TotalRow>(window, "total");
  QWidget& close = part(window, "close_block");
  QAbstractItemModelTester tester{&list.rows(), QAbstractItemModelTester::FailureReportingMode::Fatal};
};

constexpr int eur = NetMatrix::first_symbol;
constexpr int gbp = eur + 1;

TEST_F(MatrixTest, ADraggedBlockIsHandedOverPerSymbol) {
  EXPECT_FALSE(close.isEnabled());
  // Account 1 holds no GBPUSD.
  drag(at(0, eur), at(1, gbp));
  EXPECT_EQ(line(), "2 accounts, 2 symbols, -2 lots net");
  QTest::mouseClick(&close, Qt::LeftButton);
  EXPECT_EQ(handed(), (Blocks{{"EURUSD", {1, 2}}, {"GBPUSD", {2}}}));

  click(0, eur);
  EXPECT_EQ(line(), "1 account, 1 symbol, 1 lots net");
  click(2, gbp, Qt::ControlModifier);
  QTest::keyClick(&list, Qt::Key_Return);
  EXPECT_EQ(handed(), (Blocks{{"EURUSD", {1}}, {"GBPUSD", {3}}}));
  copy_selected(list);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("1\t\n\t3\n"));

  click(0, gbp);
  EXPECT_EQ(line(), "No positions selected");
  EXPECT_FALSE(close.isEnabled());
  EXPECT_FALSE(window.can_close());
  window.close_selected();
  EXPECT_EQ(handed(), Blocks{});

  // The number of an account stands for all that it holds.
  QTest::mouseClick(list.verticalHeader()->viewport(), Qt::LeftButton, {},
                    {20, list.rowViewportPosition(1) + 8});
  screen.acted();
  EXPECT_EQ(line(), "1 account, 2 symbols, -3 lots net");
  double_click_cell(list, 1, NetMatrix::total);
  EXPECT_EQ(handed(), (Blocks{{"EURUSD", {2}}, {"GBPUSD", {2}}}));
}

TEST_F(MatrixTest, ANewSymbolComesWhileABlockIsSelected) {
  QTest::mouseClick(&part<QAbstractButton>(list, "frozen_header"), Qt::LeftButton);
  QTest::mouseClick(&part<QAbstractButton>(list, "frozen_header"), Qt::LeftButton);
  EXPECT_EQ(shown(list.rows(), NetMatrix::account), (Texts{"3", "2", "1"}));
  drag(at(0, gbp), at(1, gbp));
  const std::string before = line();
  list.horizontalHeader()->resizeSection(eur, 123);
  QTest::mousePress(list.viewport(), Qt::LeftButton, Qt::ControlModifier, at(2, eur));
  hold(2, "USDJPY", 0.25, 1.0);
  hold(9, "USDJPY", 0.75, -1.0);
  screen.acted();
  QTest::mouseMove(list.viewport(), at(1, eur));
  QTest::mouseRelease(list.viewport(), Qt::LeftButton, Qt::ControlModifier, at(1, eur));
  screen.acted();
  // The same cells as before the columns changed, whatever stands under the mouse now.
  EXPECT_EQ(line(), "3 accounts, 2 symbols, 2.5 lots net");
  window.close_selected();
  EXPECT_EQ(handed(), (Blocks{{"EURUSD", {1}}, {"GBPUSD", {2, 3}}}));
  EXPECT_EQ(shown(list.rows(), NetMatrix::account), (Texts{"9", "3", "2", "1"}));
  EXPECT_EQ(list.columnWidth(eur), 123);
  EXPECT_TRUE(list.isColumnHidden(NetMatrix::account));
  EXPECT_GT(list.columnWidth(4), 40);
  EXPECT_EQ(total.row()->text(4), "1");
  QTest::keyClick(&list, Qt::Key_A, Qt::ControlModifier);
  screen.acted();
  EXPECT_EQ(line(), "4 accounts, 3 symbols, 2 lots net");

  // What stands selected is the same cells, of the accounts that are left.
  drag(at(0, gbp), at(2, gbp));
  EXPECT_EQ(line(), before);
  sink.DeleteOpenPosition({.ticket = 5, .account = 3, .symbol = {}});
  hold(1, "AUDUSD", 1.0, 0.0);
  screen.acted();
  EXPECT_EQ(line(), "1 account, 1 symbol, -1.5 lots net");
  window.close_selected();
  EXPECT_EQ(handed(), (Blocks{{"GBPUSD", {2}}}));
  hold(10, "GBPUSD", 1.0, 0.0);
  screen.acted();
  EXPECT_FALSE(list.rows().in_order());
  hold(10, "CADCHF", 1.0, 0.0);
  screen.acted();
  EXPECT_TRUE(list.rows().in_order());
}

TEST_F(MatrixTest, ProfitInsteadOfLots) {
  click(1, gbp);
  QTest::keyClick(&part(window, "shown"), Qt::Key_Down);
  EXPECT_EQ(total.row()->text(NetMatrix::total), "14.25");
  EXPECT_EQ(line(), "1 account, 1 symbol, P/L 7.00");
  EXPECT_EQ(list_csv(list),
            "Account,Total,EURUSD,GBPUSD\n1,10.00,10.00,\n2,5.50,-1.50,7.00\n3,-1.25,,-1.25\n");
  // Thousands are told apart on the screen alone.
  hold(3, "GBPUSD", 1.0, -1234567.0);
  run(0ms);
  const Row& row = *list.rows().row_at(2);
  const TextPiece painted = list.delegate().painted(row, gbp);
  EXPECT_EQ(painted.text + " " + row.text(gbp), "-1,234,568.25 -1234568.25");
  EXPECT_EQ(painted.colour, QColor{theme::loss});
  EXPECT_EQ(list.delegate().painted(row, NetMatrix::account).text, "3");
}

}  // namespace
}  // namespace tutti::testing
