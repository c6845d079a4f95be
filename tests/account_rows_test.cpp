// Numbers that are not unique: tickets and orders of two accounts, and one account number in two rows.

#include "tests/support/scenario_desk.h"
#include "tests/support/scripted_terminal.h"

namespace tutti::testing {
namespace {

Texts lines(const RowList& list) {
  Texts out;
  for (const Row& row : list)
    out.push_back(row.key().text() + " of " + row.text(1));
  return out;
}

TEST(AccountRows, EqualNumbersOfTwoAccountsStandInTwoRows) {
  ScriptedTerminal desk;
  Main& main = *desk.main;
  OpenPosition position{.ticket = 7, .side = operation::buy, .symbol = "EURUSD", .amount = 0.5};
  PendingOrder order{.order = 9, .kind = OrderKind::open, .symbol = "EURUSD", .amount = 1.0};
  for (const std::int32_t account : {1, 2}) {
    position.account = order.account = account;
    desk.client(account).sink->NewOpenPosition(position);
    desk.client(account).sink->NewPendingOrder(order);
  }
  position.floating_pl = 3.0;
  order.amount = 2.0;
  desk.client(2).sink->PosFloatingPLChanged(position);
  desk.client(2).sink->NewPendingOrder(order);
  desk.client(2).sink->SlTpOrderAccepted(9);
  const RowList &positions = main.trade().lvwOpenPos, &orders = main.pending().lvwPending;
  EXPECT_EQ(lines(positions), (Texts{"T7 of 1", "T7 of 2"}));
  EXPECT_EQ(lines(orders), (Texts{"P9 of 1", "P9 of 2"}));
  EXPECT_EQ(positions.row(0).text(frmTrade::profit) + " " + positions.row(1).text(frmTrade::profit),
            "0.00 3.00");
  EXPECT_EQ(orders.row(0).text(frmPending::amount) + " " + orders.row(1).text(frmPending::amount), "1 2");
  EXPECT_EQ(frmPending::note(orders.row(0)) + frmPending::note(orders.row(1)),
            "SL/TP request #9 is accepted");
  EXPECT_EQ(main.net_positions().total().net(), 1.0);

  // A requote of the one is not that of the other.
  Row& ticked = *desk.order_row(2);
  ticked.set_checked(true);
  desk.client(2).sink->OrderTimer({9, 2, operation::buy, 2.0, "EURUSD", 1.1, 1.2, 5, 10});
  EXPECT_EQ(desk.result(2), "Requote 1.2, 5 s");
  desk.client(1).sink->MarketOrderRejected({.number = 9, .symbol = "EURUSD"});
  EXPECT_TRUE(main.requote().Displayed());
  desk.clock.advance(1s);
  main.requote().cmdAccept.click();
  EXPECT_EQ(desk.result(2), "Order number 9 Accepted");
  position.account = 1;
  desk.client(1).sink->DeleteOpenPosition(position);
  EXPECT_EQ(lines(positions), Texts{"T7 of 2"});
  EXPECT_EQ(main.net_positions().total().net(), 0.5);
}

// Account 1 stands in two rows, both connected, with a position and an order that both have, and one of each
// that only the second row's user has.
struct TwoRows : ScriptedTerminal {
  TwoRows() {
    const OpenPosition both{.ticket = 11, .account = 1, .side = operation::buy, .symbol = "EURUSD"},
        own{.ticket = 12, .account = 1, .side = operation::buy, .symbol = "EURUSD"};
    const PendingOrder order{.order = 21, .account = 1, .kind = OrderKind::entry, .symbol = "EURUSD"},
        own_order{.order = 22, .account = 1, .kind = OrderKind::open, .symbol = "EURUSD"};
    first.positions = {both};
    first.orders = {order};
    second.positions = {both, own};
    second.orders = {order, own_order};
    form.Displayed(true);
    form.refresh_symbols();
    form.CloseSymbols.choose("EURUSD");
    for (ScriptedClient* client : {&first, &second}) {
      client->log = &log;
      client->sink->OpenPositionsLoaded();
      client->sink->PendingOrdersLoaded();
    }
    form.chkAllClients.click();
    order_row(1)->set_checked(true);
    order_row(1)->set_text(frmorder::result_text, "before");
  }
  // All that the windows show of account 1.
  std::string shown() {
    std::string out;
    for (const RowList* list : {&main->trade().lvwOpenPos, &main->pending().lvwPending, &form.MSH}) {
      for (const Row& row : *list)
        out += row.key().text() + " ";
    }
    const Row* entry = main->entry_order().lvwConClients.find(client_key(1));
    return out + std::to_string(form.marked_count()) + " marked" + (entry != nullptr ? ", entry" : "") +
           (order_row(1) != nullptr ? ", market: " + result(1) : "");
  }
  frmMain& accounts() { return main->accounts(); }

