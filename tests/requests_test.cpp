// Requests: their names, the book of what became of them, and the only way out.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

#include "books/request_ids.h"
#include "tests/support/two_sessions.h"

namespace tutti::testing {
namespace {

using Outcome = SentOrder::Outcome;

TEST(RequestIds, AscendWhateverTheClockDoes) {
  ManualClock clock;
  std::uint32_t random = 0xffffffff;
  RequestIds ids{clock, [&] { return random -= 0x10001; }};
  RequestId last = 0;
  std::set<RequestId> blocks;
  // More than a block within a second, the next second, a clock set back, and a year later.
  for (const auto step : {0s, 1s, -7200s, 31'536'000s}) {
    clock.advance(step);
    for (int count = 0; count < 1500; ++count) {
      const RequestId id = ids.next();
      ASSERT_GT(id, last);
      last = id;
      blocks.insert(id >> 10);
    }
  }
  EXPECT_EQ(blocks.size(), 7U);
  EXPECT_EQ(std::chrono::sys_days{std::chrono::year{2025} / 1 / 1} + std::chrono::seconds{last >> 32},
            std::chrono::floor<std::chrono::seconds>(clock.now()) + 1s);
}

TEST_F(Requests, AnAnswerSettlesTheRequestThatItNamesAndNoOther) {
  const SentOrder &first = buy(one), &second = buy(one), &other = buy(two);
  EXPECT_TRUE(first.id > 0 && first.id < second.id && second.id < other.id);
  EXPECT_EQ(rig.client(one).ids, (std::vector<RequestId>{first.id, second.id}));
  answer(one, second.id, 22);
  EXPECT_EQ(first.outcome, Outcome::waiting);
  EXPECT_EQ(second.outcome, Outcome::accepted);
  // Told again, named as another session's, or as nobody's: nothing more is settled.
  for (const RequestId id : {second.id, other.id, RequestId{7}}) {
    answer(one, id, 23);
    EXPECT_EQ(rig.sessions.unanswered(), 2) << id;
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "market 81: Market Order Accepted"), 0) << id;
  }
  // Without a name figures decide only where a single one fits.
  answer(one, 0, 24);
  EXPECT_EQ(first.outcome, Outcome::accepted);
  const SentOrder &third = buy(one, 0.5), &fourth = buy(one, 0.5 + 1e-9);
  answer(one, 0, 25);
  EXPECT_EQ(rig.sessions.unanswered(), 3);
  answer(one, third.id, 25, order_state::executed, 0.2);
  EXPECT_EQ(third.outcome, Outcome::partly);
  EXPECT_EQ(fourth.outcome, Outcome::waiting);
  EXPECT_EQ(rig.sessions.unanswered(), 3);
}

TEST_F(Requests, AnAnswerWithoutAnIdSettlesTheOneThatItsFiguresFit) {
  const SentOrder &whole = one.close_position(12, 0.5), &part = one.close_position(12, 0.2);
  const auto closed = [&](RequestId id, double lots) {
    OrderReport report = OneSession::report(1, format_as(order_state::executed));
    report.number = 12;
    report.id = id;
    report.amount = lots;
    rig.during([&] { sink(one).CloseOrderResult(report); });
  };
  // Twice: the second time it means no other.
  for (int i = 0; i < 2; ++i) {
    closed(0, 0.2);
    EXPECT_EQ(part.outcome, Outcome::accepted);
    EXPECT_EQ(whole.outcome, Outcome::waiting);
  }
  // The id of another kind of request names none.
  const SentOrder& order = buy(one);
  closed(order.id, 0.5);
  answer(one, whole.id, 31);
  EXPECT_EQ(order.outcome, Outcome::waiting);
  EXPECT_EQ(whole.outcome, Outcome::waiting);
  closed(0, 0.0);  // lots that are not told
  EXPECT_EQ(whole.outcome, Outcome::accepted);
  // Of an earlier run, whose symbol is not known here.
  RequestBook book;
  book.restore({.amount = 0.5, .id = 1, .outcome = Outcome::unknown});
  EXPECT_EQ(book.fitting(0, {.kind = RequestKind::open, .symbol = no_symbol, .lots = 0.5}), nullptr);
  EXPECT_EQ(book.unknown_now(), 1);
  EXPECT_EQ(book.all_unknown().size(), 1U);
}

