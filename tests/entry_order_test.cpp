// The entry order window on scripted accounts.

#include <limits>

#include "tests/support/scripted_terminal.h"

namespace tutti::testing {
namespace {

enum Type { buy_limit, sell_limit, buy_stop, sell_stop };

// The window is shown, EURUSD stands at 1.5 to 1.6, limit orders keep 0.1 and stop orders 0.2 away.
struct EntryTerminal : ScriptedTerminal {
  explicit EntryTerminal(const Summaries& summaries = {{100, 100}, {100, 100}, {100, 100}})
      : ScriptedTerminal(summaries), form(main->entry_order()) {
    for (ScriptedClient* client : clients) {
      client->limit_distance = 10'000;
      client->stop_distance = 20'000;
    }
    quote(1.5, 1.6);
    form.Displayed(true);
    home->write("manage/settings.buf", "2");
  }
  void quote(double bid, double ask) {
    for (const ScriptedClient* client : clients)
      ScriptedTerminal::quote(client->login_data.account, bid, ask);
  }
  void type(TextBox& box, const std::string& text) {
    box.set_text("");
    box.type(text);
  }
  void fill_in(int kind, const std::string& at, const std::string& sl = "", const std::string& tp = "") {
    type(form.txtatprice, at);
    type(form.txtsl, sl);
    type(form.txttp, tp);
    form.cblimiordertype.choose(kind);
  }
  // Ticks everybody and shares the amount out.
  void distribute(const std::string& amount, int rule = 0) {
    if (!form.chkAllClients.checked()) form.LblCheck.click();
    form.CBlimitorderdis.choose(rule);
    type(form.txtlimitorderammount, amount);
    form.cmdlimiorderdis.click();
  }
  // "< 1.5; < 1.4; > 1.6": signs and prices of at-price, stop loss and take profit.
  std::string conditions() {
    return form.lblpricecondition.text() + " " + form.lblcondition.text() + "; " +
           form.lblslcondition.text() + " " + form.lblslbound.text() + "; " + form.lbltpcondition.text() +
           " " + form.lbltpbound.text();
  }
  std::string rows() { return shares(form.lvwConClients); }
  std::string answers() { return form.answers().text(); }
  Texts sent(std::int32_t account) { return std::exchange(client(account).sent, {}); }
  // "caption: text" of the boxes since the last call.
  Texts boxes() {
    Texts out;
    for (const auto& box : std::exchange(prompt.shown, {}))
      out.push_back(box.caption + ": " + box.text);
    return out;
  }

