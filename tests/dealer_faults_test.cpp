#include "dealer_rig.h"

namespace tutti {
namespace {

// Of three seconds where there is a time, of code 8 where there is one.
FaultConfig typical(FaultKind kind, std::vector<FaultPoint> on) {
  return fault(kind, std::move(on), 8, std::chrono::seconds{3});
}

TEST(DealerFaults, LoginsFailAsTheScriptSays) {
  const Words waits = {"waiting 2"};
  const struct {
    FaultKind kind;
    Words soon, later;  // within a second, within a minute
  } cases[] = {
      {FaultKind::refuse_login, {"waiting 2", "invalid", "waiting 0"}, {}},
      {FaultKind::unreachable, waits, {"disconnected", "waiting 0"}},
      {FaultKind::silent, waits, {}},
      {FaultKind::delay, waits, {login_words.begin() + 1, login_words.end()}},
      {FaultKind::drop, {"waiting 2", "disconnected", "dropped", "waiting 0"}, {}},
  };
  for (const auto& one : cases) {
    DealerConfig config = still_market();
    config.faults = {typical(one.kind, {FaultPoint::login})};
    config.faults[0].times = 1;
    DealerRig rig(config);
    const auto seat = rig.seat({"ALDER", "ALDER01", 500100, {}});
    EXPECT_EQ(rig.heard(seat, 1'000), one.soon);
    EXPECT_EQ(rig.heard(seat, 60'000), one.later);
    seat.client->Logout();
    rig.drain();
    seat.seen->events.clear();
    seat.client->Login();  // the second one is fine
    EXPECT_EQ(rig.heard(seat, 1'000), login_words);
  }
}

TEST(DealerFaults, OrdersGoWrongAsTheScriptSays) {
  const Words done = {"order 1", "opened", "summary"};
  const Words unknown = {"order 1",        "opened",     "summary", "order 1",  "close 1",
                         "accepted 1",     "rejected 1", "entry 1", "update 1", "new stops 1",
                         "update stops 1", "cancel 1",   "stops 1", "deleted",  "-"};
  const struct {
    FaultKind kind;
    std::int32_t code;
    Words soon, later;  // within a second, after the seconds of the script
    bool told;
  } cases[] = {
      {FaultKind::silent, 1, {"opened", "summary"}, {}, false},
      {FaultKind::swallow, 1, {}, {}, false},
      {FaultKind::delay, 1, {}, done, true},
      {FaultKind::late, 1, {"opened", "summary"}, {"order 1"}, true},
      {FaultKind::twice, 1, {"order 1", "order 1", "opened", "summary"}, {}, true},
      {FaultKind::unknown_ticket, 1, unknown, {}, true},
      {FaultKind::refuse, 8, {}, {}, false},
      {FaultKind::reject, 1, {"order 8", "summary"}, {}, true},
      {FaultKind::drop, 1, {"disconnected", "dropped"}, {}, false},
  };
  for (const auto& one : cases) {
    DealerConfig config = still_market();
    config.faults = {typical(one.kind, {FaultPoint::open})};
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    EXPECT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.1), RequestCode{one.code});
    EXPECT_EQ(rig.heard(seat, 500), one.soon);
    EXPECT_EQ(rig.heard(seat, 3'000), one.later);
    ASSERT_EQ(rig.server.outcomes().size(), 1U);
    const Outcome& outcome = rig.server.outcomes()[0];
    const bool opened = !rig.server.find_account(500100)->positions().empty();
    EXPECT_EQ(outcome.result == result::succeeded, opened);
    EXPECT_EQ(opened, one.kind != FaultKind::swallow && one.kind != FaultKind::refuse &&
                          one.kind != FaultKind::reject);
    EXPECT_EQ(outcome.told, one.told);
    EXPECT_EQ(outcome.number == 0, one.code != 1);
  }
}

TEST(DealerFaults, GarbageGoesInFrontOfWhatIsTrue) {
  DealerConfig config = still_market();
  config.ticks = {{std::chrono::seconds{1}, "EURUSD", 1.09, 1.0902}};
  config.faults = {fault(FaultKind::garbage, {FaultPoint::price, FaultPoint::summary, FaultPoint::position})};
  config.faults[0].value = 7.0;
  DealerRig rig(config);
  const auto seat = rig.trader(0);
  DealerRig::send(seat, buy, "EURUSD", 0.1);
  rig.run(200);
  EXPECT_EQ(seat.seen->opened.at(0).amount + seat.seen->summaries.at(0).equity, 14.0);
  EXPECT_EQ(seat.seen->opened.at(1).amount, 0.1);
  rig.run(1'000);
  EXPECT_EQ(seat.seen->prices + seat.seen->floats, 4);
  EXPECT_EQ(seat.seen->last_bid, 1.09);
}

TEST(DealerFaults, CountsRunPerAccountFromTheGivenMoment) {
  DealerConfig config = still_market();
  config.faults = {typical(FaultKind::refuse, {FaultPoint::open})};
  config.faults[0].accounts = {500100, 500101};
  config.faults[0].after = std::chrono::seconds{10};
  config.faults[0].every = 2;
  config.faults[0].times = 2;
  FaultConfig drop = typical(FaultKind::drop, {});
  drop.after = std::chrono::seconds{20};
  drop.accounts = {500102};
  config.faults.push_back(drop);
  DealerRig rig(config);
  const DealerRig::Seat seats[] = {rig.trader(0), rig.trader(1), rig.trader(2)};
  std::string codes[3];
  const auto send_all = [&] {
    for (std::size_t i = 0; i < 3; ++i)
      codes[i] += std::to_string(format_as(DealerRig::send(seats[i], buy, "EURUSD", 0.01)));
  };
  send_all();
  rig.run(10'000);
  for (int i = 0; i < 7; ++i)
    send_all();
  EXPECT_EQ(codes[0], "11818111");
  EXPECT_EQ(codes[1], codes[0]);
  EXPECT_EQ(codes[2], "11111111");
  rig.run(10'000);
  EXPECT_TRUE(seats[0].client->LoggedIn());
  EXPECT_FALSE(seats[2].client->LoggedIn());
}

}  // namespace
}  // namespace tutti
