// Net positions and the matrix against sums that are made anew from what is open.

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <set>

#include "tests/support/scripted_terminal.h"

namespace tutti::testing {
namespace {

Texts rows(const RowList& list) {
  Texts out;
  for (const Row& row : list)
    out.push_back(row_text(row));
  return out;
}

struct Netting : ScriptedTerminal {
  explicit Netting(std::size_t accounts = 3) : ScriptedTerminal(Summaries(accounts, {100, 100})) {}
  OpenPosition open(std::int32_t account, std::int64_t ticket, double lots, const char* symbol, double price,
                    double profit) {
    OpenPosition position{.ticket = ticket, .account = account, .symbol = symbol};
    position.side = lots > 0.0 ? operation::buy : operation::sell;
    position.amount = std::fabs(lots);
    position.open_price = price;
    position.floating_pl = profit;
    client(account).sink->NewOpenPosition(position);
    return position;
  }
  frmNetTrade& net() {
    main->net_trade().refresh();
    return main->net_trade();
  }
  NetMatrix& matrix() {
    main->net_matrix().refresh();
    return main->net_matrix();
  }
};

TEST(NetPositions, ListsShowSumsAveragesAndTotals) {
  Netting desk;
  EXPECT_TRUE(desk.net().lvwNet.empty());
  desk.open(1, 11, 0.1, "GBPUSD", 1.25, 10.0);
  desk.open(1, 12, 0.2, "GBPUSD", 1.28, -4.5);
  desk.open(2, 21, -0.3, "GBPUSD", 1.27, 1.25);
  desk.open(3, 31, -1.5, "EURUSD", 1.084, 7.0);
  const Texts both{"EURUSD|1|0||1.5|1.08400|-1.5|7.00", "GBPUSD|2|0.3|1.27000|0.3|1.27000|0|6.75",
                   "Total(All Clients)|3|0.3||1.8||-1.5|13.75"};
  EXPECT_EQ(rows(desk.net().lvwNet), both);
  EXPECT_EQ(rows(desk.matrix().lvwNetMatrix),
            (Texts{"1|0.3|0.3|", "2|-0.3|-0.3|", "3|-1.5||-1.5", "Total(All Clients)|-1.5|0|-1.5"}));
  desk.main->net_matrix().shown.choose("P/L");
  EXPECT_EQ(rows(desk.matrix().lvwNetMatrix),
            (Texts{"1|5.50|5.50|", "2|1.25|1.25|", "3|7.00||7.00", "Total(All Clients)|13.75|6.75|7.00"}));

  // From a symbol to its accounts; they follow events, and another symbol's take their place.
  RowList& symbols = desk.main->net_trade().lvwNet;
  symbols.select(symbols.row(1));
  EXPECT_EQ(rows(desk.net().lvwNetAccounts),
            (Texts{"1|0.3|1.27000|0||0.3|5.50", "2|0||0.3|1.27000|-0.3|1.25"}));
  OpenPosition moved = desk.open(1, 12, 0.4, "GBPUSD", 1.3, -4.5);
  moved.floating_pl = -1000000.125;
  desk.client(1).sink->PosFloatingPLChanged(moved);
  desk.client(2).sink->ConnectionState(false);
  EXPECT_EQ(rows(desk.net().lvwNetAccounts), (Texts{"1|0.5|1.29000|0||0.5|-999990.12"}));
  EXPECT_EQ(rows(symbols)[1], "GBPUSD|1|0.5|1.29000|0||0.5|-999990.12");
  // The largest that is believed; once it is gone the others are what they were.
  desk.client(1).sink->DeleteOpenPosition(desk.open(1, 99, 1e6, "GBPUSD", 1e9, 1e12));
  EXPECT_EQ(rows(desk.net().lvwNet)[1], "GBPUSD|1|0.5|1.29000|0||0.5|-999990.12");
  symbols.select(symbols.row(0));
  EXPECT_EQ(rows(desk.net().lvwNetAccounts), (Texts{"3|0||1.5|1.08400|-1.5|7.00"}));

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

// The same account number under a second user name: the server gives the account to one of them only.
TEST(NetPositions, AnotherUserNameTakesNothingAway) {
  Netting desk;
  desk.open(1, 11, 1.0, "EURUSD", 1.0, 5.0);
  CClientAPIManagers& sessions = desk.main->accounts().sessions();
  const auto rows_left = [&] {
    return std::to_string(desk.main->trade().lvwOpenPos.size()) + std::to_string(desk.net().lvwNet.size()) +
           (desk.main->market_order().account_row(1) != nullptr ? " ticks" : "");
  };
  sessions.Add({"another", Secret{"word"}, 1, {}}, "", true);
  ScriptedClient& other = *desk.clients.back();
  other.sink->WaitingMode(2);
  other.sink->ConnectionState(false);  // refused on the way
  EXPECT_EQ(rows_left(), "12 ticks");
  other.sink->ConnectionState(true);
  other.sink->AllDataAreLoaded();  // without the account
  other.sink->ConnectionState(false);
  EXPECT_EQ(rows_left(), "12 ticks");
  other.sink->ConnectionState(true);
  sessions.RClear(sessions.Count());
  EXPECT_EQ(rows_left(), "12 ticks");

  // The one that has the account takes everything along, though the other is logged in.
  sessions.Add({"another", Secret{"word"}, 1, {}}, "", true);
  desk.clients.back()->sink->ConnectionState(true);
  sessions.RClear(1);
  EXPECT_EQ(rows_left(), "00");
}

// One account, symbol or both, as it should be.
struct Expected {
  double bought = 0.0, sold = 0.0, paid = 0.0, profit = 0.0;  // `paid` for what was bought
  std::set<std::int32_t> accounts;

  void add(const OpenPosition& position) {
    (position.side > 0 ? bought : sold) += position.amount;
    profit += position.floating_pl;
    if (position.side > 0) paid += position.amount * position.open_price;
    accounts.insert(position.account);
  }
};

TEST(NetPositions, SumsStayRightOverTenThousandEvents) {
  constexpr int accounts = 20;
  constexpr const char* names[] = {"EURUSD", "GBPUSD", "USDJPY", "XAUUSD", "AUDNZD"};
  Netting desk{accounts};
  std::map<std::int64_t, OpenPosition> open;
  std::mt19937 random{7};
  const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
  const auto one_of_the_open = [&] { return std::next(open.begin(), below(static_cast<int>(open.size()))); };
  const auto check = [&] {
    std::map<std::pair<std::int64_t, std::string>, Expected> sums;  // account 0 is all, so is symbol ""
    std::set<std::string> symbols;
    for (const auto& [ticket, position] : open) {
      symbols.insert(position.symbol);
      for (const std::int32_t account : {0, position.account})
        for (const std::string& symbol : {std::string{}, position.symbol})
          sums[{account, symbol}].add(position);
    }
    const RowList& net = desk.net().lvwNet;
    ASSERT_EQ(net.size(), symbols.size() + 1);
    for (const Row& row : net) {
      const bool total = frmNetTrade::is_total(row);
      const Expected& sum = sums.at({0, total ? "" : row.text(frmNetTrade::symbol)});
      EXPECT_EQ(row.cell(frmNetTrade::accounts).stored_number(), static_cast<double>(sum.accounts.size()));
      EXPECT_NEAR(row.cell(frmNetTrade::bought).stored_number(), sum.bought, 1e-7);
      EXPECT_NEAR(row.cell(frmNetTrade::sold).stored_number(), sum.sold, 1e-7);
      EXPECT_NEAR(row.cell(frmNetTrade::net).stored_number(), sum.bought - sum.sold, 1e-7);
      EXPECT_NEAR(row.cell(frmNetTrade::floating).stored_number(), sum.profit, 1e-6);
      const double average = sum.bought > 0.0 && !total ? sum.paid / sum.bought : 0.0;
      EXPECT_NEAR(row.cell(frmNetTrade::bought_at).stored_number(), average, 1e-8);
    }
    const RowList& matrix = desk.matrix().lvwNetMatrix;
    ASSERT_EQ(matrix.size(), sums.at({0, ""}).accounts.size() + 1);
    for (const Row& row : matrix) {
      for (std::size_t column = NetMatrix::total; column < row.columns(); ++column) {
        const std::string name = column == NetMatrix::total ? "" : matrix.columns()[column].header;
        const auto sum = sums.find({row.key().empty() ? 0 : row.key().number(), name});
        ASSERT_EQ(row.cell(column).empty(), sum == sums.end());
        if (sum == sums.end()) continue;
        EXPECT_NEAR(row.cell(column).stored_number(), sum->second.bought - sum->second.sold, 1e-7);
      }
    }
  };

  std::int64_t ticket = 0;
  for (int event = 0; event < 10'000; ++event) {
    const int what = below(100);
    if (what < 30 || open.empty()) {
      const double lots = (1 + below(300)) / 100.0 * (below(2) == 0 ? 1 : -1);
      const std::int32_t account = 1 + below(accounts);
      ++ticket;
      open[ticket] = desk.open(account, ticket, lots, names[below(5)], 1.0 + below(1000) / 1000.0, 0.0);
    } else if (what < 60) {
      OpenPosition& position = one_of_the_open()->second;
      position.floating_pl = (below(2'000'001) - 1'000'000) / 100.0;
      desk.client(position.account).sink->PosFloatingPLChanged(position);
    } else if (what < 70) {
      OpenPosition& position = one_of_the_open()->second;
      position.amount = (1 + below(300)) / 100.0;
      position.open_price += below(100) / 1000.0;
      if (below(5) == 0) position.side = -position.side;
      desk.client(position.account).sink->UpdateOpenPosition(position);
    } else if (what < 98) {
      const auto at = one_of_the_open();
      desk.client(at->second.account).sink->DeleteOpenPosition(at->second);
      desk.client(at->second.account).sink->PosFloatingPLChanged(at->second);  // that was on its way
      open.erase(at);
    } else {
      const std::int32_t account = 1 + below(accounts);
      ScriptedClient& client = desk.client(account);
      client.sink->ConnectionState(false);
      // Most of the positions come back with the connection.
      std::erase_if(open, [&](const auto& one) { return one.second.account == account && below(4) == 0; });
      client.positions.clear();
      for (const auto& [number, position] : open)
        if (position.account == account) client.positions.push_back(position);
      client.sink->ConnectionState(true);
      client.sink->OpenPositionsLoaded();
    }
    if (event % 500 == 0) {
      check();
    } else if (below(7) == 0) {
      desk.net();
      desk.matrix();
    }
  }
  check();
}

}  // namespace
}  // namespace tutti::testing
