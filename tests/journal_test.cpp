#include "core/time_texts.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {
namespace {

struct JournalTest : ::testing::Test {
  JournalTest() {
    if (!terminal.start()) ADD_FAILURE() << "not started";
    journal = &terminal.main->journal();
    window = &terminal.main->journal_window();
  }
  void log(const char* message, std::int32_t account) { terminal.main->general().log(message, account); }

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
  EXPECT_EQ(terminal.home->read("History/JN12345.his"), "2026-01-01 00:00:00*,%$first\n");
  EXPECT_EQ(terminal.home->read("History/JN7.his"), "2025-12-31 20:31:01*,%$second\n");
  for (int i = 2; i < 65'537; ++i)  // rows alone; their counter wraps
    window->Add("row alone", 7, "");
  EXPECT_EQ(terminal.home->read("History/JN7.his"), "2025-12-31 20:31:01*,%$second\n");
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
  EXPECT_TRUE(terminal.home->read("History/JN7.his").ends_with("00:00:01*,%$*, %$*, %$\n"));
}

TEST_F(JournalTest, LinesThatCannotBeWrittenAreToldOnce) {
  Texts told;
  terminal.main->general().outside = [&](std::string_view text) { told.emplace_back(text); };
  std::filesystem::create_directories(terminal.home->path() / "History/JN7.his");
  const frmMdiNew& status = terminal.main->window();
  log("one", 8);
  EXPECT_TRUE(told.empty() && status.warning_pane().empty());
  for (int i = 0; i < 3; ++i)
    log("two", 7);
  ASSERT_EQ(told.size(), 1u);
  EXPECT_NE(told[0].find("JN7.his"), std::string::npos) << told[0];
  EXPECT_EQ(status.warning_pane(), told[0]);
  EXPECT_EQ(terminal.journal().size(), 4u);
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
  EXPECT_EQ(journal->FileName(12345), terminal.home->path().string() + "\\History\\JN12345.his");
}

}  // namespace
}  // namespace tutti::testing
