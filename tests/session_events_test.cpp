// What sessions make of the events that answer nothing.

#include <cmath>
#include <limits>

#include "tests/support/one_session.h"

namespace tutti::testing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

class SessionEvents : public ::testing::Test, protected OneSession {};

TEST_F(SessionEvents, OtherEventsReachTheirWindows) {
  const OpenPosition& position = client.positions[0];
  const PendingOrder& order = client.orders[0];
  writes([&] { sink.NewOpenPosition(position); }, {"positions has 13"});
  writes([&] { sink.UpdateOpenPosition(position); }, {"positions has 13"});
  writes([&] { sink.OpenPositionsLoaded(); }, {"positions has 13"});
  writes([&] { sink.PosFloatingPLChanged(position); }, {"positions 13 -12.5"});
  for (const Heard& lines : {Heard{"positions drops 13"}, {}}) {
    writes([&] { sink.DeleteOpenPosition(position); }, lines);
  }
  writes([&] { sink.PosFloatingPLChanged(position); }, {});
  writes([&] { sink.NewPendingOrder(order); }, {"pending has LO 12 81"});
  writes([&] { sink.PendingOrdersLoaded(); }, {"pending has LO 12 81"});
  writes([&] { sink.DeletePendingOrder(order); }, {"pending drops 12"});
  writes([&] { sink.ServerTime(rig.clock.now() + 9h + 5min + 7s); }, {"status time 2026-01-01 09:05:07"});
  writes([&] { sink.ServerRouted("10.0.0.2", "444"); }, {});
  EXPECT_EQ(rig.options.CurrentServer(), "10.0.0.2:444");
  writes([&] { sink.ServerRouted("10.0.0.3:1", "444"); },
         {"journal 81: The server's new address was refused: it holds a character that no address has"});
  writes([&] { sink.WaitingMode(ConnectionMode{2}); }, {"entry submit off"});
  writes([&] { sink.WaitingMode(ConnectionMode{1}); },
         {"status 100025 reads Waiting", "status 100026 reads Connected", "entry submit off"});
  writes([&] { sink.WaitingMode(ConnectionMode{0}); },
         {"status 100025 reads ", "status 100017 on", "status 100018 on", "status 100019 on",
          "status 100020 on", "entry distribute on"});
  writes([&] { sink.WaitingMode(ConnectionMode{3}); }, {});
  writes([&] { sink.SessionDisconnected(); },
         {"Session Disconnected: account 81 Session disconnected", "sound Disconnect.wav",
          "journal 81: Not connected: Session disconnected"});
  writes([&] { sink.ConnectionState(false); },
         {"market removes 81", "entry removes 81", "close removes 81", "positions removes 81",
          "pending removes 81", "requote gone 81"});
}

TEST_F(SessionEvents, StatesOfTheAccountsRow) {
  using enum AccountState;
  // What the connection is, and what is shown of it.
  const auto row_reads = [&](AccountState state, AccountState told, Ink colour, bool values = false) {
    const std::string what = "state " + std::to_string(static_cast<int>(told));
    EXPECT_EQ(session.ClientListItem().state, state) << what;
    EXPECT_EQ(shown().state, told) << what;
    EXPECT_EQ(shown().ink, colour) << what;
    EXPECT_EQ(shown().has_values, values) << what;
    EXPECT_EQ(rig.books.accounts.connected(81), told == connected) << what;
  };
  client.summary.values.balance = 7.0;
  during([&] { sink.WaitingMode(ConnectionMode{2}); });
  row_reads(connecting, connecting, Ink::red);
  during([&] { sink.ConnectionState(true); });
  row_reads(connected, connected, Ink::white);
  during([&] { sink.SummariesChanged({.balance = 5.0}); });
  row_reads(connected, connected, Ink::green, true);
  EXPECT_EQ(session.ClientListItem().values.balance, 5.0);
  EXPECT_EQ(shown().values.balance, 7.0) << "what the query brought";
  during([&] { sink.SessionDisconnected(); });
  row_reads(disconnected, connected, Ink::green, true);
  during([&] { sink.ConnectionState(false); });
  row_reads(disconnected, disconnected, Ink::red);
  EXPECT_EQ(shown().values.balance, 0.0);
  during([&] { session.query_summary(); });
  row_reads(disconnected, connected, Ink::green, true);
  during([&] { session.log_out(); });
  row_reads(disconnected, connected, Ink::green);
  during([&] { sink.InvalidUsernamePassword(); });
  row_reads(invalid, invalid, Ink::red);
}

