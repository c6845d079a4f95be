// The terminal without a screen, from its arguments to its exit status.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "core/stop_signals.h"
#include "core/texts.h"
#include "tests/support/command_line_rig.h"

namespace tutti::testing {
namespace {

using std::chrono::milliseconds;

// Every order of the second account is answered after half a minute.
constexpr auto slow_second =
    "sample_accounts = 3\n[[fault]]\nkind = \"delay\"\naccount = 500101\nseconds = 30\non = [\"open\"]\n";
constexpr auto buy_equal = "order --buy EURUSD --amount 3 --rule equal";

std::size_t count(const std::string& text, const std::string& piece) {
  return split(text, piece).size() - 1;
}

TEST(Tuttictl, ASignalEndsTheWaitAndKeepsWhatIsKnown) {
  struct Case {
    int signal;
    milliseconds at;  // 50: accounts are logging in; 2000: two of three orders are answered
    std::size_t unknown, positions;
  };
  for (const auto& [signal, at, unknown, positions] :
       {Case{SIGINT, milliseconds{50}, 0, 0}, Case{SIGTERM, milliseconds{2000}, 1, 3},
        Case{SIGHUP, milliseconds{2000}, 1, 3}}) {
    CommandLineRig rig{slow_second};
    rig.on_pause = [&, signal = signal, at = at] { rig.signal = rig.clock.elapsed() >= at ? signal : 0; };
    EXPECT_EQ(rig.run(buy_equal), 128 + signal);
    EXPECT_LE(rig.lasted, at + milliseconds{10});
    EXPECT_EQ(rig.out.empty(), unknown == 0) << rig.out;
    EXPECT_EQ(count(rig.out, "unknown\n"), unknown);
    rig.on_pause = nullptr;
    rig.signal = 0;
    rig.clock.advance(milliseconds{60'000});
    // What became of it is told once, and is no difference.
    const std::string known = " of account 500101 from the earlier run: Succeeded";
    EXPECT_EQ(rig.run("verify"), 0) << rig.out;
    EXPECT_EQ(count(rig.err, known), unknown) << rig.err;
    EXPECT_EQ(rig.run("journal 500101"), 0);
    EXPECT_EQ(count(rig.out, known), unknown) << rig.out;
    EXPECT_EQ(count(rig.out, "no result came: the outcome is unknown"), unknown) << rig.out;
    EXPECT_EQ(rig.run("--csv positions"), 0);
    EXPECT_EQ(count(rig.out, "EURUSD"), positions) << rig.out;
  }
}

TEST(Tuttictl, AReportThatCannotBeWrittenCostsNoData) {
  int gone[2];
  ASSERT_EQ(::pipe(gone), 0);
  ::close(gone[0]);
  const int full = ::open("/dev/full", O_WRONLY);
  struct Case {
    const char* words;
    int report_to, status;
    const char* message;
    const char* positions;
  };
  const StopSignals no_death_by_pipe;
  const std::string sends = "The command was carried out and saved, but its report can't be written: ";
  for (const auto& [words, report_to, status, message, positions] :
       {Case{"positions", gone[1], 0, nullptr, "0 positions\n"},
        Case{"positions", full, 3, nullptr, "0 positions\n"},
        Case{buy_equal, gone[1], 3, "Broken pipe\n", "3 positions\n"},
        Case{buy_equal, full, 3, "No space left on device\n", "3 positions\n"}}) {
    CommandLineRig rig{"sample_accounts = 3"};
    rig.report_to = report_to;
    EXPECT_EQ(rig.run(words), status) << words;
    EXPECT_EQ(rig.err, message == nullptr ? "" : sends + message);
    rig.report_to = -1;
    rig.run("positions");
    EXPECT_TRUE(rig.out.ends_with(positions)) << rig.out;
  }
  ::close(gone[1]);
  ::close(full);
}

// The reader of a pipe may stop reading without closing it.
TEST(Tuttictl, ASignalEndsTheWaitForAReader) {
  int stalled[2];
  ASSERT_EQ(::pipe2(stalled, O_NONBLOCK), 0);
  while (::write(stalled[1], "x", 1) == 1) {
  }
  CommandLineRig rig{"sample_accounts = 3"};
  rig.report_to = stalled[1];
  rig.on_stall = [&] { rig.signal = SIGTERM; };
  EXPECT_EQ(rig.run(buy_equal), 128 + SIGTERM);
  ::close(stalled[0]);
  ::close(stalled[1]);
  rig.on_stall = nullptr;
  rig.signal = 0;
  rig.report_to = -1;
  rig.clock.advance(milliseconds{1000});
  EXPECT_EQ(rig.run("positions"), 0);
  EXPECT_TRUE(rig.out.ends_with("3 positions\n")) << rig.out;
}

TEST(Tuttictl, BytesThatAreNoUtf8EndNothing) {
  CommandLineRig rig{"sample_accounts = 3"};
  rig.home.write("manage/savelvinfo.buf", "ALDER,ALDER01,500100\nM\xfcLLER,x,7\n");
  EXPECT_EQ(rig.run(std::string{"--json "} + buy_equal), 1);
  EXPECT_EQ(count(rig.out, "\"user\": \"M\xef\xbf\xbdLLER\""), 1u) << rig.out;
}

TEST(Tuttictl, WaitsByAClockThatNobodySets) {
  for (const auto step : {std::chrono::hours{1}, std::chrono::hours{-1}}) {
    CommandLineRig rig{"sample_accounts = 3\n[[fault]]\nkind = \"swallow\"\naccount = 500101\n"};
    bool set = false;
    rig.on_pause = [&] {
      if (!set && rig.clock.elapsed() > milliseconds{1000}) rig.clock.set_by(step);
      set = rig.clock.elapsed() > milliseconds{1000};
    };
    EXPECT_EQ(rig.run(std::string{"--timeout 5 "} + buy_equal), 1);
    EXPECT_EQ(count(rig.out, "unknown\n"), 1u) << rig.out;
    EXPECT_GE(rig.lasted, milliseconds{5000});
    EXPECT_LT(rig.lasted, milliseconds{6000});
  }
}

TEST(Tuttictl, RefusesWhatIsWrong) {
  struct Case {
    const char* words;
    const char* message;
  };
  CommandLineRig rig{"sample_accounts = 3"};
  for (const auto& [words, message] :
       {Case{"--timeout abc positions", "--timeout: must be a number of seconds from 0.1 to 3600"},
        Case{"--timeout nan positions", "--timeout: must be a number of seconds from 0.1 to 3600"},
        Case{"--timeout -1 positions", "--timeout: must be a number of seconds from 0.1 to 3600"},
        Case{"--timeout inf positions", "--timeout: must be a number of seconds from 0.1 to 3600"},
        Case{"order --buy EURUSD --amount 3 --rule 2", "--rule: 2 not in "},
        Case{"order --buy EURUSD --amount 3 --rule equal --accounts 500100,", "--accounts takes numbers"},
        Case{"order --buy EURUSD --amount 3 --rule equal --accounts 7",
             "Account 7 is not in the accounts list"},
        Case{"order --buy EURUSD --amount 1e3 --rule equal", "--amount: must be a number of lots above 0"},
        Case{"order --buy EURUSD --sell EURUSD --amount 3 --rule equal",
             "Exactly 1 option from [--buy,--sell]"},
        Case{"order --buy EUR --amount 3 --rule equal", "Symbol EUR is not carried by any connected account"},
        Case{"modify 5 --at 1.2", "No connected account has the order or ticket 5"},
        Case{"close --ticket 5", "No connected account has ticket 5"},
        Case{"cancel --order 5,x", "--order takes numbers with commas between them, not 5,x"},
        Case{"--csv verify", "--csv goes with"}, Case{"", ""}}) {
    EXPECT_EQ(rig.run(words), 2) << words;
    EXPECT_NE(rig.err.find(message), std::string::npos) << words << ": " << rig.err;
    EXPECT_EQ(rig.out, "") << words;
  }
}

}  // namespace
}  // namespace tutti::testing
