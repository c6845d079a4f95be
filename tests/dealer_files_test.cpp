#include <fmt/format.h>

#include "core/checksum.h"
#include "dealer/config/config_reader.h"
#include "dealer_rig.h"
#include "tests/support/test_terminal.h"

namespace tutti {
namespace {

// A folder of its own for every test.
class DealerFiles : public ::testing::Test {
 protected:
  std::filesystem::path put(const char* name, const std::string& content) {
    home_.write(name, content);
    return folder_ / name;
  }

  testing::TemporaryFolder home_;
  const std::filesystem::path& folder_ = home_.path();
};

TEST_F(DealerFiles, ConfigurationFaultsNameTheLine) {
  const auto repeated = [](int count, const std::string& piece) {
    std::string out;
    for (int i = 0; i < count; ++i)
      out += piece;
    return out;
  };
  const auto nested = [&](int levels) { return repeated(levels, "[") + repeated(levels, "]") + "\n"; };
  const std::string strings = "# [[[\nseed = 1\nx = [\"[[[\\\"\", '[[[', \"\"\"\n[[[\"\"\"\"]\n";
  const std::pair<std::string, const char*> cases[] = {
      {"x = " + nested(100), "line 1: x is not known"},
      {"\nx = " + nested(101), "line 2: is nested over 100 levels"},
      {"x = " + nested(100'000), "line 1: is nested over 100 levels"},
      {strings + "y = " + nested(101), "line 5: is nested over 100 levels"},
      {"seed = 1\n" + repeated(100'000, "x.") + "x = 1\n", "line 2: is nested over 100 levels"},
      {"x = " + repeated(40, "{a.b.c = ") + "1" + repeated(40, "}"), "line 1: is nested over 100 levels"},
      {"[" + repeated(60, "x.") + "x]\n" + repeated(60, "y.") + "y = 1\n",
       "line 2: is nested over 100 levels"},
      {"[x]\ny = [" + repeated(300, "1.5, ") + "1.5]\n[z]\n", "x is not known"},
      {"seed = 1\nsed = 2\n", "line 2: sed"},
      {"\nminimum_lot = \"1\"\n", "line 2: minimum_lot"},
      {"endpoint = \"here\"\n", "line 1: endpoint"},
      {"symbol = [1]\n", "line 1: symbol must be written as [[symbol]]"},
      {"[[symbol]]\nname = \"NEW\"\nprofit = \"USD\"\n", "line 1: base is missing"},
      {"[[symbol]]\nname = \"EURUSD\"\n[[symbol]]\nname = \"EURUSD\"\n", "line 4: name is given twice"},
      {"[[account]]\nnumber = 1\nuser = \"A\"\npassword = \"B\"\ncurrency = \"XXX\"\n", "to XXX"},
      {"[[fault]]\nkind = \"late\"\n", "line 1: seconds is missing"},
      {"[[fault]]\nkind = \"silent\"\naccount = [500100, 9]\n", "line 3: account names 9"},
      {"[[fault]]\nkind = \"silent\"\non = [\"open\", \"price\"]\n", "line 3: on can only list"},
      {"[[fault]]\nkind = \"drop\"\nevery = 2\n", "line 3: every is not known"},
      {"[[entry_order]]\naccount = 9\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\nprice = 1\n",
       "line 2: account is not configured"},
      {"[[entry_order]]\naccount = 500100\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\nprice = 0\n",
       "line 6: price"},
      {"[[symbol]]\nname = \"A B\"\nbase = \"EUR\"\nprofit = \"USD\"\n", "\"A B\" is no name for a symbol"},
      {"[[symbol]]\nname = \"A,B\"\nbase = \"EUR\"\nprofit = \"USD\"\n", "\"A,B\" is no name"},
      {"minimum_lot = 2\nmaximum_lot = 1\n", "the smallest lot is above the largest"},
      {"replay = \"none.csv\"\n", "none.csv: "},
  };
  for (const auto& [text, expected] : cases) {
    const auto config = load_dealer_config(put("dealer.toml", text));
    ASSERT_FALSE(config) << text;
    EXPECT_NE(config.error().text().find(expected), std::string::npos) << config.error().text();
  }
  const std::string no_time = "line 1: has a time that is neither", no_price = "line 1: must have a bid";
  std::vector<std::pair<std::string, std::string>> replays = {
      {"2,EURUSD,1,1.1\n\n1,EURUSD,1,1.1\n", "line 3: is earlier"},
      {"1,EURUSD,1,1.1\n2026-03-01 10:00:00,EURUSD,1,1.1\n", "line 2: has a time that is neither"},
      {"2026-03-01 10:00:00,EURUSD,1,1.1\n1,EURUSD,1,1.1\n", "line 2: has a time that is neither"},
      {"time,symbol,bid,ask\ntime,symbol,bid,ask\n", "line 2: "},
      {"1,EURUSD,1\n", "line 1: must have the four fields"},
      {"-1,EURUSD,1,1.1\n", "line 1: has a time out of range"},
      {"1000000001,EURUSD,1,1.1\n", "line 1: has a time out of range"},
      {"1,EURUSD,x,1.1\n", no_price},
      {"1,EURUSD,1,x\n", no_price},
      {"1,EURUSD,0,1.1\n", no_price},
      {"1,EURUSD,1.2,1.1\n", no_price},
      {"1,EURUSD,1,1e10\n", no_price},
      {"1,NONE,1,1.1\n", "the replay has a tick of unknown symbol NONE"},
  };
  for (const char* moment :
       {"202x-03-01 10:00:00", "2026-0x-01 10:00:00", "2026-03-0x 10:00:00", "2026-03-01 1x:00:00",
        "2026-03-01 10:0x:00", "2026-03-01 10:00:0x", "2026.03-01 10:00:00", "2026-03.01 10:00:00",
        "2026-03-01T10:00:00", "2026-03-01 10.00:00", "2026-03-01 10:00.00", "2026-03-01 10:00:0",
        "2026-02-29 10:00:00", "2026-03-01 24:00:00", "2026-03-01 10:60:00", "2026-03-01 10:00:60",
        "2026-03-01 -1:00:00", "2026-03-01 10:-1:00", "2026-03-01 10:00:-1"})
    replays.emplace_back(std::string{moment} + ",EURUSD,1,1.1\n", no_time);
  for (const auto& [ticks, expected] : replays) {
    put("replay.csv", ticks);
    const auto config = load_dealer_config(put("dealer.toml", "replay = \"replay.csv\"\n"));
    ASSERT_FALSE(config) << ticks;
    EXPECT_NE(config.error().text().find(expected), std::string::npos) << ticks << config.error().text();
  }
}

// All that is configured, with blanks between.
std::string told(const DealerConfig& c) {
  std::string out;
  const auto list = [](const auto& values) { return fmt::format("{}", fmt::join(values, ",")); };
  const auto tell = [&out](const auto&... values) {
    ((out += fmt::format("{} ", values)), ...);
    out.back() = '\n';
  };
  tell(c.seed, c.endpoint.address, c.endpoint.port, c.min_lot, c.max_lot, c.lot_step, c.login_latency.count(),
       c.order_latency.count(), c.unreachable_after.count(), c.tick_interval.count(), c.first_number);
  for (const Tick& t : c.ticks)
    tell(t.at.count(), t.symbol, t.bid, t.ask);
  for (const SymbolConfig& s : c.symbols)
    tell(s.name, s.base, s.profit, s.digits, s.contract_size, s.bid, s.spread, s.limit_distance,
         s.stop_distance, s.volatility, s.swap_long, s.swap_short, s.commission, s.dealing.count(),
         static_cast<int>(s.trading));
  for (const AccountConfig& a : c.accounts)
    tell(a.number, a.user, a.password, a.name, a.currency, a.balance, a.credit, a.leverage,
         list(a.hidden_symbols), a.privilege, a.hedging, a.limit_distance.value_or(-1),
         a.stop_distance.value_or(-1), a.reply_request, a.reply_close_request, a.reply_result,
         a.reply_close_result, a.dealing.count());
  for (const EntryOrderConfig& o : c.entry_orders)
    tell(o.account, o.operation, o.symbol, o.amount, o.price, o.stop_loss, o.take_profit, o.ticket);
  for (const FaultConfig& f : c.faults) {
    for (const FaultPoint point : f.on)
      out += fmt::format("{} ", static_cast<int>(point));
    tell(static_cast<int>(f.kind), list(f.accounts), f.after.count(), f.every, f.times, f.code,
         f.wait.count(), f.points, f.value);
  }
  return out;
}

TEST_F(DealerFiles, EveryKeyIsReadAndTheRestIsTheSample) {
  put("ticks.csv",
      " Time,symbol,bid,ask\n# noon\n\n 2026-03-01 12:00:00.5 , OIL ,70.1,70.2\r\n2026-03-01 "
      "13:01:02,OIL,7,7");
  const auto config = load_dealer_config(put("dealer.toml", R"(
seed = 7
endpoint = "10.1.2.3:65535"
minimum_lot = 0.02
maximum_lot = 50
lot_step = 0.01
login_latency_ms = 1
order_latency_ms = 2
unreachable_after_ms = 3
tick_interval_ms = 4
first_number = 5
replay = "ticks.csv"
sample_symbols = false
symbol = [{name = "OIL", base = "OIL", profit = "USD", digits = 2, contract_size = 1000, bid = 70.5, spread = 3, limit_distance = 11, stop_distance = 12, volatility = 6, swap_long = -1.5, swap_short = 0.5, commission = 2.5, dealing_seconds = 1.25, trading = "halted"}]
account = [{number = 9, user = "U", password = "P", name = "N", currency = "USD", balance = 100, credit = 10, leverage = 30, hidden_symbols = ["OIL"], privilege = false, hedging = false, limit_distance = 21, stop_distance = 22, reply_request = 5, reply_close_request = 6, reply_result = 7, reply_close_result = 8, dealing_seconds = 2}]
entry_order = [
  {account = 9, side = "sell_stop", symbol = "OIL", amount = 0.3, price = 60, stop_loss = 65, take_profit = 55},
  {account = 9, side = "sell", symbol = "OIL", amount = 0.4, ticket = 77}]
fault = [
  {kind = "requote", account = 9, on = ["close"], after = 1.5, every = 2, times = 3, seconds = 4, points = -2.5},
  {kind = "drop", account = "all", after = 10},
  {kind = "garbage", value = nan},
  {kind = "late", seconds = 0.5}]
)"));
  ASSERT_TRUE(config) << config.error().text();
  EXPECT_EQ(told(*config), R"(7 10.1.2.3 65535 0.02 50 0.01 1 2 3 4 5
0 OIL 70.1 70.2
3661500 OIL 7 7
OIL OIL USD 2 1000 70.5 3 11 12 6 -1.5 0.5 2.5 1250 2
9 U P N USD 100 10 30 OIL false false 21 22 5 6 7 8 2000
9 -2 OIL 0.3 60 65 55 0
9 -1 OIL 0.4 0 0 0 77
2 12 9 1500 2 3 0 4000 -2.5 0
2  10000 1 0 0 0 0 0
7 8 9 13  0 1 0 0 0 0 nan
1 2 6  0 1 0 0 500 0 0
)");
  // What the pages and the examples speak of.
  EXPECT_EQ(checksum(told(DealerConfig::sample(70)) + told(DealerConfig::demo())), "490bb077252b283b");
}

// An account that is left out of the configuration for a while finds its own again, and what it is owed.
TEST_F(DealerFiles, WhatWaitsAndWhatIsOwedOutlivesTheProgram) {
  DealerConfig config = still_market(2);
  config.accounts[1].dealing = std::chrono::seconds{60};
  const DealerConfig alone = still_market(1);
  DealerConfig falling = still_market(2);
  falling.ticks = {{std::chrono::seconds{1}, "EURUSD", 1.0795, 1.0797}};
  // A saturday noon, whose end costs nothing; Monday's does.
  const TimePoint start = std::chrono::sys_days{std::chrono::year{2026} / 3 / 7} + std::chrono::hours{12};
  std::int64_t waiting = 0;
  {
    DealerRig rig(config, start);
    ASSERT_TRUE(rig.server.keep_book(folder_));
    const auto holder = rig.trader(0), seat = rig.trader(1);
    const std::int64_t ticket = open_half(rig, holder, buy);
    holder.client->UpdateSLTP(ticket, stop_prices(1.08, 0), next_id());
    DealerRig::send(seat, buy, "EURUSD", 0.3);
    rig.run(200);
    waiting = seat.client->PendingOrderItem(1)->order;
    ASSERT_TRUE(rig.server.save_book());
  }
  for (const int days : {2, 3}) {
    DealerRig rig(days == 2 ? alone : falling, start + std::chrono::days{days});
    ASSERT_TRUE(rig.server.keep_book(folder_));
    const auto holder = rig.trader(0);
    EXPECT_NEAR(holder.client->OpenPositionItem(1)->interest, days == 2 ? 0.0 : -3.25, 1e-9);
    EXPECT_EQ(holder.client->PendingOrderItem(1)->stop_loss, 1.08);
    if (days == 3) {
      const auto seat = rig.trader(1);
      EXPECT_EQ(seat.client->OpenPositionItem(1)->ticket, waiting);
      EXPECT_EQ(seat.client->OpenPositionItem(1)->open_price, 1.08462);
      EXPECT_EQ(rig.heard(holder, 1'000), (Words{"stopped 0", "-ST", "deleted", "summary"}));
    }
    ASSERT_TRUE(rig.server.save_book());
  }
}

TEST_F(DealerFiles, ADamagedBookChangesNothing) {
  const std::string head = "version = 1\nnext_number = 50\n[[account]]\nnumber = 500100\n";
  const std::string money = head + "balance = 7\ncredit = 0\n";
  const std::string position = money + "[[position]]\naccount = 500100\nside = \"buy\"\nopen_price = 1\n";
  const std::string waiting =
      "[[order]]\nnumber = 3\naccount = 500100\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\ntime_ms = "
      "1\n"
      "price = 0\n";
  const std::pair<std::string, const char*> cases[] = {
      {"", "version is missing"},
      {"version = 2\nnext_number = 1\n", "line 1: version"},
      {"version = 1\nnext_number = 1\nera = \"12x\"\n", "line 3: era must be"},
      {head + "balance = nan\ncredit = 0\n", "line 5: balance"},
      {position + "open_time_ms = 1\nsymbol = \"EURUSD\"\namount = 1\nticket = 50\n", "line 14: ticket"},
      {position + "open_time_ms = 1\nsymbol = \"NONE\"\namount = 1\nticket = 5\n", "trades NONE"},
      {money + "[[request]]\nnumber = 3\naccount = 9\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\n",
       "line 9: account"},
      {money + "[[order]]\nnumber = 3\naccount = 500100\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\n"
               "price = 1\ntime_ms = 1\nkind = \"OP\"\n",
       "line 15: kind must be"},
      {money + waiting + "kind = \"ST\"\n", "line 7: reference is missing"},
      {position + "open_time_ms = 1\nsymbol = \"EURUSD\"\namount = 1\nticket = 5\n" + waiting +
           "kind = \"ST\"\nreference = 5\n",
       "line 18: side does not close"},
      {money + "[[request]]\nnumber = 3\naccount = 500100\nkind = \"close\"\n", "line 7: "},
      {std::string("\0\xff\x01", 3), "line 1: "},
  };
  for (const auto& [text, expected] : cases) {
    DealerRig rig(still_market(1));
    const auto loaded = rig.server.keep_book(put("dealer-book.toml", text).parent_path());
    ASSERT_FALSE(loaded) << text;
    EXPECT_NE(loaded.error().text().find(expected), std::string::npos) << loaded.error().text() << '\n'
                                                                       << text;
    EXPECT_EQ(rig.server.accounts()[0].summary().balance, 50'000.0);
  }
}

}  // namespace
}  // namespace tutti
