#include <cmath>
#include <limits>

#include "dealer_rig.h"

namespace tutti {
namespace {

TEST(Dealer, LoginsEndAsTheirDataDeserve) {
  const Words refused = {"waiting 2", "invalid", "waiting 0"};
  const Words lost = {"waiting 2", "disconnected", "waiting 0"};
  const Words not_owned = {"waiting 2", "connected", "symbols", "positions", "orders", "waiting 0", "all"};
  const struct {
    LoginData data;
    int after;  // milliseconds
    Words words;
    bool found;  // and may trade
  } cases[] = {
      {{"ALDER", "ALDER01", 500100, {}}, 300, login_words, true},
      {{"alder", "alder01", 500100, {"127.0.0.1", 4950}}, 300, login_words, true},
      {{"ALDER", "ASPEN02", 500100, {}}, 300, refused, false},
      {{"ALDER", "ALDER01", 500101, {}}, 300, not_owned, false},
      {{"ALDER", "ALDER01", 500100, {"127.0.0.1", 4951}}, 29'999, {"waiting 2"}, false},
      {{"ALDER", "ALDER01", 500100, {"10.0.0.1", 4950}}, 30'000, lost, false},
  };
  for (const auto& one : cases) {
    DealerRig rig(still_market());
    const auto seat = rig.seat(one.data);
    seat.client->Login();  // a second call does nothing
    EXPECT_EQ(rig.heard(seat, one.after), one.words) << one.data.user << ' ' << one.data.account;
    EXPECT_EQ(seat.client->LoggedIn(), one.found);
    EXPECT_EQ(seat.client->FindAccount(one.data.account).has_value(), one.found);
    EXPECT_EQ(seat.client->SymbolCount(), one.found ? 21 : 0);
    if (!one.found) {
      EXPECT_EQ(seat.client->NewMarketOrder(operation::buy, 1, 1.0, "", "", next_id()),
                request::invalid_account);
    }
  }
}

TEST(Dealer, ConnectionsEndInEveryWay) {
  DealerRig rig(still_market());
  auto first = rig.trader(0);
  first.client->Logout();
  EXPECT_FALSE(first.client->LoggedIn());
  EXPECT_EQ(first.client->FindSymbol("EURUSD"), nullptr);
  first.client->Login();
  first.client->Logout();  // while it is connecting
  EXPECT_EQ(rig.heard(first, 60'000), (Words{"disconnected", "waiting 2", "disconnected", "waiting 0"}));

  // Logged out before the news of the login were heard: what is not true any more is not told.
  first.seen->events.clear();
  first.client->Login();
  rig.let_pass(std::chrono::milliseconds{300});
  first.client->Logout();
  rig.drain();
  EXPECT_EQ(first.seen->events, (Words{"waiting 2", "connected", "waiting 0", "disconnected"}));

  first = rig.trader(0);
  const auto second = rig.trader(0);  // takes over
  EXPECT_EQ(first.seen->events, (Words{"disconnected", "dropped"}));
  EXPECT_TRUE(second.client->LoggedIn());
  EXPECT_TRUE(rig.server.drop(500100));
  rig.drain();
  EXPECT_EQ(second.seen->events, (Words{"disconnected", "dropped"}));
}

TEST(Dealer, AnOrderMovesTheSummaryAsArithmeticSays) {
  const double eur = 1.08456, gbp = 1.26528, jpy = 149.487;  // middle prices
  const struct {
    const char *currency, *symbol;
    Operation side;
    double margin;    // of two lots at leverage 100, in account currency
    double floating;  // right after opening: the spread
  } cases[] = {
      {"USD", "EURUSD", buy, 2000 * eur, -2 * 12.0},
      {"USD", "GBPJPY", sell, 2000 * gbp, -2 * 0.028 * 100'000 / jpy},
      {"EUR", "USDJPY", buy, 2000 / eur, -2 * 0.014 * 100'000 / 162.12},
      {"USD", "DE40", buy, 2 * 25 * 18230.6 * eur / 100, -2 * 25 * 1.2 * eur},
  };
  for (const auto& one : cases) {
    DealerConfig config = still_market();
    config.accounts[0].currency = one.currency;
    config.accounts[0].credit = 500.0;
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    ASSERT_EQ(DealerRig::send(seat, one.side, one.symbol, 2.0), request::taken);
    EXPECT_EQ(rig.heard(seat, 79), Words{});
    ASSERT_EQ(rig.heard(seat, 41), (Words{"order 1", "opened", "summary"}));
    EXPECT_EQ(seat.seen->opened[0].ticket, seat.seen->reports[0].number);
    const AccountSummary& now = seat.seen->summaries[0];
    EXPECT_EQ(now.balance, 50'000.0);
    EXPECT_NEAR(now.floating_pl, one.floating, 0.01) << one.symbol;
    EXPECT_NEAR(now.equity, 50'500.0 + one.floating, 0.01);
    EXPECT_NEAR(now.used_margin, -one.margin, 0.01) << one.symbol;
    EXPECT_NEAR(now.free_margin, now.equity - one.margin, 0.01);
    EXPECT_NEAR(now.margin_level, now.equity / one.margin, 1e-4);
  }
}

TEST(Dealer, AmountsAndSymbolsOfOrdersAreChecked) {
  struct Case {
    int request, result;
    double amount;
    std::function<void(DealerConfig&)> change;
  };
  const auto nothing = [](DealerConfig&) {};
  const auto tenths = [](DealerConfig& c) { c.lot_step = 0.1; };
  std::vector<Case> cases = {
      {21, 0, 1.0, [](DealerConfig& c) { c.symbols[0].bid = 0.0; }},
      {21, 0, 1.0, [](DealerConfig& c) { c.accounts[0].hidden_symbols = {"EURUSD"}; }},
      {1, 2, 99.0, nothing},
      {1, 2, 0.01, [](DealerConfig& c) { c.accounts[0].balance = -1.0; }},
      {1, 9, 0.001, nothing},
      {1, 9, 0.15, tenths},
      {1, 1, 0.3, tenths},
  };
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  for (const double bad : {-0.0, -1.0, 100.1, inf, nan})
    cases.push_back({8, 0, bad, nothing});
  for (const Case& one : cases) {
    DealerConfig config = still_market();
    one.change(config);
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    EXPECT_EQ(DealerRig::send(seat, buy, "EURUSD", one.amount), RequestCode{one.request}) << one.amount;
    rig.run(200);
    EXPECT_EQ(seat.seen->reports.empty() ? 0 : format_as(seat.seen->reports[0].result), one.result)
        << one.amount;
    EXPECT_EQ(seat.seen->opened.size(), one.result == 1 ? 1U : 0U);
  }
}

TEST(Dealer, ClosesInPartsAndBooksTheProfit) {
  DealerConfig config = still_market();
  config.ticks = {{std::chrono::seconds{5}, "EURUSD", 1.09450, 1.09462}};
  DealerRig rig(config);
  const auto seat = rig.trader(0);
  DealerRig::send(seat, buy, "EURUSD", 0.3);
  rig.run(10'000);
  EXPECT_EQ(seat.seen->floats, 1);
  EXPECT_EQ(seat.seen->last_bid, 1.09450);
  EXPECT_NEAR(seat.seen->summaries.back().floating_pl, 0.3 * 100'000 * (1.09450 - 1.08462), 1e-6);
  const std::string ticket = std::to_string(seat.client->OpenPositionItem(1)->ticket);
  const auto close = [&](const std::string& which, const char* amount) {
    return seat.client->ClosePosition(which, amount, "", next_id());
  };
  for (const char* bad : {"", "0", "-0.1", "0.31", "nan"})
    EXPECT_EQ(close(ticket, bad), request::invalid_lots) << bad;
  for (const char* bad : {"", "1", "99999999999999999999"})
    EXPECT_EQ(close(bad, "0.1"), request::invalid_ticket) << bad;
  seat.seen->events.clear();
  EXPECT_EQ(close(ticket, "0.1"), request::taken);
  EXPECT_EQ(rig.heard(seat, 200), (Words{"close 1", "changed", "summary"}));
  EXPECT_EQ(seat.seen->reports.back().price, 1.09450);
  EXPECT_EQ(seat.client->OpenPositionItem(1)->amount, 0.2);
  // Two on their way at once: whichever is later finds too little, then nothing.
  const auto close_twice = [&](const char* amount) {
    seat.seen->reports.clear();
    EXPECT_EQ(close(ticket, amount), request::taken);
    EXPECT_EQ(close(ticket, amount), request::taken);
    rig.run(200);
    EXPECT_EQ(seat.seen->reports.at(0).result, result::succeeded);
    return seat.seen->reports.at(1).result;
  };
  EXPECT_EQ(close_twice("0.15"), result::invalid_amount);
  EXPECT_EQ(close_twice("0.05"), result::position_closed);
  const AccountSummary end = seat.client->GetAccountSummary(500100).values;
  EXPECT_NEAR(end.balance, 50'000.0 + 0.3 * 100'000 * (1.09450 - 1.08462), 1e-6);
  EXPECT_EQ(end.used_margin + end.margin_level, 0.0);
  EXPECT_EQ(end.equity, end.balance);
}

TEST(Dealer, PricesThatWaitAreToldOnceAndLatest) {
  DealerConfig config = DealerConfig::sample(9);
  DealerRig rig(config);
  const auto seat = rig.trader(8);  // does not carry gold
  EXPECT_EQ(seat.client->FindSymbol("XAUUSD"), nullptr);
  EXPECT_EQ(seat.client->SymbolRecord("XAUUSD")->id, 0);
  DealerRig::send(seat, buy, "EURUSD", 0.1);
  rig.run(200);
  *seat.seen = {};
  rig.let_pass(std::chrono::seconds{5});
  DealerRig::send(seat, buy, "EURUSD", 0.1);
  for (int i = 0; i < 100; ++i)
    rig.let_pass(std::chrono::milliseconds{250});
  rig.drain();
  EXPECT_EQ(seat.seen->prices, 20);
  EXPECT_EQ(seat.seen->events, (Words{"summary", "order 1", "opened", "summary"}));
  EXPECT_EQ(seat.seen->last_bid, rig.server.market().quote(0).bid);

  // What waited goes with the sink, and the next is told.
  rig.let_pass(std::chrono::seconds{25});
  seat.client->set_sink(nullptr);
  seat.client->set_sink(seat.seen.get());
  rig.let_pass(std::chrono::seconds{25});
  rig.drain();
  EXPECT_EQ(seat.seen->prices, 40);

  // What moves behind the one that is being told comes once more, latest.
  rig.let_pass(std::chrono::seconds{25});
  rig.server.deliver_next();
  EXPECT_EQ(seat.seen->prices, 41);
  rig.let_pass(std::chrono::seconds{25});
  rig.drain();
  EXPECT_EQ(seat.seen->last_bid, rig.server.market().quote(0).bid);
}

TEST(Dealer, PricesWalkWithoutDrift) {
  DealerRig rig(DealerConfig::sample(1));
  for (int second = 0; second < 300; ++second)
    rig.let_pass(std::chrono::seconds{1});
  const Market& market = rig.server.market();
  for (std::size_t i = 0; i < market.count(); ++i) {
    const SymbolConfig& symbol = market.symbol(i);
    const double moves =
        (market.quote(i).bid - symbol.bid) * std::pow(10.0, symbol.digits) / symbol.volatility;
    EXPECT_LT(std::abs(moves), 150.0) << symbol.name;
  }
}

TEST(Dealer, NothingReachesASinkThatWasTakenAway) {
  DealerRig rig(still_market());
  auto seat = rig.trader(0);
  DealerRig::send(seat, buy, "EURUSD", 1.0);
  rig.let_pass(std::chrono::milliseconds{200});
  std::remove_reference_t<decltype(*seat.seen)> next;
  seat.client->set_sink(&next);
  rig.drain();
  EXPECT_TRUE(seat.seen->events.empty() && next.events.empty());
  seat.client->set_sink(seat.seen.get());

  // The client goes while its own event runs and an order is on its way; the order is executed all the same.
  seat.seen->on_report = [&] {
    EXPECT_FALSE(rig.server.deliver_next()) << "inside a handler";
    DealerRig::send(seat, sell, "EURUSD", 1.0);
    seat.client.reset();
  };
  DealerRig::send(seat, buy, "EURUSD", 1.0);
  EXPECT_EQ(rig.heard(seat, 200), (Words{"order 1"}));
  rig.run(200);
  EXPECT_EQ(rig.server.find_account(500100)->positions().size(), 3U);
  EXPECT_EQ(rig.server.requests_in_flight(), 0U);
}

TEST(Dealer, ADaysRangeBeginsAnewAtMidnight) {
  using namespace std::chrono_literals;
  DealerConfig config = DealerConfig::sample(1);
  config.ticks = {{1s, "EURUSD", 1.3, 1.31}, {2s, "EURUSD", 1.1, 1.11}, {11s, "EURUSD", 1.2, 1.21}};
  DealerRig rig(config, std::chrono::sys_days{std::chrono::year{2026} / 3 / 3} - 10s);
  const Quote& quote = rig.server.market().quote(0);
  rig.run(5'000);
  EXPECT_TRUE(quote.high == 1.3 && quote.low == config.symbols[0].bid);
  rig.run(7'000);
  EXPECT_TRUE(quote.high == 1.2 && quote.low == 1.2);
}

TEST(Dealer, ALongSleepIsSkippedAndPricesStayReal) {
  DealerRig rig(DealerConfig::sample(1));
  const auto seat = rig.trader(0);
  for (const std::int64_t hours : {1, 24, 24 * 365}) {
    rig.run(hours * 3'600'000);
    for (std::size_t s = 0; s < rig.server.market().count(); ++s) {
      const Quote& quote = rig.server.market().quote(s);
      const SymbolConfig& symbol = rig.server.market().symbol(s);
      EXPECT_TRUE(quote.bid > 0.0 && quote.low <= quote.bid && quote.bid <= quote.high) << symbol.name;
      EXPECT_EQ(quote.bid, round_half_even(quote.bid, symbol.digits)) << symbol.name;
      EXPECT_NEAR(quote.ask - quote.bid, symbol.spread * std::pow(10.0, -symbol.digits), 1e-9);
      EXPECT_LE(rig.clock.now() - quote.time, std::chrono::minutes{1}) << symbol.name;
    }
  }
  EXPECT_LE(*rig.server.next_due() - rig.clock.now(), std::chrono::milliseconds{250});
  rig.let_pass(std::chrono::hours{-5});  // set back: the market goes on
  EXPECT_LE(*rig.server.next_due() - rig.clock.now(), std::chrono::milliseconds{250});
}

}  // namespace
}  // namespace tutti
