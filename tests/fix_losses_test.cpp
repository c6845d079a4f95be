// Connections that end, and what is known afterwards; who may come in; clients that are not ours.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "fix/dialect/ask_codec.h"
#include "fix/dialect/wire_values.h"
#include "tests/support/fix_rig.h"

namespace tutti {
namespace {

using Seat = DealerRig::Seat;
using Way = MemoryNetwork::Way;

Words without_summaries(Words words) {
  std::erase(words, "summary");
  return words;
}

// An order that is on its way, there or back, when the connection ends: afterwards its id alone says what
// became of it, and sending it again never makes it two.
TEST(FixLosses, LeaveNothingUnknownThatIsAskedFor) {
  struct Case {
    const char* what;
    Way way;
    bool arrives;
  };
  for (const Case& each :
       {Case{"the order is lost", Way::up, false}, Case{"the answer is lost", Way::down, true}}) {
    SCOPED_TRACE(each.what);
    FixRig rig(still_market());
    const Seat seat = rig.trader(0);
    const BookEra era = seat.client->Era();
    const RequestId id = next_id();
    const std::int32_t symbol = seat.client->FindSymbol("EURUSD")->id;
    rig.network.set_faults(each.way, {.cut_after = each.arrives ? std::size_t{0} : std::size_t{20}});
    EXPECT_EQ(seat.client->NewMarketOrder(buy, symbol, 0.5, "", "", id), request::taken);
    EXPECT_EQ(without_summaries(rig.heard(seat, 300)), (Words{"disconnected", "dropped"}));
    EXPECT_FALSE(seat.client->LoggedIn());
    EXPECT_EQ(seat.client->AskRequest(id, era), request::invalid_account);
    EXPECT_EQ(seat.client->NewMarketOrder(buy, symbol, 0.5, "", "", next_id()), request::invalid_account)
        << "nothing is handed to a session that is logged off";

    seat.client->Login();
    EXPECT_EQ(rig.heard(seat, 300), login_words);
    EXPECT_EQ(seat.client->AskRequest(id, era), request::taken);
    EXPECT_EQ(without_summaries(rig.heard(seat, 50)), Words{each.arrives ? "executed 0.5" : "never taken 0"});
    EXPECT_EQ(seat.client->OpenPositionCount(), each.arrives ? 1 : 0);
    EXPECT_EQ(seat.client->NewMarketOrder(buy, seat.client->FindSymbol("EURUSD")->id, 0.5, "", "", id),
              request::taken);
    EXPECT_EQ(without_summaries(rig.heard(seat, 300)), Words{each.arrives ? "order 1" : "refused 31"});
    EXPECT_EQ(seat.client->OpenPositionCount(), each.arrives ? 1 : 0);
    seat.client->AskExecutions(ManualClock{}.now());
    EXPECT_EQ(without_summaries(rig.heard(seat, 50)), Words{"fills"});
    ASSERT_EQ(seat.seen->fills.size(), each.arrives ? 1U : 0U);
    if (each.arrives) {
      EXPECT_EQ(seat.seen->fills[0].id, id);
      EXPECT_EQ(seat.seen->fills[0].lots, 0.5);
    }
  }
}

TEST(FixLosses, AnotherBooksRequestsAreNotCalledUntaken) {
  FixRig rig(still_market());
  const Seat seat = rig.trader(0);
  seat.client->AskRequest(4'711, seat.client->Era() + 1);
  EXPECT_EQ(rig.heard(seat, 50), Words{"another book 0"});
}

// What the window thread sends while the wire has learnt already that nobody is there is told as never sent.
TEST(FixLosses, SayWhatWasNeverWritten) {
  FixRig rig(still_market());
  const Seat seat = rig.trader(0);
  rig.network.cut();
  rig.network.run();
  EXPECT_TRUE(seat.client->LoggedIn()) << "it is not known here yet";
  EXPECT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.5), request::taken);
  EXPECT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.5), request::taken);
  EXPECT_EQ(rig.heard(seat, 300), (Words{"disconnected", "dropped", "unsent", "unsent"}));
  EXPECT_EQ(rig.server.outcomes().size(), 0U);
}

