#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "apps/tuttictl.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {

// Runs tuttictl in this process, each run on the home folder that the runs before have left, in time that
// goes by only while it waits.
class CommandLineRig {
 public:
  // `dealer` is a configuration of the dealing server; empty: the sample.
  explicit CommandLineRig(const std::string& dealer = {});

  // Runs it with these words, and answers the exit status.
  int run(const std::string& words);

  TemporaryFolder home;
  ManualClock clock;
  std::function<void()> on_pause;  // runs with every pause
  std::function<void()> on_stall;  // runs while nobody reads the report
  int signal = 0;                  // that came
  bool create = true;              // --create is given
  bool with_dealer;                // --dealer is given
  std::string typed;               // on standard input
  int report_to = -1;              // descriptor to write the report to; -1: `out`
  std::chrono::milliseconds lasted{0};
  std::string out;
  std::string err;
};

}  // namespace tutti::testing
