#include <gtest/gtest.h>

#include "tests/support/scripted_client.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;
using Summaries = std::vector<std::pair<double, double>>;  // equity and free margin of each account

// A terminal whose accounts 1, 2, 3... are scripted, logged in and in the market order window, EURUSD chosen.
struct ScriptedTerminal : TestTerminal {
  explicit ScriptedTerminal(const Summaries& summaries = {{100, 100}, {100, 100}, {100, 100}})
      : TestTerminal(DealerConfig::sample(1)) {
    std::string list;
    for (std::size_t i = 1; i <= summaries.size(); ++i)
      list += "user,secret," + std::to_string(i) + "\n";
    home->write("manage/savelvinfo.buf", list);
    const auto make_client = [this] {
      clients.push_back(new ScriptedClient);
      return std::unique_ptr<ClientAPI>{clients.back()};
    };
    main = std::make_unique<Main>(home->path(), MachinePorts{clock, prompt, sound, locale, file_dialog},
                                  ServerSide{make_client, server, {}});
    if (!start() || clients.size() != summaries.size()) throw std::runtime_error("not started");
    for (std::size_t i = 0; i < clients.size(); ++i) {
      ScriptedClient& client = *clients[i];
      client.symbols = {{.id = 70 + static_cast<std::int32_t>(i), .name = "EURUSD"},
                        {.id = 90, .name = "GBPUSD"}};
      client.summary.values.equity = summaries[i].first;
      client.summary.values.free_margin = summaries[i].second;
      client.sink->SymbolsLoaded();
      main->market_order().add_account(static_cast<std::int32_t>(i) + 1);
    }
    main->market_order().cbsymbols.choose("EURUSD");
  }
  void tick_all() {
    for (Row& row : main->market_order().lvwConClients)
      row.set_checked(true);
  }
  void distribute(const char* amount, int rule) {
    main->market_order().CBdis.choose(rule);
    main->market_order().txtammount.set_text("");
    main->market_order().txtammount.type(amount);
    main->market_order().cmddis.click();
  }
  // "x0.3 result" of every row, "-" when it is not ticked, and the buttons that are available.
  std::string state() {
    frmorder& form = main->market_order();
    std::string out;
    for (const Row& row : form.lvwConClients)
      out += (row.checked() ? "x" : "-") + row.text(1) + (row.text(2).empty() ? "" : " ") + row.text(2) + "|";
    return out + (form.cmddis.enabled() ? "D" : "") + (form.cmdbuy.enabled() ? "B" : "") +
           (form.cmdsell.enabled() ? "S" : "");
  }

  std::vector<ScriptedClient*> clients;  // owned by the sessions
};

TEST(DistributionTest, SharesByEveryRule) {
  struct Case {
    const char* amount;
    int rule;
    const char* precision;
    Summaries summaries;
    const char* state;
    std::string message;
  };
  const std::string nobody = "No account selected", fill = "Please fill the required fields",
                    zero = " of the ticked accounts adds up to 0, so nothing can be split by it";
  const Case cases[] = {
      {"1", 0, "1", {{5, 5}, {6, 6}, {7, 7}}, "x0.3|x0.3|x0.3|BS", ""},
      {"1", 0, "3", {{5, 5}, {6, 6}, {7, 7}}, "x0.333|x0.333|x0.333|BS", ""},
      {"0.5", 0, "1", {{5, 5}, {5, 5}}, "x0.2|x0.2|BS", ""},
      {"1.5", 0, "1", {{5, 5}, {5, 5}}, "x0.8|x0.8|BS", ""},
      {"0.1", 0, "1", {{5, 5}, {5, 5}, {5, 5}}, "x0|x0|x0|BS", ""},
      {"1", 0, "1", {{5, 5}, {-0.01, 9}, {7, 7}}, "x0.5|- No Balance|x0.5|BS", ""},
      {"1", 0, "1", {{-0.01, 9}}, "- No Balance|D", nobody},
      {"1", -1, "1", {{-0.01, 9}}, "- No Balance|D", nobody},
      {"1", 2, "1", {{0, 9}, {100, 1}}, "x0|x1|BS", ""},
      {"4", 2, "2", {{1, 9}, {2, 9}}, "x1.33|x2.67|BS", ""},
      {"4", 1, "1", {{9, 100}, {9, 300}}, "x1|x3|BS", ""},
      {"2", 1, "1", {{9, -100}, {9, 300}}, "x-1|x3|BS", ""},
      {"1", 1, "1", {{9, -50}, {9, 50}}, "x|x|D", "The free margin" + zero},
      {"1", 2, "1", {{0, 5}}, "x|D", "The equity" + zero},
      {"1", -1, "1", {{9, 9}, {-1, 0}}, "x|- No Balance|BS", "Please select distribution type"},
      {"0", 0, "1", {{-1, 0}}, "x|D", fill},
      {".", 0, "1", {{-1, 0}}, "x|D", fill},
      {"", 0, "1", {{-1, 0}}, "x before|D", fill}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string{c.amount} + " by rule " + std::to_string(c.rule) + ": " + c.state);
    ScriptedTerminal desk{c.summaries};
    desk.main->general().set_amount_precision(c.precision);
    desk.tick_all();
    desk.main->market_order().UpdateResult("before", 1);
    desk.distribute(c.amount, c.rule);
    EXPECT_EQ(desk.state(), c.state);
    for (const auto& box : desk.prompt.shown)
      EXPECT_EQ(box.caption + box.buttons, "AlertOK");
    EXPECT_EQ(desk.prompt.take_texts(), c.message.empty() ? Texts{} : Texts{c.message});
  }
}

