#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/locale_port.h"
#include "dealer/link/dealing_server.h"
#include "ledger/no_ledger.h"
#include "shell/Main.h"
#include "tests/support/recording_ports.h"
#include "tests/support/temporary_folder.h"

namespace tutti::testing {

using namespace std::chrono_literals;

using Texts = std::vector<std::string>;

Texts sorted(Texts texts);
// The cells with "|" between them.
std::string row_text(const Row& row);
Texts rows_of(const RowList& list);

// While it lives, no file of this process grows beyond so many bytes.
class FullDisk {
 public:
  explicit FullDisk(std::size_t size);
  ~FullDisk();
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
};

// The whole terminal against the embedded dealing server, under a clock that stands still until it is moved.
class TestTerminal {
 public:
  explicit TestTerminal(DealerConfig config = DealerConfig::sample());
  // A second start in the same folder is made with another object on it.
  TestTerminal(DealerConfig config, std::shared_ptr<TemporaryFolder> folder);

  // Writes the accounts of the configuration as the saved list. To be called before start.
  void save_accounts();
  tl::expected<void, FileError> start();
  // Moves the clock in small steps, delivering what happens.
  void run(std::chrono::milliseconds time);
  // save_accounts, start, and time enough for every login.
  void start_logged_in();

  Row& client(std::int32_t account);                       // row of the accounts list
  void note(std::int32_t account, std::string_view text);  // into its Notes
  Row* order_row(std::int32_t account);      // row of the market order window, nullptr when none
  std::string result(std::int32_t account);  // its Result column
  Texts journal();                           // "account message", oldest first
  bool journaled(const std::string& line);   // the journal has it
  Texts take_messages();                     // queued messages, which are dismissed

  std::shared_ptr<TemporaryFolder> home;
  ManualClock clock;
  RecordingPrompt prompt;
  RecordingSound sound;
  ProcessLocale locale;
  FakeFileDialog file_dialog;
  NoLedger ledger;
  UnkeptStop stop;
  DealingServer server;
  ServerSide behind;           // what start() puts behind the clients: the server
  std::unique_ptr<Main> main;  // from start() on
};

}  // namespace tutti::testing
