// What the gate lets out: each way out, each limit, and the stop; what is held, and what waits for its turn.

#include <gtest/gtest.h>

#include <optional>
#include <set>

#include "sessions/gate_texts.h"
#include "tests/support/one_session.h"

namespace tutti::testing {
namespace {

using Outcome = SentOrder::Outcome;

// A session with a position, an entry order, and one order and one close in dealing.
struct Gate : ::testing::Test {
  Gate() {
    client.profit_per_point = 1000.0;
    client.summary.values.equity = 1000.0;
    quote();
    rig.during([&] { client.sink->SymbolsLoaded(); });
    rig.during([&] {
      client.sink->NewOpenPosition({.ticket = 13, .account = 81, .symbol = "EURUSD", .amount = 0.5});
    });
    for (const auto& [number, kind] :
         {std::pair{12, OrderKind::entry}, {14, OrderKind::open}, {15, OrderKind::close}}) {
      const PendingOrder order{
          .order = number, .account = 81, .kind = kind, .operation = operation::buy, .symbol = "EURUSD"};
      rig.during([&] { client.sink->NewPendingOrder(order); });
    }
    rig.take();
  }
  void quote(double ask = 1.081) {
    client.symbols = {
        {.id = 3, .name = "EURUSD", .bid = ask - 0.001, .ask = ask, .quote_time = rig.clock.now()}};
    if (symbol != no_symbol) client.sink->SymbolPricesChanged(client.symbols[0]);
  }
  void limit(Limit which, std::optional<double> value) {
    Limits limits = admission.limits();
    limits[which] = value;
    admission.set_limits(limits);
  }
  const SentOrder& buy(CClientAPIManager& from, double lots = 0.5) {
    return from.market_order(operation::buy, rig.books.symbols.find("EURUSD"), lots,
                             AskedRequests::Then{tell});
  }
  // One ticket of so many orders.
  void buy_together(int count) {
    rig.sessions.as_one_ticket([&] {
      for (int i = 0; i < count; ++i)
        buy(session);
    });
  }
  // What the last ticket that was stored became, request by request.
  std::vector<LedgerState> states() const {
    std::vector<LedgerState> out;
    for (const LedgerEvent& each : rig.ledger.events)
      out.push_back(each.state);
    return out;
  }