  frmlimitorder& form;
};

struct EntryOrder : ::testing::Test, EntryTerminal {};

TEST_F(EntryOrder, TellsWherePricesMustLie) {
  const struct {
    int type;
    const char *at, *told;
  } cases[] = {
      {buy_limit, "", "< 1.50000; < 1.40000; > 1.60000"},
      {buy_limit, "1.2345678", "< 1.50000; < 1.1345678; > 1.3345678"},
      {buy_limit, "1.3", "< 1.50000; < 1.20000; > 1.40000"},
      {sell_limit, "", "> 1.60000; > 1.70000; < 1.50000"},
      {sell_limit, "1.8", "> 1.60000; > 1.90000; < 1.70000"},
      {buy_stop, "", "> 1.80000; < 1.60000; > 2.00000"},
      {buy_stop, "2", "> 1.80000; < 1.80000; > 2.20000"},
      {sell_stop, "", "< 1.30000; > 1.90000; < 1.50000"},
      {sell_stop, "1.2x", "< 1.30000; > 1.40000; < 1.00000"},
  };
  for (const auto& c : cases) {
    fill_in(c.type, c.at);
    EXPECT_EQ(conditions(), c.told) << c.type << " at " << c.at;
  }
  // They follow the market while the window is shown.
  fill_in(buy_limit, "");
  quote(1.4, 1.5);
  EXPECT_EQ(conditions(), "< 1.40000; < 1.30000; > 1.50000");
  form.Displayed(false);
  quote(1.5, 1.6);
  EXPECT_EQ(conditions(), "< 1.40000; < 1.30000; > 1.50000");
  form.Displayed(true);
  EXPECT_EQ(conditions(), "< 1.50000; < 1.40000; > 1.60000");
  // The side of a position is that of the order which closes it.
  const auto edit = [&](const char* type_text) {
    form.EdirMode({.mode = "SLTP ", .type_text = type_text, .symbol = "EURUSD", .account = 1});
    return conditions();
  };
  EXPECT_EQ(edit("Buy(Manage)"), " ; > 1.80000; < 1.50000");
  EXPECT_EQ(edit("Sell(Manage)"), " ; < 1.30000; > 1.60000");
  EXPECT_EQ(edit("Manage"), " ;  ;  ");
  // Nobody carries the symbol: the distance of -1 counts.
  form.lvwConClients.clear();
  fill_in(buy_limit, "");
  form.cblimitordersymbols.choose("EURUSD");
  EXPECT_EQ(conditions(), "< 2.60000; < 3.60000; > 1.60000");
}

TEST(EntryOrders, StopsAreComparedAsTexts) {
  const char *alert = "Alert: Invalid Price", *warning = "Warning: Invalid Price", *no = "";
  const struct {
    int type;
    const char *at, *sl, *tp, *sent, *box;
  } cases[] = {
      {buy_limit, "9.8", "10.5", "", "1 limit 70 1 at 9.8 sl 10.5", no},
      {buy_limit, "9.8", "9.9", "", no, alert},
      {buy_limit, "9.8", "9.8", "", no, alert},
      {buy_limit, "9.8", "", "10", no, no},
      {buy_limit, "9.8", "9.7", "9.80", "1 limit 70 1 at 9.8 sl 9.7 tp 9.8", no},
      {sell_limit, "9.8", "9.9", "9.8", "-1 limit 70 1 at 9.8 sl 9.9 tp 9.8", no},
      {sell_limit, "9.8", "10.5", "", no, alert},
      {sell_limit, "9.8", "", "10", no, no},
      {sell_limit, "10", "", "9.80", "-1 limit 70 1 at 10 tp 9.8", no},
      {buy_stop, "10", "1", "9", "1 stop 70 1 at 10 sl 1 tp 9", no},
      {buy_stop, "10", "9", "", no, warning},
      {buy_stop, "10", "", "1", no, no},
      {sell_stop, "10", "9", "1", "-1 stop 70 1 at 10 sl 9 tp 1", no},
      {sell_stop, "10", "1", "", no, alert},
      {sell_stop, "10", "", "9", no, no},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.type) + " at " + c.at + " sl " + c.sl + " tp " + c.tp);
    EntryTerminal desk{{{5, 5}}};
    desk.fill_in(c.type, c.at, c.sl, c.tp);
    desk.distribute("1");
    const TextBox* entered = nullptr;
    desk.form.enter = [&](TextBox& box) { entered = &box; };
    desk.form.cmdsubmitlimiorder.click();
    EXPECT_EQ(entered, *c.sent != '\0' ? nullptr : *c.box == '\0' ? &desk.form.txttp : &desk.form.txtsl);
    const bool sent = *c.sent != '\0';
    EXPECT_EQ(desk.sent(1), sent ? Texts{std::string{"entry "} + c.sent} : Texts{});
    EXPECT_EQ(desk.boxes(), *c.box == '\0' ? Texts{} : Texts{c.box});
    // What was refused stays as it was typed, what was sent goes.
    EXPECT_EQ(desk.form.txtatprice.text() + desk.form.txtlimitorderammount.text() + desk.form.txtsl.text(),
              sent ? "" : c.at + std::string{"1"} + c.sl);
    EXPECT_EQ(desk.rows(), sent ? "-|" : "x1|");
  }
}

