#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "dealer_rig.h"

namespace tutti {
namespace {

using Words = std::vector<std::string>;

Words join(Words first, const Words& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

FaultConfig fault(FaultKind kind, std::vector<FaultPoint> on = {FaultPoint::open, FaultPoint::close}) {
  FaultConfig fault;
  fault.kind = kind;
  fault.on = std::move(on);
  return fault;
}

FaultConfig requote_of(double points, int seconds) {
  FaultConfig config = fault(FaultKind::requote);
  config.points = points;
  config.wait = std::chrono::seconds{seconds};
  return config;
}

std::string ticket_of(const DealerRig::Seat& seat) {
  return std::to_string(seat.client->OpenPositionItem(1)->ticket);
}

// A position of half a lot is there, nothing is recorded.
DealerRig::Seat holder(DealerRig& rig) {
  auto seat = rig.trader(0);
  DealerRig::send(seat, operation::buy, "EURUSD", 0.5);
  rig.run(10'000);
  *seat.seen = {};
  return seat;
}

TEST(DealerRequests, PendingOrdersAreListedUntilTheDealerDecides) {
  using Change = std::function<void(DealerConfig&)>;
  const Change by_account = [](DealerConfig& c) { c.accounts[0].dealing = std::chrono::seconds{5}; };
  const Change by_symbol = [](DealerConfig& c) { c.symbols[0].dealing = std::chrono::seconds{5}; };
  const Change by_fault = [](DealerConfig& c) {
    c.faults.push_back(fault(FaultKind::pending));
    c.faults.back().wait = std::chrono::seconds{5};
  };
  const Change refused = [&](DealerConfig& c) {
    by_account(c);
    c.accounts[0].reply_result = result::not_enough_money;
    c.accounts[0].reply_close_result = result::bad_connection;
  };
  const std::pair<Change, bool> cases[] = {
      {by_account, true}, {by_symbol, true}, {by_fault, true}, {refused, false}};
  for (const auto& [change, accepted] : cases) {
    DealerConfig config = still_market();
    change(config);
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    DealerRig::send(seat, operation::buy, "EURUSD", 0.5);
    rig.run(200);
    EXPECT_EQ(seat.seen->events, (Words{"order pending", "+OP"}));
    ASSERT_EQ(seat.client->PendingOrderCount(), 1);
    const PendingOrder waits = *seat.client->PendingOrderItem(1);
    EXPECT_EQ(waits.order, seat.seen->reports[0].number);
    EXPECT_EQ(waits.price, 1.08462);
    EXPECT_EQ(waits.symbol_id, seat.client->FindSymbol("EURUSD")->id);
    seat.seen->events.clear();
    rig.run(5'000);
    EXPECT_EQ(seat.seen->events, accepted ? (Words{"accepted 1", "-OP", "opened", "summary"})
                                          : (Words{"rejected 2", "-OP", "summary"}));
    EXPECT_EQ(seat.seen->reports.back().request_kind, request_kind::open);
    EXPECT_EQ(seat.client->PendingOrderCount(), 0);
    EXPECT_EQ(seat.client->OpenPositionCount(), accepted ? 1 : 0);
    const Outcome& outcome = rig.server.outcomes().back();
    EXPECT_EQ(outcome.number, waits.order);
    EXPECT_EQ(outcome.result, accepted ? 1 : 2);
    EXPECT_TRUE(outcome.dealt && outcome.told);
  }
}

TEST(DealerRequests, RequotesCountDownAndEndInEveryWay) {
  struct Case {
    const char* does;  // what the operator does
    int at;            // so many milliseconds after the first tick
    std::int32_t code;
    Words words;  // after the pending state
    bool done;
  };
  const Words all = {"tick 3", "tick 2", "tick 1", "tick 0"};
  const Words three = {"tick 3", "tick 2", "tick 1"};
  const Case cases[] = {
      {"accept", 0, 1, {"tick 3", "gone", "accepted 1", "done", "summary"}, true},
      {"accept", 2'999, 1, join(three, {"gone", "accepted 1", "done", "summary"}), true},
      {"accept", 3'000, 6, join(all, {"rejected 0", "gone", "summary"}), false},
      {"accept", 4'100, 6, join(all, {"rejected 0", "gone", "summary"}), false},
      {"reject", 0, 1, {"tick 3", "gone", "rejected 0", "summary"}, false},
      {"reject", 3'500, 1, join(all, {"gone", "rejected 0", "summary"}), false},
      {"reject", 4'100, 6, join(all, {"rejected 0", "gone", "summary"}), false},
      {"nothing", 0, 0, join(all, {"rejected 0", "gone", "summary"}), false},
      {"no money", 0, 1, {"tick 3", "gone", "rejected 2", "summary"}, false},
      {"wrong order", 0, 10, join(all, {"rejected 0", "gone", "summary"}), false},
  };
  for (const bool close : {false, true}) {
    for (const Case& one : cases) {
      DealerConfig config = still_market();
      config.order_latency = std::chrono::milliseconds{0};
      config.faults = {requote_of(30, 3)};
      config.faults[0].on = {close ? FaultPoint::close : FaultPoint::open};
      const std::string does = one.does;
      if (does == "no money")
        (close ? config.accounts[0].reply_close_result : config.accounts[0].reply_result) = 2;
      DealerRig rig(config);
      auto seat = rig.trader(0);
      if (close) {
        seat = holder(rig);
        seat.client->ClosePosition(ticket_of(seat), "0.5", "");
      } else {
        DealerRig::send(seat, operation::buy, "EURUSD", 0.5);
      }
      rig.run(0);
      ASSERT_EQ(seat.seen->requotes.size(), 1U);
      const Requote first = seat.seen->requotes[0];
      EXPECT_EQ(first.seconds_all, 3);
      EXPECT_EQ(first.order, seat.client->PendingOrderItem(1)->order);
      EXPECT_NEAR(first.new_price, close ? 1.0842 : 1.08492, 1e-9);
      rig.run(one.at);
      if (does == "accept" || does == "no money") {
        EXPECT_EQ(seat.client->AcceptRequote(first.order), one.code) << one.at;
      } else if (does == "reject") {
        EXPECT_EQ(seat.client->RejectRequote(first.order), one.code) << one.at;
      } else if (does == "wrong order") {
        EXPECT_EQ(seat.client->AcceptRequote(first.order + 1), one.code);
        EXPECT_EQ(rig.trader(1).client->AcceptRequote(first.order), one.code) << "of another account";
      }
      rig.run(10'000);
      Words expected = close ? Words{"close pending", "+CP"} : Words{"order pending", "+OP"};
      for (const std::string& word : one.words)
        expected.push_back(word == "gone"   ? (close ? "-CP" : "-OP")
                           : word == "done" ? (close ? "deleted" : "opened")
                                            : word);
      EXPECT_EQ(seat.seen->events, expected) << does << ' ' << one.at << ' ' << close;
      EXPECT_EQ(seat.client->OpenPositionCount(), one.done != close ? 1 : 0);
      EXPECT_EQ(seat.client->PendingOrderCount(), 0);
      if (one.done) {
        EXPECT_EQ(seat.seen->reports.back().price, first.new_price);
        EXPECT_EQ(seat.client->AcceptRequote(first.order), request::invalid_order_id);
      }
    }
  }
}

TEST(DealerRequests, EveryCodeOfACloseIsReachable) {
  struct Case {
    std::int32_t request, result;
    std::function<void(DealerConfig&)> change;
  };
  std::vector<Case> cases;
  for (const std::int32_t code : {2, 3, 5, 7, 8, 21})
    cases.push_back({code, 0, [code](DealerConfig& c) { c.accounts[0].reply_close_request = code; }});
  for (const std::int32_t code : {2, 3, 4, 5, 6, 7, 8, 100})
    cases.push_back({1, code, [code](DealerConfig& c) { c.accounts[0].reply_close_result = code; }});
  for (const auto kind : {FaultKind::refuse, FaultKind::reject})
    cases.push_back(
        {kind == FaultKind::refuse ? 8 : 1, kind == FaultKind::refuse ? 0 : 8, [kind](DealerConfig& c) {
           c.faults = {fault(kind, {FaultPoint::close})};
           c.faults[0].code = 8;
         }});
  for (const Case& one : cases) {
    DealerConfig config = still_market();
    one.change(config);
    DealerRig rig(config);
    const auto seat = holder(rig);
    EXPECT_EQ(seat.client->ClosePosition(ticket_of(seat), "0.5", ""), one.request);
    rig.run(200);
    EXPECT_EQ(seat.seen->events,
              one.request != 1 ? Words{} : (Words{"close " + std::to_string(one.result), "summary"}));
    EXPECT_EQ(rig.server.outcomes().back().request, one.request);
    EXPECT_EQ(rig.server.outcomes().back().result, one.result);
    EXPECT_EQ(seat.client->OpenPositionCount(), 1);
  }
}

TEST(DealerRequests, SwapAndCommissionMakeTheBooksAdd) {
  struct Case {
    std::int32_t side;
    int days;
    double nights;  // points per lot
  };
  // The clock starts on a Monday noon; the midnight that ends Wednesday counts three times.
  const Case cases[] = {{operation::buy, 1, -6.5},     {operation::sell, 1, 2.1},
                        {operation::buy, 3, -6.5 * 5}, {operation::buy, 5, -6.5 * 7},
                        {operation::buy, 7, -6.5 * 7}, {operation::sell, 8, 2.1 * 8}};
  const TimePoint monday = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + std::chrono::hours{12};
  for (const Case& one : cases) {
    DealerConfig config = still_market();
    config.symbols[0].commission = 3.5;
    config.ticks[0].at = std::chrono::hours{24 * 365};
    DealerRig rig(config, monday);
    const auto seat = rig.trader(0);
    DealerRig::send(seat, one.side, "EURUSD", 0.5);
    rig.run(200);
    EXPECT_EQ(seat.seen->opened.at(0).commission, -3.5);
    rig.run(one.days * 86'400'000LL);
    const OpenPosition position = *seat.client->OpenPositionItem(1);
    EXPECT_NEAR(position.interest, one.nights * 0.5, 1e-9) << one.days;
    EXPECT_EQ(seat.seen->changed.back().interest, position.interest);
    AccountSummary now = seat.client->GetAccountSummary(500100).values;
    EXPECT_EQ(now.balance, 50'000.0);
    EXPECT_NEAR(now.floating_pl, -6.0 - 3.5 + one.nights * 0.5, 1e-9);
    EXPECT_NEAR(now.equity, now.balance + now.floating_pl, 1e-9);
    seat.client->ClosePosition(ticket_of(seat), "0.2", "");
    rig.run(200);
    now = seat.client->GetAccountSummary(500100).values;
    EXPECT_NEAR(now.balance, 50'000.0 + 0.4 * (-6.0 - 3.5 + one.nights * 0.5), 1e-9);
    EXPECT_NEAR(now.floating_pl, 0.6 * (-6.0 - 3.5 + one.nights * 0.5), 1e-9);
  }
}

TEST(DealerRequests, EntryOrdersAreKeptAndCancelled) {
  DealerConfig config = still_market();
  config.entry_orders = {{500100, operation::sell_stop, "GBPUSD", 0.2, 1.2, 1.3, 0.0, 0},
                         {500100, operation::buy, "EURUSD", 0.2, 0.0, 1.0, 0.0, 10'000'003}};
  config.faults = {fault(FaultKind::reject, {FaultPoint::cancel})};
  config.faults[0].code = 12;
  config.faults[0].times = 1;
  DealerRig rig(config);
  const auto seat = rig.trader(0);
  ASSERT_EQ(seat.client->PendingOrderCount(), 2);
  const std::int64_t stop = seat.client->PendingOrderItem(1)->order;
  const std::int64_t stops = seat.client->PendingOrderItem(2)->order;
  EXPECT_EQ(seat.client->PendingOrderItem(2)->kind, "ST");

  struct Case {
    std::int32_t side;
    EntryKind kind;
    double amount, price, stop_loss, take_profit;  // 0: none
    std::int32_t code;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const auto limit = EntryKind::limit, breakout = EntryKind::stop;
  // The market is 1.08450 to 1.08462, orders must be 50 points away.
  const Case cases[] = {
      {1, limit, 0.1, 1.0841, 1.08, 1.09, 1},  {1, limit, 0.1, 1.0842, 0, 0, 21},
      {-1, limit, 0.1, 1.0850, 0, 0, 1},       {-1, limit, 0.1, 1.0849, 0, 0, 21},
      {1, breakout, 0.1, 1.0852, 0, 0, 1},     {1, breakout, 0.1, 1.0846, 0, 0, 21},
      {-1, breakout, 0.1, 1.0840, 1.09, 0, 1}, {-1, breakout, 0.1, 1.0850, 0, 0, 21},
      {1, limit, 0.1, 1.08, 1.09, 0, 21},      {1, limit, 0.1, 1.08, 0, 1.07, 21},
      {1, limit, 0.1, nan, 0, 0, 21},          {1, limit, 0.1, -1, 0, 0, 21},
      {1, limit, nan, 1.08, 0, 0, 8},          {1, limit, 101, 1.08, 0, 0, 8},
      {2, limit, 0.1, 1.08, 0, 0, 5},          {1, limit, 0.1, 1.08, nan, 0, 21},
  };
  int count = 2;
  for (const Case& one : cases) {
    *seat.seen = {};
    const std::int32_t id = seat.client->FindSymbol("EURUSD")->id;
    EXPECT_EQ(seat.client->NewEntryOrder({one.side, one.kind, id, one.amount, one.price, one.stop_loss,
                                          one.take_profit, one.stop_loss != 0, one.take_profit != 0}),
              one.code)
        << one.price << ' ' << one.amount;
    rig.run(200);
    if (one.code == request::taken) {
      EXPECT_EQ(seat.seen->events, (Words{"entry 1", "+LO"}));
      EXPECT_EQ(seat.seen->orders.at(0).operation, one.kind == limit ? one.side : 2 * one.side);
      EXPECT_EQ(seat.seen->orders.at(0).stop_loss, one.stop_loss);
      ++count;
    }
    EXPECT_EQ(seat.client->PendingOrderCount(), count);
  }

  *seat.seen = {};
  for (int i = 0; i < 3; ++i) {  // refused by the script, done, too late
    EXPECT_EQ(seat.client->DeleteEntryOrder(stop), request::taken);
  }
  rig.run(200);
  EXPECT_EQ(seat.client->DeleteEntryOrder(stop), request::invalid_order_id);
  std::sort(seat.seen->events.begin(), seat.seen->events.end());  // latencies differ
  EXPECT_EQ(seat.seen->events, (Words{"-LO", "cancel 1", "cancel 10", "cancel 12"}));
  EXPECT_EQ(seat.client->DeleteEntryOrder(stops), request::invalid_order_id);
  EXPECT_EQ(seat.client->DeleteSLTPOrder(stop), request::invalid_order_id);
  EXPECT_EQ(seat.client->DeleteSLTPOrder(stops), request::taken);
  seat.seen->events.clear();
  rig.run(200);
  EXPECT_EQ(seat.seen->events, (Words{"stops 1", "-ST"}));
  EXPECT_EQ(seat.client->PendingOrderCount(), count - 2);
}

}  // namespace
}  // namespace tutti
