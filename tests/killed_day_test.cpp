// A scripted day that is killed at a drawn write, or whose machine loses its power there, and gone on with by
// a script that asks for each of its acts again until it is done.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>

#include "apps/missing_lines.h"
#include "core/texts.h"
#include "ledger/ledger_start.h"
#include "tests/support/command_line_rig.h"
#include "tests/support/kill_point.h"
#include "tests/support/ledger_home.h"
#include "tests/support/unsynced_files.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;

// An account in dealing, and one that may not trade; what a fault would refuse is not refused once more by a
// server that was started again.
constexpr auto dealer = R"(
sample_accounts = 15
[[fault]]
kind = "pending"
seconds = 1
account = 500102
on = ["open"]
)";

const Texts acts{
    "order --buy EURUSD --amount 1.5 --rule equal --accounts 500100,500101,500102,500104,500114 --id open",
    "entry EURUSD --type buy-limit --amount 0.5 --at 1.01 --rule equal --accounts "
    "500100,500101,500103,500104,500114 "
    "--id wait",
    "--yes close --symbol EURUSD --accounts 500100,500101 --id close",
    "--yes cancel --symbol EURUSD --accounts 500104 --id cancel",
};

struct Day {
  CommandLineRig rig{dealer};

  // The acts, one after the other; answers how each ended.
  Texts run() {
    Texts out;
    for (const std::string& act : acts)
      out.push_back(std::to_string(rig.run(act)));
    return out;
  }
  // Lines of the histories that tell of an order by its number, and stand there twice.
  Texts told_twice() const {
    Texts out;
    for (const auto& file : std::filesystem::directory_iterator{rig.home.path() / "History"}) {
      std::set<std::string> told;
      const std::string history = rig.home.read("History/" + file.path().filename().string());
      for (const std::string_view line : split(history, "\n"))
        history_line::take_apart(line, [&](std::string_view time, std::string_view message) {
          const std::string text = told_line(time, message).text;
          const bool numbered = text.starts_with("Order #") || text.starts_with("Order number #") ||
                                text.starts_with("Postion ") || text.starts_with("Ticket #");
          if (numbered && !told.insert(text).second) out.push_back(text);
        });
    }
    return out;
  }
  // What accounts hold in the end, without the numbers and times that differ from run to run.
  Texts holds() {
    Texts out;
    EXPECT_EQ(rig.run("--csv net --by account"), 0) << rig.err;
    for (const std::string_view line : split(rig.out, "\n")) {
      const auto cells = split(line, ",");
      if (cells.size() > 3)
        out.push_back(fmt::format("{}", fmt::join(cells.begin(), cells.begin() + 3, ",")));
    }
    EXPECT_EQ(rig.run("--csv orders"), 0) << rig.err;
    out.push_back(std::to_string(split(rig.out, "\n").size()) + " orders");
    return out;
  }
};

// The end of the program alone, or of the machine that it runs on; the dealing server is another one.
enum class Ends : std::uint8_t { program, machine };

// How a child that runs the day ends; -1: it was killed at its `at`-th write. With 0 it tells how many there
// are.
long run_child(Day& day, long at, Ends what = Ends::program, unsigned seed = 0) {
  int ends[2];
  if (::pipe(ends) != 0) return -2;
  const pid_t child = ::fork();
  if (child == 0) {
    UnsyncedFiles files{day.rig.home.path(), seed};
    what == Ends::machine ? cut_power_at_write(at, files) : kill_at_write(at);
    day.run();
    const long count = writes_counted();
    (void)!::write(ends[1], &count, sizeof(count));
    ::_exit(0);
  }
  ::close(ends[1]);
  long count = -1;
  const bool told = ::read(ends[0], &count, sizeof(count)) == sizeof(count);
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  UnsyncedFiles::take_effect(day.rig.home.path());
  return told ? count : -1;
}

// What is left of left.log is of an earlier start of the machine.
void start_machine_again(const std::filesystem::path& home) {
  const auto left = LeftLog::read(left_log_path(home));
  if (!left) return;
  LeftLog::Head head = left->head;
  head.boot = "earlier";
  auto log = LeftLog::begin(left_log_path(home), head);
  ASSERT_TRUE(log);
  for (const RequestId id : left->left)
    log->add(id);
}

// Each test takes a fifth of the seeds, since all take their time.
constexpr int tests = 5;

int asked_or_30(const char* variable) {
  const char* asked = std::getenv(variable);
  return asked == nullptr ? 30 : std::atoi(asked);
}

void end_and_go_on(Ends what, int first_seed, int seeds) {
  Day whole;
  whole.rig.run("accounts");
  const long writes = run_child(whole, 0);
  ASSERT_GT(writes, 100);
  const Texts wanted = whole.holds();
  for (int seed = first_seed; seed <= seeds; seed += tests) {
    SCOPED_TRACE(fmt::format("seed {}", seed));
    std::mt19937 random{static_cast<unsigned>(seed)};
    Day day;
    day.rig.run("accounts");
    const long at = std::uniform_int_distribution<long>{1, writes}(random);
    SCOPED_TRACE(fmt::format("write {} of {}", at, writes));
    EXPECT_LE(run_child(day, at, what, static_cast<unsigned>(seed)), writes + 50);
    if (what == Ends::machine) start_machine_again(day.rig.home.path());
    day.rig.clock.advance(60s);
    // What is unknown is asked for with the login, and then all are of one mind before anything is sent.
    if (what == Ends::machine) {
      day.rig.run("accounts");
      EXPECT_EQ(day.rig.run("verify"), 0) << day.rig.out << day.rig.err;
      EXPECT_EQ(day.rig.run("ledger check"), 0) << day.rig.out << day.rig.err;
    }
    for (const std::string& act : acts) {
      // What is unknown is asked for with the login; what the server never took leaves with the second.
      const int first = day.rig.run(act);
      const int second = day.rig.run(act);
      EXPECT_TRUE(second <= 1) << act << ": " << first << ", " << second << "\n"
                               << day.rig.out << day.rig.err;
    }
    EXPECT_EQ(day.holds(), wanted);
    EXPECT_EQ(day.rig.run("unknown"), 0) << day.rig.out;
    EXPECT_EQ(day.rig.run("verify"), 0) << day.rig.out << day.rig.err;
    EXPECT_EQ(day.rig.run("ledger check"), 0) << day.rig.out;
    EXPECT_EQ(day.told_twice(), Texts{});
    if (::testing::Test::HasFailure()) break;
  }
}

// Seeds: TUTTI_KILLS, 30 when it is not set.
struct KilledDays : ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Fifth, KilledDays, ::testing::Range(1, tests + 1));

TEST_P(KilledDays, EndAsIfNothingHadHappened) {
  end_and_go_on(Ends::program, GetParam(), asked_or_30("TUTTI_KILLS"));
}

// Seeds: TUTTI_CUTS, 30 when it is not set.
struct PowerCuts : ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Fifth, PowerCuts, ::testing::Range(1, tests + 1));

TEST_P(PowerCuts, EndAsIfNothingHadHappened) {
  end_and_go_on(Ends::machine, GetParam(), asked_or_30("TUTTI_CUTS"));
}

}  // namespace
}  // namespace tutti::testing
