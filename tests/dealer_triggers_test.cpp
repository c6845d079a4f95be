#include <gtest/gtest.h>

#include <filesystem>

#include "dealer_rig.h"

namespace tutti {
namespace {

using Words = std::vector<std::string>;
using std::chrono::seconds;

constexpr std::int32_t first = 500100;
constexpr auto buy = operation::buy, sell = operation::sell;

Tick tick(int second, double bid, double ask) {
  return {seconds{second}, "EURUSD", bid, ask};
}

// Every step of the market is a tick of the test's own; it starts at 1.08450 to 1.08462.
DealerConfig ticking(std::vector<Tick> ticks) {
  DealerConfig config = still_market();
  config.order_latency = std::chrono::milliseconds{80};
  config.ticks = std::move(ticks);
  return config;
}

FaultConfig fault(FaultKind kind, FaultPoint on, std::int32_t code = 0) {
  FaultConfig fault;
  fault.kind = kind;
  fault.on = {on};
  fault.code = code;
  return fault;
}

TEST(DealerTriggers, EntryOrdersAreExecutedWhenTheirPriceComes) {
  struct Case {
    std::int32_t operation;
    double price, stop_loss, take_profit;
    Tick before, at;
    double done_at;
  };
  const Case cases[] = {
      {buy, 1.08, 1.05, 1.15, tick(1, 1.0799, 1.08001), tick(2, 1.07988, 1.08), 1.08},
      {buy, 1.08, 0, 1.15, tick(1, 1.0799, 1.08001), tick(2, 1.07, 1.0701), 1.0701},
      {sell, 1.09, 1.15, 1.05, tick(1, 1.08999, 1.0902), tick(2, 1.09, 1.09012), 1.09},
      {sell, 1.09, 0, 0, tick(1, 1.08999, 1.0902), tick(2, 1.095, 1.0952), 1.095},
      {operation::buy_stop, 1.09, 1.05, 0, tick(1, 1.0899, 1.08999), tick(2, 1.0899, 1.09), 1.09},
      {operation::buy_stop, 1.09, 0, 0, tick(1, 1.0899, 1.08999), tick(2, 1.095, 1.0952), 1.0952},
      {operation::sell_stop, 1.08, 1.15, 1.05, tick(1, 1.08001, 1.0801), tick(2, 1.08, 1.0801), 1.08},
      {operation::sell_stop, 1.08, 0, 0, tick(1, 1.08001, 1.0801), tick(2, 1.07, 1.0701), 1.07},
  };
  for (const bool online : {true, false}) {
    for (const Case& one : cases) {
      DealerConfig config = ticking({one.before, one.at});
      config.entry_orders = {
          {first, one.operation, "EURUSD", 0.3, one.price, one.stop_loss, one.take_profit, 0}};
      DealerRig rig(config);
      auto seat = online ? rig.trader(0) : DealerRig::Seat{};
      rig.run(1'000);
      EXPECT_TRUE(rig.server.find_account(first)->positions().empty()) << one.price;
      rig.run(1'000);
      const bool stopped = one.stop_loss != 0 || one.take_profit != 0;
      const Outcome outcome = rig.server.outcomes().back();
      if (online) {
        EXPECT_EQ(seat.seen->events, stopped ? (Words{"executed 1", "-LO", "opened", "+ST", "summary"})
                                             : (Words{"executed 1", "-LO", "opened", "summary"}));
        const OrderReport& report = seat.seen->reports.at(0);
        EXPECT_EQ(report.account, first);
        EXPECT_EQ(report.number, outcome.number);
        EXPECT_EQ(report.operation, one.operation > 0 ? buy : sell);
        EXPECT_EQ(report.amount, 0.3);
        EXPECT_EQ(report.symbol, "EURUSD");
        EXPECT_EQ(report.price, one.done_at);
        EXPECT_EQ(seat.seen->opened.at(0).stop_loss, one.stop_loss);
      } else {
        seat = rig.trader(0);
      }
      EXPECT_TRUE(outcome.set_off);
      EXPECT_EQ(outcome.told, online);
      ASSERT_EQ(seat.client->OpenPositionCount(), 1) << one.price;
      const OpenPosition position = *seat.client->OpenPositionItem(1);
      EXPECT_EQ(position.ticket, outcome.number);
      EXPECT_EQ(position.open_price, one.done_at);
      EXPECT_EQ(position.take_profit, one.take_profit);
      ASSERT_EQ(seat.client->PendingOrderCount(), stopped ? 1 : 0);
      if (!stopped) continue;
      const PendingOrder row = *seat.client->PendingOrderItem(1);
      EXPECT_EQ(row.kind, "ST");
      EXPECT_EQ(row.reference, position.ticket);
      EXPECT_GT(row.order, position.ticket);
      EXPECT_EQ(row.operation, -position.side) << "it closes the position";
      EXPECT_EQ(row.amount, 0.3);
      EXPECT_EQ(row.stop_loss, one.stop_loss);
    }
  }
}

TEST(DealerTriggers, StopsCloseThePositionAtTheMarket) {
  struct Case {
    std::int32_t side;
    double stop_loss, take_profit;
    Tick before, at;
    double done_at;
  };
  const Case cases[] = {
      {buy, 1.08, 1.09, tick(2, 1.08001, 1.08002), tick(3, 1.08, 1.0802), 1.08},
      {buy, 1.08, 1.09, tick(2, 1.08999, 1.0902), tick(3, 1.095, 1.0952), 1.095},
      {buy, 1.08, 0, tick(2, 1.2, 1.2002), tick(3, 1.07, 1.0702), 1.07},
      {sell, 1.09, 1.08, tick(2, 1.089, 1.08999), tick(3, 1.0898, 1.09), 1.09},
      {sell, 1.09, 1.08, tick(2, 1.0799, 1.08001), tick(3, 1.07, 1.0701), 1.0701},
      {sell, 0, 1.08, tick(2, 1.2, 1.2002), tick(3, 1.0799, 1.08), 1.08},
  };
  for (const Case& one : cases) {
    DealerRig rig(ticking({one.before, one.at}));
    const auto seat = rig.trader(0);
    const std::int64_t ticket = open_half(rig, seat, one.side);
    const double open_price = seat.client->OpenPositionItem(1)->open_price;
    EXPECT_EQ(seat.client->UpdateSLTP(ticket, stop_prices(one.stop_loss, one.take_profit)), request::taken);
    rig.run(200);
    EXPECT_EQ(seat.seen->events, (Words{"new stops 1", "+ST", "changed"}));
    ASSERT_EQ(seat.client->PendingOrderCount(), 1);
    const std::int64_t order = seat.client->PendingOrderItem(1)->order;
    EXPECT_EQ(seat.seen->reports[0].number, order);
    EXPECT_EQ(seat.seen->changed[0].stop_loss, one.stop_loss);
    rig.run(1'300);
    EXPECT_EQ(seat.client->OpenPositionCount(), 1) << one.done_at;
    *seat.seen = {};
    rig.run(1'000);
    EXPECT_EQ(seat.seen->events, (Words{"stopped 0", "-ST", "deleted", "summary"})) << one.done_at;
    EXPECT_EQ(seat.client->PendingOrderCount(), 0);
    EXPECT_NEAR(seat.client->GetAccountSummary(first).values.balance,
                50'000.0 + one.side * 0.5 * 100'000 * (one.done_at - open_price), 1e-6);
    const Outcome& outcome = rig.server.outcomes().back();
    EXPECT_TRUE(outcome.set_off && outcome.told);
    EXPECT_EQ(outcome.number, order);
    EXPECT_EQ(outcome.kind, TradeKind::set_stops);
  }
}

TEST(DealerTriggers, WhatCanNotBeExecutedIsCancelledOrWaits) {
  struct Case {
    std::function<void(DealerConfig&)> change;
    Words words;
    std::int32_t result;  // 0: it waits
  };
  const Case cases[] = {
      {[](DealerConfig& c) { c.accounts[0].balance = -1.0; }, {"no money 0", "-LO", "summary"}, 2},
      {[](DealerConfig& c) { c.accounts[0].hedging = false; }, {"no hedging 0", "-LO", "summary"}, 13},
      {[](DealerConfig& c) { c.faults = {fault(FaultKind::reject, FaultPoint::trigger, 2)}; },
       {"no money 0", "-LO", "summary"},
       2},
      {[](DealerConfig& c) { c.faults = {fault(FaultKind::silent, FaultPoint::trigger)}; },
       {"-LO", "opened", "summary"},
       1},
      {[](DealerConfig& c) { c.symbols[0].trading = Trading::halted; }, {}, 0},
      {[](DealerConfig& c) { c.lot_step = 0.2; }, {}, 0},
  };
  for (const Case& one : cases) {
    DealerConfig config = ticking({tick(2, 1.07, 1.0702), tick(3, 1.06, 1.0602), tick(4, 1.09, 1.0902)});
    config.entry_orders = {{first, buy, "EURUSD", 0.3, 1.08, 0, 0, 0}};
    one.change(config);
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    DealerRig::send(seat, sell, "EURUSD", config.accounts[0].balance < 0 ? 0.0 : 0.4);
    rig.run(1'000);
    *seat.seen = {};
    rig.run(1'000);
    EXPECT_EQ(seat.seen->events, one.words) << one.result;
    EXPECT_EQ(seat.client->PendingOrderCount(), one.result == 0 ? 1 : 0);
    const auto& outcomes = rig.server.outcomes();
    EXPECT_EQ(outcomes.back().set_off, one.result != 0);
    if (one.result != 0) {
      EXPECT_EQ(outcomes.back().result, one.result);
    }
    const std::size_t count = outcomes.size();
    rig.run(5'000);
    EXPECT_EQ(outcomes.size(), count) << "nothing comes twice";
  }
}

TEST(DealerTriggers, AStopWaitsWhileItsPositionIsInDealingAndGoesWithIt) {
  for (const bool accepted : {true, false}) {
    DealerConfig config = ticking({tick(2, 1.07, 1.0702)});
    config.accounts[0].reply_close_result = accepted ? 0 : result::bad_connection;
    config.faults = {fault(FaultKind::pending, FaultPoint::close)};
    config.faults[0].wait = seconds{3};
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    const std::int64_t ticket = open_half(rig, seat, buy);
    EXPECT_EQ(seat.client->UpdateSLTP(ticket, stop_prices(1.08, 0)), request::taken);
    seat.client->ClosePosition(std::to_string(ticket), "0.5", "");
    rig.run(200);
    *seat.seen = {};
    rig.run(2'000);
    EXPECT_TRUE(seat.seen->events.empty() || seat.seen->events == Words{"summary"});
    EXPECT_EQ(seat.client->OpenPositionCount(), 1);
    *seat.seen = {};
    rig.run(2'000);
    EXPECT_EQ(seat.seen->events,
              accepted ? (Words{"accepted 1", "-CP", "deleted", "-ST", "summary"})
                       : (Words{"rejected 5", "-CP", "summary", "stopped 0", "-ST", "deleted", "summary"}));
    EXPECT_EQ(seat.client->OpenPositionCount(), 0);
  }
}

TEST(DealerTriggers, WaitingOrdersGoOnAfterARestart) {
  const auto file = std::filesystem::path(::testing::TempDir()) / "dealer_triggers.toml";
  DealerConfig config = still_market();
  config.entry_orders = {{first, buy, "EURUSD", 0.2, 1.08, 1.05, 1.2, 0},
                         {first, sell, "EURUSD", 0.2, 1.1, 0, 0, 0}};
  {
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    const std::int64_t limit = seat.client->PendingOrderItem(2)->order;
    const std::int64_t ticket = open_half(rig, seat, buy);
    seat.client->UpdateSLTP(ticket, stop_prices(1.06, 0));
    rig.run(200);
    seat.client->UpdateEntryOrder(limit, 1.15, stop_prices(1.3, 0));  // still in flight when the program ends
    ASSERT_TRUE(rig.server.save_book(file));
  }
  config.ticks = {tick(1, 1.0795, 1.0797), tick(2, 1.06, 1.0602), tick(3, 1.15, 1.1502), tick(4, 1.3, 1.31)};
  DealerRig rig(config);
  ASSERT_TRUE(rig.server.load_book(file));
  const auto seat = rig.trader(0);
  EXPECT_EQ(seat.client->OpenPositionItem(1)->stop_loss, 1.06);
  ASSERT_EQ(seat.client->PendingOrderCount(), 3);
  EXPECT_EQ(seat.client->PendingOrderItem(2)->price, 1.15);
  std::vector<Words> told;
  for (int second = 1; second <= 4; ++second) {
    seat.seen->events.clear();
    rig.run(1'000);
    told.push_back(seat.seen->events);
  }
  EXPECT_EQ(told[0], (Words{"executed 1", "-LO", "opened", "+ST", "summary"}));
  EXPECT_EQ(told[1], (Words{"stopped 0", "-ST", "deleted", "summary"}));
  EXPECT_EQ(told[2], (Words{"executed 1", "-LO", "opened", "+ST", "summary"}));
  EXPECT_EQ(told[3],
            (Words{"stopped 0", "-ST", "deleted", "summary", "stopped 0", "-ST", "deleted", "summary"}));
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace tutti
