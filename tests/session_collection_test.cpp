#include <map>

#include "tests/support/scenario_desk.h"
#include "tests/support/session_rig.h"

namespace tutti::testing {
namespace {

TEST(SessionCollection, The501stAccountIsRefused) {
  SessionRig rig;
  for (int i = 1; i <= 500; ++i)
    rig.add(i);
  EXPECT_EQ(rig.sessions.current(), rig.sessions.Item(1));
  EXPECT_EQ(rig.sessions.Add({"BOB", "", 501, {}}, "", true), nullptr);
  EXPECT_EQ(rig.prompt.shown.at(0).caption + rig.prompt.shown[0].buttons, "Alertsystem");
  EXPECT_EQ(rig.prompt.take_texts(), Texts{"Maximum account number exceeded"});
  EXPECT_EQ(rig.sessions.Count(), 500);
  rig.sessions.Remove("C1");
  EXPECT_EQ(rig.sessions.current(), rig.sessions.Item("C1"));
  CClientAPIManager* added = rig.sessions.Add({"BOB", "", 501, {"h", 7}}, "note", true);
  ASSERT_NE(added, nullptr);
  EXPECT_EQ(added->key(), 500);
  EXPECT_EQ(added->ClientListItem().shown.note, "note");
  EXPECT_EQ(rig.client(*added).logins, 1);
  EXPECT_EQ(rig.client(*added).login_data.server, (Endpoint{"h", 7}));
  rig.sessions.Clear();
  EXPECT_EQ(rig.sessions.Count(), 0);
  EXPECT_EQ(rig.sessions.current(), nullptr);
  EXPECT_TRUE(rig.books.accounts.listed().empty());
}

TEST(SessionCollection, ARemovalClosesTheNumbersUpAndKeepsTheRecords) {
  SessionRig rig;
  for (int i = 0; i < 4; ++i) {
    CClientAPIManager& session = rig.add(81 + i);
    session.write_note("note " + std::to_string(81 + i));
    rig.during([&] { session.SummariesChanged({.balance = 1.0 + i}); });
  }
  const Heard heard = rig.during([&] { rig.sessions.Remove("C2"); });
  for (const char* window : {"market", "entry", "close", "positions", "pending"})
    EXPECT_EQ(std::count(heard.begin(), heard.end(), std::string{window} + " removes 82"), 1) << window;
  EXPECT_EQ(rig.books.accounts.totals.balance, 8.0);
  EXPECT_EQ(rig.sessions.by_account(82), nullptr);
  ASSERT_EQ(rig.books.accounts.listed().size(), 3u);
  for (const auto& [number, account] : {std::pair{1, 81}, {2, 83}, {3, 84}}) {
    const CClientAPIManager* session = rig.sessions.Item("C" + std::to_string(number));
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(session->account(), account);
    EXPECT_EQ(rig.books.accounts.listed().at(static_cast<std::size_t>(number) - 1),
              &session->ClientListItem());
    EXPECT_EQ(session->ClientListItem().shown.note, "note " + std::to_string(account));
  }
  for (const char* missing : {"C0", "C4", "S1", "C", "", "C65537", "C4294967297"})
    EXPECT_EQ(rig.sessions.Item(missing), nullptr) << missing;
  rig.sessions.Remove("C4");
  EXPECT_EQ(rig.sessions.Count(), 3);
  rig.sessions.Remove("C3");
  rig.sessions.Remove("C1");
  EXPECT_EQ(rig.sessions.Item("C1")->account(), 83);
}

TEST(SessionCollection, VisibilityAndDistancesAreThoseOfLoggedInAccounts) {
  SessionRig rig;
  ScriptedClient& stranger = rig.client(rig.add(81, "ANN"));
  ScriptedClient& first = rig.client(rig.add(81));
  ScriptedClient& second = rig.client(rig.add(82));
  first.symbols = second.symbols = {{.id = 1, .name = "EURUSD", .digits = 4}};
  const auto seen = [&](const char* account) { return rig.sessions.Check_Visibility("EURUSD", account); };
  EXPECT_FALSE(seen("81")) << "the first one logged in does not carry it";
  stranger.logged_in = false;
  EXPECT_TRUE(seen("81"));
  EXPECT_TRUE(seen(" 81 lots"));
  EXPECT_FALSE(rig.sessions.Check_Visibility("GBPUSD", "81"));
  EXPECT_FALSE(seen("83"));
  EXPECT_FALSE(seen(""));

  const auto limit = [&] { return rig.sessions.Limit_Offset("EURUSD"); };
  EXPECT_EQ(limit(), -1.0) << "no row";
  rig.windows.entry_order.listed = {81, 82};
  first.limit_distance = 50.0;
  second.limit_distance = 20.0;
  first.stop_distance = 3.0;
  second.stop_distance = 0.0001;
  EXPECT_DOUBLE_EQ(limit(), 0.0020) << "20 points are more than the answer so far, 0.0050";
  EXPECT_DOUBLE_EQ(rig.sessions.Stop_Offset("EURUSD"), 0.0003);
  second.logged_in = false;
  EXPECT_DOUBLE_EQ(limit(), 0.0050);
  rig.windows.accounts.supplied_symbol = "GBPUSD";
  EXPECT_EQ(limit(), -1.0) << "visibility is asked for the symbol that the accounts list supplies";
  rig.windows.accounts.supplied_symbol = "";
  first.logged_in = false;
  EXPECT_EQ(limit(), -1.0);
}

TEST(SessionCollection, RequestCodesAreReportedUnlessTheAccountIsInvalid) {
  SessionRig rig;
  CClientAPIManager& session = rig.add(81);
  const std::map<std::int32_t, std::string> texts = {
      {2, "No Privilege "},  {3, "Invalid Account "}, {4, "Cannot Change Price "}, {6, "Timer Expired"},
      {7, "Invalid Ticket"}, {8, "Invalid Lots"},     {10, "Invalid Order ID"},    {21, "Invalid Price"}};
  for (std::int32_t code = -1; code <= 100; ++code) {
    const auto at = texts.find(code);
    Heard expected;
    if (at != texts.end()) expected = {"journal 81: " + at->second, "market 81: " + at->second};
    if (code != 1) expected.push_back("market ended 81 " + std::to_string(code));
    const auto report = [&] { rig.sessions.Result(RequestCode{code}, 81, client_key(1)); };
    session.write_note("Invalid username or password");
    EXPECT_EQ(rig.during(report), expected) << code;
    session.write_note("Invalid account ID");
    EXPECT_TRUE(rig.during(report).empty()) << code;
  }
}

TEST(FanOut, NobodyLoggedInIsSaidOnce) {
  ScenarioDesk desk{DealerConfig::sample(2)};
  frmorder& form = desk.main->market_order();
  form.cbsymbols.choose("EURUSD");
  for (Row& row : form.lvwConClients) {
    row.set_checked(true);
    row.set_text(frmorder::amount, "1");
  }
  form.Enableds(false);
  for (const std::int32_t account : {first, first + 1})
    desk.server.drop(account);
  form.cmdbuy.click();
  EXPECT_EQ(desk.prompt.take_texts(), Texts{"No account selected"});
  EXPECT_TRUE(form.cmddis.enabled());
  EXPECT_EQ(desk.sound.take(), Texts{});
  EXPECT_EQ(desk.server.requests_in_flight(), 0u);
}

}  // namespace
}  // namespace tutti::testing
