// Whole scenarios through the forms against a dealing server that misbehaves. After each of them the terminal
// is compared with the server's own books.

#include <limits>
#include <set>

#include "tests/support/scenario_desk.h"

namespace tutti::testing {
namespace {

using Desk = ScenarioDesk;

TEST(Scenario, ListsFillFollowTheMarketAndEmpty) {
  DealerConfig config = still_market(2);
  config.first_number = 9'007'199'254'740'993;  // no double holds it
  config.ticks.insert(config.ticks.begin(), {5s, "EURUSD", 1.09, 1.0902});
  config.entry_orders = {
      {first, operation::buy, "EURUSD", 0.5, 1.07, 1.06, 1.08},
      {first + 1, operation::sell_stop, "EURUSD", 1.0, 1.07, 0.0, 0.0},
      {first + 1, operation::buy, "EURUSD", 1.0, 0.0, 1.01, 0.0, 81},
  };
  Desk desk{config};
  const std::string stamp = "|2026-01-01 00:00:0";
  EXPECT_EQ(desk.rows(desk.orders()),
            (Texts{"9007199254740993|500100|Limit/Stop|0.5|EURUSD|1.07000|1.06000|1.08000" + stamp + "0",
                   "9007199254740994|500101|Limit/Stop|1|EURUSD|1.07000|||" + stamp.substr(1) + "0",
                   "9007199254740995|500101|SL/TP (81)|1|EURUSD|0.00000|1.01000||" + stamp.substr(1) + "0"}));
  desk.open("2");
  const auto position = [&](const char* number, const char* account, const char* now, const char* profit) {
    return number + std::string{"|"} + account + stamp + "2|Buy|1|EURUSD|1.08462|" + now + "|||0.00|0.00|" +
           profit;
  };
  EXPECT_EQ(desk.rows(desk.positions()),
            (Texts{position("9007199254740996", "500100", "1.08450", "-12.00"),
                   position("9007199254740997", "500101", "1.08450", "-12.00")}));
  EXPECT_EQ(desk.differences(), Texts{});
  desk.run(3s);
  for (const Row& row : desk.positions())
    EXPECT_EQ(row.text(frmTrade::current_price) + " " + row.text(frmTrade::profit), "1.09000 538.00");
  desk.main->poll_timers();
  EXPECT_EQ(desk.main->trade().lbmSummaries.text(), desk.main->window().totals_pane());
  EXPECT_EQ(desk.differences(), Texts{});

  const Texts orders = desk.rows(desk.orders());
  desk.server.drop(first + 1);
  desk.run(100ms);
  EXPECT_EQ(desk.rows(desk.orders()), Texts{orders[0]});
  EXPECT_EQ(desk.positions().size(), 1u);
  EXPECT_EQ(desk.take_messages(), Texts{"account 500101 Session disconnected"});
  EXPECT_EQ(desk.differences(), Texts{});
  desk.main->accounts().LoginClient(client_key(2));
  desk.run(2s);
  EXPECT_EQ(desk.rows(desk.orders()), orders);
  EXPECT_EQ(desk.positions().size(), 2u);
  EXPECT_EQ(desk.differences(), Texts{});

  frmTrade& trade = desk.main->trade();
  trade.lbbClose.click();
  trade.chkAll.click();
  EXPECT_EQ(desk.positions().checked_count(), 2u);
  trade.chkAll.click();
  trade.lbbClose.click();
  EXPECT_EQ(desk.prompt.take_texts(), Texts(2, "No selected positions"));
  trade.chkAll.click();
  for (const int no : {2, RecordingPrompt::escape}) {
    desk.prompt.answers = {no};
    trade.lbbClose.click();
  }
  EXPECT_EQ(desk.server.requests_in_flight() + desk.server.outcomes().size(), 2u);
  trade.lbbClose.click();
  EXPECT_EQ(desk.prompt.take_texts(),
            Texts(3, "Are you sure you want to close selected postion(s) at current market price(s)?"));
  desk.run(1s);
  EXPECT_TRUE(desk.positions().empty());
  EXPECT_EQ(desk.differences(), Texts{});
}

DealerConfig requoting(FaultPoint on, int accounts = 1) {
  DealerConfig config = still_market(2);
  for (int i = 0; i < accounts; ++i)
    config.faults.push_back(fault(FaultKind::requote, {first + i}, on, 0, i == 0 ? 10s : 4s));
  // The second countdown ticks between the seconds of the first.
  config.faults.push_back(fault(FaultKind::delay, {first + 1}, on, 0, 500ms));
  return config;
}

TEST(Scenario, ARequoteEndsInEveryWay) {
  enum Way { accept, reject, frame, time, unticked, dropped, removed };
  for (const Way way : {accept, reject, frame, time, unticked, dropped, removed}) {
    SCOPED_TRACE(way);
    Desk desk{requoting(FaultPoint::open)};
    frmPriceChanged& form = desk.main->requote();
    desk.open("2");
    ASSERT_TRUE(form.Displayed());
    EXPECT_EQ(form.lblOrder.text(), "Buy 1 EURUSD at 1.08462");
    EXPECT_EQ(form.lblNewPrice.text(), "1.08482");
    EXPECT_EQ(form.caption(), "10 / 10");
    const std::string number = desk.orders().row(0).text(0);
    EXPECT_TRUE(desk.journaled("500100 Order " + number + " in Pending mode"));
    EXPECT_EQ(desk.orders().row(0).text(frmPending::type), "New");
    EXPECT_EQ(desk.result(first), "Requote 1.08482, 10 s");
    desk.run(1s);
    EXPECT_EQ(form.caption(), "9 / 10");
    EXPECT_EQ(desk.result(first), "Requote 1.08482, 9 s");
    EXPECT_EQ(std::count(desk.sound.played.begin(), desk.sound.played.end(), "PriceChanged.wav"), 1);
    const bool here = way != dropped && way != removed;  // the account is
    const bool settled = here && way != unticked, taken = way == accept || way == unticked;
    frmMain& accounts = desk.main->accounts();
    if (way == unticked) desk.main->market_order().lvwConClients.tick(*desk.order_row(first), false);
    if (taken) form.cmdAccept.click();
    // Ticks behind the answer are ignored, up to those of a new requote.
    Requote tick{std::stoll(number), first, operation::buy, 1.0, "EURUSD", 1.08462, 1.08482, 8, 10};
    for (; taken && tick.seconds_left >= 0; --tick.seconds_left)
      desk.session(first).OrderTimer(tick);
    if (way == reject) form.cmdReject.click();
    if (way == frame) form.close_by_frame();
    if (way == dropped) desk.server.drop(first);
    if (way == dropped) desk.run(50ms);
    if (way == removed) accounts.lvwClients.select(desk.client(first));
    if (way == removed) accounts.mnuRemove_Click();
    while (way == time && form.Displayed())
      desk.run(10ms);
    EXPECT_FALSE(form.Displayed());
    EXPECT_TRUE(desk.orders().empty());
    EXPECT_EQ(desk.result(first), settled ? "Order number " + number + (taken ? " Accepted" : " rejected")
                                  : here  ? "Order in Pending mode"
                                          : "no row");
    const std::string expired = "Timer Expired - Order number " + number + " rejected",
                      lost = "account 500100 Session disconnected", ended = " has been rejected";
    EXPECT_EQ(desk.take_messages(), way == time ? Texts{expired} : way == dropped ? Texts{lost} : Texts{});
    EXPECT_EQ(desk.journaled("500100 " + expired), way == time);
    desk.run(12s);
    EXPECT_EQ(desk.positions().size(), taken ? 2u : 1u);
    EXPECT_EQ(desk.journaled("500100 Order #" + number + " [BUY 1 EURUSD] has been accepted"), taken);
    EXPECT_EQ(desk.journaled("500100 Order " + number + ended), here && !taken);
    const std::string last = taken ? "Market Order Accepted" : "order has been rejected";
    EXPECT_EQ(desk.result(first), here ? last : "no row");
    // An account that went away was not told.
    const std::string untold = "account 500100: the journal does not say: Order " + number + ended;
    EXPECT_EQ(desk.differences(), here ? Texts{} : Texts{untold});
    EXPECT_EQ(desk.server.outcomes().back().expired, !here);
    tick.seconds_left = 10;
    if (taken) desk.session(first).OrderTimer(tick);
    EXPECT_EQ(form.Displayed(), taken);
  }
}

TEST(Scenario, TwoRequotesAlternateInOneDialog) {
  for (const bool answer : {false, true}) {
    Desk desk{requoting(FaultPoint::open, 2)};  // ten seconds and four
    frmPriceChanged& form = desk.main->requote();
    desk.open("2", "EURUSD", false);
    const auto on_show = [&] { return form.caption().substr(form.caption().find('/')); };
    std::string shown = on_show();
    std::set<std::string> captions;
    int changes = 0;
    for (int i = 0; i < 250; ++i) {
      desk.run(10ms);
      captions.insert(form.caption());
      if (on_show() == shown) continue;
      shown = on_show();
      ++changes;
      form.cmdAccept.click();  // dead: nobody has read this price yet
      EXPECT_TRUE(form.Displayed() && form.buttons_dead());
    }
    EXPECT_GE(changes, 2);
    EXPECT_TRUE(captions.contains("8 / 10") && captions.contains("2 / 4"));
    EXPECT_EQ(form.lblOrder.text(), "Sell 1 EURUSD at 1.0845");
    EXPECT_EQ(desk.server.requests_in_flight(), 2u);
    if (answer) {  // the one on show, then the other
      while (form.buttons_dead())
        desk.run(10ms);
      form.cmdReject.click();
      while (!form.Displayed() || form.buttons_dead())
        desk.run(10ms);
      form.cmdAccept.click();
    }
    desk.run(15s);
    EXPECT_FALSE(form.Displayed());
    EXPECT_TRUE(desk.orders().empty());
    EXPECT_EQ(desk.positions().size(), answer ? 1u : 0u);
    EXPECT_EQ(desk.take_messages().size(), answer ? 0u : 2u);
    EXPECT_EQ(desk.differences(), Texts{});
  }
}

TEST(Scenario, ARequotedCloseWritesNoOrderRow) {
  for (const bool accept : {true, false}) {
    Desk desk{requoting(FaultPoint::close)};
    desk.open("2");
    const std::string before = desk.result(first);
    std::string ticket;
    for (const Row& row : desk.positions())
      if (row.text(frmTrade::account) == "500100") ticket = row.text(0);
    desk.close_all();
    desk.run(1s);
    frmPriceChanged& form = desk.main->requote();
    ASSERT_TRUE(form.Displayed());
    EXPECT_EQ(desk.orders().row(0).text(frmPending::type), "Liq (" + ticket + ")");
    EXPECT_TRUE(desk.journaled("500100 Position in pending mode"));
    (accept ? form.cmdAccept : form.cmdReject).click();
    EXPECT_TRUE(desk.orders().empty());
    desk.run(1s);
    EXPECT_EQ(desk.result(first), before);
    EXPECT_TRUE(desk.journaled("500100 " + (accept ? "Ticket #" + ticket + " has been closed successfully"
                                                   : "Closing has been rejected")));
    EXPECT_EQ(desk.positions().size(), accept ? 0u : 1u);
    EXPECT_EQ(desk.differences(), Texts{});
  }
}

TEST(Pending, CategoriesByTheBeginningOfTheType) {
  const std::pair<const char*, int> categories[] = {
      {"New", 1},       {"nEwest", 1}, {"lIq (3)", 1}, {"LIQ", 1},        {"sl/tp", 3},
      {"SL/TP (1)", 3}, {"SL/T", 2},   {"", 2},        {"Limit/Stop", 2}, {" New", 2}};
  for (const auto& [text, category] : categories)
    EXPECT_EQ(frmPending::OrderType(text), category) << text;
}

TEST(Pending, DoubleClickHandsTheOrderOver) {
  DealerConfig config = still_market(1);
  config.accounts[0].hidden_symbols = {"GBPUSD"};
  config.entry_orders = {{first, operation::buy, "EURUSD", 0.5, 1.07, 1.06, 1.08},
                         {first, operation::sell, "EURUSD", 0.5, 1.12},
                         {first, operation::buy_stop, "EURUSD", 0.5, 1.12},
                         {first, operation::sell_stop, "EURUSD", 0.5, 1.07},
                         {first, operation::sell, "EURUSD", 0.5, 0.0, 1.2, 0.0, 5'000'000'081},
                         {first, operation::buy, "EURUSD", 0.5, 0.0, 1.0, 0.0, 5'000'000'082},
                         {first, operation::buy, "GBPUSD", 0.5, 1.1}};
  Desk desk{config};
  Texts handed;
  desk.main->pending().EdirMode = [&](const frmPending::EditRequest& r) {
    handed.push_back(r.mode + "|" + r.type_text + "|" + r.symbol + "|" + std::to_string(r.account) + "|" +
                     std::to_string(r.number) + "|" + number_text(r.amount) + "|" + number_text(r.price) +
                     "|" + number_text(r.stop_loss) + "|" + number_text(r.take_profit));
  };
  ASSERT_EQ(desk.orders().size(), 7u);
  for (Row& row : desk.orders())
    desk.orders().activate(row);
  EXPECT_EQ(handed, (Texts{"Limit Orders|Buy limit|EURUSD|500100|10000001|0.5|1.07|1.06|1.08",
                           "Limit Orders|Sell limit|EURUSD|500100|10000002|0.5|1.12|0|0",
                           "Limit Orders|Buy stop|EURUSD|500100|10000003|0.5|1.12|0|0",
                           "Limit Orders|Sell stop|EURUSD|500100|10000004|0.5|1.07|0|0",
                           "SLTP |Sell(Manage)|EURUSD|500100|5000000081|0.5|0|1.2|0",
                           "SLTP |Buy(Manage)|EURUSD|500100|5000000082|0.5|0|1|0"}));
  EXPECT_EQ(desk.prompt.take_texts(), Texts{"GBPUSD is not visible for any of the connected accounts"});
}

TEST(Scenario, CancelsAndTheirRefusals) {
  DealerConfig config = still_market(4);
  for (int i = 0; i < 4; ++i) {
    config.entry_orders.push_back({first + i, operation::buy, "EURUSD", 0.5, 1.07});
    config.entry_orders.push_back({first + i, operation::buy, "EURUSD", 0.5, 0.0, 1.0, 0.0, 81});
  }
  config.faults = {fault(FaultKind::refuse, {first + 1}, FaultPoint::cancel, 2),
                   fault(FaultKind::reject, {first + 2}, FaultPoint::cancel, 10),
                   fault(FaultKind::pending, {first + 3}, FaultPoint::open, 0, 60s)};
  Desk desk{config};
  desk.open("4");
  ASSERT_EQ(desk.orders().size(), 9u);
  std::map<std::string, std::string> numbers;  // by account and the first letter of the type
  for (Row& row : desk.orders()) {
    numbers[row.text(1) + row.text(2)[0]] = row.text(0);
    row.set_checked(true);
  }
  desk.prompt.answers = {2};
  desk.main->pending().lbbCancel.click();
  desk.run(1s);
  EXPECT_EQ(desk.orders().size(), 9u);
  desk.prompt.shown.clear();
  desk.main->pending().lbbCancel.click();
  desk.run(1s);
  EXPECT_EQ(desk.prompt.shown.size(), 2u);  // the question, and how many were refused
  EXPECT_EQ(desk.orders().size(), 5u);
  EXPECT_TRUE(desk.journaled("500100 Order number #" + numbers["500100L"] + " Canceled successfully"));
  EXPECT_TRUE(desk.journaled("500100 Delete SLTP Order #" + numbers["500100S"] + " Succeeded"));
  EXPECT_TRUE(desk.journaled("500102 Delete SLTP Order #" + numbers["500102S"] + " Order not found"));
  EXPECT_TRUE(desk.journaled("500102 Order number #" + numbers["500102L"] + " NotFound"));
  EXPECT_EQ(desk.take_messages(), Texts{"Order number #" + numbers["500102L"] + " NotFound"});
  EXPECT_EQ(desk.differences(), Texts{});
}

// The operator places a buy limit of EURUSD, shared out among all accounts.
void place(ScenarioDesk& desk, const char* amount, const char* price, const char* sl) {
  frmlimitorder& form = desk.main->entry_order();
  form.Displayed(true);
  form.cblimitordersymbols.choose("EURUSD");
  form.CBlimitorderdis.choose(0);
  form.txtlimitorderammount.type(amount);
  form.txtatprice.type(price);
  form.txtsl.type(sl);
  form.chkAllClients.click();
  form.cmdlimiorderdis.click();
  form.cmdsubmitlimiorder.click();
}

// An order is placed, changed, executed and stopped out. What the server does is told silently, twice, or not
// at all; the comparison with its books says so.
TEST(Scenario, TheBooksTellWhatTheJournalOfAnEntryOrderDoesNot) {
  const std::string account = "account 500100: ", missing = account + "the journal does not say: ",
                    surplus = account + "the journal says what the server's books don't: ";
  const struct {
    FaultKind kind;
    FaultPoint on;
    Texts differences;
  } cases[] = {
      {FaultKind::silent, FaultPoint::entry, {missing + "Succeeded"}},
      {FaultKind::twice, FaultPoint::entry, {surplus + "Succeeded"}},
      {FaultKind::silent, FaultPoint::update, {missing + "Order #10000001has been updated"}},
      {FaultKind::twice, FaultPoint::trigger, {surplus + "Entry Order 10000001 has been executed"}},
      {FaultKind::delay, FaultPoint::trigger, {}},
  };
  for (const auto& c : cases) {
    DealerConfig config = still_market(1);
    config.ticks.insert(config.ticks.begin(),
                        {{5s, "EURUSD", 1.0798, 1.07992}, {9s, "EURUSD", 1.06, 1.0601}});
    config.faults = {fault(c.kind, {}, c.on)};
    config.faults[0].times = 1;
    ScenarioDesk desk{config};
    place(desk, "1", "1.07", "1.06");
    desk.run(1s);
    ASSERT_EQ(desk.orders().size(), 1u);
    desk.orders().activate(desk.orders().row(0));
    desk.main->entry_order().txtatprice.set_text("1.08");
    desk.main->entry_order().cmdsubmitlimiorder.click();
    desk.run(4s);
    EXPECT_EQ(desk.positions().size(), 1u);
    EXPECT_EQ(desk.orders().row(0).text(frmPending::stop_loss), "1.06000");
    EXPECT_EQ(desk.differences(), c.differences);
    desk.run(4s);
    EXPECT_EQ(desk.positions().size() + desk.orders().size(), 0u);
    EXPECT_EQ(desk.differences(), c.differences);
  }
}

TEST(Scenario, AFanOutOverFiftyAccountsEndsEverywhere) {
  DealerConfig config = still_market(50);
  const std::pair<FaultKind, int> kinds[] = {
      {FaultKind::silent, 0}, {FaultKind::swallow, 0}, {FaultKind::delay, 0},          {FaultKind::late, 0},
      {FaultKind::twice, 0},  {FaultKind::drop, 0},    {FaultKind::unknown_ticket, 0}, {FaultKind::refuse, 8},
      {FaultKind::reject, 3}, {FaultKind::pending, 0}};
  for (std::size_t i = 0; i < std::size(kinds); ++i) {
    const std::int32_t account = first + 17 + 3 * static_cast<std::int32_t>(i);
    config.faults.push_back(
        fault(kinds[i].first, {account, account + 1}, FaultPoint::open, kinds[i].second, 3s));
  }
  Desk desk{config};
  desk.open("50");
  desk.run(10s);
  using State = SentOrder::Outcome;
  // The fault of an account, by its place in the table; -1 when it has none.
  const auto struck = [](std::int32_t account) {
    const std::int32_t place = account - first - 17;
    return place < 0 || place % 3 == 2 ? -1 : place / 3;
  };
  Texts expected;
  std::set<std::int32_t> counted;
  for (const Outcome& outcome : desk.server.outcomes()) {
    EXPECT_TRUE(counted.insert(outcome.account).second);
    const std::string account = std::to_string(outcome.account);
    const std::string accepted = "Order #" + std::to_string(outcome.number) + " has been accepted";
    const int place = struck(outcome.account);
    if (place == 0 || place == 5)  // silent, dropped
      expected.push_back("account " + account + ": the journal does not say: " + accepted);
    if (place == 4)  // told twice
      expected.push_back("account " + account +
                         ": the journal says what the server's books don't: " + accepted);
    EXPECT_EQ(desk.journaled(account +
                             " Order BUY 1 EURUSD was sent, but no result came: the outcome is unknown, "
                             "check the positions of account " +
                             account),
              place == 5);
  }
  for (const TradingAccount& account : desk.server.accounts())
    EXPECT_LE(account.positions().size(), 1u);
  for (const auto& session : desk.main->sessions().Children()) {
    const State state = session->last_order().outcome;
    const int place = struck(session->account());
    // Whoever was never answered is still waited for; its connection stands.
    EXPECT_EQ(state == State::waiting, place == 0 || place == 1) << session->account();
    EXPECT_EQ(state == State::unknown, place == 5) << session->account();
  }
  Texts made_up, rest;  // answers for orders that these two accounts never sent; everything else
  for (const std::string& text : desk.differences()) {
    const bool unknown = text.starts_with("account 500135: ") || text.starts_with("account 500136: ");
    (unknown ? made_up : rest).push_back(text);
  }
  EXPECT_EQ(sorted(rest), sorted(expected));
  EXPECT_FALSE(made_up.empty());
}

TEST(Scenario, GarbageNeverReachesTheLists) {
  for (const double value :
       {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity(), -1.0, 1e308}) {
    for (const FaultPoint point : {FaultPoint::price, FaultPoint::summary, FaultPoint::position}) {
      DealerConfig config = still_market(2);
      config.ticks.insert(config.ticks.begin(), {5s, "EURUSD", 1.09, 1.0902});
      config.faults = {fault(FaultKind::garbage, {}, point)};
      config.faults[0].value = value;
      config.faults[0].after = 2s;
      Desk desk{config};
      const std::size_t before = desk.journal().size();
      desk.open("2");
      desk.run(4s);
      EXPECT_EQ(desk.differences(), Texts{}) << value << " " << static_cast<int>(point);
      if (std::isfinite(value)) continue;
      std::set<std::string> complaints;  // accounts, beside the two that opened a position
      const Texts lines = desk.journal();
      for (std::size_t i = before; i < lines.size(); ++i)
        if (lines[i].find("accepted") == lines[i].npos) complaints.insert(lines[i].substr(0, 6));
      EXPECT_EQ(complaints, (std::set<std::string>{"500100", "500101"})) << static_cast<int>(point);
    }
  }
}

}  // namespace
}  // namespace tutti::testing
