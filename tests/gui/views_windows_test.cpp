#include <QAbstractItemModelTester>
#include <QDir>
#include <QListWidget>
#include <QScrollBar>
#include <QTextBrowser>
#include <QTextTable>
#include <algorithm>
#include <filesystem>
#include <random>

#include "core/version.h"
#include "gui/kit/desktop_file_dialog.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/theme.h"
#include "gui/list/csv_export.h"
#include "gui/list/row_order.h"
#include "gui/shell/about_window.h"
#include "gui/shell/help_window.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

struct TradeTest : ::testing::Test, PaneRig<&Panes::trade> {
  TradeTest() : PaneRig(DealerConfig::sample(4)) {}

  frmTrade& form = main().trade();
  QWidget& close = part(window, "lbbClose");
};

TEST_F(TradeTest, TickedPositionsAreClosed) {
  buy("4");
  run(2s);
  const Texts tickets = shown(list.rows(), frmTrade::ticket);
  ASSERT_EQ(tickets.size(), 4u);
  // Money below 0 looks alike wherever it stands; that of accounts is read back, and not grouped.
  Row& first = *list.rows().row_at(0);
  EXPECT_EQ(list.delegate().side(first, frmTrade::type), Side::buy);
  const auto painted_loss = [](const RowListView& in, const Row& row, std::size_t column) {
    const TextPiece piece = in.delegate().painted(row, column);
    return piece.colour == QColor{theme::loss} ? piece.text : "not as a loss";
  };
  for (const std::size_t column : {frmTrade::commission, frmTrade::interest, frmTrade::profit}) {
    first.set_fixed(column, -12345.5, 2);
    EXPECT_EQ(painted_loss(list, first, column), "-12,345.50");
  }
  Row& account = main().accounts().lvwClients.row(0);
  for (const std::size_t column : {frmMain::balance, frmMain::floating, frmMain::free_margin}) {
    account.set_number(column, -12345.5, NumberFormat::summary);
    EXPECT_EQ(painted_loss(desktop.panes().accounts().list(), account, column), "-12345.5");
  }
  click_tick(list, 1);
  click_tick(list, 2);
  close.setFocus();
  QTest::keyClick(&close, Qt::Key_Return);
  run(2s);
  EXPECT_EQ(shown(list.rows(), frmTrade::ticket), (Texts{tickets[0], tickets[3]}));

  // The row that was clicked on, not those that are ticked.
  click_tick(list, 0);
  click_cell(list, 1, frmTrade::symbol);
  list.findChild<QAction*>(QStringLiteral("close_this"))->trigger();
  run(2s);
  EXPECT_EQ(shown(list.rows(), frmTrade::ticket), Texts{tickets[0]});
  for (const std::size_t ticked : {1u, 0u}) {
    QTest::mouseClick(&part(window, "chkAll"), Qt::LeftButton, {}, {8, 8});
    EXPECT_EQ(form.lvwOpenPos.checked_count(), ticked);
  }
}

TEST_F(TradeTest, TheSummaryLineKeepsItsBlanksAndFont) {
  const std::string text = "   Balance:  1000.00" + std::string(60, ' ') + "Equity:  1000.00";
  form.lbmSummaries.set_text(text);
  screen.acted();
  const auto& line = part<ElidedLabel>(window, "lbmSummaries");
  EXPECT_EQ(line.text().toStdString(), text);
  EXPECT_EQ(line.font().family(), QStringLiteral("Courier New"));
}

// Rows go while they are selected, ticked, sorted and on screen.
struct PendingTest : ::testing::Test, PaneRig<&Panes::pending> {
  PendingTest() : PaneRig(DealerConfig::sample(2)) {
    sink.NewPendingOrder(
        {.order = 7001, .account = 500101, .kind = OrderKind::entry, .symbol = "EURUSD", .amount = 0.5});
    sink.NewPendingOrder(
        {.order = 7002, .account = 500102, .kind = OrderKind::open, .symbol = "EURUSD", .amount = 0.5});
    screen.acted();
  }

  frmPending& form = main().pending();
  CLAPICLASS& sink = *main().sessions().Item(1);
};