  SessionRig rig;
  CClientAPIManager& session = rig.add(81);
  ScriptedClient& client = rig.client(session);
  Admission& admission = rig.sessions.admission();
  SymbolHandle symbol = no_symbol;
  std::vector<std::string> told;  // to who asked, as the rows have it
  std::function<void(const SentOrder&)> tell = [this](const SentOrder& sent) {
    told.emplace_back(gate_texts::row(sent));
  };
};

struct WayOut {
  const char* name;
  std::function<const SentOrder&(CClientAPIManager&, double lots)> send;
};

std::vector<WayOut> ways_out(SymbolHandle symbol) {
  using Session = CClientAPIManager;
  return {
      {"market",
       [=](Session& s, double lots) -> const SentOrder& {
         return s.market_order(operation::buy, symbol, lots);
       }},
      {"entry",
       [=](Session& s, double lots) -> const SentOrder& {
         return s.place_entry({.side = operation::buy, .symbol_id = 3, .amount = lots, .price = 1.07}, symbol,
                              1);
       }},
      {"update", [](Session& s, double) -> const SentOrder& { return s.update_entry(12, 1.06, {}, 1); }},
      {"stops", [](Session& s, double) -> const SentOrder& { return s.set_stops(13, {}, 1); }},
      {"close", [](Session& s, double lots) -> const SentOrder& { return s.close_position(13, lots); }},
      {"cancel", [](Session& s, double) -> const SentOrder& { return s.cancel_order(12, false); }},
      {"cancel stops", [](Session& s, double) -> const SentOrder& { return s.cancel_order(12, true); }},
      {"accept an order's price",
       [](Session& s, double) -> const SentOrder& { return s.answer_requote(14, true); }},
      {"accept a close's price",
       [](Session& s, double) -> const SentOrder& { return s.answer_requote(15, true); }},
      {"reject", [](Session& s, double) -> const SentOrder& { return s.answer_requote(14, false); }},
  };
}

struct Barrier {
  const char* name;
  std::optional<Limit> limit;  // nothing: the stop
  double set;
  double lots;
  bool second;  // it is the one after another of its kind that is kept
  std::set<std::string> kept;
  Outcome how;
  NotSent why;
};

TEST_F(Gate, KeepsBackByEachLimitAndTheStopWhatItIsFor) {
  const std::set<std::string> orders{"market", "entry"}, changes{"market", "entry", "update", "stops"};
  std::set<std::string> stopped = changes;
  stopped.insert({"close", "cancel", "cancel stops", "accept an order's price"});
  const Barrier barriers[] = {
      {"never", Limit::ticket_lots, 1e6, 50.0, false, {}, Outcome::waiting, NotSent::nothing},
      {"ticket", Limit::ticket_lots, 0.4, 0.5, false, orders, Outcome::held, NotSent::limit},
      {"account", Limit::account_lots, 0.4, 0.5, false, orders, Outcome::held, NotSent::limit},
      {"equity", Limit::equity_lots, 0.4, 0.5, false, orders, Outcome::held, NotSent::limit},
      {"value", Limit::account_value, 530.0, 0.5, false, orders, Outcome::held, NotSent::limit},
      {"value below", Limit::account_value, 545.0, 0.5, false, {}, Outcome::waiting, NotSent::nothing},
      {"share", Limit::odd_shares, 1.0, 0.0, false, orders, Outcome::held, NotSent::limit},
      {"quote", Limit::quote_age, 9.0, 0.5, false, changes, Outcome::held, NotSent::limit},
      {"again", Limit::same_ticket, 5.0, 0.5, true, changes, Outcome::held, NotSent::limit},
      {"often", Limit::tickets_per_minute, 1.0, 0.5, true, changes, Outcome::held, NotSent::limit},
      {"at once", Limit::orders_per_second, 1.0, 0.5, true, changes, Outcome::queued, NotSent::turn},
      {"stop", std::nullopt, 0.0, 0.5, false, stopped, Outcome::dropped, NotSent::stopped},
  };
  const SymbolHandle euro = rig.books.symbols.find("EURUSD");
  rig.clock.advance(10s);
  for (const Barrier& barrier : barriers) {
    if (barrier.limit) {
      limit(*barrier.limit, barrier.set);
    } else {
      ASSERT_TRUE(rig.stop.set(""));
    }
    for (const WayOut& way : ways_out(euro)) {
      SCOPED_TRACE(std::string{barrier.name} + ", " + way.name);
      rig.clock.advance(61s);
      if (barrier.limit != Limit::quote_age) {
        quote();
        client.sink->SymbolPricesChanged(client.symbols[0]);
      }
      if (barrier.second) way.send(session, barrier.lots);
      const std::size_t left = client.ids.size(), stored = rig.ledger.stored.size();
      const SentOrder& sent = way.send(session, barrier.lots);
      const bool kept = barrier.kept.contains(way.name);
      EXPECT_EQ(client.ids.size() - left, kept ? 0U : 1U);
      EXPECT_EQ(sent.outcome, kept ? barrier.how : Outcome::waiting);
      EXPECT_EQ(sent.not_sent, kept ? barrier.why : NotSent::nothing);
      EXPECT_EQ(gate_texts::row(sent).empty(), !kept);
      // What is held is not stored yet; what is refused is, with what became of it.
      EXPECT_EQ(rig.ledger.stored.size() - stored, sent.outcome == Outcome::held ? 0U : 1U);
      if (sent.outcome == Outcome::dropped) {
        EXPECT_EQ(rig.ledger.events.back().state, LedgerState::refused_here);
      }
      while (!admission.held().empty())
        admission.refuse(admission.held().front().number);
      EXPECT_EQ(sent.outcome == Outcome::held, false);
      rig.clock.advance(2s);
      rig.sessions.send_stored();
      EXPECT_EQ(client.ids.size() - left, kept && barrier.how != Outcome::queued ? 0U : 1U) << "in its turn";
    }
    if (barrier.limit) limit(*barrier.limit, std::nullopt);
  }
}

TEST_F(Gate, HoldsAWholeTicketUntilTheOperatorSaysWhatBecomesOfIt) {
  limit(Limit::ticket_lots, 0.9);
  buy_together(2);
  EXPECT_EQ(client.ids.size() + rig.ledger.stored.size(), 0U);
  const std::string line = "1 lots together, above the limit of 0.9 for one order";
  EXPECT_EQ(rig.take(), Heard{"journal -1: 2 requests are held, nothing of it was sent: " + line});
  EXPECT_EQ(told, (std::vector<std::string>(2, "Held: a limit is exceeded")));
  ASSERT_EQ(admission.held().size(), 1U);
  // However long it takes, nobody gives it up, and no answer is taken for its.
  rig.clock.advance(1min);
  EXPECT_EQ(rig.during([&] { rig.sessions.look_at_the_clock(); }), Heard{});
  EXPECT_EQ(rig.sessions.unanswered(), 0);
  const int number = admission.held().front().number;
  rig.sessions.send_held(number + 1, "no such");
  EXPECT_EQ(client.ids.size(), 0U);
  // A limit that it was not over before holds it anew.
  limit(Limit::account_lots, 0.1);
  rig.sessions.send_held(number, "seen");
  EXPECT_EQ(client.ids.size(), 0U);
  ASSERT_EQ(admission.held().size(), 1U);
  told.clear();
  rig.sessions.send_held(number, "seen");
  rig.sessions.send_held(number, "seen");
  EXPECT_EQ(client.ids.size(), 2U);
  EXPECT_EQ(admission.held().size(), 0U);
  EXPECT_EQ(told, (std::vector<std::string>(2, "")));
  ASSERT_EQ(rig.ledger.stored.size(), 1U);
  EXPECT_EQ(rig.ledger.stored[0].first.override_reason, "seen");
  told.clear();
  buy_together(2);
  admission.refuse(admission.held().front().number);
  EXPECT_EQ(client.ids.size(), 2U);
  EXPECT_EQ(told.back(), "Not sent: a limit is exceeded");
  EXPECT_EQ(rig.ledger.stored.size(), 2U);
  EXPECT_EQ(states(), (std::vector<LedgerState>{LedgerState::taken, LedgerState::taken,
                                                LedgerState::refused_here, LedgerState::refused_here}));
  // With a reason given before nothing is held.
  admission.override_limits("it is my money");
  buy_together(2);
  EXPECT_EQ(client.ids.size(), 4U);
  EXPECT_EQ(rig.ledger.stored.back().first.override_reason, "it is my money");
  limit(Limit::ticket_lots, std::nullopt);
  limit(Limit::account_lots, std::nullopt);
  buy_together(2);
  EXPECT_EQ(rig.ledger.stored.back().first.override_reason, "") << "there was nothing to override";
  // What was let go is awaited like any other.
  rig.clock.advance(30s);
  rig.during([&] { rig.sessions.look_at_the_clock(); });
  EXPECT_EQ(rig.sessions.unknown([](const SentOrder&) { return true; }), 6);
}

// Nothing opens what can't be stored; what ends something may go all the same, by the second key.
TEST_F(Gate, ClosesAndCancelsGoUnstoredByTheSecondKeyAlone) {
  rig.ledger.says = Ledger::Stored::no;
  rig.ledger.why = "disk full";
  rig.ledger.may_leave = 0;
  for (const WayOut& way : ways_out(rig.books.symbols.find("EURUSD"))) {
    SCOPED_TRACE(way.name);
    rig.clock.advance(61s);
    quote();
    client.sink->SymbolPricesChanged(client.symbols[0]);
    rig.take();
    const std::size_t left = client.ids.size();
    const SentOrder& sent = way.send(session, 0.5);
    const bool ends = sent.kind == RequestKind::close || sent.kind == RequestKind::cancel;
    EXPECT_EQ(client.ids.size(), left);
    EXPECT_EQ(sent.outcome, ends ? Outcome::held : Outcome::dropped);
    ASSERT_EQ(admission.held().size(), ends ? 1U : 0U);
    if (!ends) continue;
    EXPECT_EQ(admission.held()[0].text(),
              "account 81: the ledger can't store it, so nothing would know of it after a crash");
    const bool awaited = rig.sessions.close_awaited(13, 81);
    EXPECT_TRUE(awaited || sent.kind == RequestKind::cancel) << "nothing is sent twice";
    rig.take();
    const std::size_t stored = rig.ledger.stored.size();
    rig.sessions.send_held(admission.held()[0].number, "seen");
    EXPECT_EQ(client.ids.size() - left, 1U);
    EXPECT_EQ(rig.ledger.stored.size(), stored) << "it may be on the disk after all";
    EXPECT_EQ(sent.outcome, Outcome::waiting);
    const std::string why =
        "account 81: the ledger can't store it, so nothing would know of it after a crash";
    EXPECT_EQ(
        rig.take(),
        sorted({"journal -1: 1 closes and cancels are sent whether they are stored or not (seen): " + why,
                "journal -1: Sent over a limit (seen): " + why}));
  }
}

// While trading is stopped as well: what carries the stop out is not refused by it.
TEST_F(Gate, WhatCarriesTheStopOutWaitsForTheSecondKeyToo) {
  rig.ledger.says = Ledger::Stored::no;
  ASSERT_TRUE(rig.stop.set(""));
  rig.sessions.as_one_ticket([&] { session.close_position(13, 0.5); }, {.origin = TicketOrigin::stop});
  ASSERT_EQ(admission.held().size(), 1U);
  rig.sessions.send_stored();
  ASSERT_EQ(admission.held().size(), 1U);
  rig.sessions.send_held(admission.held()[0].number, "seen");
  EXPECT_EQ(client.ids.size(), 1U);
}

TEST_F(Gate, LeavesOutAnAccountThatHasAnUnknownRequestOfTheSymbol) {
  CClientAPIManager& other = rig.add(82);
  rig.client(other).symbols = client.symbols;
  rig.during([&] { rig.client(other).sink->SymbolsLoaded(); });
  buy(session);
  rig.clock.advance(30s);
  rig.during([&] { rig.sessions.look_at_the_clock(); });
  told.clear();
  const auto buy_both = [&] {
    rig.sessions.as_one_ticket([&] {
      buy(session);
      buy(other, 0.7);
    });
  };
  buy_both();
  EXPECT_EQ(client.ids.size(), 1U);
  EXPECT_EQ(rig.client(other).sent, std::vector<std::string>{"1 3 0.700000"});
  EXPECT_EQ(told, (std::vector<std::string>{"Held: what became of an earlier request is unknown", ""}));
  ASSERT_EQ(admission.held().size(), 1U);
  EXPECT_EQ(admission.held()[0].text(),
            "account 81: what became of an earlier request of the symbol is unknown");
  // A close is never left out for it.
  session.close_position(13, 0.5);
  EXPECT_EQ(client.ids.size(), 2U);
  rig.sessions.send_held(admission.held()[0].number, "seen");
  EXPECT_EQ(client.ids.size(), 3U);
  // What is held of a connection that is over is refused.
  buy_both();
  rig.during([&] { client.sink->ConnectionState(false); });
  EXPECT_EQ(told.back(), "Not sent: the connection was lost");
  EXPECT_EQ(admission.held().size(), 0U);
}

TEST_F(Gate, LetsSoManyOutWithinASecondAndTheRestInItsTurn) {
  limit(Limit::orders_per_second, 2.0);
  limit(Limit::queue_age, 3.0);
  buy_together(9);
  EXPECT_EQ(client.ids.size(), 2U);
  EXPECT_EQ(rig.ledger.stored.size(), 1U);
  EXPECT_EQ(rig.sessions.next_turn(), rig.clock.elapsed() + 1s);
  EXPECT_EQ(told.back(), "Waits for its turn");
  // A close takes a turn, and does not wait for one.
  session.close_position(13, 0.5);
  EXPECT_EQ(client.ids.size(), 3U);
  rig.clock.advance(999ms);
  rig.sessions.send_stored();
  EXPECT_EQ(client.ids.size(), 3U);
  rig.clock.advance(1ms);
  rig.sessions.send_stored();
  EXPECT_EQ(client.ids.size(), 5U);
  for (int i = 0; i < 10; ++i) {
    rig.clock.advance(100ms);
    rig.sessions.send_stored();
  }
  EXPECT_EQ(client.ids.size(), 7U);
  rig.take();
  rig.clock.advance(1s);
  rig.sessions.send_stored();
  const std::string text =
      "3 of 3 requests were not sent: they waited for their turn for 3 s, longer than the limit";
  EXPECT_EQ(rig.take(), (Heard{"Alert: " + text, "journal -1: " + text}));
  EXPECT_EQ(client.ids.size(), 7U);
  EXPECT_EQ(rig.sessions.next_turn(), std::nullopt);
  EXPECT_EQ(told.back(), "Not sent: it waited for its turn for too long");
  EXPECT_EQ(rig.ledger.events.back().state, LedgerState::dropped);
  EXPECT_EQ(rig.ledger.events.back().reason, "age");
}

// What changes while a request waits is judged again as it leaves.
struct Change {
  const char* name;
  std::function<void(Gate&)> happens;
  std::size_t sent;
  std::string text;
};

TEST_F(Gate, JudgesAgainWhatHasWaited) {
  const Change changes[] = {
      {"nothing",
       [](Gate& g) {
         g.quote();
         g.client.sink->SymbolPricesChanged(g.client.symbols[0]);
       },
       1, ""},
      {"price",
       [](Gate& g) {
         g.quote(1.0814);
         g.client.sink->SymbolPricesChanged(g.client.symbols[0]);
       },
       0, ": account 81: the price has gone 40 points since the click, above the limit of 30"},
      {"quote", [](Gate&) {}, 0, ": account 81: the quote is 1 s old, above the limit of 0.9 s"},
      {"stop", [](Gate& g) { EXPECT_TRUE(g.rig.stop.set("")); }, 0,
       ": trading is stopped. End the stop first"},
  };
  limit(Limit::orders_per_second, 1.0);
  limit(Limit::price_distance, 30.0);
  limit(Limit::quote_age, 0.9);
  for (const Change& change : changes) {
    SCOPED_TRACE(change.name);
    rig.clock.advance(2s);
    quote();
    client.sink->SymbolPricesChanged(client.symbols[0]);
    buy_together(2);
    const std::size_t left = client.ids.size();
    rig.take();
    rig.clock.advance(1s);
    change.happens(*this);
    rig.sessions.send_stored();
    EXPECT_EQ(client.ids.size() - left, change.sent);
    const std::string text = "1 of 1 requests were not sent" + change.text;
    EXPECT_EQ(rig.take(), change.sent == 1 ? Heard{} : (Heard{"Alert: " + text, "journal -1: " + text}));
    rig.sessions.send_stored();
    EXPECT_EQ(rig.take(), Heard{});
  }
}

TEST_F(Gate, WhileTradingIsStoppedOnlyTheStopsOwnActSends) {
  limit(Limit::ticket_lots, 0.9);
  buy_together(2);
  rig.take();
  ASSERT_TRUE(rig.stop.set(""));
  // What is held is refused as soon as somebody looks.
  rig.sessions.send_stored();
  const std::string two = "2 requests were not sent: trading is stopped. End the stop first";
  EXPECT_EQ(rig.take(), (Heard{"Alert: " + two, "journal -1: " + two}));
  EXPECT_EQ(admission.held().size(), 0U);
  admission.override_limits("no matter");
  buy_together(2);
  EXPECT_EQ(rig.take(), (Heard{"Alert: " + two, "journal -1: " + two}));
  rig.sessions.as_one_ticket([&] { session.close_position(13, 0.5); }, {.origin = TicketOrigin::stop});
  EXPECT_EQ(client.sent, std::vector<std::string>{"close 13 0.5"});
  EXPECT_EQ(rig.ledger.stored.back().first.origin, TicketOrigin::stop);
  ASSERT_TRUE(rig.stop.clear());
  buy(session);
  EXPECT_EQ(client.ids.size(), 2U);
}

// Tickets of earlier runs count by what the ledger knows of them.
TEST(GateOfALaterRun, CountsWhatEarlierOnesSent) {
  SessionRig rig;
  rig.ledger.recent_ = {{.kind = RequestKind::open,
                         .symbol = "EURUSD",
                         .side = operation::buy,
                         .total = 0.5,
                         .count = 1,
                         .time = rig.clock.now() - 4s}};
  CClientAPIManager& session = rig.add(81);
  rig.client(session).symbols = {{.id = 3, .name = "EURUSD"}};
  rig.during([&] { rig.client(session).sink->SymbolsLoaded(); });
  const auto buy = [&](double lots) -> const SentOrder& {
    return session.market_order(operation::buy, rig.books.symbols.find("EURUSD"), lots);
  };
  Limits limits;
  limits[Limit::same_ticket] = 5.0;
  limits[Limit::tickets_per_minute] = 2.0;
  rig.sessions.admission().set_limits(limits);
  EXPECT_EQ(buy(0.5).outcome, Outcome::held);
  EXPECT_EQ(buy(0.6).outcome, Outcome::waiting);
  EXPECT_EQ(buy(0.7).outcome, Outcome::held);
  rig.clock.advance(56s);
  EXPECT_EQ(buy(0.5).outcome, Outcome::waiting);
}

}  // namespace
}  // namespace tutti::testing
