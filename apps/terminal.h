#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "apps/line_server.h"
#include "apps/terminal_control.h"
#include "core/clock.h"
#include "core/file_dialog.h"
#include "core/home_lock.h"
#include "core/locale_port.h"
#include "core/prompt.h"
#include "core/sound_port.h"
#include "ledger/copy/ledger_copier.h"
#include "ledger/ledger_watch.h"
#include "ledger/ledger_writer.h"
#include "sessions/contract/backend.h"
#include "shell/Main.h"

namespace tutti {

// What every program that opens a terminal may be told.
struct TerminalOptions {
  std::filesystem::path home;         // application folder
  std::filesystem::path dealer_file;  // empty: the sample market and accounts
  std::filesystem::path key_file;     // key of the account records; empty: where KeyFile looks for it
  bool create = false;                // make the home folder where there is none; whoever opens it has asked
  bool fresh = false;                 // start the dealing server's book anew; whoever sets it has asked
  bool yes = false;                   // answer questions with yes
  int sample_accounts = 12;           // of the sample, while no dealer file is named
  bool samples = true;                // a home without saved accounts gets those of the dealing server
  bool demo = false;                  // a busy day on 500 accounts instead of the sample
  std::string precision;              // decimals of shares for this run; empty: as the settings file has it
};

// The operator's eyes, ears and hands, and the time. They outlive the terminal.
struct OperatorPorts {
  Prompt& prompt;
  SoundPort& sound;
  FileDialog& file_dialog;
  const Clock& clock;
  std::function<void(std::string_view)> tell;  // what must be said outside of the windows too, line by line
  std::string program = "tutti";               // its name, as the ledger notes who sent
  std::function<bool()> try_again = {};        // while another terminal has the folder; see HomeLock::take
};

// Exit statuses of the command line. Where several hold, the signal comes before data, usage, what is unknown
// and what was refused, in this order.
namespace exit_status {
inline constexpr int all_accepted = 0;
inline constexpr int some_refused = 1;  // or left out
inline constexpr int usage = 2;
inline constexpr int unreadable_data = 3;
inline constexpr int some_unknown = 4;  // no answer came: it may have been executed
inline constexpr int signalled = 128;   // more by the number of the signal that ended the program
}  // namespace exit_status

// A whole terminal in real time: what stands behind the clients, and the program on top of it. Whoever opens
// it brings the ports to the operator, and shows what waits in the message queue.
class Terminal {
 public:
  // Makes what stands behind the clients, from the files in the home folder, which nobody else has by then.
  using Opener = std::function<tl::expected<std::unique_ptr<Backend>, FileError>(const TerminalOptions&)>;

  // Locks the home folder, opens what stands behind the clients, starts the program. Fails when another
  // terminal has the folder, or when data can't be read.
  static tl::expected<std::unique_ptr<Terminal>, FileError> open(const TerminalOptions& options,
                                                                 OperatorPorts ports, const Opener& opener);
  ~Terminal();
  // Whether a home folder has no saved account yet.
  static tl::expected<bool, FileError> is_new(const std::filesystem::path& home);

  Main& main() { return *main_; }
  // Has all that was told to the ledger written; why not, where it can't be.
  tl::expected<void, FileError> keep();
  const TerminalOptions& options() const { return options_; }

  // Takes what other programs ask of this terminal from now on, through a socket in its home folder;
  // `occupied` as TerminalControl takes it. It goes with the terminal.
  tl::expected<void, FileError> listen(std::function<bool()> occupied);

  // Brings the backend up to the clock, delivers up to `limit` events and runs the timers that are due;
  // answers how many events were delivered. As many as the limit: there may be more.
  std::size_t advance(std::size_t limit = std::numeric_limits<std::size_t>::max());
  // When the backend next has something to do by itself; nothing while only an operation of the program can
  // change that.
  std::optional<TimePoint> next_due() const;

  // Closes the backend at the end of the program, and has the ledger written to its end. What a crash leaves
  // is taken up all the same.
  tl::expected<void, FileError> close();

 private:
  Terminal(TerminalOptions options, OperatorPorts ports);
  tl::expected<void, FileError> start(const Opener& opener);
  tl::expected<void, FileError> write_first_list();
  // After a message for the operator, when the ledger of the last run has lost its end.
  tl::expected<void, FileError> open_ledger();
  void tell_notices();
  // Adds what the last run's histories lack, and says in the journal how far the ledger is.
  void begin_journal();
  void anchor_journal(LedgerFile& file);
  // Says it with every new day in UTC.
  void anchor_new_day();
  // Says it once everything else is written. Whoever has no time for that leaves it to the next start.
  void end_journal();

  TerminalOptions options_;
  std::optional<HomeLock> lock_;  // let go last
  OperatorPorts ports_;
  ProcessLocale locale_;
  std::unique_ptr<Backend> backend_;
  std::unique_ptr<LedgerWriter> ledger_;
  std::unique_ptr<LedgerCopier> copier_;  // where the home says that its ledger is copied
  std::uint64_t kept_ = 0;                // as the backend was told last
  LedgerWatch reads_{options_.home, options_.key_file};
  std::unique_ptr<StopFile> stop_;
  std::unique_ptr<Main> main_;
  std::optional<TerminalControl> control_;
  std::optional<LineServer> listens_;
  bool whole_ = true;                 // nothing is known to be missing in the histories
  std::chrono::sys_days anchored_{};  // the day in UTC on which the journal was told last
};

}  // namespace tutti
