#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "apps/terminal.h"
#include "benchmarks/quiet_ports.h"
#include "benchmarks/scratch_folder.h"
#include "core/clock.h"
#include "gui/kit/heartbeat.h"
#include "gui/kit/screen.h"
#include "gui/shell/frmMdiNew_window.h"

namespace tutti::bench {

// The program as the operator has it, in real time on its own dealing server: 500 accounts, which log in by
// themselves, and the main window with all panes. Wants the toolkit's application. Nobody is asked anything.
class WholeProgram {
 public:
  // `dealer`: what the server's configuration file says; empty: the demonstration.
  explicit WholeProgram(const std::string& dealer);
  ~WholeProgram();

  Main& main() { return terminal_->main(); }
  Screen& screen() { return screen_; }
  Heartbeat& heartbeat() { return *heartbeat_; }
  FrmMdiNewWindow& window() { return *window_; }

  // Makes the main window, in place of one that is there, until the accounts list is painted.
  void open_window();
  void close_window();
  // Starts the heartbeat and waits until every account can be traded on.
  void log_in();
  // What an operator does, as an event of its own.
  void act(std::function<void()> what);
  // The toolkit's loop; throws when it takes longer than a minute.
  void run_until(const std::function<bool()>& done);
  void run_for(std::chrono::milliseconds time);
  // A market order over all accounts until every answer is there.
  void order(const char* lots);

  // The longest turn of the loop since the last call, in nanoseconds of the thread's processor time.
  double take_longest_slice() { return std::exchange(longest_slice_, 0.0); }

 private:
  ScratchFolder home_;
  SystemClock clock_;
  Screen screen_;
  QuietPrompt nobody_;
  QuietSound silence_;
  QuietFileDialog files_;
  DesktopPrompt prompt_{screen_};
  DesktopSound sound_{home_.path()};
  std::unique_ptr<Terminal> terminal_;
  std::unique_ptr<FrmMdiNewWindow> window_;
  std::unique_ptr<Heartbeat> heartbeat_;
  double longest_slice_ = 0.0;
};

}  // namespace tutti::bench
