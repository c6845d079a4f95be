// Requests whose outcome is unknown, or known wrong: what settles them, and what does not.

#include <gtest/gtest.h>

#include "tests/support/two_sessions.h"

namespace tutti::testing {
namespace {

using Outcome = SentOrder::Outcome;

struct UnknownRequests : Requests {};

// What the broker says of a request that was given up, and what is known of it then.
struct Told {
  RequestState state;
  Outcome outcome;
  LedgerState stored;
  std::string words;  // of the journal; empty: nothing is told
  std::string row;
};

TEST_F(UnknownRequests, TheBrokerIsAskedAboutWhatIsUnknown) {
  const Told cases[] = {
      {RequestState::executed, Outcome::accepted, LedgerState::filled, "was executed",
       "Executed, as is known now"},
      {RequestState::partly_executed, Outcome::partly, LedgerState::part, "was executed in part",
       "Executed in part, as is known now"},
      {RequestState::waiting, Outcome::pending, LedgerState::pending, "is on its way",
       "With the dealer, as is known now"},
      {RequestState::refused, Outcome::refused, LedgerState::refused, "was refused",
       "Not executed, as is known now"},
      {RequestState::cancelled, Outcome::refused, LedgerState::cancelled, "was cancelled",
       "Not executed, as is known now"},
      {RequestState::never_taken, Outcome::refused, LedgerState::never, "never came and never will",
       "Not executed, as is known now"},
      {RequestState::another_book, Outcome::unknown, LedgerState::gone,
       "was sent to a book that it has no more: check the positions", "unknown"},
      {RequestState::not_told, Outcome::unknown, LedgerState::unknown, "", ""},
  };
  rig.sessions.admission().override_limits("one after another");
  for (const Told& each : cases) {
    SCOPED_TRACE(each.words);
    const SentOrder& order = buy(one);
    wait();
    ASSERT_EQ(order.outcome, Outcome::unknown);
    const auto tell = [&] { sink(one).RequestTold(order.id, each.state, 0.0); };
    const Heard line =
        sorted({"journal 81: Order BUY 0.5 EURUSD was unknown: the server says that it " + each.words,
                "market 81: " + each.row});
    EXPECT_EQ(rig.during(tell), each.words.empty() ? Heard{} : line);
    EXPECT_EQ(order.outcome, each.outcome);
    EXPECT_EQ(rig.ledger.events.back().state, each.stored);
    if (order.outcome == Outcome::unknown) continue;
    EXPECT_EQ(rig.during(tell), Heard{});
  }
}

// Of a broker that can't be asked the positions settle what they leave no doubt about, and nothing else.
struct Seen {
  const char* name;
  std::vector<OpenPosition> positions;
  bool settled;
  int orders = 1;          // that are unknown, all alike
  bool in_flight = false;  // another one has no answer yet
};

TEST_F(UnknownRequests, APositionSettlesWhatNobodyCanBeAskedAbout) {
  const auto position = [](std::int64_t ticket, double lots, Operation side = operation::buy,
                           const char* symbol = "EURUSD") {
    return OpenPosition{.ticket = ticket, .account = 81, .side = side, .symbol = symbol, .amount = lots};
  };
  ScriptedClient& client = rig.client(one);
  client.info = AccountInfo{};
  client.ask_code = request::silent;
  rig.sessions.admission().override_limits("one after another");
  Seen cases[] = {
      {"its position", {position(20, 0.5)}, true},
      {"one from before", {position(9, 0.5)}, false},
      {"other lots", {position(20, 0.4)}, false},
      {"the other side", {position(20, 0.5, operation::sell)}, false},
      {"another symbol", {position(20, 0.5, operation::buy, "XAUUSD")}, false},
      {"two of them", {position(20, 0.5), position(21, 0.5)}, false},
      {"one of other lots beside it", {position(20, 0.5), position(21, 0.1)}, true},
      {"nothing", {}, false},
      {"two unknown", {position(20, 0.5)}, false, 2},
      {"another in flight", {position(20, 0.5)}, false, 1, true},
      {"an answered one's", {position(30, 0.5)}, false},
  };
  std::int64_t base = 0;  // numbers of earlier cases are taken
  for (Seen& each : cases) {
    SCOPED_TRACE(each.name);
    base += 100;
    rig.during([&] {
      client.positions = {position(base + 9, 0.5)};
      sink(one).NewOpenPosition(client.positions[0]);
    });
    std::vector<const SentOrder*> orders;
    for (int i = 0; i < each.orders; ++i)
      orders.push_back(&buy(one));
    OrderReport report{.number = base + 30, .operation = operation::buy, .symbol = "EURUSD"};
    report.amount = 0.5;
    report.id = buy(one).id;
    rig.during([&] { sink(one).NewOrderResult(report); });
    wait();
    if (each.in_flight) orders.push_back(&one.close_position(base + 9, 0.1));
    for (OpenPosition& there : each.positions)
      there.ticket += base;
    client.positions = each.positions;
    const std::size_t events = rig.ledger.events.size();
    const Heard heard = rig.during([&] { sink(one).AllDataAreLoaded(); });
    const std::string line = "journal 81: Order BUY 0.5 EURUSD was unknown: position #" +
                             std::to_string(base + 20) + " says that it was executed";
    EXPECT_EQ(std::count(heard.begin(), heard.end(), line), each.settled ? 1 : 0);
    EXPECT_EQ(orders[0]->outcome, each.settled ? Outcome::accepted : Outcome::unknown);
    EXPECT_EQ(rig.ledger.events.size() - events, each.settled ? 1U : 0U);
    if (each.settled) {
      EXPECT_EQ(rig.ledger.events.back().evidence, LedgerEvidence::positions);
      EXPECT_EQ(rig.ledger.events.back().order, base + 20);
      EXPECT_EQ(rig.ledger.events.back().filled, 0.0) << "the fill comes with its report";
    }
    // For the next case.
    for (const SentOrder* order : orders) {
      rig.sessions.settle_by_hand(order->id, false, "seen");
      OrderReport refused;
      refused.number = base + 9;
      refused.result = result::hedging_not_allowed;
      refused.id = order->id;
      if (order->kind == RequestKind::close) rig.during([&] { sink(one).CloseOrderResult(refused); });
    }
    rig.take();
  }
}

// An entry order that worked and that the account lists no more at its next login: executed, cancelled, or
// nobody knows.
TEST_F(UnknownRequests, AnEntryOrderThatIsGoneIsAskedFor) {
  ScriptedClient& client = rig.client(one);
  client.info = AccountInfo{};
  std::int64_t number = 40;
  const auto login = [&] { return rig.during([&] { sink(one).AllDataAreLoaded(); }); };
  const auto place = [&]() -> const SentOrder& {
    const SentOrder& order =
        one.place_entry({.side = operation::buy, .symbol_id = 3, .amount = 0.5, .price = 1.01},
                        rig.books.symbols.find("EURUSD"), 1);
    client.orders = {{.order = ++number, .account = 81, .symbol = "EURUSD"}};
    rig.during([&] { sink(one).NewLimitOrderResult(number, result::succeeded, order.id); });
    client.asked_for.clear();
    login();
    EXPECT_EQ(client.asked_for, std::vector<RequestId>{}) << "it is listed";
    client.orders.clear();
    return order;
  };
  const auto says = [](const Heard& lines, const std::string& what) {
    return std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.find("Entry order BUY 0.5 EURUSD at 1.01" + what) != std::string::npos;
    });
  };
  client.ask_code = request::taken;
  const Told ends[] = {
      {RequestState::cancelled, Outcome::accepted, LedgerState::cancelled, "was cancelled", ""},
      {RequestState::executed, Outcome::accepted, LedgerState::filled, "was executed", ""}};
  for (const Told& each : ends) {
    const std::string words = " is gone: the server says that it " + each.words;
    const SentOrder& order = place();
    login();
    EXPECT_EQ(client.asked_for, std::vector<RequestId>{order.id});
    const auto tell = [&] { return rig.during([&] { sink(one).RequestTold(order.id, each.state, 0.0); }); };
    EXPECT_EQ(says(tell(), words), 1);
    EXPECT_EQ(says(tell(), words), 0);
    EXPECT_EQ(rig.ledger.events.back().state, each.stored);
    EXPECT_EQ(order.outcome, each.outcome);
    client.asked_for.clear();
    login();
    EXPECT_EQ(client.asked_for, std::vector<RequestId>{});
  }
  // A broker that can't be asked: the position of its number, or nothing.
  client.ask_code = request::silent;
  place();
  client.positions = {{.ticket = number, .account = 81, .symbol = "EURUSD"}};
  login();
  EXPECT_EQ(rig.ledger.events.back().state, LedgerState::filled);
  EXPECT_EQ(rig.ledger.events.back().evidence, LedgerEvidence::positions);
  client.positions.clear();
  const SentOrder& lost = place();
  login();
  EXPECT_EQ(lost.outcome, Outcome::unknown);
  EXPECT_EQ(rig.ledger.events.back().reason, "gone");
  EXPECT_EQ(rig.sessions.requests().unknown_now(), 1);
  EXPECT_EQ(rig.sessions.requests().all_unknown(), std::vector<const SentOrder*>{&lost});
}

