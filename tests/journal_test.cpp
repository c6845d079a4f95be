#include <sys/resource.h>

#include <filesystem>
#include <fstream>

#include "core/time_texts.h"
#include "tests/support/test_terminal.h"
#include "views/history_files.h"

namespace tutti::testing {
namespace {

struct JournalTest : ::testing::Test {
  JournalTest() {
    if (!terminal.start()) ADD_FAILURE() << "not started";
    journal = &terminal.main->journal();
    window = &terminal.main->journal_window();
  }
  void log(const std::string& message, std::int32_t account) {
    terminal.main->general().log(message, account);
  }
  // The file of an account once a frame is over.
  std::string file(std::int32_t account) {
    terminal.main->poll_timers();
    return terminal.home->read("History/JN" + std::to_string(account) + ".his");
  }

  TestTerminal terminal{DealerConfig::sample(1)};
  CJournal* journal = nullptr;
  frmJournal* window = nullptr;
};

TEST_F(JournalTest, EveryEventIsOneRowOnTopAndOneLine) {
  log("first", 12345);
  terminal.clock.advance(61s);
  terminal.clock.set_utc_offset(-3h - 30min);
  log("second", 7);
  EXPECT_EQ(terminal.journal(), (Texts{"12345 first", "7 second"}));
  EXPECT_EQ(window->lvwJournal.row(0).text(0), "2025-12-31 20:31:01");
  EXPECT_EQ(full_time_text(terminal.clock.now()), "2026-01-01 00:01:01");
  EXPECT_EQ(window->entries(), 2);
  EXPECT_EQ(file(12345), "2026-01-01 00:00:00*,%$first\n");
  EXPECT_EQ(file(7), "2025-12-31 20:31:01*,%$second\n");
  for (int i = 2; i < 65'537; ++i)  // rows alone; their counter wraps
    window->Add("row alone", 7, "");
  EXPECT_EQ(file(7), "2025-12-31 20:31:01*,%$second\n");
  EXPECT_EQ(window->entries(), 1);
}

TEST_F(JournalTest, AHistoryStandsInForTheLiveRows) {
  log("one of 7", 7);
  log("one of 8", 8);
  terminal.home->write("History/JN9.his", "old*,%$first of 9\r\n\nlater*,%$cut *,%$ here\nno separator");
  journal->vID(9);
  EXPECT_EQ(terminal.journal(), (Texts{" first of 9", " cut ", " "}));
  EXPECT_EQ(window->lvwJournal.row(2).text(0), "old");
  EXPECT_EQ(window->lvwJournal.row(0).text(0), "no separator");

  journal->vID(7);
  EXPECT_EQ(terminal.journal(), Texts{" one of 7"});
  log("two of 7", 7);
  log("two of 8", 8);
  EXPECT_EQ(terminal.journal(), (Texts{" one of 7", " two of 7"}));
  EXPECT_EQ(window->entries(), 4);
  journal->vID(8);
  EXPECT_EQ(terminal.journal(), (Texts{" one of 8", " two of 8"}));
  journal->vID(4711);
  EXPECT_TRUE(terminal.journal().empty());

  journal->vID(-1);
  EXPECT_EQ(terminal.journal(), (Texts{"7 one of 7", "8 one of 8", "7 two of 7", "8 two of 8"}));
  journal->vID(-1);
  EXPECT_EQ(terminal.journal().size(), 4u);
  log("three of 7", 7);
  EXPECT_EQ(terminal.journal().back(), "7 three of 7");
  journal->vID(7);
  EXPECT_EQ(terminal.journal(), (Texts{" one of 7", " two of 7", " three of 7"}));
}

TEST_F(JournalTest, AMessageIsOneLineWhateverItHolds) {
  log("wrong\nserver*,%$tail", 7);
  EXPECT_EQ(window->lvwJournal.row(0).text(2), "wrong\nserver*,%$tail");
  log("next", 7);
  journal->vID(7);
  EXPECT_EQ(terminal.journal(), (Texts{" wrong server*, %$tail", " next"}));
  terminal.clock.advance(1s);
  log("*,%$*,%$", 7);
  EXPECT_TRUE(file(7).ends_with("00:00:01*,%$*, %$*, %$\n"));
}

TEST_F(JournalTest, LinesThatCannotBeWrittenAreToldOnce) {
  Texts told;
  terminal.main->general().outside = [&](std::string_view text) { told.emplace_back(text); };
  std::filesystem::create_directories(terminal.home->path() / "History/JN7.his");
  const frmMdiNew& status = terminal.main->window();
  log("one", 8);
  EXPECT_NE(file(8), "");
  EXPECT_TRUE(told.empty() && status.warning_pane().empty());
  for (int i = 0; i < 3; ++i) {
    log("two", 7);
    log("more", 8);
    EXPECT_TRUE(file(8).ends_with("more\n"));
  }
  ASSERT_EQ(told.size(), 1u);
  EXPECT_NE(told[0].find("JN7.his"), std::string::npos) << told[0];
  EXPECT_EQ(status.warning_pane(), told[0]);
  EXPECT_EQ(terminal.journal().size(), 7u);
}

// System calls of this process that wrote something. A sanitizer has calls of its own that count, so it is
// given what is expected.
int writes([[maybe_unused]] int expected) {
#ifdef __SANITIZE_ADDRESS__
  return expected;
#else
  std::ifstream counters{"/proc/self/io"};
  for (std::string name, value; counters >> name >> value;)
    if (name == "syscw:") return std::stoi(value);
  return -1;
#endif
}

TEST_F(JournalTest, AFramesLinesAreOneWriteForEachAccount) {
  terminal.home->write("history/jn8.HIS", "an editor left no end");
  for (int frame = 1; frame <= 2; ++frame) {
    for (int i = 0; i < 3; ++i)
      for (const std::int32_t account : {7, 8, 9})
        log("line", account);
    const int before = writes(0);
    for (int calls = 0; calls < 2; ++calls) {
      terminal.main->poll_timers();
      EXPECT_EQ(writes(3) - before, 3);
    }
  }
  const std::string line = "2026-01-01 00:00:00*,%$line\n";
  const std::string three = line + line + line;
  EXPECT_EQ(terminal.home->read("history/JN7.his"), three + three);
  EXPECT_EQ(terminal.home->read("history/jn8.HIS"), "an editor left no end\n" + three + three);
  // One that somebody took away or put aside begins anew, and one that he cut off is ended.
  const std::filesystem::path folder = terminal.home->path() / "history";
  std::filesystem::remove(folder / "JN7.his");
  std::filesystem::rename(folder / "JN9.his", folder / "aside");
  std::filesystem::resize_file(folder / "jn8.HIS", 5);
  for (const std::int32_t account : {7, 8, 9})
    log("line", account);
  terminal.main->poll_timers();
  EXPECT_EQ(terminal.home->read("history/JN7.his"), line);
  EXPECT_EQ(terminal.home->read("history/jn8.HIS"), "an ed\n" + line);
  EXPECT_EQ(terminal.home->read("history/JN9.his"), line);
  EXPECT_EQ(terminal.home->read("history/aside"), three + three);
}

TEST(HistoryFiles, AreAddedToWithFewOfThemOpen) {
  const TemporaryFolder home;
  const Paths paths{home.path()};
  const auto descriptors = [] {
    std::filesystem::directory_iterator all{"/proc/self/fd"};
    return std::distance(begin(all), end(all));
  };
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit few{64, limit.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
  HistoryFiles files{paths};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  const auto before = descriptors();
  for (int frame = 0; frame < 2; ++frame) {
    for (int id = 0; id < 40; ++id)
      files.add(id, "line");
    ASSERT_TRUE(files.flush());
    EXPECT_LE(descriptors() - before, 16);
    EXPECT_GE(descriptors() - before, 8);
  }
  for (int id = 0; id < 40; ++id)
    EXPECT_EQ(home.read("History/JN" + std::to_string(id) + ".his"), "line\nline\n");
  EXPECT_TRUE(files.close_all());
  EXPECT_EQ(descriptors(), before);
}

TEST_F(JournalTest, TheLiveListKeepsTheNewestLines) {
  const auto add = [&](int from, int to) {
    for (int i = from; i <= to; ++i)
      window->Add(std::to_string(i), 7);
  };
  const auto ends = [&] {
    const RowList& list = window->lvwJournal;
    const std::size_t count = list.size();
    return Texts{std::to_string(count), list.row(0).text(2), list.row(count - 2).text(2),
                 list.row(count - 1).text(1) + list.row(count - 1).text(2)};
  };
  const std::string older{frmJournal::older_text};
  add(1, 10'000);
  EXPECT_EQ(ends(), (Texts{"10000", "10000", "2", "71"}));
  add(10'001, 10'001);
  EXPECT_EQ(ends(), (Texts{"10001", "10001", "2", older}));
  add(10'002, 10'003);
  EXPECT_EQ(ends(), (Texts{"10001", "10003", "4", older}));
  journal->vID(9);
  add(10'004, 20'005);
  journal->vID(-1);
  EXPECT_EQ(ends(), (Texts{"10001", "20005", "10006", older}));
}

TEST_F(JournalTest, ALongHistoryShowsItsNewestLinesFirst) {
  std::string text = "\xEF\xBB\xBF";
  for (int i = 0; i < 20'000; ++i) {
    text += "time*,%$line " + std::to_string(i) + (i % 2 == 0 ? "\r\n" : "\n");
    if (i == 15'000) text += "time*,%$" + std::string(600'000, 'x') + "\n\n";
  }
  terminal.home->write("History/JN9.his", text + "time*,%$the last has no end");
  Texts all;
  ASSERT_TRUE(journal->read(9, [&](auto, std::string_view message) { all.emplace_back(message); }));
  ASSERT_EQ(all.size(), 20'002u);

  journal->vID(9);
  const RowList& list = window->lvwJournal;
  EXPECT_TRUE(journal->has_older() && list.size() < 15'000 && list.row(0).reads(2, all.back()));
  log("new", 9);
  all.emplace_back("new");
  const std::size_t shown = list.size();
  journal->show_older();
  EXPECT_GT(list.size(), shown);
  journal->show_all();
  EXPECT_FALSE(journal->has_older());
  Texts rows;
  for (const Row& row : list)
    rows.insert(rows.begin(), row.text(2));
  EXPECT_EQ(rows == all, true);
}

TEST_F(JournalTest, ClearFileForgetsTheHistoryOnShow) {
  log("one of 7", 7);
  log("one of 8", 8);
  journal->vID(7);
  journal->ClearFile();
  EXPECT_TRUE(terminal.journal().empty());
  EXPECT_FALSE(std::filesystem::exists(terminal.home->path() / "History/JN7.his"));
  journal->vID(-1);
  EXPECT_EQ(terminal.journal(), (Texts{"7 one of 7", "8 one of 8"}));
  EXPECT_EQ(file(7), "");
  EXPECT_EQ(file(-1), "2026-01-01 00:00:00*,%$The history of account 7 was cleared\n");
  EXPECT_EQ(CJournal::cleared_account("The history of account 7 was cleared"), 7);
  EXPECT_EQ(CJournal::cleared_account("The history was cleared"), std::nullopt);
  log("general", -1);
  journal->ClearFile();
  EXPECT_TRUE(terminal.journal().empty());
  EXPECT_EQ(file(-1), "2026-01-01 00:00:00*,%$The history was cleared\n");
  EXPECT_NE(file(8), "");
  EXPECT_EQ(journal->FileName(12345), terminal.home->path().string() + "\\History\\JN12345.his");
}

}  // namespace
}  // namespace tutti::testing