TEST_F(EntryOrder, SubmitGoesStepByStep) {
  const Texts fill{"Alert: Please fill the required fields"};
  const auto submit = [&] {
    form.cmdsubmitlimiorder.click();
    return boxes();
  };
  // Each of the four fields, and an at-price that is none, resets the form.
  for (int missing = 0; missing < 5; ++missing) {
    fill_in(buy_limit, missing == 1 ? "" : missing == 4 ? "0." : "1.3", "1.2");
    distribute("1");
    if (missing == 0) form.CBlimitorderdis.choose(-1);
    if (missing == 2) form.txtlimitorderammount.set_text("");
    if (missing == 3) form.cblimitordersymbols.choose(-1);
    form.UpdateResult(client_key(1), "old");
    EXPECT_EQ(submit(), missing == 4 ? Texts{} : fill) << missing;
    EXPECT_EQ(form.txtatprice.text() + form.txtsl.text() + form.txtlimitorderammount.text() + rows(),
              "-|-|-|");
    EXPECT_FALSE(form.chkAllClients.checked());
    form.cblimitordersymbols.choose("EURUSD");
  }
  // One share is missing: nobody's order goes out.
  fill_in(buy_limit, "1.3", "1.9");
  distribute("1");
  form.lvwConClients.row(2).set_text(1, "");
  EXPECT_EQ(submit(), Texts{"Alert: Please distribute the amount first"});
  EXPECT_EQ(form.txtatprice.text() + rows(), "1.3x0.33|x0.33|x|");
  form.lvwConClients.row(2).set_text(1, "0.34");
  EXPECT_EQ(submit(), Texts{"Alert: Invalid Price"});
  type(form.txtsl, "1.2");
  form.uncheckall();
  EXPECT_EQ(submit(), Texts{"Alert: No account selected"});
  EXPECT_EQ(form.txtatprice.text() + rows(), "1.3-0.33|-0.33|-0.34|");
  for (const std::int32_t account : {1, 2, 3})
    EXPECT_EQ(sent(account), Texts{});

  // A share is corrected in place, one account refuses; the rest goes out, once.
  form.LblCheck.click();
  form.LblCheck.click();
  ASSERT_TRUE(form.open_editor(form.lvwConClients.row(0), 1));
  form.txtEditPrice.type("0.5");
  form.commit_editor();
  client(2).request_code = request::invalid_price;
  sound.take();
  EXPECT_EQ(submit(), Texts{});
  EXPECT_EQ(sound.take(), Texts(2, "OrderOk.wav"));
  EXPECT_EQ(sent(1), Texts{"entry 1 limit 70 0.5 at 1.3 sl 1.2"});
  EXPECT_EQ(sent(2), Texts{"entry 1 limit 71 0.33 at 1.3 sl 1.2"});
  EXPECT_EQ(sent(3), Texts{"entry 1 limit 72 0.34 at 1.3 sl 1.2"});
  EXPECT_EQ(rows(), "-|- Invalid Price|-|");
  EXPECT_TRUE(journaled("1 Request Entry Order Buy Limit 0.5 EURUSD at 1.3 ( SL= 1.2 TP=  )"));
  EXPECT_TRUE(journaled("2 Request Entry Order Buy Limit 0.33 EURUSD at 1.3 was not taken: Invalid Price"));
  EXPECT_EQ(answers(), "1 refused, 2 waiting");
  EXPECT_EQ(submit(), fill);

  CClientAPIManagers& sessions = main->sessions();
  EXPECT_EQ(sessions.unanswered(), 2);
  // A success that nobody's order belongs to settles nothing; one that was executed already does.
  client(1).sink->NewLimitOrderResult(10, result::succeeded);
  EXPECT_EQ(sessions.unanswered(), 2);
  client(1).positions = {
      {.ticket = 11, .account = 1, .side = operation::buy, .symbol = "EURUSD", .amount = 0.5}};
  client(1).sink->NewLimitOrderResult(11, result::succeeded);
  EXPECT_EQ(sessions.unanswered(), 1);
  EXPECT_EQ(rows(), "- Succeeded|-|-|");  // the second Submit has emptied the results
  client(3).sink->ConnectionState(false);
  EXPECT_EQ(sessions.unanswered(), 0);
  EXPECT_TRUE(journaled(
      "3 Entry order BUY 0.34 EURUSD at 1.3 was sent, but no result came: the outcome is unknown, check the "
      "positions of account 3"));
}