// One line for each time, the reason in the Notes, and there again what stood there once it is over.
TEST_F(SessionEvents, WhyAnAccountIsNotConnected) {
  const std::string not_connected = "journal 81: Not connected: ";
  const auto on = [&] { sink.ConnectionState(true); };
  const auto off = [&] { sink.ConnectionState(false); };
  const auto begin = [&] { sink.WaitingMode(ConnectionMode{2}); };
  const struct {
    std::vector<std::function<void()>> events;
    std::string reason;  // empty: nothing is told
    int lines = 1;
  } cases[] = {
      {{begin, off}, "No connection to the server"},
      {{begin, off, begin, off, off}, "No connection to the server", 2},
      {{on, off, off}, "Connection lost"},
      {{on, off, [&] { sink.SessionDisconnected(); }}, "Connection lost"},
      {{on, [&] { sink.SessionDisconnected(); }, off}, "Session disconnected"},
      {{begin, [&] { sink.InvalidUsernamePassword(); }}, "Invalid username or password"},
      {{begin, off, [&] { sink.InvalidUsernamePassword(); }}, "Invalid username or password"},
      {{on, [&] { session.log_out(); }, off}, ""},
  };
  for (const auto& c : cases) {
    session.write_note("mine");
    Heard lines;
    for (const auto& event : c.events) {
      const Heard heard = during(event);
      std::copy_if(heard.begin(), heard.end(), std::back_inserter(lines),
                   [&](const auto& line) { return line.starts_with(not_connected + c.reason); });
    }
    EXPECT_EQ(lines.size(), c.reason.empty() ? 0U : static_cast<std::size_t>(c.lines)) << c.reason;
    EXPECT_EQ(shown().note, c.reason);
    during(on);
    EXPECT_EQ(shown().note, c.reason.empty() ? "" : "mine") << c.reason;
  }
  // What was written meanwhile stays.
  during(off);
  session.write_note("called them");
  during(on);
  EXPECT_EQ(shown().note, "called them");
}

TEST_F(SessionEvents, TotalsFollowSummariesAndDisconnections) {
  const AccountSummary first{1000.5, -20.25, 10.0, 990.25, -100.0, 0.153, 890.25};
  const AccountSummary second{1.0, 2.0, 3.0, 4.0, -5.0, 0.06, 7.0};
  CLAPICLASS& other = *rig.client(rig.add(82)).sink;
  EXPECT_EQ(during([&] { sink.SummariesChanged(first); }), Heard{});
  EXPECT_EQ(rig.totals(),
            "Balance:1000.5  Flt P/L:-20.25   Credit:10  Equity:990.25  Used Margin:100  Free Margin:890.25"
            "  Margin Level:15.3 %");
  during([&] { other.SummariesChanged({9.0, 9.0, 9.0, 9.0, 9.0, 9.0, 9.0}); });
  during([&] { other.SummariesChanged(second); });
  EXPECT_EQ(rig.totals(),
            "Balance:1001.5  Flt P/L:-18.25   Credit:13  Equity:994.25  Used Margin:105  Free Margin:897.25"
            "  Margin Level:21.3 %");
  const std::string first_alone =
      "Balance:1000.5   Flt P/L:-20.25   Credit:10   Equity:990.25   Used Margin:100   Free Margin:890.25"
      "   Margin Level:15.3 %";
  during([&] { other.ConnectionState(false); });
  EXPECT_EQ(rig.totals(), first_alone);
  // A session that was dropped leaves its last values in the totals, for good.
  during([&] { sink.SessionDisconnected(); });
  EXPECT_EQ(session.ClientListItem().values.balance, 0.0);
  during([&] { sink.ConnectionState(false); });
  EXPECT_EQ(rig.totals(), first_alone);
  // What is large goes before what is small comes, so that nothing of the small is rounded off.
  during([&] { other.SummariesChanged({.balance = 1e14}); });
  during([&] { other.SummariesChanged({.balance = 0.3}); });
  EXPECT_EQ(rig.books.accounts.totals.balance, 1000.5 + 1e14 - 1e14 + 0.3);
  EXPECT_EQ(rig.totals().find("   Flt"), std::string::npos) << "the blanks of a summary";
  EXPECT_EQ(session.SummaryDesc(1.256, -0.001, 2.5), "Balance: 1.26  Equity: 0  EffMargin: 2.5");
}

