// What may hold a request back: the judging, and the file of the limits.

#include <gtest/gtest.h>

#include "core/stop_sign.h"
#include "limits/judging.h"
#include "limits/limits_file.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {
namespace {

using limits::RequestFigures;
using limits::TicketFigures;

struct Judged {
  const char* name;
  Limit limit;
  double set;
  TicketFigures ticket;
  std::vector<RequestFigures> requests;
  std::string told;  // of the first breach; empty: it may go
};

RequestFigures share(std::int32_t account, double lots) {
  return {.account = account, .lots = lots, .quote_age = 0ms, .points = 0.0};
}

TEST(Limits, AreJudgedByPlainFigures) {
  RequestFigures rich = share(1, 2.0), poor = share(2, 2.0), unquoted = share(1, 1.0), gone = share(1, 1.0);
  rich.equity = 10'000.0;
  poor.equity = 999.0;
  rich.value = 5000.0;
  unquoted.quote_age.reset();
  gone.points = 3.0;
  RequestFigures old = share(1, 1.0);
  old.quote_age = 10'001ms;
  const Judged cases[] = {
      {"together",
       Limit::ticket_lots,
       4.0,
       {},
       {share(1, 2.5), share(2, 2.0)},
       "4.5 lots together, above the limit of 4 for one order"},
      {"just together", Limit::ticket_lots, 0.3, {}, {share(1, 0.1), share(2, 0.2)}, ""},
      {"one account",
       Limit::account_lots,
       10.0,
       {},
       {share(1, 10.0), share(2, 104.2)},
       "account 2: 104.2 lots, above the limit of 10 for one account"},
      {"one account twice",
       Limit::account_lots,
       10.0,
       {},
       {share(1, 6.0), share(1, 6.0)},
       "account 1: 12 lots, above the limit of 10 for one account"},
      {"equity",
       Limit::equity_lots,
       2.0,
       {},
       {rich, poor},
       "account 2: 2.002 lots for each 1000 of its equity, above the limit of 2"},
      {"no equity",
       Limit::equity_lots,
       2.0,
       {},
       {share(1, 0.1)},
       "account 1: its equity is not known, and the limit is 2 lots for each 1000 of it"},
      {"value",
       Limit::account_value,
       4999.0,
       {},
       {rich},
       "account 1: worth 5000, above the limit of 4999 for one account"},
      {"no value",
       Limit::account_value,
       4999.0,
       {},
       {poor},
       "account 2: what it is worth is not known, and the limit is 4999 for one account"},
      {"quote",
       Limit::quote_age,
       10.0,
       {},
       {share(1, 1.0), old},
       "account 1: the quote is 10.001 s old, above the limit of 10 s"},
      {"no quote",
       Limit::quote_age,
       10.0,
       {},
       {unquoted},
       "account 1: there is no quote, and the limit of its age is 10 s"},
      {"distance",
       Limit::price_distance,
       2.0,
       {},
       {gone},
       "account 1: the price has gone 3 points since the click, above the limit of 2"},
      {"no distance allowed", Limit::price_distance, 0.0, {}, {share(1, 1.0)}, ""},
      {"again",
       Limit::same_ticket,
       5.0,
       {.since_same = 4999ms},
       {share(1, 1.0)},
       "the same order was sent 4.999 s ago, and the limit is 5 s"},
      {"again, later", Limit::same_ticket, 5.0, {.since_same = 5000ms}, {share(1, 1.0)}, ""},
      {"often",
       Limit::tickets_per_minute,
       3.0,
       {.tickets_in_minute = 3},
       {share(1, 1.0)},
       "it would be order 4 within a minute, above the limit of 3"},
      {"as often", Limit::tickets_per_minute, 3.0, {.tickets_in_minute = 2}, {share(1, 1.0)}, ""},
      {"no share",
       Limit::odd_shares,
       1.0,
       {},
       {share(1, 1.0), share(2, 0.0)},
       "account 2: the share of 0 lots is not above 0"},
      {"above the total",
       Limit::odd_shares,
       1.0,
       {.total = 2.0},
       {share(1, 2.1)},
       "account 1: the share of 2.1 lots is above the total of 2"},
      {"the total", Limit::odd_shares, 1.0, {.total = 2.0}, {share(1, 2.0)}, ""},
  };
  for (const Judged& each : cases) {
    SCOPED_TRACE(each.name);
    Limits set;
    EXPECT_EQ(limits::judge(set, each.ticket, each.requests).size(), 0U) << "never";
    set[each.limit] = each.set;
    const auto breaches = limits::judge(set, each.ticket, each.requests);
    ASSERT_EQ(breaches.size(), each.told.empty() ? 0U : 1U);
    if (breaches.empty()) continue;
    EXPECT_EQ(limits::text(breaches.front()), each.told);
    const bool by_time = each.limit == Limit::quote_age || each.limit == Limit::price_distance;
    EXPECT_EQ(limits::judge_leaving(set, each.requests.back()).has_value(), by_time);
  }
}

TEST(Limits, OfANewHomeHoldTenLotsForOneAccountAndAnOldQuote) {
  const auto breaches = [](int accounts, double lots, std::chrono::milliseconds age) {
    std::vector<RequestFigures> requests;
    for (int account = 1; account <= accounts; ++account) {
      requests.push_back(share(account, lots / accounts));
      requests.back().quote_age = age;
    }
    return limits::judge(Limits::of_new_home(), {.total = lots}, requests).size();
  };
  EXPECT_EQ(breaches(12, 12.5, 10s), 0U);
  EXPECT_EQ(breaches(500, 250.0, 10s), 0U);
  EXPECT_EQ(breaches(12, 1250.0, 10s), 12U);
  EXPECT_EQ(breaches(12, 12.5, 10'001ms), 12U);
}

TEST(LimitsFile, KeepsWhatTheOperatorWroteInIt) {
  const TemporaryFolder home;
  const LimitsFile file{home.path()};
  ASSERT_EQ(file.open().value(), Limits::of_new_home());
  EXPECT_NE(home.read("limits.toml").find("account_lots = 10\n"), std::string::npos);
  EXPECT_NE(home.read("limits.toml").find("odd_shares = \"never\"\n"), std::string::npos);
  home.write("limits.toml", "# mine\naccount_lots = 3.5  # of the small ones\n\nodd_shares = \"hold\"\n");
  Limits limits = file.open().value();
  EXPECT_EQ(limits[Limit::account_lots], 3.5);
  EXPECT_EQ(limits[Limit::odd_shares], 1.0);
  EXPECT_EQ(limits[Limit::quote_age], 10.0) << "as in a new home";
  limits[Limit::account_lots] = 0.25;
  limits[Limit::orders_per_second] = 50.0;
  limits[Limit::quote_age].reset();
  limits[Limit::odd_shares].reset();
  ASSERT_TRUE(file.save(limits));
  EXPECT_EQ(file.open().value(), limits);
  EXPECT_EQ(home.read("limits.toml")
                .find("# mine\naccount_lots = 0.25  # of the small ones\n\nodd_shares = \"never\"\n"),
            0U);
}

TEST(LimitsFile, NamesLineAndFieldOfWhatCantBe) {
  const TemporaryFolder home;
  const LimitsFile file{home.path()};
  const std::pair<const char*, const char*> cases[] = {
      {"\naccount_lots = -1\n", "line 2: account_lots must be a number from 0.001 to 1000000, or \"never\""},
      {"quote_seconds = \"soon\"\n", "line 1: quote_seconds must be a number from 0.1 to 3600, or \"never\""},
      {"ticket_lots = nan\n", "line 1: ticket_lots must be a number from 0.001 to 1000000, or \"never\""},
      {"orders_per_second = 2.5\n", "line 1: orders_per_second must be a whole number"},
      {"odd_shares = 1\n", "line 1: odd_shares must be a text in quotes"},
      {"acount_lots = 1\n", "line 1: acount_lots is not known here"},
  };
  for (const auto& [content, fault] : cases) {
    home.write("limits.toml", content);
    const auto read = file.open();
    ASSERT_FALSE(read) << content;
    EXPECT_EQ(read.error().text(), (home.path() / "limits.toml").string() + ": " + fault);
    EXPECT_FALSE(file.save(Limits{}));
    EXPECT_EQ(home.read("limits.toml"), content);
  }
}

TEST(StopFile, OutlivesWhoSetItAndIsAnybodys) {
  const TemporaryFolder home;
  StopFile mine{home.path()}, other{home.path()};
  EXPECT_FALSE(mine.stopped());
  ASSERT_TRUE(mine.set("by hand"));
  EXPECT_TRUE(mine.stopped() && other.stopped());
  EXPECT_EQ(home.read("stop"), "by hand\n");
  ASSERT_TRUE(other.clear());
  EXPECT_FALSE(mine.stopped() || other.stopped());
  // Where it can't be kept it holds for this run.
  StopFile nowhere{home.path() / "limits.toml" / "gone"};
  home.write("limits.toml", "");
  EXPECT_FALSE(nowhere.set("by hand"));
  EXPECT_TRUE(nowhere.stopped());
}

}  // namespace
}  // namespace tutti::testing
