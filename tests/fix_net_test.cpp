// Real sockets on this machine: who proves himself, and trading over TLS from one thread to another.

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/file_writer.h"
#include "fix/client/fix_hub.h"
#include "fix/net/asio_network.h"
#include "fix/net/certificate.h"
#include "fix/server/fix_server.h"
#include "fix/session/fix_dictionary.h"
#include "tests/dealer_rig.h"
#include "tests/support/temporary_folder.h"

namespace tutti {
namespace {

constexpr std::chrono::seconds patience{20};

// Something that another thread brings about.
class Bell {
 public:
  void ring() {
    const std::lock_guard lock(mutex_);
    rung_ = true;
    changed_.notify_all();
  }
  // False when nobody has rung for too long.
  bool wait() {
    std::unique_lock lock(mutex_);
    const bool rung = changed_.wait_for(lock, patience, [this] { return rung_; });
    rung_ = false;
    return rung;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool rung_ = false;
};

// Sends back what it gets, on the network's thread.
class Echo final : public Listener, public ByteReceiver {
 public:
  ByteReceiver* on_connection(std::unique_ptr<ByteStream> stream, std::string_view) override {
    stream_ = std::move(stream);
    return this;
  }
  void on_open() override {}
  void on_bytes(std::string_view bytes) override { stream_->write(bytes); }
  void on_closed(std::string_view) override { stream_.reset(); }

 private:
  std::unique_ptr<ByteStream> stream_;
};

// Says something and hears it back, or hears why not.
class Caller final : public ByteReceiver {
 public:
  explicit Caller(std::string word) : word_(std::move(word)) {}
  void begin(AsioNetwork& network, const Peer& peer) {
    network.post([this, &network, peer] { stream_ = network.connect(peer, *this); });
  }
  void on_open() override { stream_->write(word_); }
  void on_bytes(std::string_view bytes) override {
    heard += bytes;
    if (heard.size() >= word_.size()) stream_->close();
  }
  void on_closed(std::string_view why) override {
    closed = why;
    bell.ring();
  }
  std::string heard, closed;
  Bell bell;

