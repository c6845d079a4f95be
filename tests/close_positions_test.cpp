// Closing across accounts: the grid, its marks, and what is sent.

#include "tests/support/scenario_desk.h"
#include "tests/support/scripted_terminal.h"

namespace tutti::testing {
namespace {

constexpr const char* sure_of_marked =
    "Are you sure you want to close selected postion(s) at current market price(s)?";
constexpr const char* sure_of_one =
    "Are you sure you want to close selected postion at current market price?";
constexpr const char* nothing_marked = "There is no selected or open postions for this symbol";

Texts grid(const frmClosePos& form) {
  Texts out;
  for (const Row& row : form.MSH)
    out.push_back((form.marked(row) ? "*" : "") + row_text(row));
  return out;
}

// Accounts 1, 2 and 3; what the clients are asked for is written down.
struct Closing : ScriptedTerminal {
  Closing() {
    for (ScriptedClient* client : clients)
      client->log = &log;
    form().Displayed(true);
    form().refresh_symbols();
  }
  frmClosePos& form() { return main->close_positions(); }
  void close(std::int32_t account, std::int64_t ticket) {
    client(account).sink->DeleteOpenPosition({.ticket = ticket, .account = account, .symbol = ""});
  }
  // Of the first account that has the ticket.
  Row* at(std::int64_t ticket) {
    for (const std::int32_t account : {1, 2, 3})
      if (Row* row = form().searchpos(ticket, account)) return row;
    return nullptr;
  }
  void click(std::int64_t ticket, std::size_t column) { form().click(*at(ticket), column); }
  // "account close ticket amount", in the order in which they were sent.
  Texts sent() { return std::exchange(log, {}); }

