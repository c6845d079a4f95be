#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <limits>

#include "dealer_rig.h"

namespace tutti {
namespace {

using Words = std::vector<std::string>;

constexpr std::int32_t first = 500100;
constexpr auto buy = operation::buy, sell = operation::sell;

FaultConfig fault(FaultKind kind, FaultPoint on, std::int32_t code = 0) {
  FaultConfig fault;
  fault.kind = kind;
  fault.on = {on};
  fault.code = code;
  return fault;
}

TEST(DealerChanges, TheStopsOfAPositionComeChangeAndGo) {
  DealerConfig config = still_market();
  config.faults = {fault(FaultKind::reject, FaultPoint::trigger, 2)};
  config.ticks = {{std::chrono::seconds{10}, "EURUSD", 1.07, 1.0702}};
  DealerRig rig(config);
  const auto seat = rig.trader(0);
  const std::int64_t ticket = open_half(rig, seat, buy);
  const auto expect = [&](const Words& words, int rows, double stop_loss, double take_profit) {
    rig.run(200);
    EXPECT_EQ(seat.seen->events, words);
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
    EXPECT_EQ(seat.client->UpdateSLTP(ticket, stop_prices(stop_loss, take_profit)), request::taken);
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
  seat.client->ClosePosition(std::to_string(ticket), "0.2", "");
  expect({"close 1", "changed", "+ST", "summary"}, 1, 0, 1.12);
  set(0, 0);
  expect({"update stops 1", "-ST", "changed"}, 0, 0, 0);
  set(1.08, 0);
  expect({"new stops 1", "+ST", "changed"}, 1, 1.08, 0);
  EXPECT_EQ(seat.client->DeleteSLTPOrder(seat.client->PendingOrderItem(1)->order), request::taken);
  expect({"stops 1", "-ST", "changed"}, 0, 0, 0);
  set(1.08, 0);
  expect({"new stops 1", "+ST", "changed"}, 1, 1.08, 0);
  rig.run(10'000);
  EXPECT_EQ(seat.seen->events, (Words{"not stopped 0", "-ST", "changed", "summary"}));
  EXPECT_EQ(seat.client->OpenPositionItem(1)->stop_loss, 0.0);
  seat.seen->events.clear();
  // Two on their way with a close: each finds what the others left.
  seat.client->ClosePosition(std::to_string(ticket), "0.3", "");
  set(1.04, 0);
  set(1.03, 0);
  rig.run(200);
  EXPECT_EQ(seat.client->OpenPositionCount(), 0);
  EXPECT_EQ(seat.client->PendingOrderCount(), 0);
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
      {limit, 1.0841, 1.08, 1.09, 1}, {limit, 1.0842, 0, 0, 21},    {limit, 1.08, 1.081, 0, 21},
      {limit, 1.08, 0, 1.079, 21},    {limit, nan, 0, 0, 21},       {limit, 0, 0, 0, 21},
      {stop, 1.0840, 1.09, 1.07, 1},  {stop, 1.0841, 0, 0, 21},     {stop, 1.08, nan, 0, 21},
      {ticket, 1.08, 0, 0, 10},       {limit + 99, 1.08, 0, 0, 10},
  };
  for (const Case& one : entries) {
    *seat.seen = {};
    EXPECT_EQ(
        seat.client->UpdateEntryOrder(one.number, one.price, stop_prices(one.stop_loss, one.take_profit)),
        one.code)
        << one.price;
    rig.run(200);
    EXPECT_EQ(seat.seen->events, one.code == 1 ? (Words{"update 1", "+LO"}) : Words{});
    if (one.code != 1) continue;
    EXPECT_EQ(seat.seen->orders.at(0).order, one.number);
    EXPECT_EQ(seat.seen->orders[0].price, one.price);
    EXPECT_EQ(seat.seen->orders[0].take_profit, one.take_profit);
  }
  EXPECT_EQ(seat.client->PendingOrderItem(1)->price, 1.0841);

  // Closed at 1.08450 the bought one, at 1.08462 the sold one.
  const Case positions[] = {
      {ticket, 0, 1.0840, 1.0850, 1}, {ticket, 0, 1.08401, 0, 21}, {ticket, 0, 0, 1.08499, 21},
      {ticket, 0, nan, 0, 21},        {ticket, 0, -1, 0, 21},      {sold, 0, 1.08512, 1.08412, 1},
      {sold, 0, 1.08511, 0, 21},      {sold, 0, 0, 1.08413, 21},   {limit, 0, 1.08, 0, 7},
      {sold + 99, 0, 0, 0, 7},
  };
  for (const Case& one : positions)
    EXPECT_EQ(seat.client->UpdateSLTP(one.number, stop_prices(one.stop_loss, one.take_profit)), one.code)
        << one.stop_loss << ' ' << one.take_profit;
  rig.run(200);

  // Gone meanwhile.
  *seat.seen = {};
  EXPECT_EQ(seat.client->DeleteEntryOrder(limit), request::taken);
  EXPECT_EQ(seat.client->ClosePosition(std::to_string(ticket), "0.5", ""), request::taken);
  rig.run(1);
  EXPECT_EQ(seat.client->UpdateEntryOrder(limit, 1.08, {}), request::taken);
  EXPECT_EQ(seat.client->UpdateSLTP(ticket, stop_prices(1.08, 0)), request::taken);
  rig.run(200);
  const auto told = [&](const char* word) {
    return std::count(seat.seen->events.begin(), seat.seen->events.end(), word);
  };
  // The latencies decide who comes first; nothing is left over either way.
  EXPECT_EQ(told("update 1") + told("update 10"), 1);
  EXPECT_EQ(told("update stops 1") + told("new stops 6"), 1);
  EXPECT_EQ(seat.client->PendingOrderCount(), 2);
  EXPECT_EQ(seat.client->OpenPositionCount(), 1);
}

TEST(DealerChanges, EveryCodeOfAChangeIsReachable) {
  struct Case {
    std::int32_t request, result;
    std::function<void(DealerConfig&)> change;
  };
  std::vector<Case> cases = {
      {2, 0, [](DealerConfig& c) { c.accounts[0].privilege = false; }},
      {1, 3, [](DealerConfig& c) { c.symbols[0].trading = Trading::closed; }},
      {1, 4, [](DealerConfig& c) { c.symbols[0].trading = Trading::halted; }},
  };
  for (const std::int32_t code : {4, 5, 6, 8, 99})
    cases.push_back({code, 0, [code](DealerConfig& c) {
                       c.faults = {fault(FaultKind::refuse, FaultPoint::update, code)};
                     }});
  for (const std::int32_t code : {2, 5, 7, 8, 9, 11, 12, 13, 100})
    cases.push_back({1, code, [code](DealerConfig& c) {
                       c.faults = {fault(FaultKind::reject, FaultPoint::update, code)};
                     }});
  const auto file = std::filesystem::path(::testing::TempDir()) / "dealer_change_codes.toml";
  std::int64_t ticket = 0;
  {
    DealerConfig config = still_market();
    config.entry_orders = {{first, buy, "EURUSD", 0.2, 1.07, 0, 0, 0}};
    DealerRig rig(config);
    ticket = open_half(rig, rig.trader(0), buy);
    ASSERT_TRUE(rig.server.save_book(file));
  }
  for (const Case& one : cases) {
    DealerConfig config = still_market();
    one.change(config);
    DealerRig rig(config);
    ASSERT_TRUE(rig.server.load_book(file));
    const auto seat = rig.trader(0);
    const std::int64_t order = seat.client->PendingOrderItem(1)->order;
    const std::string code = std::to_string(one.result);
    EXPECT_EQ(seat.client->UpdateEntryOrder(order, 1.08, {}), one.request);
    rig.run(200);
    EXPECT_EQ(seat.seen->events, one.request == 1 ? Words{"update " + code} : Words{});
    seat.seen->events.clear();
    EXPECT_EQ(seat.client->UpdateSLTP(ticket, stop_prices(1.08, 0)), one.request);
    rig.run(200);
    EXPECT_EQ(seat.seen->events, one.request == 1 ? Words{"new stops " + code} : Words{});
    EXPECT_EQ(rig.server.outcomes().back().request, one.request);
    EXPECT_EQ(rig.server.outcomes().back().result, one.result);
    EXPECT_EQ(seat.client->PendingOrderItem(1)->price, 1.07);
    EXPECT_EQ(seat.client->OpenPositionItem(1)->stop_loss, 0.0);
  }
  std::filesystem::remove(file);
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
  EXPECT_EQ(other.client->SymbolLimitDistance("EURUSD"), 50.0);
  const auto place = [](const DealerRig::Seat& from, EntryKind kind, double price) {
    const std::int32_t id = from.client->FindSymbol("EURUSD")->id;
    return from.client->NewEntryOrder({buy, kind, id, 0.1, price, 0, 0, false, false});
  };
  EXPECT_EQ(place(seat, EntryKind::limit, 1.0830), request::invalid_price);
  EXPECT_EQ(place(other, EntryKind::limit, 1.0830), request::taken);
  EXPECT_EQ(place(seat, EntryKind::stop, 1.08462), request::taken);
  EXPECT_EQ(place(other, EntryKind::stop, 1.08462), request::invalid_price);

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

}  // namespace
}  // namespace tutti
