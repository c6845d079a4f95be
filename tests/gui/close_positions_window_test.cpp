// The close positions window: marks by mouse and keyboard, closing, and what remains to be seen afterwards.

#include <QScrollBar>

#include "gui/kit/desktop_prompt.h"
#include "gui/kit/elided_label.h"
#include "gui/list/list_text.h"
#include "tests/gui/gui_rig.h"
#include "tests/support/scenario_desk.h"

namespace tutti::testing {
namespace {

constexpr int status = frmClosePos::status;
constexpr int action = frmClosePos::action;

DealerConfig with_faults(std::vector<FaultConfig> faults) {
  DealerConfig config = still_market(4);
  for (AccountConfig& account : config.accounts)
    account.balance = 50'000.0;
  config.order_latency = 20ms;
  config.ticks.insert(config.ticks.begin(), {20s, "EURUSD", 1.09, 1.0902});
  config.faults = std::move(faults);
  return config;
}

// Four accounts with two positions of half a lot each: rows 0, 3, 6 and 9 are accounts.
struct ClosingRig : PaneRig<&Panes::close_positions> {
  explicit ClosingRig(std::vector<FaultConfig> faults = {})
      : PaneRig(with_faults(std::move(faults)), {1000, 500}) {
    form.Displayed(true);
    for (int i = 0; i < 2; ++i) {
      buy("2");
      run(1s);
    }
    // As the operator types it.
    window.focus_symbol();
    keys("EURU");
    key(Qt::Key_Return);
    run(50ms);
    form.RefreshPrice(1.0852, 1.085);
  }

  // What moves rows is long past at the end, so that they can be clicked on.
  void run(std::chrono::milliseconds time) {
    GuiRig::run(time);
    GuiRig::run(dead_time);
  }
  // Places of the rows whose box is checked, as it is painted.
  std::vector<int> marked() {
    std::vector<int> out;
    for (int place = 0; place < list.rows().rowCount(); ++place)
      if (list.delegate().box(*list.rows().row_at(place)).value_or(false)) out.push_back(place);
    return out;
  }
  std::vector<int> selected() {
    std::vector<int> out;
    for (const Row* row : form.MSH.selected())
      out.push_back(list.rows().place_of(row));
    std::sort(out.begin(), out.end());
    return out;
  }
  std::string painted(int place, int column) {
    return list.delegate().shown_text(*list.rows().row_at(place), static_cast<std::size_t>(column));
  }
  // As before its first price.
  void forget_price(int place) { list.rows().row_at(place)->set_text(frmClosePos::action, "Close"); }
  std::int64_t ticket(int place) { return list.rows().row_at(place)->key().number(); }
  std::int32_t account(int place) { return list.rows().row_at(place)->key().account(); }
  void remove(int place) { form.Remove(ticket(place), account(place)); }
  std::string counted() { return find<ElidedLabel>("marked_count").text().toStdString(); }
  std::size_t positions() { return main().trade().lvwOpenPos.size(); }

  frmClosePos& form = main().close_positions();
};

struct ClosePositionsWindow : ::testing::Test, ClosingRig {};

using Places = std::vector<int>;
constexpr const char* sure_of_one =
    "Are you sure you want to close selected postion at current market price?";

TEST_F(ClosePositionsWindow, MarksByMouseAndKeyboard) {
  EXPECT_EQ(counted(), "0 of 8 marked");
  // Accounts stand by their number, whichever logged in first, and are found.
  const std::int32_t first = account(1);
  for (int group = 1; group < 4; ++group)
    EXPECT_EQ(account(3 * group + 1), first + group);
  auto& search = find<QLineEdit>("find_account");
  search.setFocus();
  QTest::keyClicks(&search, QString::number(first + 2));
  EXPECT_EQ(selected(), Places{6});
  QTest::keyClick(&search, Qt::Key_Backspace);
  QTest::keyClick(&search, Qt::Key_Return);
  EXPECT_EQ(selected(), Places{3});
  QTest::keyClick(&search, Qt::Key_Escape);
  EXPECT_EQ(QApplication::focusWidget(), &list);
  EXPECT_EQ(marked(), Places{});
  click_cell(list, 1, status);
  EXPECT_EQ(marked(), Places{1});
  EXPECT_EQ(counted(), "1 of 8 marked, 0.5 lots");
  click_cell(list, 3, frmClosePos::account);
  EXPECT_EQ(marked(), (Places{1, 4, 5}));
  click_cell(list, 5, action);
  EXPECT_EQ(marked(), (Places{1, 4}));

  // A double-click is two clicks.
  click_cell(list, 5, status);
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, cell_point(list, 5, status));
  QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, cell_point(list, 5, status));
  EXPECT_EQ(marked(), (Places{1, 4}));

