// The dealing server as a process: its folder, its end, and what a terminal finds there afterwards.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "apps/server/dealer_process.h"
#include "core/file_writer.h"
#include "fix/client/fix_backend.h"
#include "tests/dealer_rig.h"
#include "tests/support/temporary_folder.h"

namespace tutti {
namespace {

DealerOptions options_in(const std::filesystem::path& home) {
  DealerOptions options;
  options.home = home;
  options.port = 0;
  return options;
}

// A server that runs on a thread of its own until it is told to stop.
class Running {
 public:
  explicit Running(const DealerOptions& options) {
    auto opened = DealerProcess::open(options, clock_, [this](std::string_view text) {
      const std::lock_guard lock(mutex_);
      log_.emplace_back(text);
    });
    EXPECT_TRUE(opened) << opened.error();
    process_ = std::move(*opened);
    thread_ = std::thread([this] { saved_ = process_->run([this] { return stop_.load(); }).has_value(); });
  }
  ~Running() { stop(); }
  // True when its book was saved.
  bool stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    return saved_;
  }
  Words log() {
    const std::lock_guard lock(mutex_);
    return log_;
  }
  const DealerProcess& process() const { return *process_; }

 private:
  SystemClock clock_;
  std::mutex mutex_;
  Words log_;
  std::atomic<bool> stop_ = false;
  std::atomic<bool> saved_ = false;
  std::unique_ptr<DealerProcess> process_;
  std::thread thread_;
};

// One terminal's end, which waits on the wire's word alone.
class RunningClient {
 public:
  explicit RunningClient(const DealerProcess& server) {
    BrokerProfile profile;
    profile.connection.peer = {"127.0.0.1", server.port(), Peer::Proof::pinned, "", "", server.fingerprint()};
    backend_ = std::make_unique<FixBackend>(std::move(profile), network_, clock_);
    backend_->set_wake([this] {
      const std::lock_guard lock(mutex_);
      rung_ = true;
      changed_.notify_all();
    });
    network_.start();
    const AccountConfig account = DealerConfig::sample().accounts[0];
    const LoginData login{account.user, account.password, account.number, {}};
    client = backend_->make_client(login);
    client->set_sink(&seen);
    client->SetLoginData(login);
    client->Login();
  }
  ~RunningClient() {
    client.reset();
    network_.stop();
  }
  // True once the event was told.
  bool hears(const std::string& event) {
    for (const auto begun = clock_.elapsed(); clock_.elapsed() - begun < std::chrono::seconds{20};) {
      backend_->advance();
      while (backend_->events()[0]->deliver_next()) {
      }
      const auto at = std::find(seen.events.begin(), seen.events.end(), event);
      if (at != seen.events.end()) {
        seen.events.erase(seen.events.begin(), at + 1);
        return true;
      }
      std::unique_lock lock(mutex_);
      if (!changed_.wait_for(lock, std::chrono::seconds{20}, [this] { return rung_; })) return false;
      rung_ = false;
    }
    return false;
  }

  DealerRecorder seen;
  std::unique_ptr<ClientAPI> client;

 private:
  SystemClock clock_;
  AsioNetwork network_;
  std::unique_ptr<FixBackend> backend_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool rung_ = false;
};

TEST(FixProcess, KeepsItsBookItsEraAndItsCertificateOverARestart) {
  const testing::TemporaryFolder home;
  const DealerOptions options = options_in(home.path());
  const RequestId id = next_id();
  BookEra era = 0;
  std::string fingerprint;
  {
    Running server(options);
    fingerprint = server.process().fingerprint();
    RunningClient terminal(server.process());
    ASSERT_TRUE(terminal.hears("all"));
    era = terminal.client->Era();
    EXPECT_NE(era, 0U);
    const std::int32_t symbol = terminal.client->FindSymbol("EURUSD")->id;
    EXPECT_EQ(terminal.client->NewMarketOrder(buy, symbol, 0.5, "", "", id), request::taken);
    ASSERT_TRUE(terminal.hears("order 1"));
    EXPECT_FALSE(DealerProcess::open(options, SystemClock{}, [](std::string_view) {}))
        << "two servers on one book would overwrite each other";
    EXPECT_TRUE(server.stop());
    EXPECT_TRUE(terminal.hears("dropped"));
    EXPECT_EQ(server.log(), Words{});
  }
  Running server(options);
  EXPECT_EQ(server.process().fingerprint(), fingerprint) << "terminals have pinned it";
  RunningClient terminal(server.process());
  ASSERT_TRUE(terminal.hears("all"));
  EXPECT_EQ(terminal.client->Era(), era);
  EXPECT_EQ(terminal.client->OpenPositionCount(), 1);
  terminal.client->AskRequest(id, era);
  EXPECT_TRUE(terminal.hears("executed 0.5"));
  terminal.client->AskRequest(next_id(), era);
  EXPECT_TRUE(terminal.hears("never taken 0"));
}

TEST(FixProcess, RefusesWhatItMustNotDo) {
  const testing::TemporaryFolder home;
  DealerOptions options = options_in(home.path() / "none");
  const SystemClock clock;
  const auto error_of = [&] {
    const auto opened = DealerProcess::open(options, clock, [](std::string_view) {});
    return opened ? std::string{} : opened.error();
  };
  EXPECT_EQ(error_of(), options.home.string() + " is no folder: --create makes one");
  options.create = true;
  options.tls = false;
  options.address = "0.0.0.0";
  EXPECT_EQ(error_of(), "Without TLS passwords could be read on their way: 0.0.0.0 is not this machine");
  EXPECT_FALSE(std::filesystem::exists(options.home)) << "nothing was made for what is refused";
  options.address = "127.0.0.1";
  EXPECT_EQ(error_of(), "");
  EXPECT_FALSE(std::filesystem::exists(options.home / "dealer-key.pem"));
}

}  // namespace
}  // namespace tutti