TEST(EntryOrders, AnswersFindTheirRequests) {
  EntryTerminal desk{{{5, 5}}};
  ScriptedClient& client = desk.client(1);
  CClientAPIManager& session = *desk.main->sessions().Item(1);
  const auto place = [&](const char* at) {
    desk.fill_in(buy_limit, at);
    desk.distribute("1");
    desk.form.cmdsubmitlimiorder.click();
  };
  place("1.3");
  place("1.2");
  // The second is answered first; the order in the server's list tells which one it is.
  client.orders = {{22, 1, OrderKind::entry, 0, operation::buy, 70, "EURUSD", 1.0, 1.2}};
  client.sink->NewLimitOrderResult(22, result::succeeded);
  EXPECT_EQ(session.last_entry().number, 22);
  EXPECT_EQ(desk.answers(), "1 accepted");
  client.sink->NewLimitOrderResult(22, result::succeeded);
  EXPECT_EQ(session.unanswered(), 1);  // told twice, it settles no other
  client.sink->NewLimitOrderResult(21, result::not_enough_money);
  // Its row tells of the later order.
  EXPECT_EQ(desk.rows() + desk.answers(), "- Succeeded|1 accepted");
  EXPECT_EQ(session.unanswered(), 0);
  // A refusal does not say which of several orders it is for.
  place("1.3");
  place("1.2");
  client.sink->NewLimitOrderResult(23, result::not_enough_money);
  EXPECT_EQ(session.unanswered(), 2);
  client.sink->NewLimitOrderResult(24, result::trading_closed);
  EXPECT_EQ(session.unanswered(), 2);
  EXPECT_EQ(desk.answers(), "1 waiting");
  desk.clock.advance(30s);
  desk.main->poll_timers();
  EXPECT_EQ(session.unanswered(), 0);
  EXPECT_EQ(desk.rows() + desk.answers(), "- unknown|1 unknown, 1 unknown of earlier rounds");
  client.sink->RequestTold(session.last_entry().id, RequestState::working, 0.0);
  EXPECT_EQ(desk.rows() + desk.answers(),
            "- Executed, as is known now|1 accepted, 1 unknown of earlier rounds");

  // An order that was executed while it was being cancelled: its number is the ticket's now.
  session.cancel_order(22, false);
  session.close_position(22, 1.0);
  client.sink->DeleteLimitOrderResult(22, result::order_not_found);
  EXPECT_EQ(session.sent_request(RequestKind::cancel, 22)->outcome, SentOrder::Outcome::refused);
  EXPECT_EQ(session.sent_request(RequestKind::close, 22)->outcome, SentOrder::Outcome::waiting);
  // Stops of two positions: an SL/TP order that is there already, and a new one.
  client.orders = {{.order = 31, .account = 1, .kind = OrderKind::stops, .reference = 7, .symbol = "EURUSD"}};
  session.set_stops(6, {}, 0);
  session.set_stops(7, {}, 0);
  client.sink->NewSLTPOrderResult(32, result::market_conditions);
  EXPECT_EQ(session.sent_request(RequestKind::stops, 6)->outcome, SentOrder::Outcome::refused);
  // Told twice, it settles no other.
  session.set_stops(6, {}, 0);
  client.sink->NewSLTPOrderResult(32, result::market_conditions);
  EXPECT_EQ(session.sent_request(RequestKind::stops, 6)->outcome, SentOrder::Outcome::waiting);
  client.sink->NewSLTPOrderResult(33, result::market_conditions);
  EXPECT_EQ(session.sent_request(RequestKind::stops, 6)->outcome, SentOrder::Outcome::refused);
  client.sink->UpdateSLTPOrderResult(31, result::succeeded);
  EXPECT_EQ(session.sent_request(RequestKind::stops, 7)->outcome, SentOrder::Outcome::accepted);
  EXPECT_EQ(session.unanswered(), 1);
}