  // Keys held down, and the mouse drawn over rows, only select.
  click_cell(list, 7, status, Qt::ControlModifier);
  EXPECT_EQ(selected(), (Places{5, 7}));
  click_cell(list, 8, status, Qt::ShiftModifier);
  forget_price(8);
  click_cell(list, 8, action, Qt::ControlModifier);
  click_cell(list, 8, action, Qt::ControlModifier);
  EXPECT_EQ(selected(), (Places{5, 7, 8}));
  QTest::mousePress(list.viewport(), Qt::LeftButton, {}, cell_point(list, 1, status));
  QTest::mouseMove(list.viewport(), cell_point(list, 2, status));
  QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, cell_point(list, 2, status));
  EXPECT_EQ(marked(), (Places{1, 4}));

  click_cell(list, 4, status);
  click_cell(list, 5, status, Qt::ControlModifier);
  click_cell(list, 6, status, Qt::ControlModifier);
  QTest::keyClick(&list, Qt::Key_Space);
  EXPECT_EQ(marked(), (Places{1, 4, 5, 7, 8}));
  QTest::simulateEvent(&list, true, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
  EXPECT_EQ(marked(), (Places{1, 4, 5, 7, 8}));
  QTest::keyClick(&list, Qt::Key_Space);
  EXPECT_EQ(marked(), Places{1});
  EXPECT_EQ(asked(), Texts{});
}

TEST_F(ClosePositionsWindow, NothingIsDoneToARowThatWasNotMeant) {
  buy("2");
  run(1s);
  // While the button is down its row is freed, and one of the same account is made in its place.
  const PositionBook::Record& other = *main().positions().find(ticket(3), account(3));
  remove(3);
  run(0ms);
  const QPoint pressed = cell_point(list, 1, status);
  QTest::mousePress(list.viewport(), Qt::LeftButton, {}, pressed);
  remove(1);
  form.Add(other);
  screen.acted();
  EXPECT_EQ(ticket(1), other.ticket);
  QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, pressed);
  EXPECT_EQ(marked(), Places{});
  // Nor by a click right after it has come under the pointer, while others have stood there for long.
  const std::int64_t below = ticket(3);
  click_cell(list, 1, status);
  EXPECT_EQ(marked(), Places{});
  remove(2);
  screen.acted();
  ASSERT_EQ(ticket(2), below);
  terminal.clock.set_by(1h);
  click_cell(list, 2, status);
  EXPECT_EQ(marked(), Places{});
  run(0ms);
  click_cell(list, 2, status);
  EXPECT_EQ(marked(), (Places{3, 4, 5}));
  click_cell(list, 2, status);

  // Rows of another choice are not selected, wherever they stand.
  list.selectAll();
  form.CloseSymbols.choose("EURUSD");
  screen.acted();
  EXPECT_EQ(selected(), Places{});
  EXPECT_TRUE(list.selectionModel()->selection().isEmpty());
  QTest::keyClick(&list, Qt::Key_Space);
  EXPECT_EQ(form.marked_count(), 0U);

  // The list is at its end: a row goes, and those above it come down under the pointer.
  show(window, {700, 200});
  run(0ms);
  list.scrollToBottom();
  run(0ms);
  const auto value = [this] { return list.verticalScrollBar()->value(); };
  const int end = value();
  const QPoint last = cell_point(list, list.rows().rowCount() - 2, status);
  remove(list.rows().rowCount() - 1);
  screen.acted();
  QCoreApplication::processEvents();
  ASSERT_LT(value(), end);
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, last);
  EXPECT_EQ(form.marked_count(), 0U);
  // The selected row goes, far above: the list stays where it is.
  list.setCurrentIndex(list.model()->index(1, 0));
  list.verticalScrollBar()->setValue(value() / 2 + 60);
  run(0ms);
  const int before = value();
  remove(1);
  screen.acted();
  EXPECT_EQ(value(), before);
  show(window, {1000, 500});

  // Positions stay below their account whatever header is clicked.
  list.columns().restore_columns(RowListView{form.MSH, screen, {}}.columns().save_columns());
  const std::int64_t head = ticket(0);
  for (int column = 0; column < 4; ++column)
    click_header(list, column);
  EXPECT_EQ(list.rows().sort_column(), -1);
  EXPECT_EQ(ticket(0), head);
}

