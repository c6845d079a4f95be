#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBrowser>
#include <QTextTable>
#include <filesystem>
#include <random>

#include "gui/about_window.h"
#include "gui/csv_export.h"
#include "gui/elided_label.h"
#include "gui/frmJournal_window.h"
#include "gui/frmPending_window.h"
#include "gui/frmTrade_window.h"
#include "gui/help_window.h"
#include "gui/row_order.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;

template <class W>
W& child(const QWidget& window, const char* name) {
  return *window.findChild<W*>(QString::fromLatin1(name));
}

std::vector<std::string> shown(const RowListModel& model, std::size_t column) {
  std::vector<std::string> out;
  for (int place = 0; place < model.rowCount(); ++place)
    out.push_back(model.row_at(place)->text(column));
  return out;
}

OpenPosition position(std::int64_t ticket, double profit = 0.0) {
  OpenPosition out;
  out.ticket = ticket;
  out.account = 500101;
  out.side = 1;
  out.symbol = "EURUSD";
  out.amount = 0.1;
  out.floating_pl = profit;
  return out;
}

struct ViewsTest : ::testing::Test {
  // One position of a tenth of a lot or more in each account.
  void buy() {
    frmorder& order = rig.main().market_order();
    order.cbsymbols.choose("EURUSD");
    order.CBdis.choose(0);
    order.txtammount.type("4");
    order.chkAllClients.click();
    order.cmddis.click();
    order.cmdbuy.click();
    rig.run(2s);
  }

  GuiRig rig{DealerConfig::sample(4)};
};

struct TradeTest : ViewsTest {
  TradeTest() { show(window); }

  frmTrade& form = rig.main().trade();
  FrmTradeWindow window{form, rig.screen};
  RowListView& list = window.list();
  QPushButton& close = child<QPushButton>(window, "lbbClose");
};

TEST_F(TradeTest, TickedPositionsAreClosed) {
  buy();
  ASSERT_EQ(form.lvwOpenPos.size(), 4u);
  const std::vector<std::string> tickets = shown(list.rows(), frmTrade::ticket);
  rig.terminal.prompt.take_texts();
  QTest::mouseClick(&close, Qt::LeftButton);
  EXPECT_EQ(rig.terminal.prompt.take_texts(), std::vector<std::string>{"No selected positions"});

  click_tick(list, 1);
  click_tick(list, 2);
  close.setFocus();
  QTest::keyClick(&close, Qt::Key_Return);
  rig.run(2s);
  EXPECT_EQ(shown(list.rows(), frmTrade::ticket), (std::vector{tickets[0], tickets[3]}));

  QTest::mouseClick(&child<QCheckBox>(window, "chkAll"), Qt::LeftButton, {}, {8, 8});
  rig.terminal.prompt.answers = {2};
  window.close_selected();
  rig.run(2s);
  EXPECT_EQ(form.lvwOpenPos.size(), 2u);
  window.close_selected();
  rig.run(2s);
  EXPECT_TRUE(form.lvwOpenPos.empty());
}

TEST_F(TradeTest, TheSummaryLineKeepsItsBlanksAndFont) {
  auto& line = child<ElidedLabel>(window, "lbmSummaries");
  const std::string text = "   Balance:  1000.00" + std::string(60, ' ') + "Equity:  1000.00";
  form.lbmSummaries.set_text(text);
  rig.screen.acted();
  EXPECT_EQ(line.text().toStdString(), text);
  EXPECT_EQ(line.font().family(), QStringLiteral("Courier New"));
  EXPECT_TRUE(line.toolTip().isEmpty());
  window.resize(400, 300);
  QCoreApplication::processEvents();
  EXPECT_TRUE(line.toolTip().contains(QStringLiteral("Equity:")));
}

// Rows go while they are selected, ticked, sorted and on screen.
TEST_F(TradeTest, TenThousandPositionsComeAndGo) {
  constexpr std::int64_t count = 10'000;
  for (std::int64_t i = 1; i <= count; ++i)
    form.AddPosition(position(i, static_cast<double>((i * 7919) % count)));
  rig.screen.acted();
  ASSERT_EQ(list.rows().rowCount(), count);
  const int header = list.columnViewportPosition(frmTrade::profit) + 5;
  QTest::mouseClick(list.horizontalHeader()->viewport(), Qt::LeftButton, {}, {header, 8});
  EXPECT_EQ(list.rows().row_at(0)->text(frmTrade::profit), "0.00");

  click_cell(list, 2, frmTrade::symbol);
  click_cell(list, 6, frmTrade::symbol, Qt::ShiftModifier);
  QTest::keyClick(&list, Qt::Key_Space);
  EXPECT_EQ(form.lvwOpenPos.checked_count(), 5u);
  const std::int64_t first = list.rows().row_at(2)->key().number();
  const std::int64_t last = list.rows().row_at(6)->key().number();
  form.RemovePosition(first);
  for (std::int64_t i = 1; i <= count; i += 2)
    if (i != last) form.RemovePosition(i);
  rig.screen.acted();
  const std::vector<Row*> selected = form.lvwOpenPos.selected();
  for (const Row* row : selected)
    EXPECT_TRUE(row->checked());
  EXPECT_TRUE(std::any_of(selected.begin(), selected.end(),
                          [last](const Row* row) { return row->key().number() == last; }));
  form.lvwOpenPos.clear();
  rig.screen.acted();
  EXPECT_EQ(form.lvwOpenPos.current(), nullptr);
  QTest::keyClick(&list, Qt::Key_Space);
  QTest::keyClick(&list, Qt::Key_Return);
}