TEST_F(PendingTest, WhatWasSaidAboutAnOrderIsSeen) {
  const auto note = [this] { return part<ElidedLabel>(window, "note").text().toStdString(); };
  form.order_text(7002, 500102, "Order 7002 in Pending mode");
  click_cell(list, 0, frmPending::symbol);
  EXPECT_EQ(note(), "");
  click_cell(list, 1, frmPending::symbol);
  EXPECT_EQ(note(), "Order 7002: Order 7002 in Pending mode");
  sink.DeletePendingOrder({.order = 7002, .account = 500102, .symbol = {}});
  run(50ms);
  EXPECT_EQ(note(), "");
}

TEST_F(PendingTest, EveryRowShowsWhetherItBuysOrSells) {
  struct Case {
    OrderKind kind;
    Operation operation;
    Side side;
    const char* tip;
  };
  const Case cases[] = {
      {OrderKind::entry, operation::buy, Side::buy, "Buy limit"},
      {OrderKind::entry, operation::sell_stop, Side::sell, "Sell stop"},
      {OrderKind::open, operation::sell, Side::sell, "Sell at market"},
      {OrderKind::close, operation::buy, Side::sell, "Sell, closes a bought position"},
      {OrderKind::stops, operation::buy, Side::buy, "Buy, SL/TP of a sold position"},
      {OrderKind::entry, {}, Side::none, ""},
  };
  for (const Case& c : cases) {
    sink.NewPendingOrder(
        {.order = 7001, .account = 500101, .kind = c.kind, .operation = c.operation, .symbol = "EURUSD"});
    const Row& row = form.lvwPending.row(0);
    const RowDelegate& look = list.delegate();
    EXPECT_EQ(look.side(row, frmPending::type), c.side) << c.tip;
    EXPECT_EQ(look.side(row, frmPending::amount), Side::none);
    EXPECT_EQ(look.tip(row, frmPending::amount), c.tip);
    const QColor own = theme::side_colour(c.side);
    EXPECT_EQ(look.painted(row, frmPending::type).colour, own.isValid() ? own : QColor{theme::text});
  }
}

TEST_F(PendingTest, AnOrderIsEditedAndCancelled) {
  std::vector<std::int64_t> edited;
  form.EdirMode = [&](const frmPending::EditRequest& request) { edited.push_back(request.number); };
  double_click_cell(list, 0, frmPending::symbol);
  QTest::keyClick(&list, Qt::Key_Return);
  window.edit_current();
  EXPECT_EQ(edited, (std::vector<std::int64_t>{7001, 7001, 7001}));

  asked();
  QTest::mouseClick(&part(window, "lbbCancel"), Qt::LeftButton);
  click_tick(list, 1);
  window.cancel_selected();
  EXPECT_EQ(asked(), (Texts{"No selected orders", "Are you sure you want to cancel selected order(s)?",
                            "1 of 1 orders could not be cancelled; the journal has the reasons"}));
}

struct JournalTest : ::testing::Test, PaneRig<&Panes::journal> {
  JournalTest() : PaneRig(DealerConfig::sample(1), {700, 300}) {
    main().journal_window().lvwJournal.clear();
    window.activateWindow();
  }

  void log(const std::string& text, std::int32_t account) { main().journal().log(text, account); }
  Texts messages() { return shown(list.rows(), 2); }
  // A filter, which gets the keyboard.
  QWidget& filter(const char* name) {
    part(window, name).setFocus();
    return part(window, name);
  }
  std::string state() { return part<QLabel>(window, "journal_state").text().toStdString(); }
};

TEST_F(JournalTest, FiltersHoldForNewRowsToo) {
  log("Order accepted", 500101);
  log("Order rejected", 500102);
  QTest::keyClicks(&filter("filter_text"), QStringLiteral("ORDER r"));
  EXPECT_EQ(messages(), Texts{"Order rejected"});
  log("order rejected again", 500101);
  log("order accepted again", 500101);
  run(50ms);
  EXPECT_EQ(messages(), (Texts{"order rejected again", "Order rejected"}));
  QTest::keyClicks(&filter("filter_account"), QStringLiteral("x101"));
  EXPECT_EQ(messages(), Texts{"order rejected again"});
  QTest::keyClick(&filter("filter_account"), Qt::Key_Escape);
  QTest::keyClick(&filter("filter_text"), Qt::Key_Escape);
  EXPECT_EQ(messages().size(), 4u);
}