TEST_F(ClosePositionsWindow, AClickOnCloseAsksAndClosesThatOne) {
  DesktopPrompt boxes{screen};
  terminal.prompt.screen = &boxes;
  const RowKey position = list.rows().row_at(4)->key();
  forget_price(4);
  when_modal([](QWidget& box) { QTest::keyClick(&box, Qt::Key_N); });
  click_cell(list, 4, action);
  EXPECT_EQ(asked(), Texts{sure_of_one});
  run(1s);
  EXPECT_EQ(positions(), 8U);
  EXPECT_EQ(marked(), Places{});
  // The box has left no button down.
  QTest::mouseMove(list.viewport(), cell_point(list, 7, action));
  EXPECT_EQ(selected(), Places{4});

  click_cell(list, 1, status);
  forget_price(4);
  when_modal([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Y); });
  click_cell(list, 4, status, Qt::ControlModifier);
  QTest::keyClick(&list, Qt::Key_Return);
  run(1s);
  EXPECT_EQ(asked(), Texts{sure_of_one});
  EXPECT_EQ(positions(), 7U);
  EXPECT_EQ(form.MSH.find(position), nullptr);
  EXPECT_EQ(line("answers_line"), "1 accepted");
}

TEST(ClosePositionsAnswers, WhyAPositionIsStillThereStaysInSight) {
  std::vector<FaultConfig> faults{
      fault(FaultKind::reject, {first + 1}, FaultPoint::close, format_as(result::trading_closed)),
      fault(FaultKind::refuse, {first + 2}, FaultPoint::close, format_as(request::no_privilege))};
  for (FaultConfig& each : faults)
    each.times = 2;
  ClosingRig rig{faults};
  QTest::mouseClick(&rig.find("chkAllClients"), Qt::LeftButton, {}, {8, 8});
  rig.find("LblCheck").setFocus();
  rig.key(Qt::Key_Return);
  EXPECT_EQ(rig.line("answers_line"), "2 refused, 6 waiting");
  EXPECT_TRUE(rig.find("answers_progress").isVisible());
  const auto position_of = [&rig](std::int32_t account) {
    return rig.list.rows().place_of(rig.form.get_index(account)) + 1;
  };
  const int at_once = position_of(first + 2);
  EXPECT_EQ(rig.painted(at_once, action), "No Privilege");
  const int waits = at_once == 1 ? 4 : 1;
  EXPECT_EQ(rig.painted(waits, action), "Waiting.....");

  rig.run(1s);
  EXPECT_EQ(rig.line("answers_line"), "4 accepted, 4 refused");
  EXPECT_FALSE(rig.find("answers_progress").isVisible());
  rig.run(20s);
  const int late = position_of(first + 1);
  EXPECT_EQ(rig.painted(late, action), "Close At 1.0902  -  Trading is closed");
  EXPECT_NE(list_csv(rig.list).find(",Close At 1.0902  -  Trading is closed\n"), std::string::npos);
  EXPECT_EQ(rig.painted(5 - late, action), "Close At 1.0902  -  No Privilege");
  EXPECT_EQ(rig.list.delegate().tip(*rig.list.rows().row_at(late), 3), "Trading is closed");

  // They are marked still.
  rig.window.close_marked();
  EXPECT_EQ(rig.line("answers_line"), "4 waiting");
  rig.run(1s);
  EXPECT_EQ(rig.positions(), 0U);
  EXPECT_EQ(rig.line("answers_line"), "4 accepted");
}