TEST_F(Requests, WithoutAWordForHalfAMinuteTheyAreUnknown) {
  const SentOrder& silent = buy(one);
  one.close_position(12, 0.5);
  one.cancel_order(44, false);
  const SentOrder& dealt = buy(two);
  EXPECT_EQ(wait(29s), Heard{});
  answer(two, dealt.id, 30, order_state::pending);
  const Heard lines = wait(1s);
  const std::string tail =
      " was sent, but no result came: the outcome is unknown, check the positions of account 81";
  EXPECT_EQ(
      lines,
      sorted({"Alert: 3 requests have no answer: what became of them is unknown. Check the "
              "positions; the journal says of which accounts",
              "close 12: unknown", "market 81: unknown", "journal 81: Order BUY 0.5 EURUSD" + tail,
              "journal 81: The request for #12" + tail, "pending 44: The outcome of its cancel is unknown",
              "journal 81: The request for #44" + tail}));
  EXPECT_EQ(rig.sessions.unanswered(), 1);
  // The server is asked about each, once.
  EXPECT_EQ(rig.client(one).asked_for.size(), 3U);
  EXPECT_EQ(wait(1s), Heard{});
  EXPECT_EQ(rig.client(one).asked_for.size(), 3U);
  // A countdown is a word, too.
  rig.during([&] { sink(two).OrderTimer({.order = 30, .account = 82, .symbol = "EURUSD"}); });
  EXPECT_EQ(wait(29s), Heard{});
  EXPECT_EQ(wait(1s).size(), 3U);
  EXPECT_EQ(dealt.outcome, Outcome::unknown);
  // What comes late settles it after all, once. The row is a later order's by then.
  const auto anything = [](const SentOrder&) { return true; };
  EXPECT_EQ(rig.sessions.unknown(anything), 4);
  const SentOrder& later = buy(one);
  answer(one, silent.id, 31);
  EXPECT_EQ(silent.outcome, Outcome::accepted);
  EXPECT_EQ(heard, Heard{"journal 81: Order #31 [BUY 0.5 EURUSD] has been accepted"});
  answer(one, later.id, 32);
  EXPECT_EQ(std::count(heard.begin(), heard.end(), "market 81: Market Order Accepted"), 1);
  EXPECT_EQ(rig.sessions.unknown(anything), 3);
  answer(two, dealt.id, 30, order_state::pending);
  EXPECT_EQ(dealt.outcome, Outcome::pending);
  EXPECT_EQ(wait().size(), 3U);
  EXPECT_EQ(wait(), Heard{});
}

// What was sent on a connection that is gone, or by a session that is, is told late.
TEST_F(Requests, LateAnswersFindWhatWasGivenUp) {
  const SentOrder& lost = buy(one);
  rig.during([&] { sink(one).ConnectionState(false); });
  const auto told = wait(5s);
  EXPECT_EQ(told, Heard{"Alert: 1 request has no answer: what became of it is unknown. Check the positions; "
                        "the journal says of which accounts"});
  answer(one, lost.id, 30, order_state::pending);
  EXPECT_EQ(wait(29s), Heard{});
  EXPECT_EQ(wait(1s).size(), 3U) << "told once";
  rig.during([&] { sink(one).OrderTimer({.order = 30, .account = 81, .symbol = "EURUSD"}); });
  EXPECT_EQ(lost.outcome, Outcome::pending);

  const SentOrder& removed = buy(two);
  rig.sessions.Remove("C2");
  EXPECT_EQ(removed.outcome, Outcome::unknown);
  EXPECT_EQ(rig.sessions.unanswered(), 1);
  answer(rig.add(82, "EVE"), removed.id, 31);
  EXPECT_EQ(removed.outcome, Outcome::accepted);
}

TEST_F(Requests, ARefusedRepetitionLeavesTheCloseThatIsOnItsWay) {
  const SentOrder& dealt = one.close_position(12, 0.5);
  const SentOrder& again = one.close_position(12, 0.5);
  const auto tell = [&](const SentOrder& close, ResultCode code, OrderState state) {
    OrderReport report{.number = 12, .account = 81, .result = code, .state = state, .symbol = ""};
    report.id = close.id;
    rig.during([&] { sink(one).CloseOrderResult(report); });
  };
  tell(dealt, result::succeeded, order_state::pending);
  tell(again, result::position_pending, OrderState::none);
  EXPECT_EQ(one.sent_request(RequestKind::close, 12), &dealt);
  EXPECT_EQ(again.outcome, Outcome::refused);
}

