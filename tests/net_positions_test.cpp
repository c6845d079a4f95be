// Net positions and the matrix against sums that are made anew from what is open.

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <set>

#include "tests/support/scripted_terminal.h"

namespace tutti::testing {
namespace {

using Texts = std::vector<std::string>;

Texts rows(const RowList& list) {
  Texts out;
  for (const Row& row : list) {
    out.emplace_back();
    for (std::size_t column = 0; column < row.columns(); ++column)
      out.back() += (column == 0 ? "" : "|") + row.text(column);
  }
  return out;
}

struct Netting : ScriptedTerminal {
  explicit Netting(std::size_t accounts = 3) : ScriptedTerminal(Summaries(accounts, {100, 100})) {
    for (ScriptedClient* client : clients)
      client->sink->ConnectionState(true);
  }
  ScriptedClient& client(std::int32_t account) { return *clients[static_cast<std::size_t>(account) - 1]; }
  OpenPosition open(std::int32_t account, std::int64_t ticket, double lots, const char* symbol, double price,
                    double profit) {
    OpenPosition position;
    position.ticket = ticket;
    position.account = account;
    position.side = lots > 0.0 ? operation::buy : operation::sell;
    position.symbol = symbol;
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
  symbols.select(symbols.row(0));
  EXPECT_EQ(rows(desk.net().lvwNetAccounts), (Texts{"3|0||1.5|1.08400|-1.5|7.00"}));

  for (const std::int64_t ticket : {11, 12, 31}) {
    OpenPosition gone;
    gone.ticket = ticket;
    desk.client(1).sink->DeleteOpenPosition(gone);
  }
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
  desk.main->net_trade().close_accounts.click();
  EXPECT_EQ(marked(), (Tickets{4, 5, 6}));
  accounts.select(accounts.row(0));
  desk.main->net_trade().close_accounts.click();
  EXPECT_EQ(marked(), Tickets{4});

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
  EXPECT_EQ(shown, 6);
  matrix.close_picked({});
  EXPECT_EQ(shown, 6);
}

// One symbol, account or both, as it should be.
struct Expected {
  double bought = 0.0, sold = 0.0, profit = 0.0;
  std::set<std::int32_t> accounts;

  void add(const OpenPosition& position) {
    (position.side > 0 ? bought : sold) += position.amount;
    profit += position.floating_pl;
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
    std::map<std::string, Expected> by_symbol;
    std::map<std::int32_t, Expected> by_account;
    std::map<std::pair<std::int32_t, std::string>, Expected> by_both;
    Expected all;
    for (const auto& [ticket, position] : open) {
      for (Expected* sum : {&by_symbol[position.symbol], &by_account[position.account],
                            &by_both[{position.account, position.symbol}], &all})
        sum->add(position);
    }
    const RowList& net = desk.net().lvwNet;
    ASSERT_EQ(net.size(), by_symbol.size() + (open.empty() ? 0 : 1));
    for (const Row& row : net) {
      const Expected& sum = frmNetTrade::is_total(row) ? all : by_symbol[row.text(frmNetTrade::symbol)];
      EXPECT_EQ(row.cell(frmNetTrade::accounts).stored_number(), static_cast<double>(sum.accounts.size()));
      EXPECT_NEAR(row.cell(frmNetTrade::bought).stored_number(), sum.bought, 1e-7);
      EXPECT_NEAR(row.cell(frmNetTrade::sold).stored_number(), sum.sold, 1e-7);
      EXPECT_NEAR(row.cell(frmNetTrade::net).stored_number(), sum.bought - sum.sold, 1e-7);
      EXPECT_NEAR(row.cell(frmNetTrade::floating).stored_number(), sum.profit, 1e-6);
    }
    const RowList& matrix = desk.matrix().lvwNetMatrix;
    ASSERT_EQ(matrix.size(), by_account.size() + (open.empty() ? 0 : 1));
    for (const Row& row : matrix) {
      if (row.key().empty()) continue;
      const auto number = static_cast<std::int32_t>(row.key().number());
      const Expected& sum = by_account[number];
      EXPECT_NEAR(row.cell(NetMatrix::total).stored_number(), sum.bought - sum.sold, 1e-7);
      for (std::size_t column = NetMatrix::first_symbol; column < row.columns(); ++column) {
        const auto both = by_both.find({number, matrix.columns()[column].header});
        ASSERT_EQ(row.cell(column).empty(), both == by_both.end());
        if (both == by_both.end()) continue;
        EXPECT_NEAR(row.cell(column).stored_number(), both->second.bought - both->second.sold, 1e-7);
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
      desk.client(position.account).sink->UpdateOpenPosition(position);
    } else if (what < 98) {
      const auto at = one_of_the_open();
      desk.client(at->second.account).sink->DeleteOpenPosition(at->second);
      open.erase(at);
    } else {
      const std::int32_t account = 1 + below(accounts);
      desk.client(account).sink->ConnectionState(false);
      std::erase_if(open, [&](const auto& each) { return each.second.account == account; });
      desk.client(account).sink->ConnectionState(true);
    }
    if (event % 500 == 0) check();
  }
  check();
  EXPECT_GT(open.size(), 0u);
}

}  // namespace
}  // namespace tutti::testing