  ScriptedClient& first = client(1);
  ScriptedClient& second = add_row("OTHER", 1);
  frmClosePos& form = main->close_positions();
  Texts log;
};

TEST(AccountRows, ASecondRowTakesAwayOnlyItsOwn) {
  struct Way {
    const char* name;
    std::function<void(TwoRows&)> go;
    bool leaves_positions;
  };
  const auto pick = [](TwoRows& desk) {
    desk.accounts().lvwClients.select(desk.accounts().lvwClients.row(3));
  };
  const Way ways[] = {
      {"dropped", [](TwoRows& desk) { desk.second.sink->ConnectionState(false); }, false},
      {"removed", [&](TwoRows& desk) { pick(desk), desk.accounts().mnuRemove_Click(); }, false},
      {"refused",
       [](TwoRows& desk) {
         desk.second.info.reset();
         desk.second.sink->AllDataAreLoaded();
       },
       true},
      {"logged out", [&](TwoRows& desk) { pick(desk), desk.accounts().MnuDisconnecte_Click(); }, true},
  };
  for (const Way& way : ways) {
    SCOPED_TRACE(way.name);
    TwoRows desk;
    const std::string counting = "Requote 1.2, 9 s";
    desk.second.sink->OrderTimer({22, 1, operation::buy, 1.0, "EURUSD", 1.1, 1.2, 9, 10});
    EXPECT_EQ(desk.shown(), "T11 T12 P21 P22 C1 T12 T11 2 marked, entry, market: " + counting);
    // What ends is another order of the account, and its other session.
    frmPriceChanged& requote = desk.main->requote();
    requote.API_MarketOrderRejected(99, 1);
    requote.session_gone(*desk.main->sessions().by_account(1));
    EXPECT_EQ(desk.result(1), counting);
    way.go(desk);
    EXPECT_EQ(desk.shown(), way.leaves_positions
                                ? "T11 T12 P21 C1 T12 T11 2 marked, entry, market: " + counting
                                : "T11 P21 C1 T11 1 marked, entry, market: before");
    desk.first.sink->ConnectionState(false);
    EXPECT_TRUE(way.leaves_positions || desk.shown() == "C1 0 marked") << desk.shown();
  }
  // The other way round: the first row goes, and the second one's stay.
  TwoRows desk;
  desk.first.sink->ConnectionState(false);
  EXPECT_EQ(desk.shown(), "T11 T12 P21 P22 C1 T12 T11 2 marked, entry, market: before");
}

TEST(AccountRows, AnAnswerThatMatchesNothingReadsTheListsAgain) {
  TwoRows desk;
  desk.second.sink->ConnectionState(false);
  const Texts before = desk.journal();
  desk.first.positions[0].ticket = 13;
  desk.first.orders.clear();
  desk.first.sink->MarketOrderRejected({.number = 77, .symbol = "EURUSD"});
  EXPECT_EQ(desk.shown(), "T13 C1 T13 0 marked, entry, market: before");
  EXPECT_EQ(desk.journal().size(), before.size() + 1);
  EXPECT_EQ(desk.journal().back(), "1 Order 77 has been rejected");
  // Not while nothing can be asked.
  desk.first.logged_in = false;
  desk.first.positions.clear();
  desk.first.sink->MarketOrderRejected({.number = 78, .symbol = "EURUSD"});
  EXPECT_EQ(desk.shown(), "T13 C1 T13 0 marked, entry, market: before");
}

TEST(AccountRows, TheRowThatACloseNeedsIsNamed) {
  TwoRows desk;
  desk.first.sink->ConnectionState(false);
  desk.first.logged_in = false;
  const std::string text =
      "Unable to close position #11, account 1: row 01 USER of the accounts list is not logged in, only row "
      "04 OTHER is. Closes go by the first row of an account number: log that one in or remove it, then "
      "close again";
  desk.main->trade().close_helper({11, 0.5, 1});
  EXPECT_EQ(desk.log, Texts{});
  EXPECT_EQ(desk.take_messages(), Texts{text});
  EXPECT_EQ(desk.journal().back(), "1 " + text);
  desk.form.chkAllClients.click();
  desk.form.chkAllClients.click();
  desk.form.LblCheck.click();
  EXPECT_EQ(desk.form.answers().text(), "2 refused");
  EXPECT_EQ(desk.form.answer_of(*desk.form.searchpos(11, 1)), OrderAnswer::refused);
  EXPECT_EQ(desk.take_messages().size(), 2u);
  desk.main->sessions().Remove("C1");
  desk.main->trade().close_helper({11, 0.5, 1});
  EXPECT_EQ(desk.log, Texts{"1 close 11 0.5"});
  EXPECT_EQ(desk.take_messages(), Texts{});
  desk.form.LblCheck.click();
  EXPECT_EQ(desk.form.answers().text(), "2 waiting");
}

}  // namespace
}  // namespace tutti::testing