TEST_F(JournalTest, AHistoryIsShownAndLeft) {
  EXPECT_EQ(state(), "Live");
  QTest::keyClicks(&filter("filter_account"), QStringLiteral("500102"));
  QTest::keyClick(&filter("filter_account"), Qt::Key_Return);
  EXPECT_EQ(state(), "History of 500102");
  log("told", 500102);
  log("other", 500101);
  run(50ms);
  EXPECT_EQ(messages().front(), "told");
  QTest::keyClick(&filter("filter_account"), Qt::Key_Escape);
  QTest::mouseClick(&part(window, "live_journal"), Qt::LeftButton);
  EXPECT_EQ(state(), "Live");
  EXPECT_EQ(messages(), (Texts{"other", "told"}));
}

TEST_F(JournalTest, WhatIsReadStaysWhereItIs) {
  constexpr int rows = 100'000;
  frmJournal& form = main().journal_window();
  for (int i = 0; i < rows; ++i)
    form.addToListView("now", 500101, "entry " + std::to_string(i));
  screen.acted();
  const auto top = [this] { return list.row_under({200, 1})->text(2); };
  log("new at the top", 500101);
  run(50ms);
  EXPECT_EQ(top(), "new at the top");

  list.verticalScrollBar()->setValue(1000 * 22 + 7);
  const std::string read = top();
  for (int i = 0; i < 50; ++i) {
    log("more", 500101);
    run(20ms);
  }
  EXPECT_EQ(top(), read);
  window.show_history(500101);
  EXPECT_EQ(list.verticalScrollBar()->value(), 0);
  log("while away", 500101);
  window.show_live();
  EXPECT_EQ(top(), read);
}

TEST_F(JournalTest, AFilterShowsItsNewestHits) {
  for (int i = 0; i < 2000; ++i)
    log(i % 2 == 0 ? "accepted " + std::to_string(i) : "refused " + std::to_string(i), 500101);
  run(50ms);
  const auto in_sight = [this](const std::string& text) {
    for (int y = 0; y < list.viewport()->height(); y += 22)
      if (const Row* row = list.row_under({200, y}); row != nullptr && row->text(2) == text) return true;
    return false;
  };
  list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum());
  QTest::keyClicks(&filter("filter_text"), QStringLiteral("refused"));
  EXPECT_TRUE(in_sight("refused 1999"));
  // Back among all rows, around the one that was looked at; sorted upwards the newest stand at the end.
  list.go_to(*list.rows().row_at(500));
  const std::string current = list.rows().list().current()->text(2);
  QTest::keyClick(&filter("filter_text"), Qt::Key_Escape);
  EXPECT_TRUE(in_sight(current));
  click_header(list, 0);
  QTest::keyClicks(&filter("filter_text"), QStringLiteral("refused"));
  EXPECT_EQ(list.verticalScrollBar()->value(), list.verticalScrollBar()->maximum());
}

TEST_F(JournalTest, KeysSelectARowAndTheHeaderTellsTheTruth) {
  for (int i = 0; i < 50; ++i)
    log("entry " + std::to_string(i), 500101);
  const auto header = [this](int column) {
    const QImage image = list.horizontalHeader()->grab().toImage();
    const int right = list.columnViewportPosition(column) + list.columnWidth(column);
    int bright = 0;
    for (int x = list.columnViewportPosition(column); x < right; ++x)
      bright += image.pixelColor(x, image.height() - 1) == QColor{theme::accent} ? 1 : 0;
    return bright > 0;
  };
  const auto selected = [this] {
    std::string out;
    for (const Row* row : list.rows().list().selected())
      out += row->text(2) + " ";
    return out;
  };
  filter("filter_text");
  EXPECT_FALSE(header(0));
  list.setFocus();
  EXPECT_TRUE(header(0));
  const std::pair<Qt::Key, const char*> keys[] = {{Qt::Key_Down, "entry 49 "},
                                                  {Qt::Key_Down, "entry 48 "},
                                                  {Qt::Key_End, "entry 0 "},
                                                  {Qt::Key_Up, "entry 1 "},
                                                  {Qt::Key_Home, "entry 49 "}};
  for (const auto& [key, row] : keys) {
    QTest::keyClick(&list, key);
    EXPECT_EQ(selected(), row) << key;
  }

  click_header(list, 2);
  EXPECT_TRUE(list.rows().in_order());
  list.rows().row_at(1)->set_text(0, "another time");
  run(20ms);
  EXPECT_TRUE(list.rows().in_order());
  log("come late", 500101);
  run(20ms);
  EXPECT_FALSE(list.rows().in_order());
  click_header(list, 2);
  EXPECT_TRUE(list.rows().in_order());
  list.rows().row_at(1)->set_text(2, "entry z");
  run(20ms);
  EXPECT_FALSE(list.rows().in_order());
}

