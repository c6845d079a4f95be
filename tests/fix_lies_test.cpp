// A server that logs an account in as it should, and then tells things that no server may.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fix/dialect/wire_values.h"
#include "tests/support/liar_rig.h"

namespace tutti {
namespace {

FixMessage fill_of(RequestId id) {
  FixMessage fill{.type = "8"};
  const std::pair<int, std::string> fields[] = {{37, "11"}, {11, wire_id(id)}, {17, "E1"},  {150, "F"},
                                                {39, "2"},  {55, "EURUSD"},    {54, "1"},   {38, "50000"},
                                                {40, "1"},  {32, "50000"},     {31, "1.1"}, {14, "50000"},
                                                {6, "1.1"}, {151, "0"}};
  for (const auto& [tag, value] : fields)
    fill.set(tag, value);
  return fill;
}

TEST(FixLies, AFillOfAServerWithoutOurFieldsIsAnAnswer) {
  LiarRig rig;
  rig.client->Login();
  rig.run();
  const RequestId id = rig.send();
  EXPECT_EQ(rig.liar.last.text(38), "50000");
  rig.liar.say(fill_of(id));
  EXPECT_EQ(rig.run(), Words{"order 1"});
  const OrderReport& report = rig.seen.reports.at(0);
  EXPECT_EQ(report.id, id);
  EXPECT_EQ(report.filled, 0.5);
  EXPECT_EQ(report.execution, "E1");
}

// A broker that tells no rows of pending orders: they are kept by his reports alone.
TEST(FixLies, ABrokersReportsKeepThePendingOrders) {
  LiarRig rig;
  rig.profile.logon.own_fields = false;
  rig.profile.orders.stops = BrokerProfile::Orders::Stops::none;
  rig.client->Login();
  rig.run();
  const std::int32_t symbol = rig.client->FindSymbol("EURUSD")->id;
  EXPECT_EQ(
      rig.client->NewEntryOrder({buy, EntryKind::stop, symbol, 0.5, 1.2, 1.1, 0, true, false}, next_id()),
      request::cannot_change_price)
      << "no order goes out without the stop that belongs to it";
  EXPECT_EQ(rig.notices().size(), 1U);
  const RequestId id = next_id();
  rig.client->NewEntryOrder({buy, EntryKind::stop, symbol, 0.5, 1.2, 0, 0, false, false}, id);
  rig.run();
  EXPECT_EQ(rig.liar.last.text(99), "1.2");
  FixMessage report = fill_of(id);
  report.set(37, "ORD-1");
  report.set(40, "3");
  report.set(150, "0");
  report.set(39, "0");
  report.set(99, "1.2");
  report.set(14, "0");
  report.set(151, "50000");
  rig.liar.say(report);
  EXPECT_EQ(rig.run(), (Words{"entry 1", "+LO"}));
  ASSERT_EQ(rig.client->PendingOrderCount(), 1);
  const PendingOrder placed = *rig.client->PendingOrderItem(1);
  EXPECT_EQ(placed.operation, operation::buy_stop);
  EXPECT_EQ(placed.price, 1.2);
  EXPECT_EQ(placed.amount, 0.5);

  EXPECT_EQ(rig.client->UpdateEntryOrder(placed.order, 1.3, {}, next_id()), request::taken);
  rig.run();
  EXPECT_EQ(rig.liar.last.type, "G");
  EXPECT_EQ(rig.liar.last.text(37), "ORD-1");
  EXPECT_EQ(rig.liar.last.text(41), wire_id(id)) << "the request that the broker accepted last";
  report.set(11, std::string{rig.liar.last.text(11)});
  report.set(150, "5");
  report.set(99, "1.3");
  rig.liar.say(report);
  EXPECT_EQ(rig.run(), (Words{"update 1", "+LO"}));
  EXPECT_EQ(rig.client->PendingOrderItem(1)->price, 1.3);

  report.set(150, "F");
  report.set(39, "1");
  report.set(32, "20000");
  report.set(14, "20000");
  report.set(151, "30000");
  rig.liar.say(report);
  EXPECT_EQ(rig.run(), (Words{"executed 1", "+LO"})) << "a part";
  EXPECT_EQ(rig.client->PendingOrderItem(1)->amount, 0.3);
  report.set(150, "4");
  report.set(39, "4");
  report.set(151, "0");
  rig.liar.say(report);
  EXPECT_EQ(rig.run(), Words{"-LO"});
}

// Told for the journal, and nothing of it counts; the session goes on.
TEST(FixLies, ReportsThatCannotBeReadAreToldAndGuessNothing) {
  struct Case {
    const char* what;
    int tag;
    std::string value;
    const char* told;  // a part of the text
  };
  const Case cases[] = {
      {"a price of 400 digits", 31, std::string(400, '9'), "field 31"},
      {"a price of 0", 31, "0", "field 31"},
      {"lots below 0", 32, "-50000", "field 32"},
      {"lots of 400 digits", 32, std::string(400, '1'), "field 32"},
      {"an unknown symbol", 55, "NOWHERE", "field 55"},
      {"an unknown event", 20012, "99", "field 20012"},
      {"a code beyond all codes", 20013, "99999999999", "field 20013"},
      {"an order that is no number", 37, "eleven", "field 37"},
      {"a time that is none", 60, "20261399-00:00:00", "field 60"},
      {"an endless profit", 20023, "1e400", "field 20023"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    LiarRig rig;
    rig.client->Login();
    rig.run();
    const RequestId id = rig.send();
    FixMessage fill = fill_of(id);
    fill.set(each.tag, each.value);
    rig.liar.say(fill);
    EXPECT_EQ(rig.run(), Words{});
    const Words notices = rig.notices();
    ASSERT_EQ(notices.size(), 1U);
    // What the session layer refuses already it names in its own words.
    EXPECT_TRUE(notices[0].find(each.told) != notices[0].npos ||
                notices[0].find("refused") != notices[0].npos)
        << notices[0];
    EXPECT_TRUE(rig.client->LoggedIn());
    rig.liar.say(fill_of(id));
    EXPECT_EQ(rig.run(), Words{"order 1"}) << "what came before has changed nothing";
  }
}

// Positions that can't be read make the list wrong: it is gathered anew, or not shown at all.
TEST(FixLies, StateThatCannotBeReadEndsTheConnection) {
  struct Case {
    int tag;
    std::string value;
  };
  const Case cases[] = {{730, "0"}, {721, "x"}, {55, "NOWHERE"}, {20010, "-" + std::string(40, '1')}};
  for (const Case& each : cases) {
    LiarRig rig;
    rig.liar.spoil.set(each.tag, each.value);
    rig.client->Login();
    EXPECT_EQ(rig.run(), (Words{"waiting 2", "disconnected", "waiting 0"})) << each.tag;
    EXPECT_EQ(rig.notices().size(), 1U);

    LiarRig later;
    later.client->Login();
    later.run();
    ASSERT_EQ(later.client->OpenPositionCount(), 1);
    FixMessage told{.type = "AP"};
    told.set(721, "8");
    told.set(728, "0");
    told.set(325, "Y");
    told.set(55, "EURUSD");
    told.set(730, "1.1");
    told.set(each.tag, each.value);
    FixFields amount;
    amount.set(703, "TQ");
    amount.set(704, "50000");
    told.groups.push_back({702, {amount}});
    later.liar.say(told);
    EXPECT_EQ(later.run(), (Words{"disconnected", "dropped"})) << each.tag;
    EXPECT_EQ(later.notices().size(), 1U);
    EXPECT_EQ(later.client->OpenPositionCount(), 0);
  }
}

TEST(FixLies, WhatCannotBeMatchedIsToldAndNothingElse) {
  LiarRig rig;
  rig.client->Login();
  rig.run();
  const RequestId id = rig.send();

  FixMessage reject{.type = "j"};
  reject.set(372, "D");
  reject.set(380, "0");
  reject.set(58, "no");
  rig.liar.say(reject);
  EXPECT_EQ(rig.run(), Words{}) << "a reject without a reference";
  EXPECT_EQ(rig.notices().size(), 1U);
  reject.set(379, wire_id(id));
  rig.liar.say(reject);
  EXPECT_EQ(rig.run(), Words{"refused 5"});

  FixMessage unknown{.type = "h"};
  unknown.set(340, "2");
  rig.liar.say(unknown);
  EXPECT_EQ(rig.run(), Words{});
  EXPECT_EQ(rig.notices().size(), 1U);

  // More than was ordered is told as it came: it is not for the wire to say what was done.
  FixMessage overfill = fill_of(id);
  overfill.set(32, "90000");
  overfill.set(14, "90000");
  rig.liar.say(overfill);
  EXPECT_EQ(rig.run(), Words{"order 1"});
  EXPECT_EQ(rig.seen.reports.back().filled_all, 0.9);

  // An order that another had taken the name of is asked about, and not called refused.
  const RequestId twice = rig.send();
  rig.liar.tell(news::Refused{twice, {}, request::other_request, "taken"}, "D");
  EXPECT_EQ(rig.run(), Words{});
  EXPECT_EQ(rig.liar.last.type, "H");
  EXPECT_EQ(rig.liar.last.text(11), wire_id(twice));
  rig.notices();

  FixMessage other = fill_of(id);
  other.set(1, "500101");
  rig.liar.say(other);
  EXPECT_EQ(rig.run(), (Words{"disconnected", "dropped"})) << "a message for another account";
  EXPECT_EQ(rig.notices().size(), 1U);
}

TEST(FixLies, AFloodOfNonsenseEndsTheConnection) {
  LiarRig rig;
  rig.client->Login();
  rig.run();
  for (int i = 0; i < 1'000; ++i)
    rig.liar.say({.type = "h"});
  EXPECT_EQ(rig.run(), (Words{"disconnected", "dropped"}));
  EXPECT_EQ(rig.notices().size(), 21U);
}

TEST(FixLies, AServerThatAnswersNothingIsGivenUp) {
  LiarRig mute;
  mute.network.set_faults_of_new(MemoryNetwork::Way::down, {.held = true});
  mute.client->Login();
  Words words;
  for (int second = 0; second < 60; ++second) {
    mute.network.advance(std::chrono::seconds{1});
    for (std::string& word : mute.run())
      words.push_back(std::move(word));
  }
  EXPECT_EQ(words, (Words{"waiting 2", "disconnected", "waiting 0"}));
  EXPECT_EQ(mute.notices(), Words{"The server does not answer"});
}

TEST(WireValues, AreReadWholeOrNotAtAll) {
  for (const char* text :
       {"", "-", "1.2.3", "1e5", "nan", "inf", "0x10", " 1", "1 ", "+1", "1,5", "10000000000000000"})
    EXPECT_FALSE(read_wire_number(text)) << text;
  for (const double value : {0.0, 1.0, -2.5, 1e-5, 1.08462, 123456789.123, 0.1})
    EXPECT_EQ(read_wire_number(wire_number(value)), value);
  EXPECT_EQ(wire_number(1e-7), "0.0000001") << "there are no exponents";

  for (const char* text : {"20260230-00:00:00", "20260101-24:00:00", "20260101 00:00:00", "2026-01-01", "",
                           "20260101-00:00:00.", "20260101-00:00:00.12x", "20260101-00:61:00"})
    EXPECT_FALSE(read_wire_time(text)) << text;
  const TimePoint moment = ManualClock{}.now() + std::chrono::milliseconds{7};
  EXPECT_EQ(read_wire_time(wire_time(moment)), moment);
  EXPECT_EQ(read_wire_time("20260101-00:00:00.007999999"), moment);

  for (const RequestId id :
       {RequestId{1}, RequestId{35}, RequestId{36}, std::numeric_limits<RequestId>::max()}) {
    EXPECT_EQ(wire_id(id).size(), 13U);
    EXPECT_EQ(read_wire_id(wire_id(id)), id);
  }
  for (const char* text :
       {"", "0000000000000", "ZZZZZZZZZZZZZ", "00000000000001", "000000000000a", "my order"})
    EXPECT_FALSE(read_wire_id(text)) << text;
}

}  // namespace
}  // namespace tutti