TEST(DistributionTest, RefusalsGoIntoTheRowsAndStay) {
  ScriptedTerminal desk{{{5, 5}, {5, 5}, {5, 5}, {5, 5}, {-1, 5}}};
  frmorder& form = desk.main->market_order();
  desk.clients[1]->symbols.erase(desk.clients[1]->symbols.begin());
  desk.clients[2]->summary.result = result::bad_connection;
  form.chkAllClients.click();
  EXPECT_EQ(desk.state(), "x|x|- Failed - Bad connection|x|- No Balance|D");
  desk.tick_all();
  form.lvwConClients.tick(form.lvwConClients.row(3), false);
  desk.distribute("3", 0);
  EXPECT_EQ(desk.state(),
            "x3|- EURUSD is not visible to this account|- Failed - Bad connection|-|- No Balance|BS");

  // Nobody valid: the box clears without its handler, so other rows keep what they show.
  form.lvwConClients.row(0).set_checked(false);
  form.lvwConClients.row(1).set_checked(true);
  form.UpdateResult("kept", 4);
  desk.main->accounts().Distribute(1.0, 0, {.name = "EURUSD"});
  EXPECT_EQ(desk.prompt.take_texts(), Texts{"No account selected"});
  EXPECT_EQ(desk.state(),
            "-3|- EURUSD is not visible to this account|- Failed - Bad connection|- kept|- No Balance|D");
  EXPECT_FALSE(form.chkAllClients.checked());
  EXPECT_EQ(form.LblCheck.text(), "Check all");

  form.lvwConClients.row(3).set_checked(true);
  desk.main->accounts().Distribute(0.0, 0, {.name = "EURUSD"});
  EXPECT_EQ(desk.prompt.take_texts(), Texts{"Please fill the required fields"});
  EXPECT_EQ(form.lvwConClients.row(3).text(2), "kept");
  // A rule that does not exist writes no share.
  desk.main->accounts().Distribute(1.0, 7, {.name = "EURUSD"});
  EXPECT_EQ(desk.state().substr(desk.state().size() - 2) + form.lvwConClients.row(3).text(1), "BS");
}

TEST(MarketOrder, FormRowsAndTypedAmount) {
  ScriptedTerminal desk;
  frmorder& form = desk.main->market_order();
  form.txtammount.type("1.2.3");
  EXPECT_EQ(form.txtammount.text(), "1.23");
  form.txtammount.type("x,- e\b\b\b.");
  EXPECT_EQ(form.txtammount.text(), "1.");

  form.UpdateResult("waiting", 2);
  form.Add(2, "9", 9);
  form.Add(77, "1.5", 2.5);
  form.Remove(4711);
  form.Remove(1);
  form.UpdateResult("nobody", 1);
  EXPECT_EQ(desk.state(), "- waiting|-|-1.5 2.5|D");
  EXPECT_EQ(form.lvwConClients.find(client_key(77))->text(0), "77");

  form.cbsymbols.choose("");
  form.UpdateResult("kept", 2);
  desk.distribute("1", 0);
  form.Enableds(false);
  form.cmdbuy.click();
  EXPECT_EQ(desk.state(), "- kept|-|-|BS");
  EXPECT_EQ(desk.prompt.take_texts(), Texts(2, "Please fill the required fields"));
}