 private:
  const std::string word_;
  std::unique_ptr<ByteStream> stream_;
};

struct Paper {
  testing::TemporaryFolder folder;
  Certificate certificate = *own_certificate(folder.path() / "cert.pem", folder.path() / "key.pem");
};

TEST(FixNet, ProvesWhoIsThereBeforeAByteIsCarried) {
  Paper paper;
  const std::string pin = paper.certificate.fingerprint;
  ASSERT_EQ(pin.size(), 64U);
  std::string wrong = pin;
  wrong[0] = wrong[0] == '0' ? '1' : '0';
  const std::string ca = (paper.folder.path() / "cert.pem").string();
  struct Case {
    const char* what;
    bool tls;
    Peer peer;
    bool heard;
  };
  using Proof = Peer::Proof;
  const Case cases[] = {
      {"no TLS at all", false, {"127.0.0.1", 0, Proof::none, "", "", ""}, true},
      {"the pinned one", true, {"127.0.0.1", 0, Proof::pinned, "", "", pin}, true},
      {"another than the pinned one", true, {"127.0.0.1", 0, Proof::pinned, "", "", wrong}, false},
      {"of a known authority", true, {"localhost", 0, Proof::certificate, "", ca, ""}, true},
      {"by its address", true, {"127.0.0.1", 0, Proof::certificate, "", ca, ""}, true},
      {"made out to another", true, {"127.0.0.1", 0, Proof::certificate, "broker.example", ca, ""}, false},
      {"of an unknown authority", true, {"127.0.0.1", 0, Proof::certificate, "", "", ""}, false},
      {"authorities that are not there", true, {"127.0.0.1", 0, Proof::certificate, "", "/none", ""}, false},
      {"TLS where there is none", false, {"127.0.0.1", 0, Proof::pinned, "", "", pin}, false},
      {"none where there is TLS", true, {"127.0.0.1", 0, Proof::none, "", "", ""}, false},
  };
  for (const Case& each : cases) {
    AsioNetwork network;
    Echo echo;
    Caller caller(std::string(100'000, 'x'));
    const auto port = network.listen("127.0.0.1", 0, each.tls ? &paper.certificate : nullptr, echo);
    ASSERT_TRUE(port) << port.error();
    network.start();
    Peer peer = each.peer;
    peer.port = *port;
    caller.begin(network, peer);
    ASSERT_TRUE(caller.bell.wait()) << each.what;
    network.stop();
    EXPECT_EQ(caller.heard.size(), each.heard ? 100'000U : 0U) << each.what << ": " << caller.closed;
    EXPECT_FALSE(caller.closed.empty());
  }
}

TEST(FixNet, TellsWhoCannotBeReached) {
  for (const Peer& peer : {Peer{"127.0.0.1", 1, Peer::Proof::none, "", "", ""}}) {
    AsioNetwork network;
    Caller caller("hello");
    network.start();
    caller.begin(network, peer);
    ASSERT_TRUE(caller.bell.wait());
    network.stop();
    EXPECT_NE(caller.closed.find("127.0.0.1:1 can't be reached"), std::string::npos) << caller.closed;
  }
  AsioNetwork first;
  Echo echo;
  const auto port = first.listen("127.0.0.1", 0, nullptr, echo);
  ASSERT_TRUE(port);
  AsioNetwork second;
  EXPECT_FALSE(second.listen("127.0.0.1", *port, nullptr, echo)) << "the port is taken";
  EXPECT_FALSE(second.listen("no address", 0, nullptr, echo));
}

TEST(FixNet, ACertificateIsMadeOnceAndKeptForItsOwner) {
  testing::TemporaryFolder folder;
  const auto certificate = folder.path() / "cert.pem", key = folder.path() / "key.pem";
  const auto made = own_certificate(certificate, key);
  ASSERT_TRUE(made) << made.error().text();
  EXPECT_EQ(own_certificate(certificate, key)->fingerprint, made->fingerprint);
  EXPECT_EQ(std::filesystem::status(key).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  std::filesystem::remove(key);
  EXPECT_FALSE(own_certificate(certificate, key)) << "another key would not fit what terminals have pinned";
  EXPECT_FALSE(std::filesystem::exists(key));
}

// A dealing server on a thread of its own, with a clock that runs.
class ServerThread {
 public:
  ServerThread(DealerConfig config, const Certificate& certificate) : server_(std::move(config), clock_) {
    port_ = *network_.listen("127.0.0.1", 0, &certificate, fix_);
    turn();
    thread_ = std::thread([this] { network_.run(); });
  }
  ~ServerThread() {
    network_.stop();
    thread_.join();
  }
  std::uint16_t port() const { return port_; }

 private:
  void turn() {
    server_.advance();
    while (server_.deliver_next()) {
    }
    network_.post_after(std::chrono::milliseconds{2}, [this] { turn(); });
  }

  SystemClock clock_;
  DealingServer server_;
  AsioNetwork network_;
  const FixDictionary dictionary_;
  FixServer fix_{dictionary_, {}, [this] { return server_.make_client(); }};
  std::uint16_t port_ = 0;
  std::thread thread_;
};

TEST(FixNet, AHundredAccountsTradeOverTls) {
  Paper paper;
  // Prices that stand still: how fast this machine carries them is not what is tested.
  DealerConfig config = still_market(100);
  config.login_latency = config.order_latency = std::chrono::milliseconds{1};
  const ServerThread server(config, paper.certificate);
  BrokerProfile profile;
  profile.connection.peer = {
      "127.0.0.1", server.port(), Peer::Proof::pinned, "", "", paper.certificate.fingerprint};

  const FixDictionary dictionary;
  const SystemClock clock;
  AsioNetwork network;
  FixLines lines(network, profile, dictionary);
  Bell bell;
  lines.inbox().set_wake([&] { bell.ring(); });
  FixHub hub(lines, clock);
  network.start();
  std::vector<DealerRig::Seat> seats;
  for (const AccountConfig& account : config.accounts) {
    DealerRig::Seat& seat = seats.emplace_back();
    seat.client = hub.make_client();
    seat.client->set_sink(seat.seen.get());
    seat.client->SetLoginData({account.user, account.password, account.number, {}});
    seat.client->Login();
  }
  // Prices wake it for as long as it waits.
  const auto until = [&](const auto& done) {
    for (const auto begun = clock.elapsed(); clock.elapsed() - begun < patience;) {
      hub.advance();
      while (hub.deliver_next()) {
      }
      if (done()) return true;
      if (!bell.wait()) return false;
    }
    return false;
  };
  EXPECT_TRUE(until([&] {
    return std::all_of(seats.begin(), seats.end(), [](const auto& seat) { return seat.client->LoggedIn(); });
  }));
  for (const DealerRig::Seat& seat : seats)
    DealerRig::send(seat, buy, "USDJPY", 0.1);
  const auto answered = [](const DealerRig::Seat& seat) {
    return std::any_of(seat.seen->events.begin(), seat.seen->events.end(), [](const std::string& event) {
      return event.starts_with("order ") || event.starts_with("refused ");
    });
  };
  EXPECT_TRUE(until([&] { return std::all_of(seats.begin(), seats.end(), answered); }));
  for (const BackendNotice& notice : hub.take_notices())
    ADD_FAILURE() << notice.account << ": " << notice.text;
  for (const DealerRig::Seat& seat : seats)
    EXPECT_EQ(std::count_if(seat.seen->events.begin(), seat.seen->events.end(),
                            [](const std::string& event) { return event.starts_with("order "); }) +
                  std::count(seat.seen->events.begin(), seat.seen->events.end(), "refused 2"),
              1);
  seats.clear();
  network.stop();
}

}  // namespace
}  // namespace tutti
