// What the comparison with the dealing server's books must find.

#include <algorithm>

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
  const PositionBook& book = desk.main->positions();
  const PositionBook::Record right = *book.of_account(first + 1).at(0);
  PositionBook::Record more = right, sold = right, dearer = right, richer = right, unknown = right;
  more.amount += 0.5;
  sold.side = operation::sell;
  dearer.open_price += 0.0001;
  richer.floating_pl += 0.01;
  unknown.slot = 7;
  unknown.symbol = "GBPUSD";
  // At each place where they are added up; over several symbols there is no average.
  const Texts places{"account 500101: net positions", "account 500101: EURUSD", "EURUSD",
                     "Total(All Clients)"};
  const std::pair<PositionBook::Record, Texts> cases[] = {
      {more, {" long", " net"}}, {sold, {" long", " short", " net"}}, {dearer, {}}, {richer, {" profit"}}};
  for (const auto& [wrong, values] : cases) {
    net.position_added(wrong);
    Texts found = names(desk.differences());
    EXPECT_EQ(std::erase_if(found, [](const auto& d) { return d.find(" average") != d.npos; }) > 0,
              wrong.open_price != right.open_price || wrong.side != right.side);
    Texts expected;
    for (const std::string& place : places) {
      for (const std::string& value : values)
        expected.push_back(place + value);
    }
    EXPECT_EQ(found, expected);
    net.position_added(right);
    EXPECT_EQ(desk.differences(), Texts{});
  }
  net.position_added(unknown);
  const Texts more_than_booked = names(desk.differences());
  for (const char* const place : {"account 500101: GBPUSD long", "GBPUSD accounts", "GBPUSD profit"})
    EXPECT_EQ(std::count(more_than_booked.begin(), more_than_booked.end(), place), 1) << place;
  net.remove_position(unknown);

  for (const PositionBook::Record* position : book.all())
    net.remove_position(*position);
  const Texts missing = desk.differences();
  for (const char* const difference : {"EURUSD has positions, but is not among the net positions",
                                       "account 500100: net positions long shows 0, the server has 1",
                                       "account 500101: EURUSD net shows 0, the server has 1"})
    EXPECT_EQ(std::count(missing.begin(), missing.end(), difference), 1) << difference;
}

}  // namespace
}  // namespace tutti::testing