// The model against a plain computation, over a random run of everything that can happen to a list.
TEST(RowListModelTest, FollowsItsListWhateverHappens) {
  std::mt19937 random{20240229};
  const auto below = [&random](std::size_t end) { return static_cast<std::size_t>(random()) % end; };
  RowList list{{"Key", "Value"}};
  RowListModel model{list, true};
  const QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
  std::vector<std::pair<QPersistentModelIndex, std::string>> kept;
  std::int64_t next = 1;
  Texts order;  // of what is shown, as it was when it was sorted last, then as rows came
  const auto low = [](const Row& row) { return row.cell(1).number() < 50.0; };
  const auto passes = [&](const Row& row) { return !model.filtered() || low(row); };
  for (int step = 0; step < 400; ++step) {
    const std::size_t what = below(12);
    if (what < 5 || list.empty()) {
      for (std::size_t n = below(4); n < 4; ++n) {
        Row* row = list.insert(what == 0 ? 0 : below(list.size() + 1), ticket_key(next++, 1));
        row->set_whole(0, row->key().number());
        row->set_number(1, static_cast<double>(below(100)));
      }
    } else if (what < 8) {
      for (std::size_t n = below(4); n < 4 && !list.empty(); ++n)
        list.remove(list.row(below(list.size())));
    } else if (what == 8) {
      auto rows = list.take_all();
      std::shuffle(rows.begin(), rows.end(), random);
      list.put_back(std::move(rows));
    } else if (what == 9) {
      list.row(below(list.size())).set_number(1, static_cast<double>(below(100)));
    } else if (what == 10) {
      model.set_filter(model.filtered() ? RowListModel::Filter{} : RowListModel::Filter{low});
    } else {
      model.sort(static_cast<int>(below(3)) - 1, below(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
      std::deque<Row*> rows;
      for (Row& row : list)
        rows.push_back(&row);
      // Without a column the list's own order counts, and this one is not looked at.
      sort_rows(rows, static_cast<std::size_t>(std::max(model.sort_column(), 0)),
                model.sort_order() == Qt::DescendingOrder);
      order.clear();
      for (const Row* row : rows)
        if (passes(*row)) order.push_back(row->text(0));
    }
    model.settle();
    model.refresh(0, model.rowCount() - 1);

    Texts wanted;
    for (const Row& row : list)
      if (passes(row)) wanted.push_back(row.text(0));
    if (model.sort_column() >= 0) {
      const auto place = [&order](const std::string& key) {
        return std::find(order.begin(), order.end(), key);
      };
      std::stable_sort(wanted.begin(), wanted.end(),
                       [&place](const auto& a, const auto& b) { return place(a) < place(b); });
      order = wanted;
    }
    ASSERT_EQ(shown(model, 0), wanted) << "step " << step;
    for (const auto& [index, key] : kept)
      ASSERT_TRUE(!index.isValid() || model.row_at(index.row())->text(0) == key) << "step " << step;
    if (model.rowCount() > 0 && step % 10 == 0) {
      const int place = static_cast<int>(below(static_cast<std::size_t>(model.rowCount())));
      kept.emplace_back(model.index(place, 0), model.row_at(place)->text(0));
    }
  }
}

// What stands left of the columns that move with the market is not painted with every price.
TEST(RowListModelTest, TellsOfTheMovingColumnsAlone) {
  RowList list{{"Name", "Bid", "Ask"}};
  bool renamed = false;
  list.set_make_cells(
      [&](Row& row) {
        row.set_whole(1, static_cast<std::int64_t>(row.stamp()));
        if (renamed) row.standing_changed();
      },
      1);
  for (int i = 0; i < 8; ++i)
    list.add();
  RowListModel model{list};
  model.refresh(0, 7);
  std::string told;
  QObject::connect(&model, &QAbstractItemModel::dataChanged, [&](const auto& from, const auto& to) {
    told += std::to_string(from.row()) + "," + std::to_string(from.column()) + "-" +
            std::to_string(to.row()) + "," + std::to_string(to.column()) + " ";
  });
  const auto tells = [&](std::initializer_list<std::size_t> outdated, bool others) {
    renamed = others;
    for (const std::size_t place : outdated)
      list.row(place).outdate();
    told.clear();
    model.refresh(0, 7);
    model.refresh(0, 7);
    return told;
  };
  EXPECT_EQ(tells({2, 5}, false), "2,1-2,2 5,1-5,2 ");
  EXPECT_EQ(tells({0, 1, 2, 3, 4}, false), "0,1-7,2 ");
  EXPECT_EQ(tells({2}, true), "2,0-2,2 ");
  EXPECT_EQ(tells({0, 1, 2, 3, 4}, true), "0,0-7,2 ");
  renamed = false;
  list.row(3).set_text(0, "typed");
  EXPECT_EQ(tells({5}, false), "3,0-3,2 5,1-5,2 ");
}

TEST(FileDialogTest, StandsInTheThemeWithAProposedNameAndItsEnding) {
  TemporaryFolder folder;
  DesktopFileDialog files;
  const auto save = [&](const char* typed) {
    when_modal([typed](QWidget& box) {
      auto& name = part<QLineEdit>(box, "fileNameEdit");
      EXPECT_EQ(name.text(), QStringLiteral("Trade 2026.csv"));
      name.setText(QLatin1String{typed});
      QTest::keyClick(&name, Qt::Key_Return);
    });
    return files.save_file("Export", folder.path().string(), "CSV Files (*.csv)|*.csv|All (*.*)|*.*",
                           "Trade 2026.csv");
  };
  EXPECT_EQ(save("mine"), (folder.path() / "mine.csv").string());
  EXPECT_EQ(save("mine.txt"), (folder.path() / "mine.txt").string());
}

TEST_F(JournalTest, ExportQuotesWhatNeedsIt) {
  frmJournal& form = main().journal_window();
  form.addToListView("09:00", 500101, "a \"word\", and\nmore");
  screen.acted();
  const std::filesystem::path file = terminal.home->path() / "out.csv";
  Texts told;
  const auto tell = [&told](const std::string& text) { told.push_back(text); };
  FakeFileDialog& files = terminal.file_dialog;
  EXPECT_FALSE(export_csv(list, "Journal", files, tell));
  files.answer = file.string();
  EXPECT_TRUE(export_csv(list, "Journal", files, tell));
  EXPECT_EQ(files.proposed, "Journal.csv");
  EXPECT_EQ(terminal.home->read("out.csv"),
            "Time,Account,Message\n09:00,500101,\"a \"\"word\"\", and\nmore\"\n");
  files.answer = (file / "below-a-file.csv").string();
  EXPECT_FALSE(export_csv(list, "Journal", files, tell));
  ASSERT_EQ(told.size(), 1u);
  EXPECT_NE(told[0].find("out.csv"), std::string::npos);
}

TEST(HelpTest, EveryPageOpensAndEveryLinkLeadsToOne) {
  HelpWindow help;
  auto& page = part<QTextBrowser>(help, "help_page");
  const QDir pages{QStringLiteral(":/help")};
  int links = 0;
  for (const QString& file : pages.entryList()) {
    SCOPED_TRACE(file.toStdString());
    const QString topic = file.section(QLatin1Char{'.'}, 0, 0);
    help.open(topic.toStdString());
    EXPECT_EQ(page.source().fileName(), file);
    EXPECT_GT(page.document()->characterCount(), 100);
    EXPECT_EQ(part<QListWidget>(help, "help_contents").currentItem()->data(Qt::UserRole).toString(), topic);
    for (QTextBlock block = page.document()->begin(); block.isValid(); block = block.next()) {
      for (const QTextLayout::FormatRange& piece : block.textFormats()) {
        if (!piece.format.isAnchor()) continue;
        ++links;
        const QString target = QUrl{piece.format.anchorHref()}.fileName();
        EXPECT_TRUE(pages.exists(target)) << target.toStdString();
      }
    }
  }
  EXPECT_GT(links, pages.entryList().size());
}

TEST(AboutTest, NamesTheVersionAndTakesNoMarkupFromTheBroker) {
  AboutWindow about{BrokerCard{"Birch <b>& Sons", "birch.example", "desk@birch.example", {}}};
  EXPECT_EQ(part<QLabel>(about, "broker").textFormat(), Qt::PlainText);
  EXPECT_EQ(part<QLabel>(about, "version").text().toStdString(), program_version());
}

}  // namespace
}  // namespace tutti::testing
