// Broker profiles: what is read from them, what is refused with its line, and what they change on the wire.

#include <gtest/gtest.h>

#include <string>

#include "fix/client/translation.h"
#include "fix/dialect/ask_codec.h"
#include "fix/dialect/wire_values.h"
#include "fix/profile/profile_reader.h"

namespace tutti {
namespace {

constexpr const char* least = "[connection]\naddress = \"broker.example:5001\"\n";

std::string fault_of(const std::string& text) {
  const auto profile = read_broker_profile(text);
  return profile ? std::string{} : profile.error();
}

TEST(BrokerProfiles, TheLeastIsAServerOfOurOwn) {
  const auto profile = read_broker_profile(least);
  ASSERT_TRUE(profile) << profile.error();
  EXPECT_EQ(profile->connection.peer.address, "broker.example");
  EXPECT_EQ(profile->connection.peer.port, 5'001);
  EXPECT_EQ(profile->connection.peer.proof, Peer::Proof::certificate) << "who it is, is verified";
  EXPECT_TRUE(profile->missing().empty());
  EXPECT_TRUE(profile->unsupported().empty());
}

TEST(BrokerProfiles, TheExampleOfOurOwnServerIsOne) {
  const auto profile = load_broker_profile(std::string{TUTTI_SOURCE} + "/docs/brokers/dealer.toml");
  ASSERT_TRUE(profile) << profile.error().text();
  EXPECT_EQ(profile->connection.peer.proof, Peer::Proof::pinned);
  EXPECT_TRUE(profile->unsupported().empty());
}

TEST(BrokerProfiles, FaultsNameTheirLine) {
  struct Case {
    const char* added;
    const char* fault;
  };
  const Case cases[] = {
      {"colour = 3\n", "line 3: colour is not known here"},
      {"[orders]\nclos = \"none\"\n", "line 4: clos is not known here"},
      {"[orders]\nclose = \"maybe\"\n", "line 4: close must be \"position_id\", \"opposite\", \"none\""},
      {"[orders]\nlate_after_seconds = 0\n", "line 4: late_after_seconds must be a number from 1 to 3600"},
      {"[logon]\nheartbeat = 0\n", "line 4: heartbeat must be a whole number from 5 to 300"},
      {"[logon]\nextra = {x = \"1\"}\n", "line 4: extra must have lines like 207 = \"text\""},
      {"tls = \"off\"\n", "line 3: tls can be \"off\" on the own machine only"},
      {"tls = \"pinned\"\n", "line 3: tls must be \"pinned\" where there is a pin_sha256, and only there"},
      {"pin_sha256 = \"12\"\n", "line 3: pin_sha256 must be 64 hexadecimal digits"},
      {"[symbols]\nkey = 50\n", "line 4: key must be 48 or 55"},
      {"[symbols]\nsource = \"table\"\n",
       "line 4: source must be \"table\" where symbols are listed here, and only there"},
      {"[[symbols.table]]\nname = \"EURUSD\"\n", "line 3: digits is missing"},
      {"[positions]\nnetting = true\n",
       "line 3: positions can't be netting where orders.close is \"position_id\""},
      {"[[reject]]\ntext = \"no money\"\n", "line 3: result is missing"},
      {"[[account]]\nnumber = 1\n[[account]]\nnumber = 1\n", "line 6: number is given twice"},
  };
  for (const Case& each : cases)
    EXPECT_EQ(fault_of(std::string{least} + each.added), each.fault) << each.added;
  EXPECT_EQ(fault_of("[connection]\naddress = \"nowhere\"\n"),
            "line 2: address must be written as \"ADDRESS:PORT\"");
  EXPECT_EQ(fault_of("[logon]\n"), "line 1: connection is missing");
  EXPECT_NE(fault_of("[connection\n"), "");
}

TEST(BrokerProfiles, SayWhatABrokerCannotDo) {
  const auto profile = read_broker_profile(std::string{least} +
                                           "requotes = \"none\"\n[logon]\nown_fields = false\nreset = false\n"
                                           "[orders]\nsl_tp = \"none\"\nreplace = false\n");
  ASSERT_FALSE(profile) << "keys of no table stand in front of the tables";
  const auto good = read_broker_profile("requotes = \"none\"\n" + std::string{least} +
                                        "[logon]\nown_fields = false\nreset = false\n"
                                        "[orders]\nsl_tp = \"none\"\nreplace = false\n");
  ASSERT_TRUE(good) << good.error();
  EXPECT_EQ(good->missing(),
            (std::vector<std::string>{"Stop loss and take profit of positions: not at this broker",
                                      "Changing entry orders: not at this broker",
                                      "Requotes: not at this broker"}));
  EXPECT_EQ(good->unsupported(), std::vector<std::string>{"logon.reset = false"});
}

FixMessage order() {
  FixMessage message{.type = "D"};
  message.set(11, "A");
  message.set(55, "EURUSD");
  message.set(54, "1");
  message.set(38, "10000");
  message.set(40, "3");
  message.set(77, "C");
  message.set(721, "5");
  message.set(20010, "1.1");
  return message;
}

TEST(Translation, LeavesOurOwnServersMessagesAsTheyAre) {
  const auto profile = read_broker_profile(least);
  const Translation translation(*profile, 500'100);
  FixMessage message = order();
  translation.outgoing(message);
  EXPECT_EQ(message.fields, order().fields);
  EXPECT_EQ(translation.sender(), "500100");
  EXPECT_EQ(translation.units_per_lot("EURUSD", 100'000.0), 100'000.0);
}

TEST(Translation, SpeaksABrokersWordsAndBack) {
  const auto profile = read_broker_profile(std::string{least} + R"(
[logon]
own_fields = false
[symbols]
key = 48
name_tag = 107
name_format = "EUR/USD"
digits_tag = 5001
contract_size_tag = 5002
limit_distance_tag = 5003
distance_unit = "price"
[orders]
account = true
parties = ["DESK,D,3"]
quantity = "lots"
time_in_force = "3"
stop_code = "X"
position_tag = 9721
close_flag = false
sl_tp = "tags"
stop_loss_tag = 9010
extra = {847 = "1"}
[quotes]
depth = 0
high_low = false
[positions]
id_tag = 9721
subscribe = false
[[reject]]
tag = 103
value = "3"
result = 2
[[account]]
number = 500100
fix_account = "007"
sender = "ME"
)");
  ASSERT_TRUE(profile) << profile.error();
  Translation translation(*profile, 500'100);
  EXPECT_EQ(translation.sender(), "ME");
  EXPECT_EQ(translation.units_per_lot("EURUSD", 100'000.0), 1.0);

  FixMessage list{.type = "y"};
  FixFields entry;
  entry.set(48, "17");
  entry.set(107, "EUR/USD");
  entry.set(5001, "5");
  entry.set(5002, "100000");
  entry.set(5003, "0.0002");
  list.groups.push_back({146, {entry}});
  translation.incoming(list);
  const FixFields& learnt = list.groups[0].entries[0];
  EXPECT_EQ(learnt.text(55), "EURUSD");
  EXPECT_EQ(learnt.text(20003), "5");
  EXPECT_EQ(learnt.text(231), "100000");
  EXPECT_EQ(learnt.text(20004), "20");

  FixMessage message = order();
  translation.outgoing(message);
  const std::pair<int, const char*> sent[] = {{11, "A"}, {48, "17"}, {22, "8"},   {1, "007"},    {59, "3"},
                                              {40, "X"}, {847, "1"}, {9721, "5"}, {9010, "1.1"}, {54, "1"}};
  for (const auto& [tag, value] : sent)
    EXPECT_EQ(message.text(tag), value) << tag;
  for (const int gone : {55, 77, 721, 20010})
    EXPECT_FALSE(message.has(gone)) << gone;
  ASSERT_EQ(message.entries(453).size(), 1U);
  EXPECT_EQ(message.entries(453)[0].text(452), "3");

  FixMessage prices = encode_ask(
      ask::Prices{{"EURUSD"}}, [](std::string_view) { return 1.0; }, "2");
  translation.outgoing(prices);
  EXPECT_EQ(prices.text(264), "0");
  EXPECT_EQ(prices.entries(267).size(), 2U);
  EXPECT_EQ(prices.entries(146)[0].text(48), "17");
  FixMessage positions = encode_ask(ask::Positions{}, {}, "3");
  translation.outgoing(positions);
  EXPECT_FALSE(positions.has(263));

  FixMessage report{.type = "8"};
  report.set(150, "8");
  report.set(103, "3");
  report.set(48, "17");
  report.set(40, "X");
  report.set(9721, "P-5");
  report.set(37, "000123");
  translation.incoming(report);
  EXPECT_EQ(report.text(55), "EURUSD");
  EXPECT_EQ(report.text(40), "3");
  EXPECT_EQ(report.text(20013), "2");
  // What the broker calls an order or a position goes by a number here, and back by its own name.
  for (const int tag : {37, 721}) {
    const auto number = read_wire_integer(report.text(tag));
    ASSERT_TRUE(number) << report.text(tag);
    EXPECT_GT(*number, 0);
    EXPECT_NE(*number, 123);
  }
  FixMessage close = order();
  close.set(37, std::string{report.text(37)});
  close.set(721, std::string{report.text(721)});
  translation.outgoing(close);
  EXPECT_EQ(close.text(37), "000123");
  EXPECT_EQ(close.text(9721), "P-5");
}

}  // namespace
}  // namespace tutti