TEST_F(SessionEvents, ValuesThatAreNoNumbersAreRefused) {
  const double worst = std::numeric_limits<double>::max();  // finite, but not as a percentage
  double AccountSummary::*const fields[] = {
      &AccountSummary::balance,     &AccountSummary::floating_pl,  &AccountSummary::credit,
      &AccountSummary::equity,      &AccountSummary::used_margin,  &AccountSummary::margin_level,
      &AccountSummary::free_margin, &AccountSummary::margin_level,
  };
  for (std::size_t i = 0; i < std::size(fields); ++i) {
    AccountSummary bad{};
    bad.*fields[i] = i == 7 ? worst : i % 2 == 0 ? std::nan("") : infinity;
    during([&] { sink.ConnectionState(true); });
    const Heard heard = during([&] { sink.SummariesChanged(bad); });
    EXPECT_TRUE(heard.size() == 1 && heard[0].starts_with("journal 81: ")) << i;
    EXPECT_TRUE(during([&] { sink.SummariesChanged(bad); }).empty()) << "said once per connection";
    during([&] { sink.SummariesChanged({}); });
    EXPECT_EQ(rig.books.accounts.totals.margin_level, 0.0) << i;
  }
  for (const double bad : {std::nan(""), infinity}) {
    during([&] { sink.ConnectionState(true); });
    OpenPosition position = client.positions[0];
    position.open_price = bad;
    EXPECT_TRUE(during([&] { sink.NewOpenPosition(position); }).at(0).starts_with("journal 81: "));
    EXPECT_TRUE(during([&] { sink.PosFloatingPLChanged(position); }).at(0).starts_with("journal 81: "));
    PendingOrder order = client.orders[0];
    order.price = bad;
    EXPECT_TRUE(during([&] { sink.NewPendingOrder(order); }).at(0).starts_with("journal 81: "));
  }
}

TEST_F(SessionEvents, AFailedSummaryKeepsTheSecondValueAndZeroesTheGlobalOne) {
  client.summary.values = {1, 2, 3, 4, 5, 6, 7};
  rig.books.accounts.totals.floating_pl = 50.0;
  AccountSummary out;
  session.Summary(81, out);
  EXPECT_EQ(out.free_margin, 7.0);
  EXPECT_EQ(rig.books.accounts.totals.floating_pl, 50.0);
  client.summary.result = result::failed;
  out = {10, 20, 30, 40, 50, 60, 70};
  session.Summary(81, out);
  EXPECT_EQ(out.floating_pl, 20.0);
  EXPECT_EQ(rig.books.accounts.totals.floating_pl, 0.0);
  for (const double value :
       {out.balance, out.credit, out.equity, out.used_margin, out.margin_level, out.free_margin})
    EXPECT_EQ(value, 0.0);
}

TEST_F(SessionEvents, LoadedDataOfAKnownAccountReachTheOrderWindows) {
  client.info = AccountInfo{.number = 81, .name = "Bob", .currency = "USD"};
  rig.windows.market_order.asks_lots = true;
  const Heard known{"market lots 0.01 100", "market adds 81", "close adds 81",
                    "entry adds 81",        "close symbols",  "sound Connect.WAV"};
  EXPECT_EQ(during([&] { sink.AllDataAreLoaded(); }), sorted(known)) << "not marked connected";
  EXPECT_EQ(rig.general.lots.minimum, 0.01);
  EXPECT_EQ(rig.general.lots.maximum, 100.0);
  during([&] { sink.ConnectionState(true); });
  rig.windows.market_order.asks_lots = false;
  Heard connected{known.begin() + 1, known.end()};
  connected.insert(connected.end(), {"accounts records BOB,81", "sound Connect.wav"});
  EXPECT_EQ(during([&] { sink.AllDataAreLoaded(); }), sorted(connected));
}