// A second word on what was final: it is believed, and everybody is told, once.
TEST_F(UnknownRequests, AContradictionIsBelievedAndToldAsAConflict) {
  rig.sessions.admission().override_limits("one after another");
  const std::string positions = ". Compare the positions of account 81 with the broker's";
  const auto tell = [&](const SentOrder& order, bool executed) {
    OrderReport report = OneSession::report(executed ? 1 : 5, 1);
    report.number = 30;
    report.id = order.id;
    return rig.during([&] { sink(one).NewOrderResult(report); });
  };
  const auto conflicts = [](const Heard& lines) {
    return std::count_if(lines.begin(), lines.end(),
                         [](const std::string& line) { return line.find("CONFLICT") != std::string::npos; });
  };
  int count = 0;
  for (const bool executed : {false, true}) {
    SCOPED_TRACE(executed);
    const SentOrder& order = buy(one);
    EXPECT_EQ(conflicts(tell(order, !executed)), 0);
    EXPECT_EQ(conflicts(tell(order, !executed)), 0) << "the same again";
    const std::string text = std::string{"CONFLICT: Order BUY 0.5 EURUSD was known as "} +
                             (executed ? "not executed, and the server says now that it was executed"
                                       : "executed, and the server says now that it was not") +
                             positions;
    const Heard lines = tell(order, executed);
    EXPECT_EQ(conflicts(lines), 3);
    for (const std::string& line :
         {"journal 81: " + text, "Alert: " + text,
          "market 81: " +
              std::string{executed ? "CONFLICT: executed after all" : "CONFLICT: not executed after all"},
          std::string{"sound Alert.wav"}})
      EXPECT_GE(std::count(lines.begin(), lines.end(), line), 1) << line;
    EXPECT_EQ(order.outcome, executed ? Outcome::accepted : Outcome::refused);
    EXPECT_EQ(rig.ledger.events.back().state, executed ? LedgerState::filled : LedgerState::refused);
    EXPECT_EQ(rig.ledger.events.back().reason, ledger_conflict);
    EXPECT_EQ(rig.sessions.requests().conflicts(), ++count);
  }
  // So is the operator's word; what was only unknown contradicts nothing.
  const SentOrder &by_hand = buy(one), &late = buy(one);
  wait();
  EXPECT_TRUE(rig.sessions.settle_by_hand(by_hand.id, false, "phone"));
  EXPECT_EQ(conflicts(tell(by_hand, true)), 2) << "the row is another order's";
  EXPECT_EQ(conflicts(tell(late, true)), 0);
  EXPECT_EQ(rig.sessions.requests().conflicts(), 3);
}

}  // namespace
}  // namespace tutti::testing