TEST_F(Requests, AreFilledInPartsAndEveryFillOnce) {
  const SentOrder& order = buy(one);
  const auto fill = [&](const char* name, double all) {
    OrderReport report = OneSession::report(1, 1);
    report.number = 30;
    report.id = order.id;
    report.execution = name;
    report.filled_all = all;
    report.left = 0.5 - all;
    heard = rig.during([&] { sink(one).MarketOrderAccepted(report); });
    return std::count(heard.begin(), heard.end(), "market 81: Market Order Accepted");
  };
  EXPECT_EQ(fill("a", 0.2), 1);
  EXPECT_EQ(fill("a", 0.2), 0);
  EXPECT_EQ(wait(60s), Heard{});
  EXPECT_EQ(order.outcome, Outcome::partly);
  EXPECT_EQ(fill("b", 0.5), 1);
  EXPECT_EQ(order.outcome, Outcome::accepted);
  EXPECT_EQ(order.filled, 0.5);
}

// A ticket of two, one of each account: what the ledger does, and what becomes of them.
struct Storing {
  const char* name;
  Ledger::Stored says;
  std::size_t may_leave;
  std::size_t sent;
  std::string reason;  // of those that are dropped
  std::string told;
};

TEST_F(Requests, LeaveWhenTheyAreStoredAndNotOtherwise) {
  const std::string tail = ". See to the disk of the application folder, then send them again";
  const std::string rule = " requests were not sent, since what is not stored must not leave: ";
  const Storing cases[] = {
      {"stored", Ledger::Stored::yes, 9, 2, "", ""},
      {"fails", Ledger::Stored::no, 9, 0, "not stored", "2 of 2" + rule + "no room" + tail},
      {"late", Ledger::Stored::waiting, 9, 0, "late",
       "2 of 2" + rule + "the ledger took longer than 250 ms to store it" + tail},
      {"not noted", Ledger::Stored::yes, 1, 1, "not noted", "1 of 2" + rule + "no room" + tail},
  };
  rig.ledger.why = "no room";
  for (const Storing& each : cases) {
    SCOPED_TRACE(each.name);
    rig.ledger.says = each.says;
    rig.ledger.may_leave = each.may_leave;
    rig.ledger.stored.clear();
    rig.ledger.events.clear();
    rig.take();
    std::vector<const SentOrder*> told;
    const auto then = [&](const SentOrder& sent) { told.push_back(&sent); };
    rig.sessions.as_one_ticket([&] {
      for (CClientAPIManager* session : {&one, &two})
        session->market_order(operation::buy, rig.books.symbols.find("EURUSD"), 0.5, then);
      EXPECT_EQ(rig.ledger.stored.size(), 0U);
    });
    ASSERT_EQ(rig.ledger.stored.size(), 1U);
    EXPECT_EQ(rig.ledger.stored[0].first.total, 1.0);
    EXPECT_EQ(rig.ledger.stored[0].first.symbol, "EURUSD");
    ASSERT_EQ(rig.ledger.stored[0].second.size(), 2U);
    ASSERT_EQ(told.size(), 2U);
    ASSERT_EQ(rig.ledger.events.size(), 2U);
    std::size_t left = 0;
    for (std::size_t i = 0; i < 2; ++i) {
      const bool sent = i < each.sent;
      left += rig.client(i == 0 ? one : two).ids.size();
      EXPECT_EQ(told[i]->outcome, sent ? Outcome::waiting : Outcome::dropped);
      EXPECT_EQ(told[i]->id, rig.ledger.stored[0].second[i].id);
      EXPECT_EQ(rig.ledger.events[i].state, sent ? LedgerState::taken : LedgerState::dropped);
      EXPECT_EQ(rig.ledger.events[i].reason, sent ? "" : each.reason);
      rig.client(i == 0 ? one : two).ids.clear();
    }
    EXPECT_EQ(left, each.sent);
    EXPECT_EQ(rig.take(),
              each.told.empty() ? Heard{} : Heard({"Alert: " + each.told, "journal -1: " + each.told}));
  }
}

TEST_F(Requests, OfAHandlerLeaveOnceTheyAreStored) {
  const auto& ids = rig.client(one).ids;
  const auto ask = [&] {
    rig.ledger.says = Ledger::Stored::waiting;
    rig.during([&] { one.answer_requote(30, false); });
    rig.sessions.send_stored();
  };
  ask();
  EXPECT_EQ(ids.size(), 0U);
  rig.ledger.says = Ledger::Stored::yes;
  for (int i = 0; i < 2; ++i) {
    rig.sessions.send_stored();
    EXPECT_EQ(ids.size(), 1U);
  }
  // Not when its connection is over by then, or when nobody expects it any more.
  ask();
  rig.during([&] { sink(one).ConnectionState(false); });
  EXPECT_EQ(std::count_if(rig.ledger.events.begin(), rig.ledger.events.end(),
                          [](const LedgerEvent& each) { return each.reason == "account gone"; }),
            1);
  rig.ledger.says = Ledger::Stored::yes;
  rig.sessions.send_stored();
  ask();
  rig.clock.advance(5s);
  rig.sessions.send_stored();
  EXPECT_EQ(ids.size(), 1U);
  ASSERT_EQ(rig.ledger.stored.size(), 3U);
  EXPECT_EQ(rig.ledger.events.back().reason, "late");
  EXPECT_EQ(rig.take().size(), 2U);
}

