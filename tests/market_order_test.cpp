#include <limits>

#include "core/numbers.h"
#include "tests/support/scripted_terminal.h"

namespace tutti::testing {
namespace {

struct MarketTerminal : ScriptedTerminal {
  explicit MarketTerminal(const Summaries& summaries = {{100, 100}, {100, 100}, {100, 100}})
      : ScriptedTerminal(summaries) {
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
  // The shares and the buttons that are available.
  std::string state() {
    frmorder& form = main->market_order();
    return shares(form.lvwConClients) + (form.cmddis.enabled() ? "D" : "") +
           (form.cmdbuy.enabled() ? "B" : "") + (form.cmdsell.enabled() ? "S" : "");
  }
};

TEST(DistributionTest, SharesByEveryRule) {
  const std::string nobody = "No account selected", fill = "Please fill the required fields",
                    zero = " of the ticked accounts adds up to 0, so nothing can be split by it",
                    no = " is not a finite number|";
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity(),
               huge = std::numeric_limits<double>::max();
  const struct {
    const char* amount;
    int rule;
    const char* precision;
    Summaries summaries;
    std::string state;
    std::string message;
  } cases[] = {
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
      {"1", 0, "1", {{nan, 5}, {5, inf}, {5, 5}}, "- Equity" + no + "- Free margin" + no + "x1|BS", ""},
      {"1",
       2,
       "1",
       {{huge, 5}, {huge, 5}},
       "x|x|D",
       "The equity of the ticked accounts adds up to no finite number, so nothing can be split by it"},
      {"10", 1, "1", {{5, -huge}, {5, huge}, {5, 1}}, "- The share" + no + "- The share" + no + "x10|BS", ""},
      {"1", -1, "1", {{9, 9}, {-1, 0}}, "x|- No Balance|BS", "Please select distribution type"},
      {"0", 0, "1", {{-1, 0}}, "x|D", fill},
      {".", 0, "1", {{-1, 0}}, "x|D", fill},
      {"", 0, "1", {{-1, 0}}, "x before|D", fill}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string{c.amount} + " by rule " + std::to_string(c.rule) + ": " + c.state);
    MarketTerminal desk{c.summaries};
    desk.home->write("manage/settings.buf", c.precision);
    desk.tick_all();
    desk.main->market_order().UpdateResult("before", 1);
    desk.distribute(c.amount, c.rule);
    EXPECT_EQ(desk.state(), c.state);
    EXPECT_EQ(desk.prompt.take_texts(), c.message.empty() ? Texts{} : Texts{c.message});
  }
}

TEST(DistributionTest, RefusalsGoIntoTheRowsAndStay) {
  MarketTerminal desk{{{5, 5}, {5, 5}, {5, 5}, {5, 5}, {-1, 5}}};
  frmorder& form = desk.main->market_order();
  desk.clients[1]->symbols.erase(desk.clients[1]->symbols.begin());
  desk.clients[2]->summary.result = result::bad_connection;
  form.chkAllClients.click();
  EXPECT_EQ(desk.state(), "x|x|- Failed - Bad connection|x|- No Balance|D");
  EXPECT_EQ(form.left_out_text(), "1 left out (Failed - Bad connection), 1 left out (No Balance)");
  desk.tick_all();
  form.lvwConClients.tick(form.lvwConClients.row(3), false);
  desk.distribute("3", 0);
  EXPECT_EQ(desk.state(),
            "x3|- EURUSD is not visible to this account|- Failed - Bad connection|-|- No Balance|BS");
  EXPECT_EQ(form.left_out_text(), "");

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
}

TEST(MarketOrder, RowsAreAddedRemovedAndTold) {
  MarketTerminal desk;
  frmorder& form = desk.main->market_order();
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
  MarketTerminal desk{{{5, 5}, {0, 5}, {-3, 5}}};
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
  MarketTerminal desk;
  frmorder& form = desk.main->market_order();
  const RowList& accounts = desk.main->accounts().lvwClients;
  desk.tick_all();
  desk.distribute("1", 0);
  for (const std::int32_t account : {1, 2, 3})
    desk.note(account, "note");
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
  // Of another total there are no shares yet.
  form.txtammount.type("5");
  EXPECT_EQ(desk.state(), "x0.3|x0.3 old|x0.3|D");
  form.CBdis.choose(0);
  form.cmddis.click();
  EXPECT_EQ(desk.state(), "x5|x5|x5|BS");
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
  MarketTerminal desk;
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

TEST(MarketOrder, EveryAccountOfTheLastRoundIsCounted) {
  MarketTerminal desk{{{5, 5}, {5, 5}, {5, 5}, {5, 5}, {5, 5}, {5, 5}, {5, 5}, {-1, 5}, {5, 5}}};
  frmorder& form = desk.main->market_order();
  CClientAPIManagers& sessions = desk.main->sessions();
  const auto answers = [&] {
    std::string out;
    for (const Row& row : form.lvwConClients)
      out += "-LWARUH"[static_cast<int>(form.answer_of(row))];
    return out + " " + frmorder::answers_text(form.answers());
  };
  const auto answer = [&](std::size_t account, ResultCode code, OrderState state) {
    desk.clients[account - 1]->sink->NewOrderResult({.number = static_cast<std::int64_t>(account),
                                                     .result = code,
                                                     .state = state,
                                                     .operation = operation::buy,
                                                     .amount = 1.0,
                                                     .symbol = "EURUSD"});
  };
  desk.clients[6]->symbols.erase(desk.clients[6]->symbols.begin());
  desk.clients[1]->request_code = request::invalid_lots;
  form.chkAllClients.click();  // refuses account 8
  EXPECT_EQ(answers(), "-------L- ");
  form.lvwConClients.tick(form.lvwConClients.row(8), false);
  desk.distribute("6", 0);  // refuses account 7
  EXPECT_EQ(answers(), "------L-- ");
  form.cmdbuy.click();
  EXPECT_EQ(answers(), "WRWWWWL-- 1 refused, 5 waiting");
  EXPECT_EQ(sessions.unanswered(), 5);
  answer(1, result::succeeded, order_state::executed);
  answer(3, result::not_enough_money, OrderState::none);
  answer(4, result::succeeded, order_state::pending);
  desk.clients[5]->sink->ConnectionState(false);  // takes its row along
  EXPECT_EQ(answers(), "ARRWWL-- 1 accepted, 2 refused, 2 waiting, 1 unknown");
  form.add_account(6);
  EXPECT_EQ(answers(), "ARRWWL--U 1 accepted, 2 refused, 2 waiting, 1 unknown");
  sessions.Remove("C5");
  sessions.Remove("C1");
  EXPECT_EQ(answers(), "RRWL--U 1 accepted, 2 refused, 1 waiting, 2 unknown");
  EXPECT_EQ(sessions.unanswered(), 1);

  // A new round knows of the one before what nobody knows the outcome of; an answer of it still comes.
  const std::string before = "1 unknown of earlier rounds";
  form.cmddis.click();
  EXPECT_EQ(answers(), "------- " + before);
  const auto unknown_rows = [&] {
    std::string out;
    for (const Row& row : form.lvwConClients)
      for (int count = form.unknown_before(row); count > 0; --count)
        out += std::to_string(row.key().number());
    return out;
  };
  EXPECT_EQ(unknown_rows(), "6");
  desk.clients[3]->sink->MarketOrderAccepted({.number = 4, .symbol = "EURUSD"});
  EXPECT_EQ(answers() + desk.state().substr(0, 32), "------- " + before + "x2|x2|x2 Market Order Accepted|-");
  form.cmdsell.click();
  EXPECT_EQ(answers(), "RWW---- 1 refused, 2 waiting, " + before);
  EXPECT_EQ(unknown_rows(), "6");
}

TEST(MarketOrder, SharesAreSummedOverTheTickedRows) {
  MarketTerminal desk{{{5, 5}, {5, 5}, {5, 5}, {5, 5}, {5, 5}}};
  frmorder& form = desk.main->market_order();
  const char* const amounts[] = {"500.5", "0.004", "0", "-500.5", "7"};
  for (int i = 0; i < 5; ++i)
    form.lvwConClients.row(static_cast<std::size_t>(i)).set_text(frmorder::amount, amounts[i]);
  form.Add(77, "", 0.0);
  desk.tick_all();
  form.lvwConClients.row(4).set_checked(false);
  // "sum; counted and without; zero, negative, too small, too large; the fault of each row".
  const auto told = [&] {
    const frmorder::Shares all = form.shares();
    std::string out = number_text(lots_of_sum(all.sum)) + ";";
    for (const int count :
         {all.counted, all.without, all.zero, all.negative, all.below_minimum, all.above_maximum})
      out += " " + std::to_string(count);
    out += "; ";
    for (const Row& row : form.lvwConClients)
      out += "-0<>"[static_cast<int>(form.share_fault(row))];
    return out;
  };
  desk.main->general().lots.minimum = desk.main->general().lots.maximum = 0.0;  // nobody told them yet
  EXPECT_EQ(told(), "0.004; 4 1 1 1 0 0; --00--");
  desk.main->general().lots.minimum = 0.01;
  desk.main->general().lots.maximum = 100.0;
  EXPECT_EQ(told(), "0.004; 4 1 1 1 1 1; ><00--");
}

TEST(MarketWatch, ARowIsTouchedOnlyByWhatItShows) {
  MarketTerminal desk{{{5, 5}, {5, 5}}};
  RowList& list = desk.main->market_watch().lvwMW;
  ASSERT_EQ(list.size(), 2u);
  // "values; inks of bid and ask; how often the row was touched", after both accounts told the price.
  const auto told = [&](double bid, double ask, double high, std::chrono::milliseconds time) {
    const std::uint64_t before = list.stamp();
    for (ScriptedClient* client : desk.clients) {
      Symbol symbol = client->symbols[0];
      symbol.bid = bid;
      symbol.ask = ask;
      symbol.quote_time = TimePoint{time};
      client->sink->SymbolPricesChanged(symbol);
      symbol.bid = symbol.ask = std::numeric_limits<double>::quiet_NaN();
      symbol.high = high;
      symbol.low = 1.07;
      client->sink->SymbolHighLowChanged(symbol);
    }
    std::string out;
    for (std::size_t column = 1; column < list.columns().size(); ++column)
      out += list.row(0).text(column) + " ";
    const auto ink = [&](std::size_t column) {
      return "pwgr"[static_cast<int>(list.row(0).cell(column).ink())];
    };
    return out + ink(frmMW::bid) + ink(frmMW::ask) + " " + std::to_string(list.stamp() - before);
  };
  EXPECT_EQ(told(1.0845, 1.08462, 1.09, 59s), "1.08450 1.08462 12 1.09000 1.07000 00:00 pp 2");
  EXPECT_EQ(told(1.0846, 1.08461, 1.09, 59s), "1.08460 1.08461 1 1.09000 1.07000 00:00 gr 1");
  EXPECT_EQ(told(1.0846, 1.08461, 1.09, 59'999ms), "1.08460 1.08461 1 1.09000 1.07000 00:00 gr 0");
  EXPECT_EQ(told(1.0846, 1.08461, 1.1, 60s), "1.08460 1.08461 1 1.10000 1.07000 00:01 gr 2");
  EXPECT_EQ(told(1.0845, 1.08461, 1.1, 60s), "1.08450 1.08461 11 1.10000 1.07000 00:01 rr 1");
  desk.main->accounts().loadmainsymbols();
  EXPECT_EQ(told(1.0845, 1.08461, 1.1, 60s), "1.08450 1.08461 11 1.10000 1.07000 00:01 pp 1");
}

TEST(SymbolSearch, FindsByTheBeginningThenByAnyPart) {
  ComboBox box;
  box.set_items({"US500", "AUDUSD", "EURUSD.m", "EURUSD", "USDJPY", "GBPUSD"});
  const std::pair<const char*, Texts> cases[] = {
      {"us", {"US500", "USDJPY", "AUDUSD", "EURUSD.m", "EURUSD", "GBPUSD"}},
      {"eurusd", {"EURUSD", "EURUSD.m"}},
      {"Jp", {"USDJPY"}},
      {"x", {}},
      {"", {"US500", "AUDUSD", "EURUSD.m", "EURUSD", "USDJPY", "GBPUSD"}}};
  for (const auto& [typed, found] : cases)
    EXPECT_EQ(box.found_by(typed), found) << typed;
  // Other items don't end a search.
  box.search("E");
  box.set_items({"EURUSD", "GBPUSD"});
  EXPECT_EQ(box.searched().value_or("-"), "E");
}

TEST(MarketOrder, DecimalsOfTheSettingsFile) {
  const std::pair<const char*, int> cases[] = {{"0", 0},   {"2.7", 3}, {"2.5", 2}, {"-1", 0},
                                               {"99", 15}, {" 4 ", 4}, {"abc", 1}, {"", 1}};
  for (const auto& [text, decimals] : cases) {
    TestTerminal terminal{DealerConfig::sample(1)};
    terminal.home->write("manage/Settings.buf", std::string{text} + "\r\n");
    terminal.start_logged_in();
    EXPECT_EQ(terminal.main->general().precision.decimals(), decimals) << text;
  }
}

}  // namespace
}  // namespace tutti::testing