TEST(EntryOrders, DistributeRefusesInItsOwnWords) {
  EntryTerminal desk{{{100, 10}, {300, 30}, {-0.01, 9}, {5, 5}}};
  desk.client(4).symbols.erase(desk.client(4).symbols.begin());
  desk.distribute("1", 2);
  EXPECT_EQ(desk.rows(), "x0.25|x0.75|-  no Balance  |- EURUSD is not visible to this account|");
  EXPECT_EQ(desk.form.answer_of(desk.form.lvwConClients.row(2)), OrderAnswer::left_out);
  desk.distribute("2", 1);
  EXPECT_EQ(desk.rows().substr(0, 10), "x0.5|x1.5|");
  EXPECT_EQ(desk.boxes(), Texts{});
  desk.distribute("0");
  desk.distribute("1", -1);
  desk.form.uncheckall();
  desk.form.cmdlimiorderdis.click();
  EXPECT_EQ(desk.boxes(), (Texts{"Alert: Please fill the required fields",
                                 "Alert: Please select distribution type", "Alert: No account selected"}));
}

TEST(EntryOrders, ARefusedRowKeepsItsShareAndIsNotSent) {
  EntryTerminal desk{{{100, 100}, {100, 100}, {100, 100}, {100, 100}}};
  desk.distribute("4");
  desk.client(2).summary.values.equity = -1;
  desk.client(4).summary.values.equity = -std::numeric_limits<double>::infinity();
  desk.client(3).summary.values.free_margin = std::numeric_limits<double>::infinity();
  desk.client(1).request_code = RequestCode{99};
  desk.fill_in(buy_limit, "1.3");
  desk.distribute("0");
  EXPECT_EQ(desk.rows(), "x1|x1|x1|x1|");
  desk.distribute("5");
  EXPECT_EQ(desk.rows(),
            "x5|-1  no Balance  |-1 Free margin is not a finite number|-1 Equity is not a finite number|");
  desk.boxes();
  desk.form.cmdsubmitlimiorder.click();
  EXPECT_EQ(desk.sent(1).size(), 1u);
  EXPECT_EQ(desk.sent(2).size() + desk.sent(3).size() + desk.sent(4).size(), 0u);
  // A refusal without a text is counted, and leaves the result alone.
  EXPECT_EQ(desk.rows().substr(0, 2) + desk.answers(), "-|1 refused");
  EXPECT_FALSE(desk.journaled("was not taken"));
  EXPECT_EQ(desk.boxes(), Texts{});
}

// Both order windows: connections are lost and come back while the all-accounts box is checked.
TEST_F(EntryOrder, WhoWasTickedSaysSoAndIsTickedAgainOnCommand) {
  const auto drop_all = [&] {
    for (ScriptedClient* client : clients)
      client->sink->ConnectionState(false);
    for (ScriptedClient* client : clients) {
      client->sink->ConnectionState(true);
      client->sink->AllDataAreLoaded();
    }
  };
  const auto check = [&](auto& form) {
    const auto rows = [&] {
      return shares(form.lvwConClients) + (form.chkAllClients.checked() ? "all" : "");
    };
    form.tick_all();
    form.lvwConClients.tick(form.lvwConClients.row(2), false);
    drop_all();
    drop_all();  // twice: nothing was ticked in between
    const std::string came_back = "- Was ticked before it was disconnected|";
    EXPECT_EQ(rows(), came_back + came_back + "-|all");
    EXPECT_EQ(form.answer_of(form.lvwConClients.row(0)), OrderAnswer::left_out);
    form.lvwConClients.tick(form.lvwConClients.row(1), true);
    form.lvwConClients.tick(form.lvwConClients.row(1), false);
    EXPECT_EQ(rows(), came_back + "-|-|all");
    form.tick_all();
    EXPECT_EQ(rows(), "x|x|x|all");
    form.tick_all();
    drop_all();
    EXPECT_EQ(rows(), "-|-|-|");
  };
  check(form);
  check(main->market_order());
}