struct PendingTest : ViewsTest {
  PendingTest() {
    show(window);
    form.AddOrder({.order = 7001, .account = 500101, .kind = "LO", .symbol = "EURUSD", .amount = 0.5});
    form.AddOrder({.order = 7002, .account = 500102, .kind = "OP", .symbol = "EURUSD", .amount = 0.5});
    rig.screen.acted();
  }

  frmPending& form = rig.main().pending();
  FrmPendingWindow window{form, rig.screen};
  RowListView& list = window.list();
};

TEST_F(PendingTest, WhatWasSaidAboutAnOrderIsSeen) {
  const auto note = [this] { return child<ElidedLabel>(window, "note").text().toStdString(); };
  form.order_text(7002, 500102, "Order 7002 in Pending mode");
  click_cell(list, 0, frmPending::symbol);
  EXPECT_EQ(note(), "");
  click_cell(list, 1, frmPending::symbol);
  EXPECT_EQ(note(), "Order 7002: Order 7002 in Pending mode");
  form.order_text(7002, 500102, "refused");
  rig.run(50ms);
  EXPECT_EQ(note(), "Order 7002: refused");
  form.Removeorder(7002);
  rig.run(50ms);
  EXPECT_EQ(note(), "");
}

TEST_F(PendingTest, AnOrderIsEditedAndCancelled) {
  std::vector<std::int64_t> edited;
  form.EdirMode = [&](const frmPending::EditRequest& request) { edited.push_back(request.number); };
  double_click_cell(list, 0, frmPending::symbol);
  QTest::keyClick(&list, Qt::Key_Return);
  window.edit_current();
  EXPECT_EQ(edited, (std::vector<std::int64_t>{7001, 7001, 7001}));

  rig.terminal.prompt.take_texts();
  QTest::mouseClick(&child<QPushButton>(window, "lbbCancel"), Qt::LeftButton);
  EXPECT_EQ(rig.terminal.prompt.take_texts(), std::vector<std::string>{"No selected orders"});
  click_tick(list, 1);
  window.cancel_selected();
  EXPECT_EQ(rig.terminal.prompt.take_texts(),
            (std::vector<std::string>{"Are you sure you want to cancel selected order(s)?",
                                      "1 of 1 orders could not be cancelled; the journal has the reasons"}));
}

struct JournalTest : ViewsTest {
  JournalTest() {
    rig.main().journal_window().lvwJournal.clear();
    show(window, {700, 300});
    window.activateWindow();
  }

  void log(const std::string& text, std::int32_t account) { rig.main().journal().log(text, account); }
  std::vector<std::string> messages() { return shown(list.rows(), 2); }
  QLineEdit& box(const char* name) { return child<QLineEdit>(window, name); }
  void type(const char* name, const char* text) {
    box(name).setFocus();
    QTest::keyClicks(&box(name), QString::fromLatin1(text));
  }
  void press(const char* name, Qt::Key key) {
    box(name).setFocus();
    QTest::keyClick(&box(name), key);
  }
  std::string state() { return child<QLabel>(window, "journal_state").text().toStdString(); }
  using Texts = std::vector<std::string>;

  FrmJournalWindow window{rig.main().journal_window(), rig.main().journal(), rig.screen};
  RowListView& list = window.list();
};

TEST_F(JournalTest, FiltersHoldForNewRowsToo) {
  log("Order accepted", 500101);
  log("Order rejected", 500102);
  type("filter_text", "ORDER r");
  EXPECT_EQ(messages(), Texts{"Order rejected"});
  log("order rejected again", 500101);
  log("order accepted again", 500101);
  rig.run(50ms);
  EXPECT_EQ(messages(), (Texts{"order rejected again", "Order rejected"}));
  type("filter_account", "x101");
  EXPECT_EQ(messages(), Texts{"order rejected again"});
  press("filter_account", Qt::Key_Escape);
  press("filter_text", Qt::Key_Escape);
  EXPECT_EQ(messages().size(), 4u);
}

