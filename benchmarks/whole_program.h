#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "benchmarks/home_program.h"
#include "gui/kit/heartbeat.h"
#include "gui/kit/screen.h"
#include "gui/shell/frmMdiNew_window.h"

namespace tutti::bench {

// The program as the operator has it: 500 accounts, and the main window with all panes. Wants the toolkit's
// application.
class WholeProgram {
 public:
  explicit WholeProgram(const std::string& dealer) : program_(dealer) {}
  ~WholeProgram();

  Main& main() { return program_.main(); }
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
  void distribute(const char* lots);
  // A market order over all accounts until every answer is there.
  void order(const char* lots);

  // The longest turn of the loop since the last call, in nanoseconds of the thread's processor time.
  double take_longest_slice() { return std::exchange(longest_slice_, 0.0); }

 private:
  HomeProgram program_;
  Screen screen_;
  DesktopPrompt prompt_{screen_};
  DesktopSound sound_{program_.home()};
  std::unique_ptr<FrmMdiNewWindow> window_;
  std::unique_ptr<Heartbeat> heartbeat_;
  double longest_slice_ = 0.0;
};

}  // namespace tutti::bench
