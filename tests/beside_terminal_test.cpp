// Commands beside a terminal that has the folder, over its socket: who asks and who answers in one process,
// step by step.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <fstream>
#include <optional>
#include <thread>

#include "apps/line_server.h"
#include "apps/open_backend.h"
#include "core/texts.h"
#include "tests/support/command_line_rig.h"
#include "tests/support/ledger_home.h"
#include "tests/support/order_forms.h"

namespace tutti::testing {
namespace {

using Step = LocalSocket::Step;

// The first market order of the second account is refused, and what the third sends is never answered where
// it is of gold.
constexpr auto faulty =
    "sample_accounts = 3\n[[fault]]\nkind = \"reject\"\naccount = 500101\non = [\"open\"]\ncode = 2\ntimes = "
    "2\n"
    "[[fault]]\nkind = \"swallow\"\naccount = 500102\non = [\"open\"]\nevery = 2\n"
    "[[fault]]\nkind = \"drop\"\naccount = 500102\nafter = 300\n";

// A client of the socket that sends what it likes.
struct Client {
  explicit Client(const std::filesystem::path& folder, std::string bytes = {})
      : socket(LocalSocket::connect(folder, TerminalControl::socket_name).value()), out(std::move(bytes)) {
    socket->write(out);
  }
  // Sends on, reads on; what has come, with "|" behind it once the other end has hung up.
  std::string heard() {
    socket->write(out);
    Step step{};
    while ((step = socket->read(in, 4u << 20)) == Step::done) {
    }
    return step == Step::end ? in + "|" : in;
  }

  std::optional<LocalSocket> socket;
  std::string out;
  std::string in;
};

struct BesideTerminal : ::testing::Test {
  BesideTerminal() {
    TerminalOptions options;
    options.home = rig.home.path();
    options.dealer_file = rig.home.path() / "dealer.toml";
    options.key_file = rig.home.key_file();
    auto opened = Terminal::open(
        options, {prompt, sound, files, rig.clock, {}},
        [this](const TerminalOptions& home) { return open_backend(home, rig.clock, &server); });
    if (!opened || !(*opened)->listen([this] { return occupied; })) throw std::runtime_error("not opened");
    desktop = std::move(*opened);
    rig.create = false;
    // The ledger's threads get their time while little goes by.
    rig.on_pause = [this] {
      if (keeps) (void)desktop->keep();
      for (int turns = 0; turns < 20; ++turns) {
        desktop->advance();
        std::this_thread::yield();
      }
    };
    run(2s);
  }
  void run(std::chrono::milliseconds time) {
    for (auto gone = 0ms; gone < time; gone += 50ms) {
      rig.clock.advance(50ms);
      desktop->advance();
    }
  }
  Main& main() { return desktop->main(); }
  void order(const char* lots, const char* symbol = "EURUSD") {
    send_in_equal_parts(main().market_order(), lots, symbol);
    run(1s);
  }
  Texts ask(const std::string& sql) const {
    EXPECT_TRUE(desktop->keep());
    return ask_ledger(rig.home.path(), sql);
  }
  std::size_t journaled(const std::string& begin) {
    std::size_t out = 0;
    for (const Row& row : main().journal_window().lvwJournal)
      if (row.text(2).starts_with(begin)) ++out;
    return out;
  }

