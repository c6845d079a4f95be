// What outlives a program that ends in the middle: the server is dropped without its end, and another one
// starts in the folder.

#include <algorithm>
#include <optional>

#include "kept_rig.h"

namespace tutti {
namespace {

TEST(DealerLog, EveryKindOfChangeIsThereAfterACrash) {
  const TemporaryFolder home;
  DealerConfig config =
      prices({{seconds{20}, "EURUSD", 1.0700, 1.0702}, {seconds{40}, "EURUSD", 1.0600, 1.0602}});
  config.first_number = 9'000'000'000'000'000'000;  // beyond what a double tells apart
  config.symbols[0].commission = 3;
  config.entry_orders = {{first + 1, buy, "EURUSD", 0.4, 1.0650, 1.05, 0, 0}};
  KeptRig rig(home, config);
  const auto one = rig.trader(0), two = rig.trader(1);
  const auto expect_kept = [&](int at) {
    KeptRig next(home, config, rig.clock.now());
    ASSERT_TRUE(next.kept) << next.fault();
    EXPECT_EQ(*next.kept, Words{}) << at;
    EXPECT_EQ(books(next.server), books(rig.server)) << at;
    // The same where the book was written anew, elsewhere.
    const TemporaryFolder copy;
    for (const char* file : {"dealer-book.toml", "dealer-book.log", "dealer-numbers.toml"})
      copy.write(file, home.read(file));
    ASSERT_TRUE(KeptRig(copy, config, rig.clock.now()).server.save_book());
    const KeptRig saved(copy, config, rig.clock.now());
    ASSERT_TRUE(saved.kept) << saved.fault();
    EXPECT_EQ(books(saved.server), books(rig.server)) << at;
  };
  const std::int64_t ticket = open_half(rig, one, buy);
  expect_kept(1);
  one.client->UpdateSLTP(ticket, stop_prices(1.0750, 1.2), next_id());
  one.client->ClosePosition(std::to_string(ticket), "0.1", "", next_id());
  rig.run(500);
  expect_kept(2);
  enter(two, buy, EntryKind::limit, 0.3, 1.1, 0, 0, "GBPUSD");
  rig.run(500);
  const std::int64_t waiting = two.client->PendingOrderItem(2)->order;
  two.client->UpdateEntryOrder(waiting, 1.2, {}, next_id());
  rig.run(500);
  expect_kept(3);
  two.client->DeleteEntryOrder(waiting, next_id());
  rig.run(20'000);  // the stop loss goes with its position
  EXPECT_EQ(one.client->OpenPositionCount() + one.client->PendingOrderCount(), 0);
  expect_kept(4);
  rig.run(20'000);  // the entry order becomes a position with a stop loss
  EXPECT_EQ(two.client->OpenPositionCount(), 1);
  expect_kept(5);
  rig.run(12 * 3'600'000);  // midnight
  EXPECT_NE(two.client->OpenPositionItem(1)->interest, 0.0);
  expect_kept(6);
}

TEST(DealerLog, WhatTheBookCanNotHoldIsRefusedAtOnce) {
  const TemporaryFolder home;
  DealerConfig config = still_market(1);
  SymbolConfig& gold = config.symbols[15];
  gold.bid = gold.spread = 1e9;
  gold.digits = 0;
  gold.contract_size = 1e-6;
  config.entry_orders = {{first, buy, "EURUSD", 0.4, 1.0, 0, 0, 0}};
  KeptRig rig(home, config);
  const auto seat = rig.trader(0);
  const std::int64_t ticket = open_half(rig, seat, buy);
  const std::int64_t waiting = seat.client->PendingOrderItem(1)->order;
  const auto close = [&](const char* amount) {
    return seat.client->ClosePosition(std::to_string(ticket), amount, "", next_id());
  };
  const auto enter_at = [&](EntryKind kind, double amount, double price, double take_profit) {
    return enter(seat, buy, kind, amount, price, 0, take_profit);
  };
  const auto change = [&](double price, double stop_loss, double take_profit) {
    return seat.client->UpdateEntryOrder(waiting, price, stop_prices(stop_loss, take_profit), next_id());
  };
  const auto stops = [&](double stop_loss, double take_profit) {
    return seat.client->UpdateSLTP(ticket, stop_prices(stop_loss, take_profit), next_id());
  };
  const auto limit = EntryKind::limit, stop = EntryKind::stop;
  const auto taken = request::taken, lots = request::invalid_lots, price = request::invalid_price;
  const std::pair<std::function<RequestCode()>, RequestCode> cases[] = {
      {[&] { return DealerRig::send(seat, buy, "EURUSD", 1e-9); }, lots},
      {[&] { return DealerRig::send(seat, buy, "EURUSD", 1e-8); }, taken},
      {[&] { return DealerRig::send(seat, buy, "XAUUSD", 0.1); }, taken},
      {[&] { return close("0.000000009"); }, lots},
      {[&] { return close("0.00000001"); }, taken},
      {[&] { return enter_at(limit, 9e-9, 1.0, 0); }, lots},
      {[&] { return enter_at(limit, 0.1, 9e-9, 0); }, price},
      {[&] { return enter_at(limit, 1e-8, 1e-8, 0); }, taken},
      {[&] { return enter_at(stop, 0.1, 2e9, 0); }, price},
      {[&] { return enter_at(stop, 0.1, 1.2, 1.1e9); }, price},
      {[&] { return enter_at(stop, 0.1, 9e8, 1e9); }, taken},
      {[&] { return change(1.0, 1e-300, 0); }, price},
      {[&] { return change(1.0, 0, 1.1e9); }, price},
      {[&] { return change(1.0, 1e-8, 1e9); }, taken},
      {[&] { return stops(1e-9, 0); }, price},
      {[&] { return stops(0, 1.1e9); }, price},
      {[&] { return stops(1e-8, 1e9); }, taken},
  };
  for (const auto& [ask, code] : cases) {
    const auto at = &ask - &cases[0].first;
    EXPECT_EQ(ask(), code) << at;
    for (const int wait : {0, 500}) {
      rig.run(wait);
      const KeptRig next(home, config, rig.clock.now());
      ASSERT_TRUE(next.kept) << at << ": " << next.fault();
      EXPECT_EQ(books(next.server), books(rig.server));
      EXPECT_EQ(next.server.requests(), rig.server.requests());
    }
  }
  EXPECT_EQ(seat.client->OpenPositionItem(2)->open_price, 1e9);
}

// A replay may bring the first price of a symbol later than the requests of the run before.
TEST(DealerLog, ResumedRequestsWaitForTheFirstPrice) {
  const TemporaryFolder home;
  DealerConfig config = prices({{seconds{1}, "EURUSD", 1.0700, 1.0702}}, 1);
  config.symbols[0].bid = 0;
  config.faults = {fault(FaultKind::delay, {FaultPoint::open}, 0, seconds{30})};
  {
    KeptRig rig(home, config);
    const auto seat = rig.trader(0);
    rig.run(2'000);
    ASSERT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.1), request::taken);
    rig.run(0);
  }
  KeptRig rig(home, config, noon + seconds{60});
  rig.run(999);
  EXPECT_EQ(rig.server.requests_in_flight(), 1U);
  rig.run(1);
  EXPECT_EQ(rig.server.accounts()[0].positions().at(0).record.open_price, 1.0702);
}

TEST(DealerLog, RequestsKeepTheirDueTime) {
  const TemporaryFolder home;
  DealerConfig config = still_market(3);
  config.accounts[1].dealing = seconds{60};
  config.faults = {fault(FaultKind::delay, {FaultPoint::open}, 0, seconds{30}, {first}),
                   fault(FaultKind::requote, {FaultPoint::open}, 0, seconds{20}, {first + 2})};
  std::vector<TradeRequest> left;
  {
    KeptRig rig(home, config);
    for (std::size_t account = 0; account < 3; ++account)
      DealerRig::send(rig.trader(account), buy, "EURUSD", 0.1);
    rig.run(5'000);
    left = rig.server.requests();
    ASSERT_EQ(left.size(), 3U);
  }
  KeptRig rig(home, config, noon + seconds{10});
  EXPECT_EQ(rig.server.requests(), left);
  // The requote runs out, the delayed one arrives, the dealer decides; each at its time and only once.
  for (const TradeRequest& request : left) {
    rig.run((request.due - rig.clock.now()).count() - 1);
    const auto before = rig.server.outcomes().size();
    rig.run(1);
    ASSERT_EQ(rig.server.outcomes().size(), before + 1);
    EXPECT_EQ(rig.server.outcomes().back().account, request.account);
    EXPECT_EQ(rig.server.outcomes().back().result,
              request.account == first + 2 ? ResultCode::none : result::succeeded);
  }
  KeptRig last(home, config, noon + seconds{300});
  last.run(1'000);
  EXPECT_EQ(books(last.server), books(rig.server));
  EXPECT_TRUE(last.server.outcomes().empty());
}

TEST(DealerLog, AGroupIsStoredAtOnceAndTheBookIsWrittenWhenTheLogHasGrown) {
  const TemporaryFolder home;
  DealerConfig config = still_market(500);
  KeptRig rig(home, config);
  std::vector<DealerRig::Seat> seats;
  for (const AccountConfig& account : config.accounts)
    seats.push_back(rig.seat({account.user, account.password, account.number, {}}));
  rig.run(1'000);
  std::size_t longest = 0;
  for (int round = 0; round < 4; ++round) {
    const auto stores = rig.server.book().stores();
    for (const auto& seat : seats)
      DealerRig::send(seat, buy, "EURUSD", 0.1);
    rig.run(0);
    EXPECT_EQ(rig.server.book().stores(), stores + 1);
    rig.run(500);
    EXPECT_EQ(rig.server.book().stores(), stores + 2);
    longest = std::max(longest, home.read("dealer-book.log").size());
  }
  EXPECT_GT(longest, 256U * 1024);
  EXPECT_LT(longest, 1024U * 1024);
  EXPECT_GT(home.read("dealer-book.toml").size(), 200'000U);
  KeptRig next(home, config, rig.clock.now());
  EXPECT_EQ(books(next.server), books(rig.server));
  ASSERT_TRUE(rig.server.save_book());
  EXPECT_LT(home.read("dealer-book.log").size(), 100U);
}

TEST(DealerLog, NothingIsToldThatCanNotBeStored) {
  const TemporaryFolder home;
  KeptRig rig(home, still_market(2));
  const auto seat = rig.trader(0);
  open_half(rig, seat, buy);
  const auto stored = books(rig.server);
  DealerRig::send(seat, buy, "EURUSD", 0.1);
  rig.run(0);
  const std::size_t size = home.read("dealer-book.log").size();
  auto full = std::make_optional<testing::FullDisk>(size + 40);
  EXPECT_EQ(rig.heard(seat, 200), Words{});
  const auto& failure = rig.server.book().failure();
  EXPECT_TRUE(failure && failure->file == home.path() / "dealer-book.log");
  EXPECT_EQ(home.read("dealer-book.log").size(), size);
  EXPECT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.2), request::silent);
  EXPECT_EQ(rig.heard(seat, 5'000), Words{});
  {
    KeptRig next(home, still_market(2), noon);  // what the next program would find
    EXPECT_EQ(books(next.server), stored);
    EXPECT_EQ(next.server.requests_in_flight(), 1U);
  }
  full.reset();
  EXPECT_EQ(rig.heard(seat, 1'000), (Words{"order 1", "opened", "summary"}));
  EXPECT_FALSE(failure);
  EXPECT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.2), request::taken);
  rig.run(200);
  KeptRig next(home, still_market(2), rig.clock.now());
  EXPECT_EQ(books(next.server), books(rig.server));
  EXPECT_EQ(next.server.accounts()[0].positions().size(), 3U);
}

TEST(DealerLog, NumbersAreNeverGivenTwiceAndSeedsRepeat) {
  const TemporaryFolder home;
  DealerConfig config = still_market(1);
  config.entry_orders = {{first, buy, "EURUSD", 0.2, 1.07, 0, 0, 0}};
  std::int64_t last = 0;
  std::optional<Words> course;
  enum class End { saved, killed, deleted, damaged };
  bool damaged = false;
  for (const End end : {End::saved, End::killed, End::deleted, End::damaged, End::killed, End::saved}) {
    KeptRig rig(home, config, noon, true);
    ASSERT_TRUE(rig.kept) << rig.fault();
    EXPECT_EQ(rig.kept->size(), damaged ? 1U : 0U);
    damaged = end == End::damaged;
    const auto seat = rig.trader(0);
    EXPECT_EQ(seat.client->OpenPositionCount(), 0);
    EXPECT_GT(seat.client->PendingOrderItem(1)->order, last);
    Words heard;
    for (int i = 0; i < 40; ++i) {
      if (i < 5) DealerRig::send(seat, buy, "EURUSD", 0.1);
      for (const std::string& word : rig.heard(seat, 10))
        heard.push_back(std::to_string(i) + word);
    }
    EXPECT_EQ(course.value_or(heard), heard);
    course = heard;
    EXPECT_GT(seat.seen->reports.front().number, last);
    last = seat.seen->reports.back().number;
    EXPECT_TRUE(end != End::saved || rig.server.save_book());
    if (damaged) {  // and the numbers of their own are gone
      home.write("dealer-book.toml", "book = 1\n" + home.read("dealer-book.toml"));
      std::filesystem::remove(home.path() / "dealer-numbers.toml");
    }
    if (end != End::deleted) continue;
    for (const char* name : {"dealer-book.toml", "dealer-book.log"})
      std::filesystem::remove(home.path() / name);
  }
  EXPECT_TRUE(
      home.read("dealer-numbers.toml").ends_with("\nnext_number = " + std::to_string(last + 1) + "\n"));
  home.write("dealer-numbers.toml", "next_number = none\n");
  EXPECT_NE(KeptRig(home, config, noon, true).fault().find("dealer-numbers.toml: line 1: "),
            std::string::npos);
}

}  // namespace
}  // namespace tutti
