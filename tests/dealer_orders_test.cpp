// Orders that wait for a price, and the stops of positions.

#include <limits>

#include "dealer_rig.h"

namespace tutti {
namespace {

using std::chrono::seconds;

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

TEST(DealerChanges, TheStopsOfAPositionComeChangeAndGo) {
  DealerConfig config = still_market();
  config.faults = {fault(FaultKind::reject, {FaultPoint::trigger}, 2)};
  config.ticks = {{std::chrono::seconds{10}, "EURUSD", 1.07, 1.0702}};
  DealerRig rig(config);
  const auto seat = rig.trader(0);
  const std::int64_t ticket = open_half(rig, seat, buy);
  const auto expect = [&](const Words& words, int rows, double stop_loss, double take_profit) {
    EXPECT_EQ(rig.heard(seat, 200), words);
    ASSERT_EQ(seat.client->PendingOrderCount(), rows);
    EXPECT_EQ(seat.client->OpenPositionItem(1)->stop_loss, stop_loss);
    EXPECT_EQ(seat.client->OpenPositionItem(1)->take_profit, take_profit);
    if (rows > 0) {
      EXPECT_EQ(seat.client->PendingOrderItem(1)->stop_loss, stop_loss);
      EXPECT_EQ(seat.client->PendingOrderItem(1)->take_profit, take_profit);
      EXPECT_EQ(seat.client->PendingOrderItem(1)->amount, seat.client->OpenPositionItem(1)->amount);
    }
    *seat.seen = {};
  };
  const auto set = [&](double stop_loss, double take_profit) {
    EXPECT_EQ(seat.client->UpdateSLTP(ticket, stop_prices(stop_loss, take_profit), next_id()),
              request::taken);
  };
  set(0, 0);
  expect({"new stops 10"}, 0, 0, 0);
  set(1.07, 1.1);
  expect({"new stops 1", "+ST", "changed"}, 1, 1.07, 1.1);
  const std::int64_t order = seat.client->PendingOrderItem(1)->order;
  set(0, 1.12);
  rig.run(200);
  EXPECT_EQ(seat.seen->reports.at(0).number, order);
  EXPECT_EQ(rig.server.outcomes().back().number, order);
  EXPECT_TRUE(rig.server.outcomes().back().updated);
  expect({"update stops 1", "+ST", "changed"}, 1, 0, 1.12);
  seat.client->ClosePosition(std::to_string(ticket), "0.2", "", next_id());
  expect({"close 1", "changed", "+ST", "summary"}, 1, 0, 1.12);
  set(0, 0);
  expect({"update stops 1", "-ST", "changed"}, 0, 0, 0);
  set(1.08, 0);
  expect({"new stops 1", "+ST", "changed"}, 1, 1.08, 0);
  EXPECT_EQ(rig.heard(seat, 10'000), (Words{"not stopped 0", "-ST", "changed", "summary"}));
  EXPECT_EQ(seat.client->OpenPositionItem(1)->stop_loss, 0.0);
  seat.seen->events.clear();
  // Two on their way with a close: each finds what the others left.
  seat.client->ClosePosition(std::to_string(ticket), "0.3", "", next_id());
  set(1.04, 0);
  set(1.03, 0);
  rig.run(200);
  EXPECT_EQ(seat.client->OpenPositionCount() + seat.client->PendingOrderCount(), 0);
}

TEST(DealerChanges, ChangesOfEntryOrdersAndStopsAreCheckedAndDone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  DealerConfig config = still_market();
  config.entry_orders = {{first, buy, "EURUSD", 0.2, 1.07, 1.06, 0, 0},
                         {first, operation::sell_stop, "EURUSD", 0.2, 1.07, 0, 0, 0}};
  DealerRig rig(config);
  const auto seat = rig.trader(0);
  const std::int64_t limit = seat.client->PendingOrderItem(1)->order;
  const std::int64_t stop = seat.client->PendingOrderItem(2)->order;
  const std::int64_t ticket = open_half(rig, seat, buy);
  DealerRig::send(seat, sell, "EURUSD", 0.1);
  rig.run(200);
  const std::int64_t sold = seat.client->OpenPositionItem(2)->ticket;
  struct Case {
    std::int64_t number;
    double price, stop_loss, take_profit;
    std::int32_t code;
  };
  // Distances are 50 points.
  const Case entries[] = {
      {limit, 1.0841, 1.08, 1.09, 1}, {limit, 1.0842, 0, 0, 21}, {limit, 1.08, 1.081, 0, 21},
      {stop, 1.0840, 1.09, 1.07, 1},  {stop, 1.0841, 0, 0, 21},  {ticket, 1.08, 0, 0, 10},
  };
  for (const Case& one : entries) {
    *seat.seen = {};
    EXPECT_EQ(seat.client->UpdateEntryOrder(one.number, one.price,
                                            stop_prices(one.stop_loss, one.take_profit), next_id()),
              RequestCode{one.code})
        << one.price;
    EXPECT_EQ(rig.heard(seat, 200), one.code == 1 ? (Words{"update 1", "+LO"}) : Words{});
    if (one.code != 1) continue;
    EXPECT_EQ(seat.seen->orders.at(0).price, one.price);
    EXPECT_EQ(seat.seen->orders[0].take_profit, one.take_profit);
  }

  // Closed at 1.08450 the bought one, at 1.08462 the sold one.
  const Case positions[] = {
      {ticket, 0, 1.0840, 1.0850, 1}, {ticket, 0, 1.08401, 0, 21}, {ticket, 0, 0, 1.08499, 21},
      {ticket, 0, nan, 0, 21},        {ticket, 0, -1, 0, 21},      {sold, 0, 1.08512, 1.08412, 1},
      {sold, 0, 1.08511, 0, 21},      {sold, 0, 0, 1.08413, 21},   {limit, 0, 1.08, 0, 7},
  };
  for (const Case& one : positions)
    EXPECT_EQ(seat.client->UpdateSLTP(one.number, stop_prices(one.stop_loss, one.take_profit), next_id()),
              RequestCode{one.code})
        << one.stop_loss << ' ' << one.take_profit;
}

TEST(DealerChanges, DistancesBelongToTheAccount) {
  DealerConfig config = still_market();
  config.accounts[0].limit_distance = 200.0;
  config.accounts[0].stop_distance = 0.0;
  config.accounts[0].hidden_symbols = {"GBPUSD"};
  DealerRig rig(config);
  const auto seat = rig.trader(0);
  const auto other = rig.trader(1);
  EXPECT_EQ(seat.client->SymbolLimitDistance("EURUSD"), 200.0);
  EXPECT_EQ(seat.client->SymbolStopDistance("EURUSD"), 0.0);
  EXPECT_EQ(enter(seat, buy, EntryKind::limit, 0.1, 1.0830), request::invalid_price);
  EXPECT_EQ(enter(other, buy, EntryKind::limit, 0.1, 1.0830), request::taken);
  EXPECT_EQ(enter(seat, buy, EntryKind::stop, 0.1, 1.08462), request::taken);

  double value = 7.0;
  const auto evaluate = [&](const char* symbol, double from, double to) {
    const Symbol* record = seat.client->FindSymbol(symbol);
    return seat.client->EvaluateSLTPPrice(record == nullptr ? 0 : record->id, from, evaluate::stop_loss, to,
                                          value);
  };
  EXPECT_NEAR(evaluate("EURUSD", 1.08, 1.07), -1'000.0, 1e-6);
  EXPECT_EQ(value, evaluate("EURUSD", 1.08, 1.07));
  EXPECT_NEAR(evaluate("USDJPY", 149.0, 149.5), 0.5 * 100'000 / 149.487, 1e-6);
  EXPECT_EQ(evaluate("GBPUSD", 1.2, 1.3), 0.0);
  EXPECT_EQ(value, 0.0);
}

TEST(DealerTriggers, EntryOrdersAreExecutedWhenTheirPriceComes) {
  const struct {
    Operation operation;
    double price, stop_loss, take_profit;
    Tick before, at;
    double done_at;
  } cases[] = {
      {buy, 1.08, 1.05, 1.15, tick(1, 1.0799, 1.08001), tick(2, 1.07988, 1.08), 1.08},
      {buy, 1.08, 0, 1.15, tick(1, 1.0799, 1.08001), tick(2, 1.07, 1.0701), 1.0701},
      {sell, 1.09, 1.15, 1.05, tick(1, 1.08999, 1.0902), tick(2, 1.09, 1.09012), 1.09},
      {sell, 1.09, 0, 0, tick(1, 1.08999, 1.0902), tick(2, 1.095, 1.0952), 1.095},
      {operation::buy_stop, 1.09, 1.05, 0, tick(1, 1.0899, 1.08999), tick(2, 1.0899, 1.09), 1.09},
      {operation::buy_stop, 1.09, 0, 0, tick(1, 1.0899, 1.08999), tick(2, 1.095, 1.0952), 1.0952},
      {operation::sell_stop, 1.08, 1.15, 1.05, tick(1, 1.08001, 1.0801), tick(2, 1.08, 1.0801), 1.08},
      {operation::sell_stop, 1.08, 0, 0, tick(1, 1.08001, 1.0801), tick(2, 1.07, 1.0701), 1.07},
  };
  for (const auto& one : cases) {
    DealerConfig config = ticking({one.before, one.at});
    config.entry_orders = {
        {first, one.operation, "EURUSD", 0.3, one.price, one.stop_loss, one.take_profit, 0}};
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    rig.run(1'000);
    EXPECT_EQ(seat.client->OpenPositionCount(), 0) << one.price;
    const bool stopped = one.stop_loss != 0 || one.take_profit != 0;
    EXPECT_EQ(rig.heard(seat, 1'000), stopped ? (Words{"executed 1", "-LO", "opened", "+ST", "summary"})
                                              : (Words{"executed 1", "-LO", "opened", "summary"}));
    const Outcome outcome = rig.server.outcomes().back();
    EXPECT_TRUE(outcome.set_off && outcome.told);
    EXPECT_EQ(seat.seen->reports.at(0).price, one.done_at);
    const OpenPosition position = seat.seen->opened.at(0);
    EXPECT_EQ(position.ticket, outcome.number);
    EXPECT_EQ(position.open_price, one.done_at);
    ASSERT_EQ(seat.client->PendingOrderCount(), stopped ? 1 : 0);
    if (!stopped) continue;
    const PendingOrder row = *seat.client->PendingOrderItem(1);
    EXPECT_EQ(row.reference, position.ticket);
    EXPECT_EQ(row.operation, opposite(position.side)) << "it closes the position";
    EXPECT_EQ(row.amount, 0.3);
    EXPECT_EQ(row.stop_loss, one.stop_loss);
    EXPECT_EQ(row.take_profit, one.take_profit);
  }
}

TEST(DealerTriggers, StopsCloseThePositionAtTheMarket) {
  const struct {
    Operation side;
    double stop_loss, take_profit;
    Tick before, at;
    double done_at;
  } cases[] = {
      {buy, 1.08, 1.09, tick(2, 1.08001, 1.08002), tick(3, 1.08, 1.0802), 1.08},
      {buy, 1.08, 1.09, tick(2, 1.08999, 1.0902), tick(3, 1.095, 1.0952), 1.095},
      {buy, 1.08, 0, tick(2, 1.2, 1.2002), tick(3, 1.07, 1.0702), 1.07},
      {sell, 1.09, 1.08, tick(2, 1.089, 1.08999), tick(3, 1.0898, 1.09), 1.09},
      {sell, 1.09, 1.08, tick(2, 1.0799, 1.08001), tick(3, 1.07, 1.0701), 1.0701},
      {sell, 0, 1.08, tick(2, 1.2, 1.2002), tick(3, 1.0799, 1.08), 1.08},
  };
  for (const auto& one : cases) {
    DealerRig rig(ticking({one.before, one.at}));
    const auto seat = rig.trader(0);
    const std::int64_t ticket = open_half(rig, seat, one.side);
    const double open_price = seat.client->OpenPositionItem(1)->open_price;
    EXPECT_EQ(seat.client->UpdateSLTP(ticket, stop_prices(one.stop_loss, one.take_profit), next_id()),
              request::taken);
    EXPECT_EQ(rig.heard(seat, 200), (Words{"new stops 1", "+ST", "changed"}));
    const std::int64_t order = seat.seen->reports.at(0).number;
    rig.run(1'300);
    EXPECT_EQ(seat.client->OpenPositionCount(), 1) << one.done_at;
    *seat.seen = {};
    EXPECT_EQ(rig.heard(seat, 1'000), (Words{"stopped 0", "-ST", "deleted", "summary"})) << one.done_at;
    EXPECT_NEAR(seat.client->GetAccountSummary(first).values.balance,
                50'000.0 + sign(one.side) * 0.5 * 100'000 * (one.done_at - open_price), 1e-6);
    const Outcome& outcome = rig.server.outcomes().back();
    EXPECT_TRUE(outcome.set_off && outcome.told);
    EXPECT_EQ(outcome.number, order);
    EXPECT_EQ(outcome.kind, TradeKind::set_stops);
  }
}

TEST(DealerTriggers, WhatCanNotBeExecutedIsCancelledOrWaits) {
  const struct {
    std::function<void(DealerConfig&)> change;
    Words words;
    int result;  // 0: it waits
  } cases[] = {
      {[](DealerConfig& c) { c.accounts[0].balance = -1.0; }, {"no money 0", "-LO", "summary"}, 2},
      {[](DealerConfig& c) { c.accounts[0].hedging = false; }, {"no hedging 0", "-LO", "summary"}, 13},
      {[](DealerConfig& c) { c.faults = {fault(FaultKind::silent, {FaultPoint::trigger})}; },
       {"-LO", "opened", "summary"},
       1},
      {[](DealerConfig& c) { c.symbols[0].trading = Trading::halted; }, {}, 0},
      {[](DealerConfig& c) { c.lot_step = 0.2; }, {}, 0},
  };
  for (const auto& one : cases) {
    DealerConfig config = ticking({tick(2, 1.07, 1.0702), tick(3, 1.06, 1.0602), tick(4, 1.09, 1.0902)});
    config.entry_orders = {{first, buy, "EURUSD", 0.3, 1.08, 0, 0, 0}};
    one.change(config);
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    DealerRig::send(seat, sell, "EURUSD", config.accounts[0].balance < 0 ? 0.0 : 0.4);
    rig.run(1'000);
    *seat.seen = {};
    EXPECT_EQ(rig.heard(seat, 1'000), one.words) << one.result;
    EXPECT_EQ(seat.client->PendingOrderCount(), one.result == 0 ? 1 : 0);
    const auto& outcomes = rig.server.outcomes();
    EXPECT_EQ(outcomes.back().set_off, one.result != 0);
    if (one.result != 0) {
      EXPECT_EQ(outcomes.back().result, ResultCode{one.result});
    }
    const std::size_t count = outcomes.size();
    rig.run(5'000);
    EXPECT_EQ(outcomes.size(), count) << "nothing comes twice";
  }
}

TEST(DealerTriggers, AStopWaitsWhileItsPositionIsInDealingAndGoesWithIt) {
  for (const bool accepted : {true, false}) {
    DealerConfig config = ticking({tick(2, 1.07, 1.0702)});
    config.accounts[0].reply_close_result = accepted ? ResultCode::none : result::bad_connection;
    config.faults = {fault(FaultKind::pending, {FaultPoint::close}, 0, seconds{3})};
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    const std::int64_t ticket = open_half(rig, seat, buy);
    EXPECT_EQ(seat.client->UpdateSLTP(ticket, stop_prices(1.08, 0), next_id()), request::taken);
    seat.client->ClosePosition(std::to_string(ticket), "0.5", "", next_id());
    rig.run(200);
    *seat.seen = {};
    rig.run(2'000);
    EXPECT_TRUE(seat.seen->events.empty() || seat.seen->events == Words{"summary"});
    EXPECT_EQ(seat.client->OpenPositionCount(), 1);
    *seat.seen = {};
    EXPECT_EQ(rig.heard(seat, 2'000),
              accepted ? (Words{"accepted 1", "-CP", "deleted", "-ST", "summary"})
                       : (Words{"rejected 5", "-CP", "summary", "stopped 0", "-ST", "deleted", "summary"}));
    EXPECT_EQ(seat.client->OpenPositionCount(), 0);
  }
}

}  // namespace
}  // namespace tutti