TEST_F(JournalTest, AHistoryIsShownAndLeft) {
  log("first", 500102);
  log("other", 500101);
  EXPECT_EQ(state(), "Live");
  type("filter_account", "500102");
  press("filter_account", Qt::Key_Return);
  EXPECT_EQ(state(), "History of 500102");
  EXPECT_EQ(messages().front(), "first");
  log("second", 500102);
  log("other again", 500101);
  rig.run(50ms);
  EXPECT_EQ(messages()[0], "second");
  EXPECT_EQ(messages()[1], "first");
  press("filter_account", Qt::Key_Escape);
  QTest::mouseClick(&child<QPushButton>(window, "live_journal"), Qt::LeftButton);
  EXPECT_EQ(state(), "Live");
  EXPECT_EQ(messages(), (Texts{"other again", "second", "other", "first"}));
  window.show_history(999999);
  EXPECT_TRUE(messages().empty());
}

TEST_F(JournalTest, WhatIsReadStaysWhereItIs) {
  constexpr int rows = 100'000;
  frmJournal& form = rig.main().journal_window();
  for (int i = 0; i < rows; ++i)
    form.addToListView("now", 500101, "entry " + std::to_string(i));
  rig.screen.acted();
  const auto top = [this] { return list.row_under({200, 1})->text(2); };
  log("new at the top", 500101);
  rig.run(50ms);
  EXPECT_EQ(top(), "new at the top");

  list.verticalScrollBar()->setValue(1000 * 22 + 7);
  const std::string read = top();
  for (int i = 0; i < 50; ++i) {
    log("more", 500101);
    if (i % 7 == 0) rig.run(20ms);
  }
  rig.run(50ms);
  EXPECT_EQ(top(), read);
  window.show_history(500101);
  EXPECT_EQ(list.verticalScrollBar()->value(), 0);
  log("while away", 500101);
  window.show_live();
  EXPECT_EQ(top(), read);
}

