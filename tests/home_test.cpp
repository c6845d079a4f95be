// What keeps the home folder's files whole and to the operator.

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "accounts/saved_lists.h"
#include "apps/terminal.h"
#include "core/core_dumps.h"
#include "core/home_lock.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {
namespace {

namespace fs = std::filesystem;

TEST(SavedLists, AreThereForTheOperatorOnly) {
  const TemporaryFolder folder;
  folder.write("manage/savelvinfo.buf", "ann,secret,5");
  fs::permissions(folder.path() / "manage/savelvinfo.buf", fs::perms{0644});
  fs::permissions(folder.path() / "manage", fs::perms{0755});
  const Paths paths{folder.path()};
  const TextFile files{paths};
  const SavedLists lists{files, paths};
  const mode_t mask = ::umask(0);
  ASSERT_TRUE(lists.append(lists.all(), {"bob", "secret", 6}));
  ASSERT_TRUE(lists.update(lists.connected(), {"bob", "secret", 6}));
  ::umask(mask);
  EXPECT_EQ(folder.read("manage/savelvinfo.buf"), "ann,secret,5\nbob,secret,6\n");
  for (const auto& [name, mode] : {std::pair{"manage", 0700u}, std::pair{"manage/savelvinfo.buf", 0600u},
                                   std::pair{"manage/saveconnected.buf", 0600u}})
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder.path() / name).permissions()), mode) << name;
}

TEST(FileWriter, AnAppendThatFindsNoRoomLeavesNoHalfLine) {
  const TemporaryFolder folder;
  folder.write("list", "one\n");
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  ::signal(SIGXFSZ, SIG_IGN);
  const rlimit tight{10, before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &tight);
  const auto appended = append_file(folder.path() / "list", "a line of more than ten bytes\n");
  ::setrlimit(RLIMIT_FSIZE, &before);
  ::signal(SIGXFSZ, SIG_DFL);
  EXPECT_FALSE(appended);
  EXPECT_EQ(folder.read("list"), "one\n");
}

TEST(Home, HasOneTerminalAtATime) {
  const TemporaryFolder folder;
  const fs::path home = folder.path() / "home";
  const auto refusal = [&] {
    const auto lock = HomeLock::take(home);
    return lock ? std::string{} : lock.error().text();
  };
  {
    const auto mine = HomeLock::take(home);
    ASSERT_TRUE(mine) << mine.error().text();
    EXPECT_TRUE(refusal().ends_with("process " + std::to_string(::getpid()))) << refusal();
  }
  EXPECT_EQ(refusal(), "");

  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const auto theirs = HomeLock::take(home);
    (void)!::write(ready[1], "x", 1);
    for (;;)
      ::pause();
  }
  char sign = 0;
  ASSERT_EQ(::read(ready[0], &sign, 1), 1);
  EXPECT_TRUE(refusal().ends_with("process " + std::to_string(child))) << refusal();
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(refusal(), "");
  ::close(ready[0]);
  ::close(ready[1]);
}

TEST(Home, ATerminalRunsOnThePortsItIsGiven) {
  const TemporaryFolder folder;
  RecordingPrompt prompt;
  RecordingSound sound;
  FakeFileDialog dialog;
  TerminalOptions options;
  options.home = folder.path() / "home";
  options.fresh = true;
  options.sample_accounts = 3;
  const auto terminal = Terminal::open(options, {prompt, sound, dialog});
  ASSERT_TRUE(terminal) << terminal.error().text();
  Main& main = (*terminal)->main();
  const frmMain::Connections at_start = main.accounts().connections();
  EXPECT_EQ((std::array{at_start.all, at_start.connecting, at_start.connected}), (std::array{3, 3, 0}));
  EXPECT_TRUE((*terminal)->next_due());
  EXPECT_EQ((*terminal)->advance(0), 0u);
  main.accounts().mnuload_Click();
  main.accounts().Message("read me");
  EXPECT_EQ(dialog.titles, std::vector<std::string>{"Load File"});
  EXPECT_EQ(prompt.take_texts(), std::vector<std::string>{"read me"});
}

TEST(BrokerCard, HoldsWhatTheFilesHold) {
  const TemporaryFolder folder;
  const auto read = [&] {
    const BrokerCard card = BrokerCard::read(Paths{folder.path()});
    return card.name + "|" + card.web + "|" + card.email + "|" + card.logo.filename().string();
  };
  EXPECT_EQ(read(), "|||");
  folder.write("manage/Dat.cmo", "Corner House \r\nwww.example.com\r\n");
  folder.write("manage/UFD.JPG", "");
  EXPECT_EQ(read(), "Corner House|www.example.com||UFD.JPG");
  folder.write("manage/Dat.cmo", "A\n\n desk@example.com  ");
  EXPECT_EQ(read(), "A||desk@example.com|UFD.JPG");
}

TEST(CoreDumps, AreOffOnceForbidden) {
  const auto dies_well = [] {
    forbid_core_dumps();
    rlimit limit{1, 1};
    ::getrlimit(RLIMIT_CORE, &limit);
    ::_exit(limit.rlim_max == 0 && ::prctl(PR_GET_DUMPABLE) == 0 ? 0 : 1);
  };
  EXPECT_EXIT(dies_well(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tutti::testing
