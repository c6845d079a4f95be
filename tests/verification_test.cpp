// What the comparison with the dealing server's books must find.

#include <gtest/gtest.h>

#include "tests/support/scenario_desk.h"

namespace tutti::testing {
namespace {

// What is said to differ, without the values.
Texts names(const Texts& differences) {
  Texts out;
  for (const std::string& difference : differences)
    out.push_back(difference.substr(0, difference.find(" shows ")));
  return out;
}

TEST(Verification, FindsEveryWrongNetSum) {
  ScenarioDesk desk{still_market(2)};
  desk.open("2");
  CNetPos& net = desk.main->net_positions();
  const OpenPosition right = desk.server.accounts()[1].positions().at(0).record;
  OpenPosition more = right, sold = right, richer = right, unknown = right;
  more.amount += 0.5;
  sold.side = operation::sell;
  richer.floating_pl += 0.01;
  unknown.ticket = 1;
  unknown.symbol = "GBPUSD";
  const std::pair<OpenPosition, Texts> cases[] = {
      {more, {"EURUSD long", "account 500101: net lots"}},
      {sold, {"EURUSD long", "EURUSD short", "account 500101: net lots"}},
      {richer, {"EURUSD net profit"}},
      {unknown, {"GBPUSD long", "GBPUSD accounts", "GBPUSD net profit", "account 500101: net lots"}},
  };
  for (const auto& [wrong, differences] : cases) {
    net.position_added(wrong);
    EXPECT_EQ(names(desk.differences()), differences);
    net.remove_position(wrong.ticket);
    net.position_added(right);
    EXPECT_EQ(desk.differences(), Texts{});
  }
  for (const std::int32_t account : {first, first + 1})
    net.remove_account(account);
  EXPECT_EQ(desk.differences(), (Texts{"EURUSD has positions, but is not among the net positions",
                                       "account 500100: net lots shows 0, the server has 1",
                                       "account 500101: net lots shows 0, the server has 1"}));
}

}  // namespace
}  // namespace tutti::testing