  CommandLineRig rig{faulty};
  RecordingPrompt prompt;
  RecordingSound sound;
  FakeFileDialog files;
  const DealingServer* server = nullptr;
  bool occupied = false;
  bool keeps = true;  // all is stored with every pause, whether who asks waits for it or not
  std::unique_ptr<Terminal> desktop;
};

constexpr auto requests = "SELECT count(*) FROM request";

TEST_F(BesideTerminal, TheRestOfATicketIsSentAgainOnce) {
  order("0.9");
  keeps = false;
  EXPECT_EQ(rig.run("--csv fills"), 0) << rig.err;
  keeps = true;
  EXPECT_EQ(std::count(rig.out.begin(), rig.out.end(), '\n'), 3) << rig.out;
  EXPECT_EQ(rig.run("positions"), 3);
  EXPECT_NE(rig.err.find("another terminal is using this folder"), std::string::npos) << rig.err;
  const struct {
    const char* words;
    int status;
    const char* message;
  } without_effect[] = {
      {"retry 1", 1, "Alert: Send 1 request of ticket 1 again, 0.3 lots in all? No (--yes answers yes)"},
      {"--yes retry 9", 2, "There is no ticket 9: tuttictl tickets names them"},
      {"--yes retry 1 --requote accept", 2, "Requotes are answered in the window of the terminal that runs"},
  };
  for (const auto& [words, status, message] : without_effect) {
    EXPECT_EQ(rig.run(words), status) << words << rig.err;
    EXPECT_NE(rig.err.find(message), std::string::npos) << rig.err;
  }
  occupied = true;
  EXPECT_EQ(rig.run("--yes retry 1"), 1);
  EXPECT_NE(rig.err.find("waits for an answer to a question in its window: nothing was done"),
            std::string::npos)
      << rig.err;
  occupied = false;
  EXPECT_EQ(ask(requests), Texts{"3"});
  // Over a limit it is refused, unless a reason is given; which holds for this act alone.
  Limits limits;
  limits[Limit::account_lots] = 0.2;
  main().sessions().admission().set_limits(limits);
  EXPECT_EQ(rig.run("--yes retry 1"), 1);
  EXPECT_NE(rig.err.find("Not sent, 1 requests; --override REASON"), std::string::npos) << rig.err;
  EXPECT_NE(rig.out.find("Not sent: a limit is exceeded"), std::string::npos) << rig.out;
  EXPECT_EQ(rig.run("--yes retry 2 --override big"), 1);
  EXPECT_NE(rig.out.find("Not enough"), std::string::npos) << rig.out;
  EXPECT_EQ(rig.run("--csv --yes retry 3 --override big"), 0) << rig.err;
  EXPECT_NE(rig.out.find("500101,open,0.3,1,true,done,"), std::string::npos) << rig.out;
  EXPECT_EQ(rig.run("--json --yes retry 3"), 0);
  EXPECT_NE(rig.err.find("Nothing of ticket 3 can be sent again"), std::string::npos) << rig.err;
  EXPECT_EQ(Json::parse(rig.out)["totals"]["balance"].is_number(), true) << rig.out;
  EXPECT_EQ(ask("SELECT n, coalesce(retry_of, 0), coalesce(override_reason, '') FROM ticket ORDER BY n"),
            (Texts{"1|0|", "2|1|", "3|2|big", "4|3|big"}));
  EXPECT_EQ(ask(requests), Texts{"6"});
  EXPECT_EQ(journaled("By tuttictl: send 1 requests of ticket "), 3U);
  EXPECT_EQ(main().positions().all().size(), 3U);
  EXPECT_EQ(server->outcomes().size(), 5U);
  order("0.9");
  EXPECT_TRUE(main().held().Displayed());
  EXPECT_EQ(prompt.take_texts(), Texts{}) << "no box waits in the window";
}

TEST_F(BesideTerminal, ARequestIsSettledWhileTheTerminalRuns) {
  // The account is lost before the answer is overdue: else the server would be asked.
  run(296s);
  order("0.9");
  order("0.3", "XAUUSD");
  run(2s);
  ASSERT_EQ(rig.run("--json unknown"), 4) << rig.err;
  const Json unknown = Json::parse(rig.out)["unknown"];
  ASSERT_EQ(unknown.size(), 1U) << rig.out;
  const std::string id = unknown[0]["request"].dump();
  EXPECT_EQ(main().sessions().requests().unknown_now(), 1U);
  const std::string settle = "settle " + id + " --as not-executed --note phone";
  {
    // Who has hung up before anything was done for him gets nothing done.
    std::optional<Client> gone;
    gone.emplace(rig.home.path(), "{\"version\":1,\"do\":\"settle\",\"request\":" + id +
                                      ",\"executed\":true,\"note\":\"x\"}\n");
    gone.reset();
    run(1s);
    EXPECT_EQ(main().sessions().requests().unknown_now(), 1U);
  }
  EXPECT_EQ(rig.run(settle), 0) << rig.err;
  EXPECT_EQ(rig.err, "Request " + id + " was settled as not-executed\n");
  EXPECT_EQ(main().sessions().requests().unknown_now(), 0U);
  EXPECT_EQ(rig.run(settle), 2);
  EXPECT_EQ(rig.run("unknown"), 0);
  EXPECT_EQ(ask("SELECT request, reason, note FROM event WHERE state = 'HAND'"),
            Texts{id + "|not-executed|phone"});
  EXPECT_EQ(journaled("By tuttictl: request " + id + " settled"), 1U);
  EXPECT_EQ(rig.run("ledger check"), 0) << rig.out;
}

TEST_F(BesideTerminal, AStopIsCarriedOutByWhoHasTheFolder) {
  order("0.9");
  EXPECT_EQ(main().positions().all().size(), 2U);
  EXPECT_EQ(rig.run("stop"), 0);
  EXPECT_EQ(rig.run("stop --close-positions"), 1);
  EXPECT_NE(rig.err.find("0 entry orders and 2 positions of 0.6 lots. Close the positions? No"),
            std::string::npos)
      << rig.err;
  EXPECT_TRUE(main().stop_form().Displayed());
  EXPECT_EQ(main().positions().all().size(), 2U);
  // The file has effect at once, whatever stands in the window.
  occupied = true;
  EXPECT_EQ(rig.run("--yes stop --close-positions"), 1);
  order("0.9");
  occupied = false;
  EXPECT_EQ(server->outcomes().size(), 3U);
  EXPECT_EQ(rig.run("--yes --json stop --cancel-orders --close-positions"), 0) << rig.err;
  EXPECT_EQ(Json::parse(rig.out)["flat"], true) << rig.out;
  EXPECT_EQ(main().positions().all().size(), 0U);
  EXPECT_EQ(ask("SELECT t.origin, r.kind, count(*) FROM ticket t JOIN request r ON r.ticket = t.n WHERE "
                "t.origin = 'stop' GROUP BY 1, 2"),
            Texts{"stop|close|2"});
  EXPECT_EQ(journaled("By tuttictl: cancel all entry orders, close all positions"), 1U);
  EXPECT_EQ(rig.run("stop --end"), 0) << rig.err;
  EXPECT_EQ(rig.home.read("stop"), "");
  EXPECT_FALSE(main().stop_form().stopped() || main().stop_form().Displayed());
  EXPECT_EQ(journaled("The stop is ended by tuttictl"), 1U);
  EXPECT_EQ(rig.run("stop --end"), 0);
  EXPECT_NE(rig.err.find("Trading was not stopped"), std::string::npos);
  // What would be a box that waits is a message of the queue.
  std::filesystem::create_directories(rig.home.path() / "stop" / "no file");
  EXPECT_EQ(rig.run("stop --end"), 3);
  EXPECT_EQ(prompt.take_texts(), Texts{});
  ASSERT_NE(main().messages().current(), nullptr);
}

TEST_F(BesideTerminal, WhatIsNotUnderstoodChangesNothing) {
  const std::string error = "{\"error\":\"The terminal does not understand this";
  const std::string flush = "{\"version\":1,\"do\":\"flush\"}\n";
  const struct {
    std::string bytes;
    std::string answer;  // its beginning; "|": none, and the connection is closed
  } cases[] = {
      {flush, "{\"stored\":true}\n|"},
      {"hello\n", error},
      {"\n", error},
      {"\xff\xfe{\n", error},
      {"{}\n", error},
      {"[1]\n", error},
      {std::string(60'000, '[') + "\n", error},
      {"{\"do\":\"flush\"}\n", error},
      {"{\"version\":2,\"do\":\"flush\"}\n", error},
      {"{\"version\":1.5,\"do\":\"flush\"}\n", error},
      {"{\"version\":1,\"do\":\"dance\"}\n", error},
      {"{\"version\":1,\"do\":[\"flush\"]}\n", error},
      {"{\"version\":1,\"do\":\"retry\",\"ticket\":\"1\"}\n", error},
      {"{\"version\":1,\"do\":\"retry\",\"ticket\":1,\"plan\":\"0\"}\n",
       "{\"error\":\"What of ticket 1 can be sent again has changed meanwhile: nothing was sent\""},
      {"{\"version\":1,\"do\":\"settle\",\"request\":1,\"executed\":1,\"note\":\"x\"}\n", error},
      {"{\"version\":1,\"do\":\"settle\",\"request\":1,\"executed\":true,\"note\":\" \"}\n", error},
      {"{\"version\":1,\"do\":\"stop\",\"end\":true,\"close\":true}\n", error},
      {"{\"version\":1,\"do\":\"stop\",\"close\":true}\n", "{\"error\":\"The stop was ended meanwhile"},
      {flush + flush, "|"},
      {std::string(LineServer::longest_question, 'x'), "|"},
      {"{\"version\":1,\"do\":\"fl", "|"},
      {"", "|"}};
  order("0.9");
  const Texts before = ask("SELECT count(*) FROM event");
  for (const auto& [bytes, answer] : cases) {
    Client client{rig.home.path(), bytes};
    // Half a question has no answer to wait for.
    const int most = bytes.ends_with('\n') ? 10'000 : 3;
    for (int turns = 0; turns < most && client.heard().empty(); ++turns)
      rig.on_pause();
    if (client.heard().empty()) run(LineServer::patience + 100ms);
    const std::string heard = client.heard();
    EXPECT_TRUE(heard.starts_with(answer) && heard.ends_with('|')) << bytes.substr(0, 80) << "\n" << heard;
  }
  EXPECT_EQ(ask("SELECT count(*) FROM event"), before);
  EXPECT_EQ(server->outcomes().size(), 3U);
  EXPECT_EQ(prompt.take_texts(), Texts{});
  EXPECT_EQ(rig.run("--yes retry 1"), 1) << rig.err;
  EXPECT_EQ(server->outcomes().size(), 4U);
}

// Whoever listens holds no more than it says, whatever is done to it.
TEST(LineServers, ServeWhoReadsAndDropWhoDoesNot) {
  const TemporaryFolder home;
  // Longer than an address has room for, and with a socket that somebody has left.
  const std::filesystem::path folder = home.path() / std::string(120, 'a') / std::string(120, 'b');
  std::filesystem::create_directories(folder);
  ASSERT_EQ(::mknod((home.path() / "old").c_str(), S_IFSOCK | 0666, 0), 0);
  std::filesystem::rename(home.path() / "old", folder / TerminalControl::socket_name);
  ManualClock clock;
  int asked = 0;
  const std::string large(900'000, 'y');
  {
    auto listener = LocalListener::open(folder, TerminalControl::socket_name);
    ASSERT_TRUE(listener) << listener.error().text();
    struct stat made {};
    ASSERT_EQ(::lstat((folder / TerminalControl::socket_name).c_str(), &made), 0);
    EXPECT_EQ(made.st_mode, S_IFSOCK | 0600u);
    LineServer serving{std::move(*listener), clock, [&](std::string_view question) -> LineServer::Work {
                         ++asked;
                         if (question == "never") return [] { return std::nullopt; };
                         return [&] { return large; };
                       }};
    std::vector<std::unique_ptr<Client>> silent;
    for (std::size_t i = 0; i < LineServer::most_connections + 4; ++i) {
      silent.push_back(std::make_unique<Client>(folder, i == 0 ? "never\n" : "large\n"));
      serving.poll();
    }
    EXPECT_EQ(serving.connections(), LineServer::most_connections);
    EXPECT_EQ(asked, 16);
    clock.advance(LineServer::patience);
    serving.poll();
    EXPECT_EQ(serving.connections(), 1U);
    // Those that had to wait are taken now; one reads, in pieces, and has all of it.
    for (int turns = 0; turns < 1000 && !silent.back()->heard().ends_with('|'); ++turns)
      serving.poll();
    EXPECT_EQ(silent.back()->in, large + "\n");
    EXPECT_EQ(asked, 20);
    EXPECT_EQ(serving.connections(), 4U);
    clock.advance(LineServer::longest_work);
    serving.poll();
    EXPECT_EQ(serving.connections(), 0U);
  }
  EXPECT_FALSE(std::filesystem::exists(folder / TerminalControl::socket_name));
  const auto nobody = LocalSocket::connect(folder, TerminalControl::socket_name);
  ASSERT_FALSE(nobody);
  EXPECT_EQ(nobody.error(), LocalSocket::Fault::nobody);
  std::ofstream{folder / TerminalControl::socket_name} << "a file";
  EXPECT_FALSE(LocalListener::open(folder, TerminalControl::socket_name));
  EXPECT_TRUE(std::filesystem::exists(folder / TerminalControl::socket_name));
}

}  // namespace
}  // namespace tutti::testing