// The model against a plain computation, over a random run of everything that can happen to a list.
TEST(RowListModelTest, FollowsItsListWhateverHappens) {
  std::mt19937 random{20240229};
  const auto below = [&random](std::size_t end) {
    return std::uniform_int_distribution<std::size_t>{0, end - 1}(random);
  };
  RowList list{{"Key", "Value"}};
  RowListModel model{list, true};
  const QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
  std::vector<QPersistentModelIndex> kept;
  std::vector<std::string> kept_keys;
  std::int64_t next = 1;
  bool filtered = false;
  std::vector<std::string> order;  // of what is shown, as it was when it was sorted last, then as rows came
  const auto passes = [](const Row& row) { return row.cell(1).number() < 50.0; };
  for (int step = 0; step < 400; ++step) {
    const std::size_t what = below(12);
    if (what < 5 || list.empty()) {
      for (std::size_t n = below(4); n < 4; ++n) {
        Row* row = list.insert(what == 0 ? 0 : below(list.size() + 1), ticket_key(next++));
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
      filtered = !filtered;
      model.set_filter(filtered ? RowListModel::Filter{passes} : RowListModel::Filter{});
    } else {
      model.sort(static_cast<int>(below(3)) - 1, below(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
      std::vector<Row*> rows;
      for (Row& row : list)
        rows.push_back(&row);
      if (model.sort_column() >= 0) {
        sort_rows(rows, static_cast<std::size_t>(model.sort_column()),
                  model.sort_order() == Qt::DescendingOrder);
      }
      order.clear();
      for (const Row* row : rows)
        if (!filtered || passes(*row)) order.push_back(row->text(0));
    }
    model.settle();
    model.refresh(0, model.rowCount() - 1);

    std::vector<std::string> wanted;
    for (const Row& row : list)
      if (!filtered || passes(row)) wanted.push_back(row.text(0));
    if (model.sort_column() >= 0) {
      std::vector<std::string> sorted;
      for (const std::string& key : order)
        if (std::find(wanted.begin(), wanted.end(), key) != wanted.end()) sorted.push_back(key);
      for (const std::string& key : wanted)
        if (std::find(order.begin(), order.end(), key) == order.end()) sorted.push_back(key);
      wanted = sorted;
      order = sorted;
    }
    ASSERT_EQ(shown(model, 0), wanted) << "step " << step;
    for (std::size_t i = 0; i < kept.size(); ++i) {
      if (!kept[i].isValid()) continue;
      ASSERT_EQ(model.row_at(kept[i].row())->text(0), kept_keys[i]) << "step " << step;
    }
    if (model.rowCount() > 0 && step % 10 == 0) {
      kept.emplace_back(model.index(static_cast<int>(below(static_cast<std::size_t>(model.rowCount()))), 0));
      kept_keys.push_back(model.row_at(kept.back().row())->text(0));
    }
  }
  EXPECT_GT(next, 300);
}

TEST_F(JournalTest, ExportQuotesWhatNeedsIt) {
  frmJournal& form = rig.main().journal_window();
  form.addToListView("09:00", 500101, "a \"word\", and\nmore");
  rig.screen.acted();
  const std::filesystem::path file = rig.terminal.home->path() / "out.csv";
  std::vector<std::string> told;
  const auto tell = [&told](const std::string& text) { told.push_back(text); };
  FakeFileDialog& files = rig.terminal.file_dialog;
  EXPECT_FALSE(export_csv(list, files, tell));
  EXPECT_TRUE(told.empty());
  files.answer = file.string();
  EXPECT_TRUE(export_csv(list, files, tell));
  EXPECT_EQ(rig.terminal.home->read("out.csv"),
            "Time,Account,Message\n09:00,500101,\"a \"\"word\"\", and\nmore\"\n");
  files.answer = (file / "below-a-file.csv").string();
  EXPECT_FALSE(export_csv(list, files, tell));
  ASSERT_EQ(told.size(), 1u);
  EXPECT_NE(told[0].find("out.csv"), std::string::npos);
}

TEST(HelpTest, EveryPageOpensAndEveryLinkLeadsToOne) {
  HelpWindow help;
  auto& page = child<QTextBrowser>(help, "help_page");
  const QDir pages{QStringLiteral(":/help")};
  ASSERT_FALSE(pages.entryList().isEmpty());
  int links = 0;
  for (const QString& file : pages.entryList()) {
    SCOPED_TRACE(file.toStdString());
    const std::string topic = file.section(QLatin1Char{'.'}, 0, 0).toStdString();
    help.open(topic);
    EXPECT_EQ(page.source().fileName(), file);
    EXPECT_GT(page.document()->characterCount(), 100);
    const auto* item = child<QListWidget>(help, "help_contents").currentItem();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->data(Qt::UserRole).toString().toStdString(), topic);
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

TEST(HelpTest, BackForwardAndFind) {
  HelpWindow help;
  auto& page = child<QTextBrowser>(help, "help_page");
  const auto topic = [&page] { return page.source().fileName().toStdString(); };
  help.open("no such page");
  EXPECT_EQ(topic(), "index.md");
  help.open("keyboard");
  QCoreApplication::processEvents();
  QTest::keyClick(&page, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(topic(), "index.md");
  QTest::keyClick(&page, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(topic(), "keyboard.md");
  EXPECT_FALSE(page.document()->rootFrame()->childFrames().isEmpty());

  QTest::keyClick(&page, Qt::Key_F, Qt::ControlModifier);
  auto& box = child<QLineEdit>(help, "help_find_text");
  ASSERT_EQ(QApplication::focusWidget(), &box);
  QTest::keyClicks(&box, QStringLiteral("full screen"));
  EXPECT_EQ(page.textCursor().selectedText(), QStringLiteral("Full screen"));
  const int at = page.textCursor().position();
  QTest::keyClick(&box, Qt::Key_Return);
  EXPECT_EQ(page.textCursor().position(), at);  // the only one, found again from the top
  const int size = page.font().pixelSize();
  QTest::keyClick(&page, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_GT(page.font().pixelSize(), size);
  QTest::keyClick(&box, Qt::Key_Escape);
  EXPECT_FALSE(box.isVisible());
  EXPECT_TRUE(help.isVisible());
}

TEST(AboutTest, MissingPartsTakeNoRoom) {
  AboutWindow bare{BrokerCard{}};
  TemporaryFolder folder;
  folder.write("logo.jpg", "no picture");
  BrokerCard card{"Birch <b>& Sons", "birch.example", "desk@birch.example", folder.path() / "logo.jpg"};
  AboutWindow broken{card};
  EXPECT_EQ(broken.findChild<QLabel*>(QStringLiteral("logo")), nullptr);
  QImage{600, 200, QImage::Format_RGB32}.save(QString::fromStdString(card.logo.string()), "JPG");
  AboutWindow full{card};
  for (AboutWindow* each : {&bare, &broken, &full})
    show(*each, {});
  EXPECT_LT(bare.height(), broken.height());
  EXPECT_LT(broken.height(), full.height());
  EXPECT_EQ(child<QLabel>(full, "broker").textFormat(), Qt::PlainText);
  EXPECT_LE(child<QLabel>(full, "logo").width(), 320);
  QTest::keyClick(&full, Qt::Key_Escape);
  EXPECT_FALSE(full.isVisible());
  QTest::keyClick(&bare, Qt::Key_Return);
  EXPECT_FALSE(bare.isVisible());
}

}  // namespace
}  // namespace tutti::testing
