// Trading over FIX: the same scripts are played to the dealing server within the process and to one behind
// FIX, and must tell the same.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/fix_rig.h"

namespace tutti {
namespace {

using Seat = DealerRig::Seat;

// Plays a script to a rig and gives what the first trader was told, step by step.
template <class Rig>
struct Play {
  explicit Play(DealerConfig config) : rig(std::move(config)), seat(rig.trader(0)) {}

  // Account values and prices come as often as they change on their way.
  void hear(std::int64_t milliseconds) {
    Words words = rig.heard(seat, milliseconds);
    std::erase(words, "summary");
    told.push_back(std::move(words));
  }
  void did(RequestCode code) { told.push_back({"code " + std::to_string(format_as(code))}); }
  ClientAPI& client() { return *seat.client; }
  std::int64_t ticket(int index = 1) const {
    const OpenPosition* position = seat.client->OpenPositionItem(index);
    return position != nullptr ? position->ticket : 0;
  }
  std::int64_t order(int index = 1) const {
    const PendingOrder* found = seat.client->PendingOrderItem(index);
    return found != nullptr ? found->order : 0;
  }

  Rig rig;
  Seat seat;
  std::vector<Words> told;
};

// A refusal that comes late stands where the one at once would.
std::vector<Words> at_once(std::vector<Words> told) {
  for (std::size_t i = 1; i < told.size(); ++i)
    if (told[i - 1] == Words{"code 1"} && !told[i].empty() && told[i][0].starts_with("refused ")) {
      told[i - 1] = {"code " + told[i][0].substr(8)};
      told[i].erase(told[i].begin());
    }
  return told;
}

// The account as a client shows it: every row with everything that is in it.
Words shown(const ClientAPI& client, std::int32_t account) {
  Words rows;
  for (int i = 1; i <= client.OpenPositionCount(); ++i) {
    const OpenPosition& row = *client.OpenPositionItem(i);
    rows.push_back(fmt::format("{} {} {} {:.9g} {:.9g} {:.9g} {:.9g} {:.9g} {:.9g} {:.9g} {}", row.ticket,
                               row.symbol, row.side, row.amount, row.open_price, row.current_price,
                               row.stop_loss, row.take_profit, row.floating_pl, row.commission,
                               row.symbol_id != 0));
  }
  for (int i = 1; i <= client.PendingOrderCount(); ++i) {
    const PendingOrder& row = *client.PendingOrderItem(i);
    rows.push_back(fmt::format("{} {} {} {} {} {:.9g} {:.9g} {:.9g} {:.9g}", order_kind::text(row.kind),
                               row.order, row.reference, row.symbol, row.operation, row.amount, row.price,
                               row.stop_loss, row.take_profit));
  }
  const AccountSummary summary = client.GetAccountSummary(account).values;
  rows.push_back(fmt::format("{:.9g} {:.9g} {:.9g} {:.9g} {:.9g} {:.9g} {:.9g}", summary.balance,
                             summary.floating_pl, summary.credit, summary.equity, summary.used_margin,
                             summary.margin_level, summary.free_margin));
  for (int i = 1; i <= client.SymbolCount(); ++i) {
    const Symbol& symbol = *client.SymbolItem(i);
    rows.push_back(fmt::format(
        "{} {} {} {} {} {} {} {} {} {} {} {}", symbol.name, symbol.digits, symbol.contract_size, symbol.bid,
        symbol.ask, symbol.high, symbol.low, symbol.base, symbol.profit, symbol.margin_rate,
        client.SymbolLimitDistance(symbol.name), client.SymbolStopDistance(symbol.name)));
  }
  return rows;
}

// Of reports, everything but ids, which every play counts on, and times.
Words texts_of(const std::vector<OrderReport>& reports) {
  Words texts;
  for (const OrderReport& each : reports) {
    const Realised realised = each.realised.value_or(Realised{});
    texts.push_back(fmt::format(
        "{} {} {} {} {} {:.9g} {} {:.9g} {} {:.9g} {:.9g} {:.9g} {:.9g} {:.9g} {}", each.number, each.account,
        each.result, each.state, each.operation, each.amount, each.symbol, each.price, each.execution,
        each.filled, each.filled_all, each.left, realised.profit, realised.commission, each.id != 0));
  }
  return texts;
}

// Gives what was told over FIX.
template <class Script>
DealerRecorder plays_alike(DealerConfig config, Script script) {
  Play<DealerRig> inside(config);
  Play<FixRig> outside(config);
  script(inside);
  script(outside);
  EXPECT_EQ(at_once(outside.told), inside.told);
  const std::int32_t account = config.accounts[0].number;
  EXPECT_EQ(shown(outside.client(), account), shown(inside.client(), account));
  EXPECT_EQ(texts_of(outside.seat.seen->reports), texts_of(inside.seat.seen->reports));
  EXPECT_EQ(outside.rig.notices(), Words{});
  EXPECT_EQ(outside.rig.fix.take_remarks(), Words{});
  return *outside.seat.seen;
}

TEST(FixTrading, LogsInWithTheSameBlockOfEvents) {
  FixRig rig(still_market());
  const AccountConfig& config = rig.server.config().accounts[0];
  const Seat seat = rig.seat({config.user, config.password, config.number, {}});
  EXPECT_EQ(rig.heard(seat, 300), login_words);
  EXPECT_TRUE(seat.client->LoggedIn());
  EXPECT_EQ(rig.fix.logged_on(), 1U);
  seat.client->Logout();
  EXPECT_EQ(rig.heard(seat, 3'000), Words{"disconnected"});
  EXPECT_FALSE(seat.client->LoggedIn());
  EXPECT_EQ(rig.fix.logged_on(), 0U);
  EXPECT_EQ(rig.network.open_connections(), 0U);
  seat.client->Login();
  EXPECT_EQ(rig.heard(seat, 300), login_words);
}

TEST(FixTrading, OpensAndClosesAsWithinTheProcess) {
  plays_alike(still_market(), [](auto& play) {
    play.did(DealerRig::send(play.seat, buy, "EURUSD", 0.5));
    play.hear(300);
    play.did(DealerRig::send(play.seat, sell, "USDJPY", 1.25));
    play.hear(300);
    play.did(play.client().ClosePosition(std::to_string(play.ticket()), "0.2", "", next_id()));
    play.hear(300);
    play.did(play.client().ClosePosition(std::to_string(play.ticket()), "0.3", "", next_id()));
    play.hear(300);
    play.did(play.client().ClosePosition("77", "0.3", "", next_id()));
    play.did(play.client().ClosePosition(std::to_string(play.ticket()), "2", "", next_id()));
    play.did(DealerRig::send(play.seat, buy, "NONE", 0.5));
    play.hear(300);
  });
}

TEST(FixTrading, PlacesChangesAndCancelsEntryOrdersAndStops) {
  plays_alike(still_market(), [](auto& play) {
    play.did(enter(play.seat, buy, EntryKind::limit, 0.4, 1.07, 1.06, 1.09));
    play.hear(300);
    play.did(enter(play.seat, sell, EntryKind::stop, 0.3, 1.07));
    play.hear(300);
    play.did(enter(play.seat, buy, EntryKind::limit, 0.4, 1.0844));
    play.hear(300);
    play.did(play.client().UpdateEntryOrder(play.order(1), 1.065, stop_prices(1.05, 0), next_id()));
    play.hear(300);
    play.did(play.client().UpdateEntryOrder(play.order(2), 1.06, stop_prices(0, 0), next_id()));
    play.hear(300);
    play.did(play.client().UpdateEntryOrder(play.order(2), 1.2, stop_prices(0, 0), next_id()));
    play.hear(300);
    play.did(play.client().DeleteEntryOrder(play.order(1), next_id()));
    play.hear(300);
    play.did(DealerRig::send(play.seat, buy, "EURUSD", 0.5));
    play.hear(300);
    play.did(play.client().UpdateSLTP(play.ticket(), stop_prices(1.05, 1.1), next_id()));
    play.hear(300);
    play.did(play.client().UpdateSLTP(play.ticket(), stop_prices(0, 1.2), next_id()));
    play.hear(300);
    play.did(play.client().DeleteSLTPOrder(play.order(2), next_id()));
    play.hear(300);
    play.did(play.client().UpdateSLTP(play.ticket(), stop_prices(1.2, 0), next_id()));
    play.hear(300);
    play.did(play.client().DeleteEntryOrder(99, next_id()));
    play.hear(300);
  });
}

// Prices set entry orders and stops off, with nobody asking.
TEST(FixTrading, TellsWhatPricesSetOff) {
  DealerConfig config = still_market();
  config.ticks = {{std::chrono::seconds{5}, "EURUSD", 1.07, 1.0702},
                  {std::chrono::seconds{8}, "EURUSD", 1.09, 1.0902},
                  {std::chrono::seconds{9}, "USDJPY", 150.0, 150.01}};
  config.accounts[0].hedging = false;
  plays_alike(config, [](auto& play) {
    play.did(enter(play.seat, buy, EntryKind::limit, 0.4, 1.075, 1.06, 1.088));
    play.hear(300);
    play.did(enter(play.seat, sell, EntryKind::limit, 0.3, 1.0855));
    play.hear(300);
    play.hear(5'000);  // the first is filled, and has stops
    play.did(enter(play.seat, buy, EntryKind::stop, 40, 1.08));
    play.hear(300);
    play.hear(4'000);
  });
}

TEST(FixTrading, CarriesDealingAndRequotes) {
  for (const bool close : {false, true}) {
    for (const char* answer : {"accept", "reject", "late", "none"}) {
      DealerConfig config = still_market();
      FaultConfig requote = fault(FaultKind::requote, {close ? FaultPoint::close : FaultPoint::open}, 0,
                                  std::chrono::seconds{3}, {first});
      requote.points = 5;
      config.faults = {requote};
      SCOPED_TRACE(answer);
      const DealerRecorder seen = plays_alike(config, [&](auto& play) {
        if (close) {
          play.did(DealerRig::send(play.seat, buy, "EURUSD", 0.5));
          play.hear(300);
          play.did(play.client().ClosePosition(std::to_string(play.ticket()), "0.5", "", next_id()));
        } else {
          play.did(DealerRig::send(play.seat, buy, "EURUSD", 0.5));
        }
        play.hear(1'200);
        const std::string word = answer;
        const std::int64_t order = play.order();
        if (word == "late") play.hear(6'000);
        if (word == "accept" || word == "late") play.did(play.client().AcceptRequote(order, next_id()));
        if (word == "reject") play.did(play.client().RejectRequote(order, next_id()));
        play.hear(500);
        play.hear(6'000);
      });
      ASSERT_FALSE(seen.requotes.empty());
      EXPECT_NEAR(seen.requotes[0].new_price, close ? 1.08445 : 1.08467, 1e-9);
      EXPECT_EQ(seen.requotes[0].amount, 0.5);
    }
  }
}

// Whatever an account is not allowed, and whatever a dealer does to it, comes over the wire as it is.
TEST(FixTrading, CarriesRefusalsAndResults) {
  struct Case {
    const char* what;
    std::function<void(DealerConfig&)> set;
  };
  const auto result = [](int code) {
    return [code](DealerConfig& config) {
      config.faults = {fault(FaultKind::reject, {FaultPoint::open}, code)};
    };
  };
  const auto refusal = [](int code) {
    return [code](DealerConfig& config) {
      config.faults = {fault(FaultKind::refuse, {FaultPoint::open}, code)};
    };
  };
  const Case cases[] = {
      {"may not trade", [](DealerConfig& config) { config.accounts[0].privilege = false; }},
      {"is broke", [](DealerConfig& config) { config.accounts[0].balance = 1; }},
      {"closed", [](DealerConfig& config) { config.symbols[0].trading = Trading::closed; }},
      {"pending", [](DealerConfig& config) { config.accounts[0].dealing = std::chrono::seconds{2}; }},
      {"told twice",
       [](DealerConfig& config) { config.faults = {fault(FaultKind::twice, {FaultPoint::open})}; }},
      {"told late",
       [](DealerConfig& config) {
         config.faults = {fault(FaultKind::late, {FaultPoint::open}, 0, std::chrono::seconds{1})};
       }},
      {"result 4", result(4)},
      {"result 5", result(5)},
      {"result 8", result(8)},
      {"result 100", result(100)},
      {"a result of no name", result(77)},
      {"refusal 4", refusal(4)},
      {"refusal 5", refusal(5)},
      {"a refusal of no name", refusal(77)},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    DealerConfig config = still_market();
    each.set(config);
    plays_alike(config, [](auto& play) {
      play.did(DealerRig::send(play.seat, buy, "EURUSD", 0.5));
      play.hear(300);
      play.hear(3'000);
    });
  }
}

// Answers about what is nobody's are told as they come; a position or order that was never there can't go.
TEST(FixTrading, WhatWasNeverThereDoesNotGo) {
  DealerConfig config = still_market();
  config.faults = {fault(FaultKind::unknown_ticket, {FaultPoint::open})};
  FixRig rig(config);
  const Seat seat = rig.trader(0);
  DealerRig::send(seat, buy, "EURUSD", 0.5);
  Words words = rig.heard(seat, 300);
  std::erase(words, "summary");
  EXPECT_EQ(words, (Words{"order 1", "opened", "order 1", "close 1", "accepted 1", "rejected 1", "entry 1",
                          "update 1", "new stops 1", "update stops 1", "cancel 1", "stops 1"}));
  EXPECT_EQ(rig.notices(), Words{});
  EXPECT_EQ(rig.fix.take_remarks(), Words{});
  EXPECT_EQ(seat.client->OpenPositionCount(), 1);
}

// A server whose figures are no numbers tells none of them, and goes on.
TEST(FixTrading, FiguresThatAreNoNumbersStayAtTheServer) {
  DealerConfig config = still_market();
  FaultConfig garbage =
      fault(FaultKind::garbage, {FaultPoint::price, FaultPoint::summary, FaultPoint::position});
  garbage.value = std::nan("");
  config.faults = {garbage};
  config.ticks = {{std::chrono::seconds{2}, "EURUSD", 1.09, 1.0902}};
  FixRig rig(config);
  const Seat seat = rig.trader(0);
  DealerRig::send(seat, buy, "EURUSD", 0.5);
  rig.run(5'000);
  EXPECT_EQ(rig.notices(), Words{});
  EXPECT_TRUE(seat.client->LoggedIn());
  EXPECT_EQ(seat.seen->last_bid, 1.09);
  ASSERT_EQ(seat.client->OpenPositionCount(), 1);
  EXPECT_NEAR(seat.client->OpenPositionItem(1)->floating_pl, 0.5 * 100'000 * (1.09 - 1.08462), 1e-6);
  for (const AccountSummary& summary : seat.seen->summaries)
    EXPECT_TRUE(std::isfinite(summary.equity));
}

}  // namespace
}  // namespace tutti