TEST_F(Requests, OfALargeTicketArePartsStoredBeforeTheyLeave) {
  const std::vector<RequestId>& ids = rig.client(one).ids;
  int dropped = 0;
  const auto ask = [&] {
    rig.sessions.as_one_ticket([&] {
      for (std::int64_t ticket = 1; ticket <= 1200; ++ticket)
        one.close_position(ticket, 0.1,
                           [&](const SentOrder& r) { dropped += r.outcome == Outcome::dropped ? 1 : 0; });
    });
    EXPECT_EQ(std::exchange(rig.ledger.waits, 0), 1);
  };
  // One part with the click, and one with every turn that finds it stored.
  ask();
  EXPECT_EQ(ids.size(), 500U);
  // Whatever has not left yet is under way: nobody closes it once more.
  EXPECT_TRUE(rig.sessions.close_awaited(500, 81) && rig.sessions.close_awaited(1200, 81));
  rig.ledger.says = Ledger::Stored::waiting;
  rig.sessions.send_stored();
  EXPECT_EQ(ids.size(), 500U);
  EXPECT_GT(rig.sessions.next_turn(), rig.clock.elapsed());
  rig.ledger.says = Ledger::Stored::yes;
  EXPECT_EQ(rig.sessions.next_turn(), rig.clock.elapsed());
  rig.sessions.send_stored();
  EXPECT_EQ(ids.size(), 1000U);
  rig.ledger.says = Ledger::Stored::no;
  rig.sessions.send_stored();
  EXPECT_EQ(ids.size(), 1000U);
  EXPECT_EQ(dropped, 200);
  EXPECT_TRUE(rig.sessions.close_awaited(1000, 81));
  EXPECT_FALSE(rig.sessions.close_awaited(1200, 81));
  EXPECT_EQ(rig.take().size(), 2U);
  EXPECT_EQ(rig.sessions.next_turn(), std::nullopt);
  // Who stops trading stops what has not left; who has nothing else to do has all of it sent.
  rig.ledger.says = Ledger::Stored::yes;
  ask();
  ASSERT_TRUE(rig.stop.set("test"));
  rig.sessions.send_stored();
  EXPECT_EQ(dropped, 900);
  ASSERT_TRUE(rig.stop.clear());
  rig.take();
  ask();
  rig.sessions.wait_for_stored();
  EXPECT_EQ(ids.size(), 2700U);
  EXPECT_EQ(std::set<RequestId>(ids.begin(), ids.end()).size(), ids.size());
}

// Whatever sends does so through the gate: nobody else calls what sends, or holds it.
TEST(RequestGate, IsTheOnlyWayOut) {
  const std::regex sends{R"((NewMarketOrder|NewEntryOrder|UpdateEntryOrder|AcceptRequote|RejectRequote|)"
                         R"(ClosePosition|UpdateSLTP|DeleteEntryOrder|DeleteSLTPOrder)\(|OrderOperations\b)"};
  std::set<std::string> found;
  const std::filesystem::path root{TUTTI_SOURCE};
  // All rooms but the other side of the connection.
  const std::set<std::string> others{"build", "tests", "benchmarks", "dealer", "fix", ".git"};
  for (const auto& room : std::filesystem::directory_iterator{root}) {
    if (!room.is_directory() || others.contains(room.path().filename().string())) continue;
    for (const auto& entry : std::filesystem::recursive_directory_iterator{room}) {
      if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h") continue;
      std::ifstream file{entry.path()};
      const std::string text{std::istreambuf_iterator<char>{file}, {}};
      if (std::regex_search(text, sends)) found.insert(entry.path().lexically_relative(root).string());
    }
  }
  EXPECT_EQ(found,
            (std::set<std::string>{
                "sessions/RequestGate.cpp", "sessions/RequestGate.h",  // a session that joins brings its way
                "sessions/contract/ClientAPI.h", "sessions/contract/order_operations.h",
                "sessions/order_ways.cpp", "sessions/order_ways.h",
                "sessions/session_requests.h"  // hands what sends to the gate, and keeps none of it
            }));
}

}  // namespace
}  // namespace tutti::testing