  Texts log;
};

TEST(ClosePositions, GridGroupsPositionsByAccountAndFollowsTheMarket) {
  Closing desk;
  frmClosePos& form = desk.form();
  EXPECT_EQ(form.CloseSymbols.items(), (Texts{"EURUSD", "GBPUSD"}));
  desk.open(2, 21);
  desk.open(1, 9'007'199'254'740'993, -0.5);
  desk.open(2, 22, -0.5);
  desk.open(1, 12, 0.5, "GBPUSD");
  form.CloseSymbols.choose("EURUSD");
  const std::string indent(12, ' ');
  const std::string big = "|" + indent + "#9007199254740993 Sell 0.5 EURUSD at 1.08400|0.5|";
  const auto row = [&](int ticket, const char* side, const std::string& action) {
    return "|" + indent + "#" + std::to_string(ticket) + " " + side + " 0.5 EURUSD at 1.08400|0.5|" + action;
  };
  EXPECT_EQ(grid(form), (Texts{"2|Connected||", row(22, "Sell", "Close"), row(21, "Buy", "Close"),
                               "1|Connected||", big + "Close"}));
  desk.quote(3, 1.08421, 1.084);
  // The side's own price, in the shortest form.
  EXPECT_EQ(grid(form), (Texts{"2|Connected||", row(22, "Sell", "Close At 1.08421"),
                               row(21, "Buy", "Close At 1.084"), "1|Connected||", big + "Close At 1.08421"}));

  // What comes and goes while the window is shown; marks stay where they are.
  form.click(*desk.at(21), frmClosePos::status);
  desk.open(3, 31);
  desk.open(2, 23);
  desk.open(2, 24, 0.5, "GBPUSD");
  desk.close(2, 22);
  desk.close(1, 9'007'199'254'740'993);
  const Texts expected{"2|Connected||", row(23, "Buy", "Close At 1.084"),
                       "*" + row(21, "Buy", "Close At 1.084"), "3|Connected||",
                       row(31, "Buy", "Close At 1.084")};
  EXPECT_EQ(grid(form), expected);
  // A changed position keeps its mark.
  OpenPosition grown = desk.client(2).positions.front();
  grown.amount = 0.75;
  desk.client(2).sink->UpdateOpenPosition(grown);
  EXPECT_EQ(desk.at(21)->text(frmClosePos::amount), "0.75");
  EXPECT_TRUE(form.marked(*desk.at(21)));
  desk.client(2).sink->UpdateOpenPosition(desk.client(2).positions.front());
  // A price of another symbol.
  Symbol other = desk.client(1).symbols.back();
  other.bid = other.ask = 1.27;
  desk.client(1).sink->SymbolPricesChanged(other);
  EXPECT_EQ(grid(form), expected);

  // Hidden it stands still; shown again it is as the market is, and marks of what is still there remain.
  form.Displayed(false);
  desk.close(2, 23);
  desk.quote(1, 1.09, 1.0902);
  EXPECT_EQ(grid(form), expected);
  form.Displayed(true);
  EXPECT_EQ(grid(form), (Texts{"2|Connected||", "*" + row(21, "Buy", "Close"), "3|Connected||",
                               row(31, "Buy", "Close")}));
  // A click on the symbol unmarks everything, the box included, as unmarking one unticks the box.
  form.chkAllClients.click();
  EXPECT_EQ(form.marked_count(), 2u);
  for (const std::size_t left : {1u, 2u}) {
    form.click(form.MSH.row(1), 0);
    EXPECT_TRUE(form.marked_count() == left && !form.chkAllClients.checked()) << left;
  }
  form.chkAllClients.click();
  form.CloseSymbols.choose("EURUSD");
  EXPECT_EQ(form.marked_count(), 0u);
  EXPECT_FALSE(form.chkAllClients.checked());
}

TEST(ClosePositions, ClickDependsOnTheCell) {
  Closing desk;
  frmClosePos& form = desk.form();
  desk.open(1, 11);
  desk.open(1, 12);
  desk.open(2, 21);
  form.CloseSymbols.choose("EURUSD");
  const auto marks = [&] {
    std::string out;
    for (const Row& row : form.MSH)
      if (form.is_position(row)) out += form.marked(row) ? '*' : '-';
    return out;  // of 12, 11, 21
  };
  for (const std::size_t column : {frmClosePos::account, frmClosePos::status, frmClosePos::amount})
    desk.click(12, column);
  EXPECT_EQ(marks(), "*--");
  for (const std::size_t column : {frmClosePos::status, frmClosePos::amount})
    form.click(*form.get_index(2), column);
  EXPECT_EQ(marks(), "*--");
  form.click(*form.get_index(1), frmClosePos::action);
  EXPECT_EQ(marks(), "**-");
  form.click(*form.get_index(1), frmClosePos::account);
  EXPECT_EQ(marks(), "---");
  form.toggle({form.get_index(1), desk.at(21), desk.at(12)});
  EXPECT_EQ(marks(), "***");
  form.toggle({desk.at(11)});
  EXPECT_EQ(desk.prompt.take_texts(), Texts{});

  // Only "Close" itself closes, and only that position.
  desk.prompt.answers = {2, RecordingPrompt::escape, 1};
  for (int i = 0; i < 3; ++i)
    desk.click(11, frmClosePos::action);
  EXPECT_EQ(desk.prompt.shown[0].details, "#11 of account 1\n1 position\nEURUSD 0.5 lots\nFloating P/L 0.00");
  EXPECT_EQ(desk.prompt.take_texts(), Texts(3, sure_of_one));
  EXPECT_EQ(desk.sent(), Texts{"1 close 11 0.5"});
  EXPECT_EQ(desk.at(11)->text(frmClosePos::action), " Waiting.....");
  EXPECT_EQ(marks(), "***");
  desk.click(11, frmClosePos::action);
  EXPECT_EQ(marks(), "*-*");
  const auto action = [&] { return desk.at(11)->text(frmClosePos::action); };
  desk.quote(1, 1.08, 1.081);
  EXPECT_EQ(action(), "Close At 1.081");
  desk.click(11, frmClosePos::action);
  EXPECT_EQ(desk.prompt.take_texts(), Texts{});
  EXPECT_EQ(desk.sent(), Texts{});
  EXPECT_EQ(marks(), "***");

  // The next price goes over what stands there, be it the one that is known already.
  form.LblCheck.click();
  EXPECT_EQ(action(), " Waiting.....");
  desk.quote(2, 1.08, 1.081);
  EXPECT_EQ(action(), "Close At 1.081");
}

TEST(ClosePositions, QuestionsTellWhatTheyAreAbout) {
  Closing desk;
  desk.open(1, 11, 0.1, "GBPUSD");
  for (const std::int64_t ticket : {21, 22})
    desk.open(2, ticket, -0.2);
  frmTrade& trade = desk.main->trade();
  for (const auto& [ticket, profit] : {std::pair{11, -20.5}, {21, 3.25}, {22, 4.0}}) {
    OpenPosition moved = desk.client(ticket / 10).positions[ticket == 22 ? 1 : 0];
    moved.floating_pl = profit;
    desk.client(ticket / 10).sink->PosFloatingPLChanged(moved);
  }
  trade.chkAll.click();
  trade.lvwOpenPos.tick(trade.lvwOpenPos.row(2), false);
  trade.lbbClose.click();
  desk.form().CloseSymbols.choose("EURUSD");
  desk.form().chkAllClients.click();
  desk.form().LblCheck.click();
  EXPECT_EQ(desk.prompt.take_details(),
            (Texts{"2 positions\nEURUSD 0.2 lots, GBPUSD 0.1 lots\nFloating P/L -17.25",
                   "2 positions\nEURUSD 0.4 lots\nFloating P/L 7.25"}));
  EXPECT_EQ(desk.sent().size(), 4u);

  // One of the list by its row, whatever is ticked; what is gone by the answer is not closed.
  desk.prompt.answers = {2, 1, 1};
  trade.close_one(trade.lvwOpenPos.row(2));
  trade.close_one(trade.lvwOpenPos.row(2));
  EXPECT_EQ(desk.sent(), Texts{"2 close 22 0.2"});
  desk.prompt.while_open = [&] {
    if (trade.lvwOpenPos.size() == 3) desk.close(2, 22);
  };
  trade.close_one(trade.lvwOpenPos.row(2));
  EXPECT_EQ(desk.sent(), Texts{});
  EXPECT_EQ(desk.prompt.take_texts(),
            (Texts{sure_of_one, sure_of_one, sure_of_one, "Position 22 is no longer open"}));

  desk.client(1).sink->NewPendingOrder({40, 1, OrderKind::entry, 0, operation::buy, 71, "EURUSD", 0.5, 1.2});
  frmPending& pending = desk.main->pending();
  pending.lvwPending.tick(pending.lvwPending.row(0), true);
  pending.lbbCancel.click();
  EXPECT_EQ(desk.prompt.take_details(), Texts{"1 order\nEURUSD 0.5 lots"});
}

TEST(ClosePositions, WhatIsSentIsWhatIsMarkedWhenTheQuestionIsAnswered) {
  Closing desk;
  frmClosePos& form = desk.form();
  form.LblCheck.click();
  form.CloseSymbols.choose("EURUSD");
  form.LblCheck.click();
  desk.open(3, 31);
  desk.open(2, 21);
  desk.open(1, 11);
  form.LblCheck.click();
  form.CloseSymbols.search("GBP");
  form.LblCheck.click();
  form.CloseSymbols.end_search();
  EXPECT_EQ(desk.prompt.take_texts(),
            (Texts{"No symbol is selected", nothing_marked, nothing_marked,
                   "\"GBP\" was typed as symbol and not taken. Enter takes one, Esc goes back to EURUSD"}));
  // A ground that only looks like the mark is none.
  desk.at(11)->set_ground(frmClosePos::status, {255, 254, 255});
  form.LblCheck.click();
  EXPECT_EQ(desk.prompt.take_texts(), Texts{nothing_marked});

  // One more opens and one of those meant goes while the question stands.
  form.chkAllClients.click();
  desk.prompt.while_open = [&] {
    desk.open(1, 12);
    desk.close(2, 21);
    desk.quote(1, 1.1, 1.2);
  };
  form.LblCheck.click();
  desk.prompt.while_open = {};
  EXPECT_EQ(desk.prompt.take_texts(), Texts{sure_of_marked});
  EXPECT_EQ(desk.sent(), (Texts{"3 close 31 0.5", "1 close 11 0.5"}));

  // All of them go: the answer yes finds nothing to send any more, nor does that of a single one.
  desk.prompt.while_open = [&] {
    desk.close(1, 11);
    desk.close(3, 31);
  };
  form.LblCheck.click();
  EXPECT_EQ(desk.prompt.take_texts(), (Texts{sure_of_marked, nothing_marked}));
  desk.at(12)->set_text(frmClosePos::action, "Close");
  desk.prompt.while_open = [&] {
    if (desk.prompt.shown.size() == 1) desk.close(1, 12);
  };
  desk.click(12, frmClosePos::action);
  EXPECT_EQ(desk.prompt.take_texts(), (Texts{sure_of_one, nothing_marked}));
  EXPECT_EQ(desk.sent(), Texts{});
}

TEST(ClosePositions, AccountsLoseTheirRowsWithTheConnection) {
  Closing desk;
  frmClosePos& form = desk.form();
  desk.open(1, 11);
  desk.open(2, 21);
  form.CloseSymbols.choose("EURUSD");
  const auto states = [&] {
    Texts out;
    for (const Row& row : form.MSH)
      out.push_back(form.is_position(row) ? "#" : row.text(frmClosePos::status));
    return out;
  };
  desk.client(1).sink->ConnectionState(false);
  EXPECT_EQ(states(), (Texts{"Disconnected", "Connected", "#"}));
  // Neither is a position, so there is nothing to close.
  form.chkAllClients.click();
  desk.close(2, 21);
  form.LblCheck.click();
  EXPECT_EQ(desk.prompt.take_texts(), Texts{nothing_marked});
  EXPECT_EQ(states(), Texts{"Disconnected"});

  // A login that does not get through, and one that does.
  desk.client(1).sink->WaitingMode(waiting_mode::connecting);
  desk.client(1).sink->ConnectionState(false);
  EXPECT_EQ(states(), Texts{"Disconnected"});
  desk.client(1).sink->WaitingMode(waiting_mode::connecting);
  // Positions that come before the account is connected are in the grid when its data are complete.
  desk.client(1).sink->OpenPositionsLoaded();
  EXPECT_EQ(states(), Texts{"Connecting"});
  desk.client(1).sink->ConnectionState(true);
  desk.client(1).sink->AllDataAreLoaded();
  EXPECT_EQ(states(), (Texts{"Connected", "#"}));
  EXPECT_EQ(form.marked_count(), 0u);
  desk.client(1).sink->ConnectionState(false);
  form.CloseSymbols.choose("EURUSD");
  EXPECT_EQ(states(), Texts{});

  // A login that is refused takes the account out.
  desk.client(2).sink->NewOpenPosition(desk.client(2).positions.front());
  EXPECT_EQ(states(), (Texts{"Connected", "#"}));
  desk.client(2).sink->InvalidUsernamePassword();
  EXPECT_EQ(states(), Texts{});

  // One that is taken off the accounts list leaves this one as well, whatever it holds.
  desk.open(3, 31);
  EXPECT_EQ(states(), (Texts{"Connected", "#"}));
  desk.main->sessions().RClear(3);
  EXPECT_EQ(states(), Texts{});
}

TEST(ClosePositions, EqualTicketsOfTwoAccountsAreTwoPositions) {
  Closing desk;
  frmClosePos& form = desk.form();
  form.CloseSymbols.choose("EURUSD");
  desk.open(1, 7);
  form.chkAllClients.click();
  desk.open(2, 7, -0.25);
  EXPECT_TRUE(form.marked(*form.searchpos(7, 1)));
  EXPECT_FALSE(form.marked(*form.searchpos(7, 2)));
  form.MSH.select(*form.searchpos(7, 2));
  form.Displayed(false);
  form.Displayed(true);
  EXPECT_EQ(form.marked_count(), 1u);
  EXPECT_EQ(form.MSH.current(), form.searchpos(7, 2));
  form.toggle({form.searchpos(7, 1), form.searchpos(7, 2)});
  form.LblCheck.click();
  EXPECT_EQ(desk.sent(), (Texts{"1 close 7 0.5", "2 close 7 0.25"}));
  // The answer comes while another symbol is on show.
  form.CloseSymbols.choose("GBPUSD");
  desk.client(2).sink->CloseOrderResult(
      {.number = 7, .account = 2, .result = result::trading_closed, .symbol = ""});
  form.CloseSymbols.choose("EURUSD");
  EXPECT_EQ(form.answer_text(*form.searchpos(7, 1)), "");
  EXPECT_EQ(form.answer_text(*form.searchpos(7, 2)), " Trading is closed");
  EXPECT_EQ(form.answers().text(), "1 refused, 1 waiting");
  // What was not sent here is then closed from another window.
  const auto sends = std::exchange(form.close_helper, [](const frmTrade::Close&) { return false; });
  form.searchpos(7, 2)->set_text(frmClosePos::action, "Close");
  form.click(*form.searchpos(7, 2), frmClosePos::action);
  EXPECT_EQ(form.answer_text(*form.searchpos(7, 2)), "Not sent");
  form.close_helper = sends;
  desk.main->trade().close_helper({7, 0.25, 2});
  EXPECT_EQ(desk.sent(), Texts{"2 close 7 0.25"});
  EXPECT_EQ(form.answer_of(*form.searchpos(7, 2)), OrderAnswer::waiting);
  desk.client(2).sink->CloseOrderResult(
      {.number = 7, .account = 2, .result = result::trading_closed, .symbol = ""});
  EXPECT_EQ(form.answer_text(*form.searchpos(7, 2)), " Trading is closed");
  desk.prompt.take_texts();
  form.searchpos(7, 2)->set_text(frmClosePos::action, "Close");
  desk.prompt.while_open = [&] { desk.close(2, 7); };
  form.click(*form.searchpos(7, 2), frmClosePos::action);
  EXPECT_EQ(desk.prompt.take_texts(), (Texts{sure_of_one, nothing_marked}));
  EXPECT_EQ(desk.sent(), Texts{});
  EXPECT_NE(form.searchpos(7, 1), nullptr);
}

TEST(ClosePositions, RefusalsInTheMiddleOfTheRunStopNobody) {
  DealerConfig config = still_market(50);
  config.ticks.insert(config.ticks.begin(), {5s, "EURUSD", 1.09, 1.0902});
  config.order_latency = 20ms;
  config.faults = {
      fault(FaultKind::refuse, {first + 5}, FaultPoint::close, format_as(request::no_privilege)),
      fault(FaultKind::refuse, {first + 10}, FaultPoint::close, format_as(request::invalid_lots)),
      fault(FaultKind::reject, {first + 15}, FaultPoint::close, format_as(result::trading_closed)),
      fault(FaultKind::pending, {first + 20}, FaultPoint::close, 0, 10s)};
  for (FaultConfig& once : config.faults)
    once.times = 1;
  for (AccountConfig& account : config.accounts)
    account.balance = 50'000.0;
  ScenarioDesk desk{config};
  desk.open("50");
  desk.open("25");
  // Two accounts of the fifty don't trade.
  const std::size_t opened = desk.positions().size();
  ASSERT_EQ(opened, 96u);
  frmClosePos& form = desk.main->close_positions();
  form.Displayed(true);
  form.CloseSymbols.choose("EURUSD");
  ASSERT_EQ(form.MSH.size(), opened + opened / 2);

  // A block of the matrix, one by one, by account, and all that are marked by now.
  desk.main->net_matrix().refresh();
  desk.main->net_matrix().close_picked(
      {{first + 30, NetMatrix::total}, {first + 31, NetMatrix::first_symbol}});
  EXPECT_EQ(form.marked_count(), 4u);
  form.click(form.MSH.row(1), frmClosePos::status);
  for (const int account : {0, 5, 10, 15, 20, 25})
    form.click(*form.get_index(first + account), frmClosePos::account);
  desk.prompt.take_texts();
  const std::size_t marked = form.marked_count();
  form.LblCheck.click();
  EXPECT_EQ(desk.prompt.take_texts(), Texts{sure_of_marked});
  EXPECT_EQ(form.answers().text(), "2 refused, " + std::to_string(marked - 2) + " waiting");
  // What is on its way stays so when the window is hidden and shown again.
  form.Displayed(false);
  form.Displayed(true);
  EXPECT_EQ(form.marked_count(), marked);
  const auto waiting = std::count_if(form.MSH.begin(), form.MSH.end(), [](const Row& row) {
    return row.reads(frmClosePos::action, frmClosePos::waiting_text);
  });
  EXPECT_EQ(static_cast<std::size_t>(waiting), marked - 2);
  desk.run(300ms);
  EXPECT_EQ(form.answers().text(), std::to_string(marked - 4) + " accepted, 3 refused, 1 waiting");
  EXPECT_EQ(desk.positions().size(), opened - marked + 4);
  const auto first_of = [&](int account) -> const Row& {
    return form.MSH.row(form.MSH.index_of(*form.get_index(first + account)) + 1);
  };
  const Texts messages = desk.take_messages();
  EXPECT_EQ(messages.size(), 3u);
  for (const auto& [account, text] :
       {std::pair{5, ", account 500105 does not have privilege"}, {10, ", The amount: 0.5 is invalid"}}) {
    const std::string refused =
        "Unable to close position #" + first_of(account).key().text().substr(1) + text;
    EXPECT_EQ(std::count(messages.begin(), messages.end(), refused), 1) << refused;
    EXPECT_TRUE(desk.journaled(std::to_string(first + account) + " " + refused));
  }
  EXPECT_EQ(form.answer_text(first_of(5)), "No Privilege ");
  for (const auto& [account, text] :
       {std::pair{15, " Trading is closed"}, {20, "Position in pending mode"}}) {
    EXPECT_EQ(form.answer_text(first_of(account)), text);
    EXPECT_EQ(first_of(account).text(frmClosePos::action), text);
  }
  EXPECT_EQ(desk.differences(), Texts{});

  // Prices go over everything that stands in Action; what became of the request stays known.
  desk.run(5s);
  EXPECT_EQ(first_of(15).text(frmClosePos::action), "Close At 1.0902");
  EXPECT_EQ(form.answer_text(first_of(15)), " Trading is closed");
  desk.run(10s);
  if (!form.chkAllClients.checked()) form.chkAllClients.click();
  form.LblCheck.click();
  desk.run(1s);
  EXPECT_TRUE(desk.positions().empty());
  EXPECT_TRUE(form.MSH.empty());
  EXPECT_EQ(desk.differences(), Texts{});
}

}  // namespace
}  // namespace tutti::testing