TEST_F(ClosePositionsWindow, FromSymbolToSymbol) {
  window.focus_symbol();
  EXPECT_EQ(tab(6), "CloseSymbols chkAllClients marked_only find_account MSH LblCheck ");

  auto& next = find("next_block");
  EXPECT_FALSE(next.isVisible());
  form.take({{"GBPUSD", {first}}, {"EURUSD", {first + 1}}});
  screen.acted();
  EXPECT_EQ(line("empty_hint"), "No connected account holds positions of GBPUSD");
  EXPECT_EQ(caption("next_block"), "Next symbol: EURUSD");
  QTest::mouseClick(&next, Qt::LeftButton);
  EXPECT_FALSE(next.isVisible());
  EXPECT_EQ(form.CloseSymbols.text(), "EURUSD");
  EXPECT_FALSE(find("empty_hint").isVisible());
  EXPECT_EQ(counted(), "2 of 8 marked, 1 lots");
  const int head = list.rows().place_of(form.get_index(first + 1));
  EXPECT_EQ(marked(), (Places{head + 1, head + 2}));

  // The first of them is in sight, however long the list is.
  show(window, {700, 200});
  const int last = list.rows().rowCount() - 3;
  const auto account = static_cast<std::int32_t>(list.rows().row_at(last)->key().number());
  form.take({{"EURUSD", {account}}});
  screen.acted();
  const QRect marked = list.visualRect(list.model()->index(last + 1, 0));
  EXPECT_TRUE(list.viewport()->rect().contains(marked));
}

TEST_F(ClosePositionsWindow, MarkedOnlyHidesWhatTakesNoPart) {
  auto& only = find("marked_only");
  // Which of all rows, account by account, are shown.
  const auto seen = [this] {
    Places out;
    int at = 0;
    const RowList& grid = form.MSH;
    for (std::int32_t number = first; number < first + 4; ++number) {
      const Row* head = form.get_index(number);
      for (std::size_t row = head == nullptr ? grid.size() : grid.index_of(*head);
           row < grid.size() && (&grid.row(row) == head || frmClosePos::is_position(grid.row(row)));
           ++row, ++at)
        if (list.rows().place_of(&grid.row(row)) >= 0) out.push_back(at);
    }
    return out;
  };
  only.setFocus();
  QTest::keyClick(&only, Qt::Key_Space);
  EXPECT_EQ(seen(), Places{});
  EXPECT_TRUE(find("empty_hint").isVisible());
  EXPECT_EQ(line("empty_hint"), "Nothing is marked");

  QTest::keyClick(&only, Qt::Key_Space);
  run(50ms);
  for (const int place : {2, 7, 8})
    click_cell(list, place, status);
  QTest::keyClick(&only, Qt::Key_Space);
  run(50ms);
  EXPECT_EQ(seen(), (Places{0, 2, 6, 7, 8}));
  // Prices go on in what is left, and the second of two quick clicks meets nothing that was hidden or moved.
  run(20s);
  EXPECT_EQ(painted(1, action), "Close At 1.0902");
  for (int i = 0; i < 2; ++i) {
    click_cell(list, 3, status);
    EXPECT_EQ(seen(), (Places{0, 2, 6, 8}));
  }
  // One goes by itself, and with it its account.
  main().sessions().by_account(account(1))->close_position(ticket(1), 0.5);
  run(500ms);
  EXPECT_EQ(seen(), (Places{5, 7}));
  EXPECT_EQ(marked(), Places{1});
  EXPECT_EQ(counted(), "1 of 7 marked, 0.5 lots");

  // A hand-over brings marks of its own.
  form.take({{"EURUSD", {first + 1}}});
  screen.acted();
  EXPECT_EQ(seen().size(), 3U);
  EXPECT_EQ(marked(), (Places{1, 2}));
  // An account's row means those of its positions that are on show.
  for (const int place : {1, 0}) {
    run(50ms);
    click_cell(list, place, status);
  }
  EXPECT_EQ(counted(), "0 of 7 marked");
  QTest::mouseClick(&only, Qt::LeftButton, {}, {8, 8});
  EXPECT_EQ(list.rows().rowCount(), 11);
}

}  // namespace
}  // namespace tutti::testing