TEST_F(SessionEvents, LoadedDataOfAnUnknownAccountMarkItsRow) {
  during([&] { sink.ConnectionState(true); });
  EXPECT_EQ(during([&] { sink.AllDataAreLoaded(); }),
            sorted({"sound Connect.WAV", "pending removes 81", in_journal + "81 is invalid account",
                    "accounts selects 1"}));
}

TEST_F(SessionEvents, SymbolsAndPricesGoWhereTheyAreShown) {
  client.symbols = {{.id = 3, .name = "EURUSD", .bid = 1.08, .quote_time = rig.clock.now() + 9h + 5min}};
  EXPECT_EQ(during([&] { sink.SymbolsLoaded(); }),
            sorted({"watch EURUSD 09:05", "market symbols", "entry symbols"}));
  EXPECT_EQ(during([&] { sink.SymbolsLoaded(); }), Heard{"watch EURUSD 09:05"});
  EXPECT_EQ(session.GetIDByName("EURUSD"), 3);
  EXPECT_EQ(session.GetIDByName("GBPUSD"), 0);
  Symbol& symbol = client.symbols[0];
  symbol.bid = 1.09;
  const auto moves = {std::function<void()>{[&] { sink.SymbolPricesChanged(symbol); }},
                      std::function<void()>{[&] { sink.SymbolHighLowChanged(symbol); }}};
  for (const auto& move : moves)
    EXPECT_EQ(during(move), Heard{}) << "not connected";
  during([&] { sink.ConnectionState(true); });
  for (const auto& move : moves)
    EXPECT_EQ(during(move), sorted({"watch prices EURUSD", "entry prices EURUSD", "close prices EURUSD"}));
  symbol.bid = symbol.high = std::nan("");
  for (const auto& move : moves)
    EXPECT_TRUE(during(move).at(0).starts_with("journal 81: "));
  EXPECT_EQ(rig.books.symbols.entry(rig.books.symbols.find("EURUSD")).bid, 1.09);
}

TEST_F(SessionEvents, EverySymbolWithAnIdentifierOfItsOwnIsServed) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  client.symbols = {{.id = 65'535, .name = "A"}, {.id = 65'536, .name = "B"}, {.id = largest, .name = "C"},
                    {.id = 0, .name = "D"},      {.id = -7, .name = "E"},     {.id = 65'536, .name = "F"},
                    {.id = 1, .name = "A"},      {.id = largest, .name = "C"}};
  const auto refused = [](const char* name, const char* id) {
    return in_journal + name + " came with the identifier " + id +
           ", which can't be used; the account does not trade it";
  };
  const Heard names{"market symbols", "entry symbols"},
      watched{"watch A 00:00", "watch B 00:00", "watch C 00:00", "watch C 00:00"};
  Heard lines{refused("D", "0"), refused("E", "-7"), refused("F", "65536"), refused("A", "1")};
  for (const Heard* more : {&names, &watched})
    lines.insert(lines.end(), more->begin(), more->end());
  writes([&] { sink.SymbolsLoaded(); }, lines);
  writes([&] { sink.SymbolsLoaded(); }, watched);
  const std::pair<const char*, std::int32_t> served[]{{"A", 65'535}, {"B", 65'536}, {"C", largest}, {"D", 0}};
  for (const auto& [name, id] : served)
    EXPECT_EQ(session.GetIDByName(name), id) << name;
  during([&] { sink.ConnectionState(true); });
  for (std::size_t at = 0; at < 3; ++at) {
    const std::string prices = "prices " + client.symbols[at].name;
    writes([&] { sink.SymbolPricesChanged(client.symbols[at]); },
           {"watch " + prices, "entry " + prices, "close " + prices});
  }
  for (const std::int32_t id : {-7, 0, 1, 65'534, 65'537, largest - 1})
    writes([&] { sink.SymbolPricesChanged({.id = id, .name = "X"}); }, {});
}

}  // namespace
}  // namespace tutti::testing