TEST(FixLosses, OneTrickleOfBytesTradesAsWell) {
  FixRig rig(still_market());
  rig.network.set_faults_of_new(Way::up, {.piece = 1});
  rig.network.set_faults_of_new(Way::down, {.piece = 1});
  const Seat seat = rig.trader(0);
  DealerRig::send(seat, buy, "EURUSD", 0.5);
  EXPECT_EQ(without_summaries(rig.heard(seat, 300)), (Words{"order 1", "opened"}));
}

// A byte that is lost within a message: what follows can't be trusted, and the other end is told to begin
// anew.
TEST(FixLosses, LostBytesEndTheConnection) {
  FixRig rig(still_market());
  const Seat seat = rig.trader(0);
  rig.network.set_faults(Way::down, {.lose_from = 30, .lose_count = 1});
  DealerRig::send(seat, buy, "EURUSD", 0.5);
  EXPECT_EQ(without_summaries(rig.heard(seat, 300)), (Words{"disconnected", "dropped"}));
  const Words notices = rig.notices();
  EXPECT_EQ(notices.size(), 1U) << "it is told once";
  EXPECT_EQ(rig.network.open_connections(), 0U);
}

TEST(FixLosses, LateAnswersOfALineThatWasLeftAreTold) {
  FixRig rig(still_market());
  const Seat seat = rig.trader(0);
  DealerRig::send(seat, buy, "EURUSD", 0.5);
  rig.network.run();
  rig.clock.advance(std::chrono::milliseconds{200});
  rig.server.advance();
  while (rig.server.deliver_next()) {
  }
  seat.client->Logout();
  EXPECT_EQ(without_summaries(rig.heard(seat, 100)), (Words{"disconnected", "order 1"}));
}

TEST(FixLosses, TheOneWhoComesLaterTakesOver) {
  FixRig rig(still_market());
  const Seat early = rig.trader(0);
  const Seat late = rig.trader(0);
  EXPECT_EQ(without_summaries(rig.heard(early, 50)), (Words{"disconnected", "dropped"}));
  EXPECT_TRUE(late.client->LoggedIn());
  EXPECT_EQ(DealerRig::send(late, buy, "EURUSD", 0.5), request::taken);
  EXPECT_EQ(without_summaries(rig.heard(late, 300)), (Words{"order 1", "opened"}));
}

TEST(FixLosses, TellsWhoMayNotComeInAndWhy) {
  FixRig rig(still_market());
  const AccountConfig& config = rig.server.config().accounts[0];
  const Seat wrong = rig.seat({config.user, "wrong", config.number, {}});
  EXPECT_EQ(rig.heard(wrong, 300), (Words{"waiting 2", "invalid", "waiting 0"}));
  const Words refused = rig.notices();
  ASSERT_EQ(refused.size(), 1U);
  EXPECT_NE(refused[0].find("BAD_PASSWORD"), std::string::npos);

  // A user may come in without owning the account, and can do nothing there.
  const AccountConfig& other = rig.server.config().accounts[1];
  const Seat stranger = rig.seat({config.user, config.password, other.number, {}});
  EXPECT_EQ(rig.heard(stranger, 300),
            (Words{"waiting 2", "connected", "symbols", "positions", "orders", "waiting 0", "all"}));
  EXPECT_FALSE(stranger.client->LoggedIn());
  EXPECT_FALSE(stranger.client->FindAccount(other.number));

  rig.network.set_listener(nullptr);
  const Seat nowhere = rig.seat({config.user, config.password, config.number, {}});
  EXPECT_EQ(rig.heard(nowhere, 300), (Words{"waiting 2", "disconnected", "waiting 0"}));
}

