#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <tl/expected.hpp>

#include "apps/console_prompt.h"
#include "apps/output.h"
#include "core/clock.h"
#include "core/home_lock.h"
#include "core/locale_port.h"
#include "dealer/dealing_server.h"
#include "shell/Main.h"

namespace tutti {

// What every command of the command line takes.
struct TerminalOptions {
  std::filesystem::path home;         // application folder
  std::filesystem::path dealer_file;  // empty: the sample market and accounts
  std::filesystem::path key_file;     // key of the account records; empty: where KeyFile looks for it
  bool fresh = false;                 // start the dealing server's book anew
  bool yes = false;                   // answer questions with yes
  std::string precision;              // decimals of shares for this run; empty: as the settings file has it
  OutputForm form = OutputForm::text;
  double timeout = 40.0;  // seconds to wait for logins, and again for answers
};

// Exit statuses of the command line.
namespace exit_status {
inline constexpr int all_accepted = 0;
inline constexpr int some_refused = 1;
inline constexpr int usage = 2;
inline constexpr int unreadable_data = 3;
}  // namespace exit_status

// A whole terminal without a screen: the embedded dealing server in real time, and the program on top of it.
class Terminal {
 public:
  // Locks the home folder, reads the configuration and the book, starts the program. Fails when another
  // terminal has the folder, or when data can't be read. A home folder without any saved account gets those
  // of the dealing server as its list.
  static tl::expected<std::unique_ptr<Terminal>, FileError> open(const TerminalOptions& options);
  ~Terminal();

  Main& main() { return *main_; }
  const DealingServer& server() const { return *server_; }
  const TerminalOptions& options() const { return options_; }

  // Runs until the condition holds or the time is over; true when it held.
  bool run_until(const std::function<bool()>& done);
  // Runs with every step of run_until, after events were delivered.
  std::function<void()> on_step;
  // Waits until no account is on its way any more; shows how far it is when standard error is a terminal.
  void log_in();
  // Gives up waiting for results; the journal then names what stays unknown.
  void journal_unanswered();
  // False, after a message, when one of these accounts is not in the accounts list.
  bool knows(const std::vector<std::int32_t>& accounts) const;
  // How many of these accounts, or of all when none is named, are not connected; says so when there are any.
  std::size_t tell_unconnected(const std::vector<std::int32_t>& accounts) const;
  // Writes the dealing server's book when it changed.
  tl::expected<void, FileError> save_book();

 private:
  explicit Terminal(TerminalOptions options);
  tl::expected<void, FileError> start();
  tl::expected<void, FileError> write_first_list();
  void step();
  std::filesystem::path book_file() const { return options_.home / "dealer-book.toml"; }
  bool logins_done(std::size_t& done) const;

  TerminalOptions options_;
  std::optional<HomeLock> lock_;  // let go last
  SystemClock clock_;
  ConsolePrompt prompt_;
  SilentSound sound_;
  ProcessLocale locale_;
  NoFileDialog file_dialog_;
  std::unique_ptr<DealingServer> server_;
  std::unique_ptr<Main> main_;
  std::uint64_t saved_revision_ = 0;
};

}  // namespace tutti