TEST(MarketOrder, AllAccountsBoxAndItsLabel) {
  ScriptedTerminal desk{{{5, 5}, {0, 5}, {-3, 5}}};
  frmorder& form = desk.main->market_order();
  form.txtEditPrice.set_text("1.08");
  form.chkAllClients.click();
  EXPECT_FALSE(form.txtEditPrice.enabled());
  EXPECT_EQ(form.txtEditPrice.text() + form.LblCheck.text(), "Uncheck all");
  EXPECT_EQ(desk.state(), "x|- No Balance|- No Balance|D");
  form.LblCheck.click();
  EXPECT_FALSE(form.chkAllClients.checked());
  EXPECT_EQ(desk.state() + form.LblCheck.text(), "-|-|-|DCheck All");
  form.LblCheck.click();
  EXPECT_EQ(form.LblCheck.text(), "Uncheck All");
}

TEST(MarketOrder, EachDistributionIsSentOnce) {
  ScriptedTerminal desk;
  frmorder& form = desk.main->market_order();
  RowList& accounts = desk.main->accounts().lvwClients;
  desk.tick_all();
  desk.distribute("1", 0);
  for (Row& row : accounts)
    row.set_text(4, "note");
  form.cmdbuy.click();
  form.cmdbuy.click();
  form.cmdsell.click();
  EXPECT_EQ(desk.clients[2]->sent, Texts{"1 72 0.300000"});
  EXPECT_EQ(desk.state(), "x0.3|x0.3|x0.3|D");
  EXPECT_EQ(accounts.row(1).text(4), "note");
  form.cmddis.click();
  form.cmdsell.click();
  EXPECT_EQ(desk.clients[0]->sent, (Texts{"1 70 0.300000", "-1 70 0.300000"}));
  for (const Row& row : accounts)
    EXPECT_EQ(row.text(4), "");

  form.cmddis.click();
  form.UpdateResult("old", 2);
  form.CBdis.choose(1);
  EXPECT_EQ(desk.state(), "x0.3|x0.3 old|x0.3|BS");
  form.cbsymbols.choose("GBPUSD");
  EXPECT_EQ(desk.state() + form.txtammount.text(), "x|x|x|D");
  EXPECT_TRUE(desk.prompt.shown.empty());

  // Empty and negative shares go out as they stand.
  desk.clients[0]->summary.values.free_margin = -100;
  desk.distribute("1", -1);
  form.cmdbuy.click();
  desk.distribute("1", 1);
  form.cmdsell.click();
  EXPECT_EQ(desk.clients[0]->sent.at(2) + ", " + desk.clients[0]->sent.at(3),
            "1 90 0.000000, -1 90 -1.000000");
}

TEST(MarketOrder, OneShareIsCorrectedInPlace) {
  ScriptedTerminal desk;
  frmorder& form = desk.main->market_order();
  desk.tick_all();
  desk.distribute("1", 0);
  Row& row = form.lvwConClients.row(0);
  ASSERT_TRUE(form.open_editor(row, frmorder::amount));
  form.txtLvw.type("0.7x");
  ASSERT_TRUE(form.commit_editor());
  form.cmdbuy.click();
  EXPECT_EQ(desk.clients[0]->sent, Texts{"1 70 0.700000"});
  form.open_editor(row, frmorder::amount);
  form.txtLvw.set_text("  2.5 ");
  form.commit_editor();
  form.open_editor(row, frmorder::amount);
  form.txtLvw.set_text("enter next entry");
  EXPECT_FALSE(form.commit_editor());
  EXPECT_EQ(row.text(1), "2.5");
  form.open_editor(row, frmorder::amount);
  form.Remove(1);
  EXPECT_FALSE(form.commit_editor());
}

TEST(MarketOrder, DecimalsOfTheSettingsFile) {
  const std::pair<const char*, int> cases[] = {{"0", 0},   {"2.7", 3}, {"2.5", 2}, {"-1", 0},
                                               {"99", 15}, {" 4 ", 4}, {"abc", 1}, {"", 1}};
  for (const auto& [text, decimals] : cases) {
    TestTerminal terminal{DealerConfig::sample(1)};
    terminal.home->write("manage/Settings.buf", std::string{text} + "\r\n");
    terminal.start_logged_in();
    EXPECT_EQ(terminal.main->general().amount_decimals(), decimals) << text;
  }
}

}  // namespace
}  // namespace tutti::testing