TEST_F(EntryOrder, ASymbolIsHandedOverOnceAndNotIntoAnEdit) {
  frmorder& market = main->market_order();
  frmMW& watch = main->market_watch();
  int shown = 0;
  market.show = form.show = [&] { ++shown; };
  watch.to_entry_order("GBPUSD");
  watch.lvwMW.activate(watch.lvwMW.row(1));
  market.txtammount.type("3");
  watch.lvwMW.activate(watch.lvwMW.row(1));
  EXPECT_EQ(form.cblimitordersymbols.text() + market.cbsymbols.text() + market.txtammount.text(),
            "GBPUSDGBPUSD3");
  EXPECT_EQ(shown, 3);
  watch.to_market_order("XAUUSD");
  EXPECT_EQ(market.cbsymbols.text(), "GBPUSD");
  form.EdirMode({.mode = "Limit Orders", .type_text = "Buy limit", .symbol = "EURUSD", .account = 1});
  watch.to_entry_order("GBPUSD");
  EXPECT_EQ(form.cblimitordersymbols.text() + " " + form.mode(), "EURUSD Limit Orders");
  EXPECT_EQ(boxes(),
            (Texts{"Alert: XAUUSD is not visible for any of the connected accounts",
                   "Alert: An order or position of EURUSD is being edited. Submit or cancel it before you "
                   "choose GBPUSD"}));
  form.cmdcancel.click();

  // While a text stands in the symbol's box that was not taken, nothing goes out for another symbol.
  watch.to_market_order("EURUSD");
  market.txtammount.type("3");
  market.CBdis.choose(0);
  market.tick_all();
  market.cbsymbols.search("gbp");
  market.cmddis.click();
  EXPECT_EQ(boxes(), Texts{"Alert: \"gbp\" was typed as symbol and not taken. Enter takes one, Esc goes "
                           "back to EURUSD"});
  for (const char* typed : {"", "xy"}) {
    market.cbsymbols.search(typed);
    market.cmddis.click();
  }
  EXPECT_EQ(
      boxes(),
      (Texts{"Alert: The symbol's box is empty. Type or pick a symbol, Esc goes back to EURUSD",
             "Alert: No symbol has \"xy\" in its name. Type or pick another one, Esc goes back to EURUSD"}));
  market.cbsymbols.end_search();
  market.cmddis.click();
  watch.lvwMW.activate(watch.lvwMW.row(0));  // the one that is chosen: shares stay
  EXPECT_EQ(shares(market.lvwConClients) + market.txtammount.text(), "x1|x1|x1|3");
  market.cbsymbols.search("gbp");
  market.cmdbuy.click();
  EXPECT_EQ(sent(1), Texts{});
  EXPECT_TRUE(market.cmdbuy.enabled());
  market.cbsymbols.search("EURUSD");
  market.cmdbuy.click();
  EXPECT_EQ(sent(1), Texts{"1 70 1.000000"});
  watch.lvwMW.activate(watch.lvwMW.row(1));
  EXPECT_EQ(shares(market.lvwConClients), "x|x|x|");
  main->symbols().remove("EURUSD");
  market.symbols_changed();
  watch.lvwMW.activate(watch.lvwMW.row(0));
  EXPECT_EQ(market.cbsymbols.text(), "GBPUSD");
  EXPECT_EQ(boxes().size(), 2u);
  form.cblimitordersymbols.search("x");
  form.cmdlimiorderdis.click();
  form.cmdsubmitlimiorder.click();
  EXPECT_EQ(boxes().size(), 2u);
}

TEST_F(EntryOrder, WaitingDisablesSubmit) {
  for (const auto mode : {waiting_mode::connecting, waiting_mode::waiting}) {
    client(1).sink->WaitingMode(mode);
    EXPECT_FALSE(form.cmdsubmitlimiorder.enabled());
    form.cmdlimiorderdis.set_enabled(false);
    client(1).sink->WaitingMode(waiting_mode::normal);
    EXPECT_TRUE(form.cmdsubmitlimiorder.enabled() && form.cmdlimiorderdis.enabled());
  }
}

