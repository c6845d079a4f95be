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
struct ClosePositions : ::testing::Test, ScriptedTerminal {
  ClosePositions() {
    for (ScriptedClient* client : clients)
      client->log = &log;
    form.Displayed(true);
    form.refresh_symbols();
  }
  void close(std::int32_t account, std::int64_t ticket) {
    client(account).sink->DeleteOpenPosition({.ticket = ticket, .account = account, .symbol = ""});
  }
  // Of the first account that has the ticket.
  Row* at(std::int64_t ticket) {
    for (const std::int32_t account : {1, 2, 3})
      if (Row* row = form.searchpos(ticket, account)) return row;
    return nullptr;
  }
  void click(std::int64_t ticket, std::size_t column) { form.click(*at(ticket), column); }
  // "account close ticket amount", in the order in which they were sent.
  Texts sent() { return std::exchange(log, {}); }

  frmClosePos& form = main->close_positions();
  Texts log;
};

TEST_F(ClosePositions, GridGroupsPositionsByAccountAndFollowsTheMarket) {
  EXPECT_EQ(form.CloseSymbols.items(), (Texts{"EURUSD", "GBPUSD"}));
  open(2, 21);
  open(1, 9'007'199'254'740'993, -0.5);
  open(2, 22, -0.5);
  open(1, 12, 0.5, "GBPUSD");
  form.CloseSymbols.choose("EURUSD");
  const std::string indent(12, ' ');
  const std::string big = "|" + indent + "#9007199254740993 Sell 0.5 EURUSD at 1.08400|0.5|";
  const auto row = [&](int ticket, const char* side, const std::string& action) {
    return "|" + indent + "#" + std::to_string(ticket) + " " + side + " 0.5 EURUSD at 1.08400|0.5|" + action;
  };
  EXPECT_EQ(grid(form), (Texts{"2|Connected||", row(22, "Sell", "Close"), row(21, "Buy", "Close"),
                               "1|Connected||", big + "Close"}));
  quote(3, 1.08421, 1.084);
  // The side's own price, in the shortest form.
  EXPECT_EQ(grid(form), (Texts{"2|Connected||", row(22, "Sell", "Close At 1.08421"),
                               row(21, "Buy", "Close At 1.084"), "1|Connected||", big + "Close At 1.08421"}));

  // What comes and goes while the window is shown; marks stay where they are.
  form.click(*at(21), frmClosePos::status);
  open(3, 31);
  open(2, 23);
  open(2, 24, 0.5, "GBPUSD");
  close(2, 22);
  close(1, 9'007'199'254'740'993);
  const Texts expected{"2|Connected||", row(23, "Buy", "Close At 1.084"),
                       "*" + row(21, "Buy", "Close At 1.084"), "3|Connected||",
                       row(31, "Buy", "Close At 1.084")};
  EXPECT_EQ(grid(form), expected);
  // A changed position keeps its mark.
  OpenPosition grown = client(2).positions.front();
  grown.amount = 0.75;
  client(2).sink->UpdateOpenPosition(grown);
  EXPECT_EQ(at(21)->text(frmClosePos::amount), "0.75");
  EXPECT_TRUE(form.marked(*at(21)));
  client(2).sink->UpdateOpenPosition(client(2).positions.front());
  // A price of another symbol.
  Symbol other = client(1).symbols.back();
  other.bid = other.ask = 1.27;
  client(1).sink->SymbolPricesChanged(other);
  EXPECT_EQ(grid(form), expected);

  // Hidden it stands still; shown again it is as the market is, and marks of what is still there remain.
  form.Displayed(false);
  close(2, 23);
  quote(1, 1.09, 1.0902);
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

TEST_F(ClosePositions, ClickDependsOnTheCell) {
  open(1, 11);
  open(1, 12);
  open(2, 21);
  form.CloseSymbols.choose("EURUSD");
  const auto marks = [&] {
    std::string out;
    for (const Row& row : form.MSH)
      if (form.is_position(row)) out += form.marked(row) ? '*' : '-';
    return out;  // of 12, 11, 21
  };
  for (const std::size_t column : {frmClosePos::account, frmClosePos::status, frmClosePos::amount})
    click(12, column);
  EXPECT_EQ(marks(), "*--");
  for (const std::size_t column : {frmClosePos::status, frmClosePos::amount})
    form.click(*form.get_index(2), column);
  EXPECT_EQ(marks(), "*--");
  form.click(*form.get_index(1), frmClosePos::action);
  EXPECT_EQ(marks(), "**-");
  form.click(*form.get_index(1), frmClosePos::account);
  EXPECT_EQ(marks(), "---");
  form.toggle({form.get_index(1), at(21), at(12)});
  EXPECT_EQ(marks(), "***");
  form.toggle({at(11)});
  EXPECT_EQ(prompt.take_texts(), Texts{});

  // Only "Close" itself closes, and only that position.
  prompt.answers = {2, RecordingPrompt::escape, 1};
  for (int i = 0; i < 3; ++i)
    click(11, frmClosePos::action);
  EXPECT_EQ(prompt.shown[0].details, "#11 of account 1\n1 position\nEURUSD 0.5 lots\nFloating P/L 0.00");
  EXPECT_EQ(prompt.take_texts(), Texts(3, sure_of_one));
  EXPECT_EQ(sent(), Texts{"1 close 11 0.5"});
  EXPECT_EQ(at(11)->text(frmClosePos::action), " Waiting.....");
  EXPECT_EQ(marks(), "***");
  click(11, frmClosePos::action);
  EXPECT_EQ(marks(), "*-*");
  const auto action = [&] { return at(11)->text(frmClosePos::action); };
  quote(1, 1.08, 1.081);
  EXPECT_EQ(action(), "Close At 1.081");
  click(11, frmClosePos::action);
  EXPECT_EQ(prompt.take_texts(), Texts{});
  EXPECT_EQ(sent(), Texts{});
  EXPECT_EQ(marks(), "***");

  // The next price goes over what stands there, be it the one that is known already.
  form.LblCheck.click();
  EXPECT_EQ(action(), " Waiting.....");
  quote(2, 1.08, 1.081);
  EXPECT_EQ(action(), "Close At 1.081");
}

TEST_F(ClosePositions, QuestionsTellWhatTheyAreAbout) {
  open(1, 11, 0.1, "GBPUSD");
  for (const std::int64_t ticket : {21, 22})
    open(2, ticket, -0.2);
  frmTrade& trade = main->trade();
  for (const auto& [ticket, profit] : {std::pair{11, -20.5}, {21, 3.25}, {22, 4.0}}) {
    OpenPosition moved = client(ticket / 10).positions[ticket == 22 ? 1 : 0];
    moved.floating_pl = profit;
    client(ticket / 10).sink->PosFloatingPLChanged(moved);
  }
  trade.chkAll.click();
  trade.lvwOpenPos.tick(trade.lvwOpenPos.row(2), false);
  trade.lbbClose.click();
  form.CloseSymbols.choose("EURUSD");
  form.chkAllClients.click();
  form.LblCheck.click();
  EXPECT_EQ(prompt.take_details(),
            (Texts{"2 positions\nEURUSD 0.2 lots, GBPUSD 0.1 lots\nFloating P/L -17.25",
                   "2 positions\nEURUSD 0.4 lots\nFloating P/L 7.25\nNot sent again, since an answer is "
                   "awaited: 1"}));
  // Nobody knows yet what becomes of the close of 21.
  EXPECT_EQ(sorted(sent()), (Texts{"1 close 11 0.1", "2 close 21 0.2", "2 close 22 0.2"}));
  EXPECT_TRUE(journaled("2 Close of #21 not sent again: its answer is awaited"));
  client(2).sink->CloseOrderResult({.number = 22, .account = 2, .result = ResultCode{99}, .symbol = ""});

  // One of the list by its row, whatever is ticked; what is gone by the answer is not closed.
  prompt.answers = {2, 1, 1};
  trade.close_one(trade.lvwOpenPos.row(2));
  trade.close_one(trade.lvwOpenPos.row(2));
  EXPECT_EQ(sent(), Texts{"2 close 22 0.2"});
  prompt.while_open = [&] {
    if (trade.lvwOpenPos.size() == 3) close(2, 22);
  };
  trade.close_one(trade.lvwOpenPos.row(2));
  EXPECT_EQ(sent(), Texts{});
  EXPECT_EQ(prompt.take_texts(),
            (Texts{sure_of_one, sure_of_one, sure_of_one, "Position 22 is no longer open"}));

  client(1).sink->NewPendingOrder({40, 1, OrderKind::entry, 0, operation::buy, 71, "EURUSD", 0.5, 1.2});
  frmPending& pending = main->pending();
  pending.lvwPending.tick(pending.lvwPending.row(0), true);
  pending.lbbCancel.click();
  EXPECT_EQ(prompt.take_details(), Texts{"1 order\nEURUSD 0.5 lots"});
}

TEST_F(ClosePositions, WhatIsSentIsWhatIsMarkedWhenTheQuestionIsAnswered) {
  form.LblCheck.click();
  form.CloseSymbols.choose("EURUSD");
  form.LblCheck.click();
  open(3, 31);
  open(2, 21);
  open(1, 11);
  form.LblCheck.click();
  form.CloseSymbols.search("GBP");
  form.LblCheck.click();
  form.CloseSymbols.end_search();
  EXPECT_EQ(prompt.take_texts(),
            (Texts{"No symbol is selected", nothing_marked, nothing_marked,
                   "\"GBP\" was typed as symbol and not taken. Enter takes one, Esc goes back to EURUSD"}));
  // A ground that only looks like the mark is none.
  at(11)->set_ground(frmClosePos::status, {255, 254, 255});
  form.LblCheck.click();
  EXPECT_EQ(prompt.take_texts(), Texts{nothing_marked});

  // One more opens and one of those meant goes while the question stands.
  form.chkAllClients.click();
  prompt.while_open = [&] {
    open(1, 12);
    close(2, 21);
    quote(1, 1.1, 1.2);
  };
  form.LblCheck.click();
  prompt.while_open = {};
  EXPECT_EQ(prompt.take_texts(), Texts{sure_of_marked});
  EXPECT_EQ(sent(), (Texts{"3 close 31 0.5", "1 close 11 0.5"}));

  // All of them go: the answer yes finds nothing to send any more, nor does that of a single one.
  prompt.while_open = [&] {
    close(1, 11);
    close(3, 31);
  };
  form.LblCheck.click();
  EXPECT_EQ(prompt.take_texts(), (Texts{sure_of_marked, nothing_marked}));
  at(12)->set_text(frmClosePos::action, "Close");
  prompt.while_open = [&] {
    if (prompt.shown.size() == 1) close(1, 12);
  };
  click(12, frmClosePos::action);
  EXPECT_EQ(prompt.take_texts(), (Texts{sure_of_one, nothing_marked}));
  EXPECT_EQ(sent(), Texts{});
}

TEST_F(ClosePositions, AccountsLoseTheirRowsWithTheConnection) {
  open(1, 11);
  open(2, 21);
  form.CloseSymbols.choose("EURUSD");
  const auto states = [&] {
    Texts out;
    for (const Row& row : form.MSH)
      out.push_back(form.is_position(row) ? "#" : row.text(frmClosePos::status));
    return out;
  };
  client(1).sink->ConnectionState(false);
  EXPECT_EQ(states(), (Texts{"Disconnected", "Connected", "#"}));
  // Neither is a position, so there is nothing to close.
  form.chkAllClients.click();
  close(2, 21);
  form.LblCheck.click();
  EXPECT_EQ(prompt.take_texts(), Texts{nothing_marked});
  EXPECT_EQ(states(), Texts{"Disconnected"});

  // A login that does not get through, and one that does.
  client(1).sink->WaitingMode(waiting_mode::connecting);
  client(1).sink->ConnectionState(false);
  EXPECT_EQ(states(), Texts{"Disconnected"});
  client(1).sink->WaitingMode(waiting_mode::connecting);
  // Positions that come before the account is connected are in the grid when its data are complete.
  client(1).sink->OpenPositionsLoaded();
  EXPECT_EQ(states(), Texts{"Connecting"});
  client(1).sink->ConnectionState(true);
  client(1).sink->AllDataAreLoaded();
  EXPECT_EQ(states(), (Texts{"Connected", "#"}));
  EXPECT_EQ(form.marked_count(), 0u);
  client(1).sink->ConnectionState(false);
  form.CloseSymbols.choose("EURUSD");
  EXPECT_EQ(states(), Texts{});

  // A login that is refused takes the account out.
  client(2).sink->NewOpenPosition(client(2).positions.front());
  EXPECT_EQ(states(), (Texts{"Connected", "#"}));
  client(2).sink->InvalidUsernamePassword();
  EXPECT_EQ(states(), Texts{});

  // One that is taken off the accounts list leaves this one as well, whatever it holds.
  open(3, 31);
  EXPECT_EQ(states(), (Texts{"Connected", "#"}));
  main->sessions().RClear(3);
  EXPECT_EQ(states(), Texts{});
}

TEST_F(ClosePositions, EqualTicketsOfTwoAccountsAreTwoPositions) {
  form.CloseSymbols.choose("EURUSD");
  open(1, 7);
  form.chkAllClients.click();
  open(2, 7, -0.25);
  EXPECT_TRUE(form.marked(*form.searchpos(7, 1)));
  EXPECT_FALSE(form.marked(*form.searchpos(7, 2)));
  form.MSH.select(*form.searchpos(7, 2));
  form.Displayed(false);
  form.Displayed(true);
  EXPECT_EQ(form.marked_count(), 1u);
  EXPECT_EQ(form.MSH.current(), form.searchpos(7, 2));
  form.toggle({form.searchpos(7, 1), form.searchpos(7, 2)});
  form.LblCheck.click();
  EXPECT_EQ(sent(), (Texts{"1 close 7 0.5", "2 close 7 0.25"}));
  // The answer comes while another symbol is on show.
  form.CloseSymbols.choose("GBPUSD");
  client(2).sink->CloseOrderResult(
      {.number = 7, .account = 2, .result = result::trading_closed, .symbol = ""});
  form.CloseSymbols.choose("EURUSD");
  EXPECT_EQ(form.answer_text(*form.searchpos(7, 1)), "");
  EXPECT_EQ(form.answer_text(*form.searchpos(7, 2)), " Trading is closed");
  EXPECT_EQ(form.answers().text(), "1 refused, 1 waiting");
  clock.advance(30s);
  main->sessions().look_at_the_clock();
  EXPECT_EQ(form.answers().text(), "1 refused, 1 unknown");
  // What was not sent here is then closed from another window.
  const auto sends = std::exchange(form.close_helper, [](const frmTrade::Close&) { return false; });
  form.searchpos(7, 2)->set_text(frmClosePos::action, "Close");
  form.click(*form.searchpos(7, 2), frmClosePos::action);
  EXPECT_EQ(form.answer_text(*form.searchpos(7, 2)), "Not sent");
  EXPECT_EQ(form.answers().text(), "1 refused, 1 unknown of earlier rounds");
  form.close_helper = sends;
  main->trade().close_helper({7, 0.25, 2});
  EXPECT_EQ(sent(), Texts{"2 close 7 0.25"});
  EXPECT_EQ(form.answer_of(*form.searchpos(7, 2)), OrderAnswer::waiting);
  client(2).sink->CloseOrderResult(
      {.number = 7, .account = 2, .result = result::trading_closed, .symbol = ""});
  EXPECT_EQ(form.answer_text(*form.searchpos(7, 2)), " Trading is closed");
  prompt.take_texts();
  form.searchpos(7, 2)->set_text(frmClosePos::action, "Close");
  prompt.while_open = [&] { close(2, 7); };
  form.click(*form.searchpos(7, 2), frmClosePos::action);
  EXPECT_EQ(prompt.take_texts(), (Texts{sure_of_one, nothing_marked}));
  EXPECT_EQ(sent(), Texts{});
  EXPECT_NE(form.searchpos(7, 1), nullptr);
}

TEST(ManyCloses, RefusalsInTheMiddleOfTheRunStopNobody) {
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