TEST(FixLosses, ALoginThatIsNotAnsweredEnds) {
  DealerConfig config = still_market();
  config.faults = {fault(FaultKind::silent, {FaultPoint::login})};
  FixRig rig(config);
  const AccountConfig& account = rig.server.config().accounts[0];
  const Seat seat = rig.seat({account.user, account.password, account.number, {}});
  EXPECT_EQ(rig.heard(seat, 1'000), Words{"waiting 2"});
  EXPECT_EQ(rig.heard(seat, 60'000), (Words{"disconnected", "waiting 0"}));
  EXPECT_EQ(rig.network.open_connections(), 0U);
}

// A broker takes only so many logons at a time, and per minute; an account waits for its own good-bye.
TEST(FixLosses, LogonsWaitTheirTurn) {
  FixRig rig(still_market(10));
  rig.profile.connection.logons_at_once = 3;
  rig.profile.connection.logons_per_minute = 7;
  std::vector<Seat> seats;
  for (const AccountConfig& account : rig.server.config().accounts)
    seats.push_back(rig.seat({account.user, account.password, account.number, {}}));
  rig.settle();
  EXPECT_EQ(rig.network.open_connections(), 3U);
  rig.run(2'000);
  EXPECT_EQ(rig.fix.logged_on(), 7U);
  seats[0].client->Logout();
  seats[0].client->Login();
  seats[9].client->Logout();
  EXPECT_EQ(rig.heard(seats[9], 1'000), (Words{"waiting 2", "disconnected", "waiting 0"}));
  rig.run(61'000);
  EXPECT_EQ(rig.fix.logged_on(), 9U);
  EXPECT_TRUE(seats[0].client->LoggedIn());
}

TEST(FixLosses, CreditsAreWhatABrokerTakesPerSecond) {
  FixRig rig(still_market());
  rig.profile.connection.orders_per_second = 3;
  const Seat seat = rig.trader(0);
  EXPECT_EQ(rig.hub.credits(first), 3);
  DealerRig::send(seat, buy, "EURUSD", 0.5);
  rig.run(500);
  EXPECT_EQ(rig.hub.credits(first), 2);
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.01), request::taken) << "the wire holds nothing back";
  EXPECT_EQ(rig.hub.credits(first), 0);
  rig.run(500);
  EXPECT_EQ(rig.hub.credits(first), 0);
  rig.run(500);
  EXPECT_EQ(rig.hub.credits(first), 3);
}

TEST(FixLosses, FiveHundredAccountsTradeEachForItself) {
  FixRig rig(still_market(500));
  rig.profile.connection.logons_at_once = 500;
  std::vector<Seat> seats;
  for (const AccountConfig& account : rig.server.config().accounts)
    seats.push_back(rig.seat({account.user, account.password, account.number, {}}));
  rig.run(400);
  for (const Seat& seat : seats) {
    ASSERT_TRUE(seat.client->LoggedIn());
    DealerRig::send(seat, buy, "USDJPY", 0.5);
  }
  rig.network.cut(250);
  rig.run(300);
  int positions = 0, dropped = 0;
  for (const Seat& seat : seats) {
    positions += seat.client->OpenPositionCount();
    dropped += seat.client->LoggedIn() ? 0 : 1;
  }
  EXPECT_EQ(dropped, 1) << "nobody else is disturbed";
  // Of each fifty one is broke and one may not trade.
  EXPECT_GE(positions, 470);
}

// A client that knows the standard alone: a session of its own, with none of our fields.
class StandardClient final : public ByteReceiver {
 public:
  explicit StandardClient(FixRig& rig)
      : rig_(rig), session_(FixSession::initiator(rig.dictionary, settings(rig))) {
    stream_ = rig.network.connect({}, *this);
    run(300);
  }
  void on_open() override {
    session_.start();
    pump();
  }
  void on_bytes(std::string_view bytes) override {
    session_.feed(bytes);
    pump();
  }
  void on_closed(std::string_view) override {}
  void send(FixMessage message) {
    session_.send(message);
    pump();
    run(300);
  }
  void run(std::int64_t milliseconds) { rig_.run(milliseconds); }
  std::vector<FixMessage> messages;

 private:
  static SessionSettings settings(const FixRig& rig) {
    const AccountConfig& account = rig.server.config().accounts[0];
    SessionSettings settings;
    settings.sender = std::to_string(account.number);
    settings.target = "DEALER";
    settings.logon.set(553, account.user);
    settings.password = Secret{account.password};
    return settings;
  }
  void pump() {
    stream_->write(session_.take_output());
    for (SessionEvent& event : session_.take_events())
      if (auto* received = std::get_if<session_event::Received>(&event))
        messages.push_back(std::move(received->message));
      else if (std::holds_alternative<session_event::Rejected>(event))
        messages.push_back({.type = "3"});
  }

  FixRig& rig_;
  FixSession session_;
  std::unique_ptr<ByteStream> stream_;
};

FixMessage standard_order(const std::string& id) {
  FixMessage order{.type = "D"};
  order.set(11, id);
  order.set(55, "EURUSD");
  order.set(54, "1");
  order.set(38, "50000");
  order.set(40, "1");
  order.set(60, "20260101-00:00:00");
  return order;
}

TEST(FixServer, AStandardOrderTradesAndIsAnsweredInStandardFieldsAlone) {
  FixRig rig(still_market());
  StandardClient client(rig);
  client.send(standard_order("my order"));
  ASSERT_EQ(client.messages.size(), 1U) << "nothing comes that was not asked for";
  const FixMessage report = client.messages[0];
  EXPECT_EQ(report.type, "8");
  EXPECT_EQ(report.text(11), "my order");
  EXPECT_EQ(report.text(150), "F");
  EXPECT_EQ(report.text(39), "2");
  EXPECT_EQ(report.text(32), "50000");
  EXPECT_EQ(report.text(14), "50000");
  EXPECT_EQ(report.text(151), "0");
  EXPECT_EQ(report.text(31), "1.08462");
  for (const FixField& field : report.fields)
    EXPECT_LT(field.tag, 20'000);
  client.send(standard_order("my order"));
  ASSERT_EQ(client.messages.size(), 2U);
  EXPECT_EQ(client.messages[1].text(17), report.text(17)) << "the same id is never done twice";
  FixMessage other = standard_order("my order");
  other.set(38, "60000");
  client.send(other);
  ASSERT_EQ(client.messages.size(), 3U);
  EXPECT_EQ(client.messages[2].text(150), "8");
  EXPECT_EQ(client.messages[2].text(103), "6");
  EXPECT_EQ(rig.server.find_account(first)->positions().size(), 1U);
}

// A price that brings a new high of the day along is one message, and none comes of what was not asked for.
TEST(FixServer, TellsAPriceOnce) {
  DealerConfig config = still_market();
  config.ticks = {{std::chrono::seconds{2}, "EURUSD", 1.09, 1.0902},
                  {std::chrono::seconds{3}, "USDJPY", 150, 151}};
  FixRig rig(config);
  StandardClient client(rig);
  client.send(encode_ask(ask::Prices{{"EURUSD", "NOWHERE"}}, {}, "7"));
  client.run(5'000);
  ASSERT_EQ(client.messages.size(), 3U);
  EXPECT_EQ(client.messages[0].type, "W");
  EXPECT_EQ(client.messages[0].text(262), "7");
  EXPECT_EQ(client.messages[1].type, "Y");
  EXPECT_EQ(client.messages[2].type, "W");
  ASSERT_EQ(client.messages[2].entries(268).size(), 4U);
  EXPECT_EQ(client.messages[2].entries(268)[2].text(270), "1.09") << "the day's high";
}

// An entry order is changed and cancelled by the names of its requests alone, as the standard has it.
TEST(FixServer, FindsOrdersByTheNamesOfTheirRequests) {
  FixRig rig(still_market());
  StandardClient client(rig);
  FixMessage order = standard_order("first");
  order.set(40, "2");
  order.set(44, "1.07");
  client.send(order);
  order.type = "G";
  order.set(11, "second");
  order.set(41, "first");
  order.set(44, "1.06");
  client.send(order);
  order.set(11, "third");
  order.set(41, "first");
  client.send(order);
  FixMessage cancel{.type = "F"};
  for (const auto& [tag, value] : std::vector<std::pair<int, std::string>>{
           {11, "fourth"}, {41, "second"}, {55, "EURUSD"}, {54, "1"}, {60, "20260101-00:00:00"}})
    cancel.set(tag, value);
  client.send(cancel);
  ASSERT_EQ(client.messages.size(), 4U);
  EXPECT_EQ(client.messages[0].text(150), "0");
  EXPECT_EQ(client.messages[1].text(150), "5");
  EXPECT_EQ(client.messages[1].text(41), "first");
  EXPECT_EQ(client.messages[2].type, "9") << "that name is the order's no more";
  EXPECT_EQ(client.messages[2].text(11), "third");
  EXPECT_EQ(client.messages[3].text(150), "4");
  EXPECT_EQ(client.messages[3].text(11), "fourth");
  EXPECT_TRUE(rig.server.find_account(first)->orders().empty());
}

// What can't be read is refused by its id, or by name; nothing of it is done, and the session goes on.
TEST(FixServer, RefusesWhatItCannotRead) {
  struct Case {
    const char* what;
    int tag;
    std::string value;
  };
  const Case cases[] = {
      {"an amount of 400 digits", 38, std::string(400, '9')},
      {"no amount at all", 38, "0"},
      {"an amount below 0", 38, "-50000"},
      {"too little", 38, "0.0000001"},
      {"another symbol", 55, "NOWHERE"},
      {"a side of its own", 54, "7"},
      {"a type of its own", 40, "J"},
      {"a limit order without a price", 40, "2"},
      {"a close of nothing", 77, "C"},
      {"a position without a close", 721, "5"},
      {"a stop loss of 400 digits", 20010, std::string(400, '9')},
      {"a stop loss that is no number", 20010, "nan"},
      {"an endless stop loss", 20010, "1e999"},
  };
  FixRig rig(still_market());
  StandardClient client(rig);
  int count = 0, refused = 0;
  for (const Case& each : cases) {
    FixMessage order = standard_order(fmt::format("order {}", ++count));
    order.set(each.tag, each.value);
    client.messages.clear();
    client.send(order);
    ASSERT_EQ(client.messages.size(), 1U) << each.what;
    // The session layer refuses by the number of the message what no field of its kind can be.
    if (client.messages[0].type == "3") continue;
    ++refused;
    EXPECT_EQ(client.messages[0].text(150), "8") << each.what;
    EXPECT_EQ(client.messages[0].text(11), order.text(11)) << each.what;
  }
  EXPECT_GE(refused, 11);
  EXPECT_EQ(rig.server.requests_in_flight(), 0U);
  EXPECT_TRUE(rig.server.find_account(first)->positions().empty());
  client.messages.clear();
  client.send(standard_order("a good one"));
  ASSERT_EQ(client.messages.size(), 1U);
  EXPECT_EQ(client.messages[0].text(150), "F");
}

TEST(FixServer, DropsWhoeverDoesNotRead) {
  FixRig rig(still_market());
  const Seat reader = rig.trader(1);
  const Seat seat = rig.trader(0);
  rig.network.set_faults(Way::down, {.held = true});
  for (int round = 0; round < 60'000 && rig.fix.logged_on() == 2; ++round) {
    seat.client->AskRequest(next_id(), 1);
    rig.settle();
  }
  EXPECT_EQ(rig.fix.logged_on(), 1U);
  EXPECT_TRUE(reader.client->LoggedIn());
  const Words remarks = rig.fix.take_remarks();
  ASSERT_EQ(remarks.size(), 1U);
  EXPECT_NE(remarks[0].find("Does not read what it is sent"), std::string::npos);
}

}  // namespace
}  // namespace tutti