TEST_F(EntryOrder, OrdersAndPositionsAreEdited) {
  int shown = 0;
  form.show = [&] { ++shown; };
  // "mode type amount at sl tp rows", and whether the at-price is off.
  const auto state = [&] {
    std::string out = form.mode() + " " + form.cblimiordertype.text();
    for (const TextBox* box : {&form.txtlimitorderammount, &form.txtatprice, &form.txtsl, &form.txttp})
      out += " " + (box->text().empty() ? "." : box->text());
    return out + " " + rows() + (form.txtatprice.enabled() ? "" : " at off");
  };
  const PendingOrder order{40, 2, OrderKind::entry, 0, operation::sell_stop, 71, "EURUSD", 0.5, 1.2, 1.25};
  OpenPosition position = open(3, 50, 2, "EURUSD", 1.45);
  position.current_price = 1.5, position.take_profit = 1.7;
  client(2).orders = {order};
  client(2).sink->NewPendingOrder(order);
  client(3).sink->NewOpenPosition(position);
  RowList& orders = main->pending().lvwPending;
  RowList& positions = main->trade().lvwOpenPos;

  client(1).profit_per_point = 100.0;
  distribute("3");
  orders.activate(orders.row(0));
  EXPECT_EQ(state(), "Limit Orders Sell Stop 0.5 1.20000 1.25000 . -|x0.5|-|");
  type(form.txtatprice, "1.10000");
  type(form.txttp, "1.0");
  type(form.txtsl, "1.05");
  form.cmdsubmitlimiorder.click();
  EXPECT_EQ(boxes(), Texts{"Alert: Invalid Price"});
  type(form.txtsl, "1.3");
  EXPECT_EQ(form.lbltpchanged.text() + " " + form.lblslchanged.text(), "5 -10") << "of a sale";
  form.cmdsubmitlimiorder.click();
  EXPECT_EQ(sent(2), Texts{"update 40 at 1.1 sl 1.3 tp 1"});
  EXPECT_EQ(state(), " Sell Stop . . . . -|-|-|");
  EXPECT_EQ(answers(), "1 waiting");
  client(2).sink->UpdateLimitOrderResult(40, result::succeeded);
  EXPECT_EQ(rows() + answers(), "-|- Succeeded|-|1 accepted");
  EXPECT_TRUE(journaled("2 Request Limit Orders #40 Sell Stop EURUSD at 1.1 ( SL= 1.3 TP= 1.0 )"));
  orders.activate(orders.row(0));
  form.uncheckall();
  form.cmdsubmitlimiorder.click();
  EXPECT_EQ(boxes(), Texts{"Alert: No selected account"});
  form.cmdcancel.click();
  EXPECT_EQ(state(), " Sell Stop . . . . -|-|-|");

  // A position from either list; its stop loss is on the side that the texts would refuse.
  positions.activate(positions.row(0));
  EXPECT_EQ(state(), "SLTP  Buy Limit 2 . . 1.70000 -|-|x2| at off");
  EXPECT_EQ(form.lbltpchanged.text(), "50");
  type(form.txtsl, "1.4");
  EXPECT_EQ(form.lblslchanged.text(), "-10");
  EXPECT_EQ(form.sketch().entry, 1.45);
  form.cmdsubmitlimiorder.click();
  EXPECT_EQ(sent(3), Texts{"stops 50 sl 1.4 tp 1.7"});
  client(3).orders = {
      {.order = 60, .account = 3, .kind = OrderKind::stops, .reference = 50, .symbol = "EURUSD"}};
  client(3).sink->NewSLTPOrderResult(60, result::succeeded);
  EXPECT_EQ(rows() + answers(), "-|-|- Success Result|1 accepted");
  EXPECT_TRUE(journaled("3 Request SLTP  #50 Buy EURUSD at 1.45 ( SL= 1.4 TP= 1.70000 )"));
  positions.activate(positions.row(0));
  client(3).request_code = request::invalid_price;
  form.cmdsubmitlimiorder.click();
  EXPECT_EQ(rows(), "-|-|- Invalid Price|");
  EXPECT_TRUE(journaled("3 Request SLTP #50 Buy EURUSD at 1.45 was not taken: Invalid Price"));
  // An SL/TP order edits its position.
  client(3).sink->NewPendingOrder({61, 3, OrderKind::stops, 50, operation::sell, 72, "EURUSD", 2});
  orders.activate(*orders.find(order_key(61, 3)));
  EXPECT_EQ(form.edited(), 50);
  EXPECT_EQ(shown, 5);
  form.EdirMode({.mode = "Limit Orders", .type_text = "Limit/Stop", .symbol = "EURUSD", .account = 2});
  EXPECT_EQ(state(), " Buy Limit . . . . -|-|- Invalid Price|");
}

}  // namespace
}  // namespace tutti::testing
