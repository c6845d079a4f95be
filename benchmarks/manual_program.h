#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "benchmarks/quiet_ports.h"
#include "benchmarks/scratch_folder.h"
#include "core/clock.h"
#include "core/locale_port.h"
#include "dealer/link/dealing_server.h"
#include "ledger/ledger_writer.h"
#include "ledger/no_ledger.h"
#include "shell/Main.h"

namespace tutti::bench {

// The program without a screen, in a folder of its own, on a dealing server that keeps no book; its clock is
// turned as fast as it goes.
class ManualProgram {
 public:
  enum class Keeps : std::uint8_t { nothing, ledger };

  // So many of the sample accounts are saved, to be logged in at the start, and carry so many symbols.
  ManualProgram(int accounts, int symbols);
  // The same with other accounts. `keeps`: whether requests are stored, in the files of a real home.
  ManualProgram(DealerConfig config, Keeps keeps);

  // Starts it, and lets it run until every account is in the market order window, which is the last thing its
  // data do.
  Main& start();
  // Throws when that takes a minute by its clock.
  void run_until(const std::function<bool()>& done);

  // Moves the market by one step; its news wait in the queue, unless they are taken along.
  void step_market();
  void deliver_all() { main_->deliver_events(); }
  // Runs as a window does, a few events at a time, until it is done; answers the longest turn in nanoseconds,
  // what the dealing server does between two of them not counted.
  double longest_turn_until(const std::function<bool()>& done);
  // All that was told to the ledger is on the disk.
  void settle_ledger();

  Main& main() { return *main_; }
  const std::filesystem::path& home() const { return home_.path(); }

 private:
  ScratchFolder home_;
  ManualClock clock_;
  QuietPrompt prompt_;
  QuietSound sound_;
  ProcessLocale locale_;
  QuietFileDialog file_dialog_;
  NoLedger no_ledger_;
  std::unique_ptr<LedgerWriter> ledger_;
  UnkeptStop stop_;
  DealingServer server_;
  std::unique_ptr<Main> main_;
};

}  // namespace tutti::bench
