// What keeps the home folder's files whole and to the operator.

#include <fcntl.h>
#include <fmt/chrono.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

#include <nlohmann/json.hpp>

#include "accounts/saved_lists.h"
#include "apps/command_line.h"
#include "apps/embedded_dealer.h"
#include "apps/first_start.h"
#include "apps/terminal.h"
#include "core/core_dumps.h"
#include "core/descriptor.h"
#include "core/home_lock.h"
#include "core/standard_streams.h"
#include "core/stop_signals.h"
#include "dealer_rig.h"
#include "tests/support/command_line_rig.h"

namespace tutti::testing {
namespace {

namespace fs = std::filesystem;

TEST(FileWriter, AnAppendThatFindsNoRoomLeavesNoHalfLine) {
  const TemporaryFolder folder;
  folder.write("list", "one\n");
  const auto appended = [&] {
    const FullDisk full{10};
    return append_file(folder.path() / "list", "a line of more than ten bytes\n");
  }();
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
    fs::remove(home / "tutti.lock");
    EXPECT_TRUE(refusal().ends_with("process unknown")) << refusal();
    EXPECT_FALSE(fs::exists(home / "tutti.lock"));
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

// A terminal with three sample accounts in a folder of its own.
struct Opened {
  Opened() {
    options.home = folder.path();
    options.sample_accounts = 3;
  }
  auto open() {
    return Terminal::open(options, {prompt, sound, dialog, clock, {}},
                          [this](const TerminalOptions& home) { return EmbeddedDealer::open(home, clock); });
  }
  TemporaryFolder folder;
  RecordingPrompt prompt;
  RecordingSound sound;
  FakeFileDialog dialog;
  const ManualClock clock;
  TerminalOptions options;
};

TEST(Home, ATerminalRunsOnThePortsItIsGiven) {
  Opened desk;
  desk.options.home /= "home";
  desk.options.fresh = true;
  const auto terminal = desk.open();
  ASSERT_TRUE(terminal) << terminal.error().text();
  Main& main = (*terminal)->main();
  const AccountBook::Counts at_start = main.account_book().counts();
  EXPECT_EQ((std::array{at_start.all, at_start.connecting, at_start.connected}), (std::array{3, 3, 0}));
  EXPECT_TRUE((*terminal)->next_due());
  EXPECT_EQ((*terminal)->advance(0), 0u);
  main.accounts().mnuload_Click();
  main.accounts().Message("read me");
  EXPECT_EQ(desk.dialog.titles, std::vector<std::string>{"Load File"});
  EXPECT_EQ(desk.prompt.take_texts(), std::vector<std::string>{"read me"});
}

TEST(Home, AnEmptyOneAsksForAnAccountOrSamples) {
  constexpr int samples = 1, account = 2;
  const struct {
    std::string_view told;
    int answer;
    FirstStart asked;
    std::size_t accounts;
  } cases[] = {{"", samples, FirstStart::samples, 3},
               {"", account, FirstStart::own_account, 0},
               {"", RecordingPrompt::escape, FirstStart::own_account, 0},
               {"fresh", account, FirstStart::own_account, 0},
               {"list", account, FirstStart::nothing_to_ask, 1}};
  for (const auto& [told, answer, asked, accounts] : cases) {
    Opened desk;
    if (told == "list") desk.folder.write("manage/savelvinfo.buf", "ALDER,ALDER01,500100\n");
    desk.options.fresh = told == "fresh";
    desk.prompt.answers = {answer};
    EXPECT_EQ(ask_first(desk.prompt, desk.options), asked) << told << answer;
    EXPECT_EQ(desk.prompt.shown.empty(), asked == FirstStart::nothing_to_ask) << told;
    const auto terminal = desk.open();
    ASSERT_TRUE(terminal) << terminal.error().text();
    EXPECT_EQ((*terminal)->main().accounts().lvwClients.size(), accounts) << told << answer;
    EXPECT_TRUE((*terminal)->main().simulated());
  }
}

TEST(Home, FreshAsksBeforeABookIsThrownAway) {
  const TemporaryFolder folder;
  const struct {
    const char* typed;  // nullptr: there is no terminal
    bool fresh, yes, book;
    int status;  // 0: goes on
  } cases[] = {{nullptr, true, false, true, exit_status::usage},
               {"n\n", true, false, true, exit_status::some_refused},
               {"\n", true, false, true, exit_status::some_refused},
               {"yes\n", true, false, true, 0},
               {nullptr, true, true, true, 0},
               {nullptr, true, false, false, 0},
               {nullptr, false, false, true, 0}};
  for (const auto& one : cases) {
    TerminalOptions options;
    options.home = folder.path();
    options.fresh = one.fresh;
    options.yes = one.yes;
    fs::remove(folder.path() / "dealer-book.toml");
    if (one.book) folder.write("dealer-book.toml", "");
    const Descriptor keyboard{::posix_openpt(O_RDWR | O_NOCTTY)};
    ASSERT_TRUE(::grantpt(keyboard.get()) == 0 && ::unlockpt(keyboard.get()) == 0);
    const Descriptor input{::open(one.typed != nullptr ? ::ptsname(keyboard.get()) : "/dev/null", O_RDWR)};
    ASSERT_TRUE(one.typed == nullptr || keyboard.write(one.typed));
    Console console{input.get(), STDOUT_FILENO, STDERR_FILENO, [] { return false; }};
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(ask_for_fresh(options, console).value_or(0), one.status);
    const std::string said = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(said.empty(), one.status == 0 && one.typed == nullptr) << said;
  }
}

TEST(Home, ATerminalTellsOfADamagedLogAndOfRequestsOnTheirWay) {
  CommandLineRig desk{"sample_accounts = 1\nlogin_latency_ms = 0\n"};
  const TemporaryFolder& folder = desk.home;
  DealerConfig config = DealerConfig::sample(1);
  config.faults = {fault(FaultKind::delay, {FaultPoint::open}, 0, 1h)};
  std::int64_t due = 0;
  {
    DealerRig rig(config, desk.clock.now());
    ASSERT_TRUE(rig.server.keep_book(folder.path()));
    const auto seat = rig.trader(0);
    for (int sent = 0; sent < 2; ++sent) {
      DealerRig::send(seat, operation::sell, "EURUSD", 0.5);
      rig.run(0);
    }
    due = rig.server.requests().front().due.time_since_epoch().count() / 1000;
  }
  folder.write("dealer-book.log", folder.read("dealer-book.log") + "entry = {next_num");
  const std::string note = folder.path().string() +
                           "/dealer-book.log: line 4 was damaged and is left out; the file as it was is "
                           "dealer-book.log.damaged";
  EXPECT_EQ(desk.run("--json orders"), 0);
  EXPECT_EQ(desk.err, "{\"message\": \"Warning: " + note +
                          "\"}\n{\"message\": \"2 requests are still on their way at the dealing server: "
                          "--json names them\"}\n");
  EXPECT_NE(folder.read("History/JN-1.his").find(note), std::string::npos);
  const auto printed = nlohmann::json::parse(desk.out);
  EXPECT_TRUE(printed["orders"].empty());
  ASSERT_EQ(printed["in_flight"].size(), 2u);
  const nlohmann::json expected = {
      {"number", 10'000'001}, {"account", 500'100},
      {"request", "open"},    {"stage", "sent"},
      {"side", "sell"},       {"amount", 0.5},
      {"symbol", "EURUSD"},   {"reference", nullptr},
      {"price", nullptr},     {"due", fmt::format("{:%FT%T}.392Z", fmt::gmtime(due))}};
  EXPECT_EQ(printed["in_flight"][0], expected);
}

TEST(Home, AListThatCannotBeLookedAtIsNotTakenForMissing) {
  for (const char* list : {"savelvinfo.buf", "Acountinfo.buf"}) {
    CommandLineRig desk{"sample_accounts = 0"};
    const fs::path folder = desk.home.path() / "manage";
    desk.home.write("manage/other.buf", "");
    fs::create_symlink(list, folder / list);
    EXPECT_EQ(desk.run("accounts"), 3);
    EXPECT_NE(desk.err.find(list), std::string::npos) << desk.err;
    EXPECT_TRUE(fs::is_symlink(folder / list));
    EXPECT_EQ(std::distance(fs::directory_iterator{folder}, {}), 2);
  }
}

TEST(Home, SkippedLinesAreToldAndCount) {
  for (const bool skipped : {false, true}) {
    CommandLineRig desk{"sample_accounts = 1"};
    desk.home.write("manage/savelvinfo.buf",
                    std::string{"ALDER,ALDER01,500100\n"} + (skipped ? "short,line\n" : ""));
    for (const char* command : {"accounts", "verify"}) {
      EXPECT_EQ(desk.run(command), skipped ? 1 : 0) << desk.out;
      EXPECT_EQ(desk.err.find("lines 2 of savelvinfo.buf") != std::string::npos, skipped) << desk.err;
    }
  }
}

TEST(StandardStreams, AreOpenBeforeAnyFile) {
  const auto opens_well = [] {
    const int all[] = {0, 1, 2};
    for (const int fd : all)
      ::close(fd);
    open_standard_streams();
    bool open = true;
    for (const int fd : all)
      open = open && ::fcntl(fd, F_GETFD) != -1;
    const int next = ::open("/dev/null", O_RDONLY);
    ::_exit(open && next > 2 && ::write(1, "x", 1) == 1 ? 0 : 1);
  };
  EXPECT_EXIT(opens_well(), ::testing::ExitedWithCode(0), "");
}

TEST(StopSignals, TheFirstIsCaughtAndIgnoredOnesStayIgnored) {
  // Whoever started the tests may have had some of them ignored.
  for (const int signal : {SIGTERM, SIGINT, SIGPIPE})
    std::signal(signal, SIG_DFL);
  std::signal(SIGHUP, SIG_IGN);
  {
    const StopSignals signals;
    pollfd wakes{signals.descriptor(), POLLIN, 0};
    std::raise(SIGHUP);
    EXPECT_EQ(signals.caught() + ::poll(&wakes, 1, 0), 0);
    for (const int signal : {SIGTERM, SIGINT})
      std::raise(signal);
    EXPECT_EQ(signals.caught(), SIGTERM);
    EXPECT_EQ(::poll(&wakes, 1, 0), 1);
  }
  EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
  for (const int signal : {SIGTERM, SIGINT, SIGPIPE})
    EXPECT_EQ(std::signal(signal, SIG_DFL), SIG_DFL) << signal;
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
