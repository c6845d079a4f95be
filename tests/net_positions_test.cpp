#include <random>
#include <set>

#include "tests/support/scenario_desk.h"
#include "tests/support/scripted_terminal.h"

namespace tutti::testing {
namespace {

struct Netting : ScriptedTerminal {
  explicit Netting(std::size_t accounts = 3) : ScriptedTerminal(Summaries(accounts, {100, 100})) {}
  frmNetTrade& net() {
    main->net_trade().refresh();
    return main->net_trade();
  }
  NetMatrix& matrix() {
    main->net_matrix().refresh();
    return main->net_matrix();
  }
};

TEST(NetPositions, AProfitIsPassedOnWithTheDecimalSeparatorInForce) {
  struct Port final : LocalePort {
    void set(int, int, std::string_view) override {}
    int get(int, int item, std::string& buffer) const override {
      return buffer[0] = item == 14 ? decimal : '\'', 2;
    }
    char decimal = '.';
  } port;
  for (const auto& [decimal, text] : {std::pair{'.', "-12.5"}, {',', "-12,5"}}) {
    port.decimal = decimal;
    const CLocalSettings settings{port};
    EXPECT_EQ(CNetPos{settings}.profit_text(-12.5), text);
    EXPECT_EQ(settings.StringToNumber(text), -12.5);
  }
}

TEST(NetPositions, ListsShowSumsAveragesAndTotals) {
  Netting desk;
  EXPECT_TRUE(desk.net().lvwNet.empty());
  desk.open(1, 11, 0.1, "GBPUSD", 1.25, 10.0);
  desk.open(1, 12, 0.2, "GBPUSD", 1.28, -4.5);
  desk.open(2, 21, -0.3, "GBPUSD", 1.27, 1.25);
  desk.open(3, 31, -1.5, "EURUSD", 1.084, 7.0);
  const Texts both{"EURUSD|1|0||1.5|1.08400|-1.5|7.00", "GBPUSD|2|0.3|1.27000|0.3|1.27000|0|6.75",
                   "Total(All Clients)|3|0.3||1.8||-1.5|13.75"};
  EXPECT_EQ(rows_of(desk.net().lvwNet), both);
  EXPECT_EQ(rows_of(desk.matrix().lvwNetMatrix),
            (Texts{"1|0.3|0.3|", "2|-0.3|-0.3|", "3|-1.5||-1.5", "Total(All Clients)|-1.5|0|-1.5"}));
  desk.main->net_matrix().shown.choose("P/L");
  EXPECT_EQ(rows_of(desk.matrix().lvwNetMatrix),
            (Texts{"1|5.50|5.50|", "2|1.25|1.25|", "3|7.00||7.00", "Total(All Clients)|13.75|6.75|7.00"}));

  // From a symbol to its accounts; they follow events, and another symbol's take their place.
  RowList& symbols = desk.main->net_trade().lvwNet;
  symbols.select(symbols.row(1));
  EXPECT_EQ(rows_of(desk.net().lvwNetAccounts),
            (Texts{"1|0.3|1.27000|0||0.3|5.50", "2|0||0.3|1.27000|-0.3|1.25"}));
  OpenPosition moved = desk.open(1, 12, 0.4, "GBPUSD", 1.3, -4.5);
  moved.floating_pl = -1000000.125;
  desk.client(1).sink->PosFloatingPLChanged(moved);
  desk.client(2).sink->ConnectionState(false);
  EXPECT_EQ(rows_of(desk.net().lvwNetAccounts), (Texts{"1|0.5|1.29000|0||0.5|-999990.12"}));
  EXPECT_EQ(rows_of(symbols)[1], "GBPUSD|1|0.5|1.29000|0||0.5|-999990.12");
  // The largest that is believed; once it is gone the others are what they were.
  const OpenPosition largest = desk.open(1, 99, 1e6, "GBPUSD", 1e9, 1e12);
  desk.client(1).sink->DeleteOpenPosition(largest);
  desk.client(1).sink->PosFloatingPLChanged(largest);  // that was on its way
  EXPECT_EQ(rows_of(desk.net().lvwNet)[1], "GBPUSD|1|0.5|1.29000|0||0.5|-999990.12");
  symbols.select(symbols.row(0));
  EXPECT_EQ(rows_of(desk.net().lvwNetAccounts), (Texts{"3|0||1.5|1.08400|-1.5|7.00"}));

  for (const auto& [ticket, account] : {std::pair{11, 1}, {12, 1}, {31, 3}})
    desk.client(account).sink->DeleteOpenPosition({.ticket = ticket, .account = account, .symbol = ""});
  EXPECT_TRUE(desk.net().lvwNet.empty());
  EXPECT_TRUE(desk.net().lvwNetAccounts.empty());
  EXPECT_TRUE(desk.matrix().lvwNetMatrix.empty());
}

TEST(NetPositions, WhatIsPickedGoesToTheCloseWindow) {
  Netting desk;
  frmClosePos& close = desk.main->close_positions();
  int shown = 0;
  close.show = [&] { ++shown; };
  close.Displayed(true);
  close.refresh_symbols();
  std::int64_t ticket = 0;
  for (const char* symbol : {"EURUSD", "GBPUSD"})
    for (const std::int32_t account : {1, 2, 3})
      desk.open(account, ++ticket, 1.0, symbol, 1.0, 0.0);
  const auto marked = [&] {
    std::set<std::int64_t> out;
    for (const Row& row : close.MSH)
      if (close.marked(row)) out.insert(row.key().number());
    return out;
  };
  using Tickets = std::set<std::int64_t>;

  RowList& symbols = desk.net().lvwNet;
  symbols.activate(symbols.row(1));
  EXPECT_EQ(close.CloseSymbols.text() + std::to_string(close.MSH.size()), "GBPUSD6");
  EXPECT_EQ(marked(), Tickets{});
  RowList& accounts = desk.net().lvwNetAccounts;
  accounts.activate(accounts.row(2));
  EXPECT_EQ(marked(), Tickets{6});
  // Where no account is selected, be it that it has gone, none is meant.
  desk.main->net_trade().close_accounts.click();
  EXPECT_EQ(marked(), Tickets{});
  accounts.select(accounts.row(0));
  accounts.row(1).set_selected(true);
  desk.main->net_trade().close_accounts.click();
  EXPECT_EQ(marked(), (Tickets{4, 5}));
  // The accounts of the symbol that was picked before are not taken for this one's.
  symbols.select(symbols.row(0));
  desk.main->net_trade().close_accounts.click();
  EXPECT_EQ(close.CloseSymbols.text(), "EURUSD");
  EXPECT_EQ(marked(), Tickets{});

  // A block over several symbols is closed symbol by symbol.
  const NetMatrix& matrix = desk.matrix();
  matrix.close_picked({{2, NetMatrix::first_symbol}, {3, NetMatrix::total}, {9, NetMatrix::account}});
  EXPECT_EQ(close.CloseSymbols.text(), "EURUSD");
  EXPECT_EQ(marked(), (Tickets{2, 3}));
  EXPECT_EQ(close.next_block.text(), "Next symbol: GBPUSD");
  EXPECT_TRUE(close.next_block.visible());
  close.next_block.click();
  EXPECT_EQ(close.CloseSymbols.text(), "GBPUSD");
  EXPECT_EQ(marked(), Tickets{6});
  EXPECT_FALSE(close.next_block.visible());
  EXPECT_EQ(shown, 7);
  matrix.close_picked({});
  EXPECT_EQ(shown, 7);

  // A symbol that is not offered leaves nothing of another one marked.
  close.take({{"CADJPY", {1, 2, 3}}});
  EXPECT_EQ(desk.prompt.take_texts(), Texts{"CADJPY is not visible for any of the connected accounts"});
  EXPECT_EQ(marked(), Tickets{});
  EXPECT_TRUE(close.MSH.empty());
}

// The terminal's sums are compared with what the server has, while accounts trade and connections break.
TEST(NetPositions, SumsStayRightOverADayOfTrades) {
  DealerConfig config = DealerConfig::sample(12);
  config.tick_interval = 100ms;
  ScenarioDesk desk{config};
  frmClosePos& grid = desk.main->close_positions();
  grid.Displayed(true);
  grid.CloseSymbols.choose("EURUSD");
  std::mt19937 random{7};
  const auto below = [&](std::size_t end) { return random() % end; };
  for (int round = 0; round < 40; ++round) {
    const char* const names[] = {"EURUSD", "GBPUSD", "USDJPY", "EURJPY", "AUDJPY"};
    desk.main->market_order().chkAllClients.set_checked(false);  // who came back is ticked anew
    desk.open(round % 3 == 0 ? "12" : "7.2", names[below(5)], below(2) == 0);
    for (int close = 0; close < 12; ++close) {
      const Row& row = desk.positions().row(below(desk.positions().size()));
      const double lots = row.cell(frmTrade::amount).stored_number() / (1.0 + close % 2);
      desk.main->trade().close_helper(
          {row.key().number(), lots, static_cast<std::int32_t>(row.cell(frmTrade::account).stored_number())});
    }
    desk.run(500ms);
    EXPECT_EQ(desk.differences(), Texts{}) << round;
    Row& row = desk.main->accounts().lvwClients.row(below(12));
    desk.server.drop(static_cast<std::int32_t>(row.cell(frmMain::account).stored_number()));
    desk.run(50ms);
    EXPECT_EQ(desk.differences(), Texts{}) << round;
    std::ptrdiff_t euros = 0;
    for (const Row& position : desk.positions())
      euros += position.reads(frmTrade::symbol, "EURUSD") ? 1 : 0;
    EXPECT_EQ(std::count_if(grid.MSH.begin(), grid.MSH.end(), frmClosePos::is_position), euros);
    desk.main->accounts().LoginClient(row.key());
    desk.run(500ms);
  }
  EXPECT_GT(desk.positions().size(), 50u);
}

}  // namespace
}  // namespace tutti::testing
