#pragma once

#include <functional>
#include <memory>
#include <string>

#include "apps/terminal.h"
#include "benchmarks/quiet_ports.h"
#include "benchmarks/scratch_folder.h"
#include "core/clock.h"

namespace tutti::bench {

// 21 symbols of 500 accounts, of which every other one moves with every tick.
inline constexpr const char* no_ticks =
    "sample_accounts = 500\ntick_interval_ms = 3600000\norder_latency_ms = 1\n";
inline constexpr const char* slow_ticks = "sample_accounts = 500\norder_latency_ms = 1\n";
inline constexpr const char* storm = "sample_accounts = 500\ntick_interval_ms = 52\n";

// The program in real time on its own dealing server, with all its files in a folder of its own. Its accounts
// log in by themselves once it runs. Nobody is asked anything.
class HomeProgram {
 public:
  // `dealer`: what the server's configuration file says; empty: the demonstration. `where`: its folder is in.
  explicit HomeProgram(const std::string& dealer,
                       const std::filesystem::path& where = std::filesystem::temp_directory_path());

  // Starts it again with the files that it has, once it was ended.
  void open();
  void close();
  Terminal& terminal() { return *terminal_; }
  Main& main() { return terminal_->main(); }
  const Clock& clock() const { return clock_; }
  QuietFileDialog& files() { return files_; }
  const std::filesystem::path& home() const { return home_.path(); }
  // Every account can be traded on.
  bool logged_in();
  // The form is filled in for a market order over all accounts, and the shares are computed.
  void distribute(const char* lots);

  // Runs it without a screen; throws when that takes longer than a minute.
  void run_until(const std::function<bool()>& done);
  void run_for(std::chrono::milliseconds time);

 private:
  ScratchFolder home_;
  TerminalOptions options_;
  SystemClock clock_;
  QuietPrompt nobody_;
  QuietSound silence_;
  QuietFileDialog files_;
  std::unique_ptr<Terminal> terminal_;
};

}  // namespace tutti::bench
