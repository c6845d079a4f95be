#include <gtest/gtest.h>

#include "pricing/money.h"
#include "pricing/rate_table.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

TEST(Pricing, ProfitAndMargin) {
  struct Case {
    const char* what;
    double found, expected;
  };
  const auto buy = operation::buy, sell = operation::sell;
  const Case cases[] = {
      {"bought, rises", pricing::profit(buy, 2.0, 100'000, 1.10, 1.11, 1.0), 2'000.0},
      {"sold, rises", pricing::profit(sell, 2.0, 100'000, 1.10, 1.11, 1.0), -2'000.0},
      {"in another currency", pricing::profit(buy, 0.5, 100, 2'000, 2'010, 0.8), 400.0},
      {"rate unknown", pricing::profit(buy, 2.0, 100'000, 1.10, 1.11, 0.0), 0.0},
      {"margin", pricing::margin(2.0, 100'000, 1.1, 1.0, 100.0), 2'200.0},
      {"a part of the value counts", pricing::margin(2.0, 100'000, 1.1, 0.5, 100.0), 1'100.0},
      {"leverage not told", pricing::margin(2.0, 100'000, 1.1, 1.0, 0.0), 0.0},
      {"margin rate not told", pricing::margin(2.0, 100'000, 1.1, 0.0, 100.0), 0.0},
  };
  for (const Case& one : cases)
    EXPECT_NEAR(one.found, one.expected, 1e-9) << one.what;
}

TEST(Pricing, RatesTakeTheShortestWay) {
  const std::vector<CurrencyPair> pairs = {{"EUR", "USD"}, {"USD", "JPY"},  {"EUR", "GBP"},
                                           {"GBP", "JPY"}, {"DE40", "EUR"}, {"ABC", "XYZ"}};
  struct Case {
    const char* from;
    const char* to;
    std::optional<RateTable::Path> path;
    double rate;  // of the path at the prices below
  };
  const std::vector<double> middles = {1.25, 160.0, 0.8, 0.0, 20'000.0, 2.0};
  const Case cases[] = {
      {"USD", "USD", RateTable::Path{}, 1.0},
      {"EUR", "USD", RateTable::Path{{0, false}}, 1.25},
      {"USD", "EUR", RateTable::Path{{0, true}}, 0.8},
      {"JPY", "EUR", RateTable::Path{{1, true}, {0, true}}, 1.0 / 200.0},
      {"DE40", "JPY", RateTable::Path{{4, false}, {0, false}, {1, false}}, 4'000'000.0},
      {"GBP", "JPY", RateTable::Path{{3, false}}, 0.0},  // the short way has no price yet
      {"XYZ", "USD", std::nullopt, 0.0},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(RateTable::find_path(pairs, one.from, one.to), one.path) << one.from << one.to;
    // As the base of a further symbol, which itself leads nowhere.
    std::vector<CurrencyPair> symbols = pairs;
    symbols.push_back({one.from, "-"});
    RateTable table(symbols);
    std::vector<double> now = middles;
    now.push_back(1.0);
    const std::size_t early = table.add_currency(one.to);
    EXPECT_EQ(table.base(early, pairs.size()), one.path && one.path->empty() ? 1.0 : 0.0);
    table.update(now);
    EXPECT_DOUBLE_EQ(table.base(early, pairs.size()), one.rate) << one.from << one.to;
  }
  RateTable table(pairs);
  table.update(middles);
  const std::size_t usd = table.add_currency("USD");
  EXPECT_EQ(table.add_currency("EUR"), usd + 1);
  EXPECT_EQ(table.add_currency("USD"), usd) << "one row per currency";
  EXPECT_DOUBLE_EQ(table.profit(usd, 1), 1.0 / 160.0);
  EXPECT_DOUBLE_EQ(table.profit(usd, 4), 1.25) << "an index paid in euro";
}

}  // namespace
}  // namespace tutti
