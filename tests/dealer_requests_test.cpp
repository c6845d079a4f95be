#include <algorithm>
#include <limits>

#include "dealer_rig.h"
#include "tests/support/test_terminal.h"

namespace tutti {
namespace {

Words join(Words first, const Words& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

std::string ticket_of(const DealerRig::Seat& seat) {
  return std::to_string(seat.client->OpenPositionItem(1)->ticket);
}

TEST(DealerRequests, PendingOrdersAreListedUntilTheDealerDecides) {
  using Change = std::function<void(DealerConfig&)>;
  using std::chrono::seconds;
  const Change by_account = [](DealerConfig& c) { c.accounts[0].dealing = seconds{5}; };
  const Change refused = [&](DealerConfig& c) {
    by_account(c);
    c.accounts[0].reply_result = result::not_enough_money;
  };
  const std::pair<Change, bool> cases[] = {
      {by_account, true},
      {[](DealerConfig& c) { c.symbols[0].dealing = seconds{5}; }, true},
      {[](DealerConfig& c) { c.faults = {fault(FaultKind::pending, {FaultPoint::open}, 0, seconds{5})}; },
       true},
      {refused, false}};
  for (const auto& [change, accepted] : cases) {
    DealerConfig config = still_market();
    change(config);
    DealerRig rig(config);
    const auto seat = rig.trader(0);
    DealerRig::send(seat, buy, "EURUSD", 0.5);
    EXPECT_EQ(rig.heard(seat, 200), (Words{"order pending", "+OP"}));
    const PendingOrder& waits = seat.seen->orders.at(0);
    EXPECT_EQ(waits.order, seat.seen->reports[0].number);
    EXPECT_EQ(waits.price, 1.08462);
    seat.seen->events.clear();
    EXPECT_EQ(rig.heard(seat, 5'000), accepted ? (Words{"accepted 1", "-OP", "opened", "summary"})
                                               : (Words{"rejected 2", "-OP", "summary"}));
    EXPECT_EQ(10 * seat.client->PendingOrderCount() + seat.client->OpenPositionCount(), accepted ? 1 : 0);
    const Outcome& outcome = rig.server.outcomes().back();
    EXPECT_EQ(outcome.number, waits.order);
    EXPECT_EQ(outcome.result, accepted ? result::succeeded : result::not_enough_money);
    EXPECT_TRUE(outcome.dealt && outcome.told);
  }
}

TEST(DealerRequests, RequotesCountDownAndEndInEveryWay) {
  const Words all = {"tick 3", "tick 2", "tick 1", "tick 0"};
  const Words three = {"tick 3", "tick 2", "tick 1"};
  const struct {
    const char* does;  // what the operator does
    int at;            // so many milliseconds after the first tick
    std::int32_t code;
    Words words;  // after the pending state
    bool done;
  } cases[] = {
      {"accept", 0, 1, {"tick 3", "gone", "accepted 1", "done", "summary"}, true},
      {"accept", 2'999, 1, join(three, {"gone", "accepted 1", "done", "summary"}), true},
      {"accept", 4'100, 6, join(all, {"rejected 0", "gone", "summary"}), false},
      {"reject", 3'500, 1, join(all, {"gone", "rejected 0", "summary"}), false},
      {"nothing", 0, 0, join(all, {"rejected 0", "gone", "summary"}), false},
      {"no money", 0, 1, {"tick 3", "gone", "rejected 2", "summary"}, false},
  };
  for (const bool close : {false, true}) {
    for (const auto& one : cases) {
      DealerConfig config = still_market();
      config.order_latency = std::chrono::milliseconds{0};
      config.faults = {fault(FaultKind::requote, {close ? FaultPoint::close : FaultPoint::open}, 0,
                             std::chrono::seconds{3})};
      config.faults[0].points = 30;
      const std::string does = one.does;
      if (does == "no money")
        (close ? config.accounts[0].reply_close_result : config.accounts[0].reply_result) =
            result::not_enough_money;
      DealerRig rig(config);
      const auto seat = rig.trader(0);
      if (close) {
        open_half(rig, seat, buy);
        seat.client->ClosePosition(ticket_of(seat), "0.5", "", next_id());
      } else {
        DealerRig::send(seat, buy, "EURUSD", 0.5);
      }
      rig.run(0);
      ASSERT_EQ(seat.seen->requotes.size(), 1U);
      const Requote first = seat.seen->requotes[0];
      EXPECT_NEAR(first.new_price, close ? 1.0842 : 1.08492, 1e-9);
      rig.run(one.at);
      if (does == "accept" || does == "no money") {
        EXPECT_EQ(seat.client->AcceptRequote(first.order, next_id()), RequestCode{one.code}) << one.at;
      } else if (does == "reject") {
        EXPECT_EQ(seat.client->RejectRequote(first.order, next_id()), RequestCode{one.code}) << one.at;
      }
      rig.run(10'000);
      Words expected = close ? Words{"close pending", "+CP"} : Words{"order pending", "+OP"};
      for (const std::string& word : one.words)
        expected.push_back(word == "gone"   ? (close ? "-CP" : "-OP")
                           : word == "done" ? (close ? "deleted" : "opened")
                                            : word);
      EXPECT_EQ(seat.seen->events, expected) << does << ' ' << one.at << ' ' << close;
      EXPECT_EQ(seat.client->OpenPositionCount(), one.done != close ? 1 : 0);
      EXPECT_EQ(seat.client->PendingOrderCount(), 0);
      if (one.done) {
        EXPECT_EQ(seat.seen->reports.back().price, first.new_price);
        EXPECT_EQ(seat.client->AcceptRequote(first.order, next_id()), request::invalid_order_id);
      }
    }
  }
}

TEST(DealerRequests, EveryCodeIsReachable) {
  // The account has a position of half a lot and an entry order from its book, as where nothing could ever
  // have been opened.
  const testing::TemporaryFolder seen;
  DealerConfig with_order = still_market();
  with_order.entry_orders = {{first, buy, "EURUSD", 0.2, 1.07, 0, 0, 0}};
  std::int64_t ticket = 0;
  {
    DealerRig rig(with_order);
    ASSERT_TRUE(rig.server.keep_book(seen.path()));
    ticket = open_half(rig, rig.trader(0), buy);
    ASSERT_TRUE(rig.server.save_book());
  }
  const std::string book = seen.read("dealer-book.toml");
  struct Kind {
    FaultPoint point;
    Words answer;  // behind the first word comes the code
    std::function<RequestCode(const DealerRig::Seat&)> send;
  };
  const Kind kinds[] = {
      {FaultPoint::open,
       {"order ", "summary"},
       [](const auto& seat) { return DealerRig::send(seat, buy, "EURUSD", 1.0); }},
      {FaultPoint::close,
       {"close ", "summary"},
       [](const auto& seat) { return seat.client->ClosePosition(ticket_of(seat), "0.5", "", next_id()); }},
      {FaultPoint::update,
       {"update "},
       [](const auto& seat) {
         return seat.client->UpdateEntryOrder(seat.client->PendingOrderItem(1)->order, 1.08, {}, next_id());
       }},
      {FaultPoint::update,
       {"new stops "},
       [&](const auto& seat) { return seat.client->UpdateSLTP(ticket, stop_prices(1.08, 0), next_id()); }},
  };
  using Change = std::function<void(DealerConfig&)>;
  const auto ask = [&](const Kind& kind, int request, int result, const Change& change) {
    DealerConfig config = still_market();
    change(config);
    DealerRig rig(config);
    const testing::TemporaryFolder home;
    home.write("dealer-book.toml", book);
    ASSERT_TRUE(rig.server.keep_book(home.path()));
    const auto seat = rig.trader(0);
    EXPECT_EQ(kind.send(seat), RequestCode{request});
    rig.run(200);
    Words answer = request == 1 ? kind.answer : Words{};
    if (request == 1) answer[0] += std::to_string(result);
    EXPECT_EQ(seat.seen->events, answer);
    EXPECT_EQ(rig.server.outcomes().back().request, RequestCode{request});
    EXPECT_EQ(rig.server.outcomes().back().result, ResultCode{result});
    EXPECT_EQ(seat.client->OpenPositionCount() + seat.client->PendingOrderCount(), 2);
    EXPECT_EQ(seat.client->PendingOrderItem(1)->price, 1.07);
    EXPECT_EQ(seat.client->OpenPositionItem(1)->stop_loss, 0.0);
  };
  const auto go_wrong = [&](const Kind& kind, FaultKind wrong, std::int32_t code) {
    const bool refused = wrong == FaultKind::refuse;
    ask(kind, refused ? code : 1, refused ? 0 : code,
        [&](DealerConfig& c) { c.faults = {fault(wrong, {kind.point}, code)}; });
  };
  for (const Kind& kind : kinds) {
    ask(kind, 2, 0, [](DealerConfig& c) { c.accounts[0].privilege = false; });
    ask(kind, 1, 3, [](DealerConfig& c) { c.symbols[0].trading = Trading::closed; });
    ask(kind, 1, 4, [](DealerConfig& c) { c.symbols[0].trading = Trading::halted; });
    for (const std::int32_t code : {4, 5, 6, 7, 8, 10, 21, 99})
      go_wrong(kind, FaultKind::refuse, code);
    for (const std::int32_t code : {2, 5, 6, 7, 8, 9, 10, 11, 12, 13, 100})
      go_wrong(kind, FaultKind::reject, code);
  }
  ask(kinds[0], 5, 0, [](DealerConfig& c) { c.accounts[0].reply_request = request::silent; });
  ask(kinds[1], 5, 0, [](DealerConfig& c) { c.accounts[0].reply_close_request = request::silent; });
}

TEST(DealerRequests, SwapAndCommissionMakeTheBooksAdd) {
  // The clock starts on a Monday noon; the midnight that ends Wednesday counts three times.
  const struct {
    Operation side;
    int days, midnights;  // that charge
    double nights;        // points per lot
  } cases[] = {{buy, 1, 1, -6.5}, {buy, 3, 3, -6.5 * 5}, {sell, 8, 6, 2.1 * 8}};
  const TimePoint monday = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + std::chrono::hours{12};
  for (const auto& one : cases) {
    DealerConfig config = still_market();
    config.symbols[0].commission = 3.5;
    config.ticks[0].at = std::chrono::hours{24 * 365};
    DealerRig rig(config, monday);
    const auto seat = rig.trader(0);
    DealerRig::send(seat, one.side, "EURUSD", 0.5);
    rig.run(200);
    EXPECT_EQ(seat.seen->opened.at(0).commission, -3.5);
    seat.seen->events.clear();
    const Words heard = rig.heard(seat, one.days * 86'400'000LL);
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "changed"), one.midnights);
    EXPECT_NEAR(seat.client->OpenPositionItem(1)->interest, one.nights * 0.5, 1e-9) << one.days;
    AccountSummary now = seat.client->GetAccountSummary(500100).values;
    EXPECT_EQ(now.balance, 50'000.0);
    EXPECT_NEAR(now.floating_pl, -6.0 - 3.5 + one.nights * 0.5, 1e-9);
    seat.client->ClosePosition(ticket_of(seat), "0.2", "", next_id());
    rig.run(200);
    now = seat.client->GetAccountSummary(500100).values;
    EXPECT_NEAR(now.balance, 50'000.0 + 0.4 * (-6.0 - 3.5 + one.nights * 0.5), 1e-9);
  }
}

TEST(DealerRequests, EntryOrdersAreKeptAndCancelled) {
  DealerConfig config = still_market();
  config.entry_orders = {{500100, operation::sell_stop, "GBPUSD", 0.2, 1.2, 1.3, 0.0, 0},
                         {500100, buy, "EURUSD", 0.2, 0.0, 1.0, 0.0, 10'000'003}};
  config.faults = {fault(FaultKind::reject, {FaultPoint::cancel}, 12)};
  config.faults[0].times = 1;
  DealerRig rig(config);
  const auto seat = rig.trader(0);
  ASSERT_EQ(seat.client->PendingOrderCount(), 2);
  const std::int64_t stop = seat.client->PendingOrderItem(1)->order;
  const std::int64_t stops = seat.client->PendingOrderItem(2)->order;

  const double nan = std::numeric_limits<double>::quiet_NaN();
  const auto limit = EntryKind::limit, breakout = EntryKind::stop;
  // The market is 1.08450 to 1.08462, orders must be 50 points away.
  const struct {
    Operation side;
    EntryKind kind;
    double amount, price, stop_loss, take_profit;  // 0: none
    std::int32_t code;
  } cases[] = {
      {buy, limit, 0.1, 1.0841, 1.08, 1.09, 1},
      {buy, limit, 0.1, 1.0842, 0, 0, 21},
      {sell, limit, 0.1, 1.0850, 0, 0, 1},
      {sell, limit, 0.1, 1.0849, 0, 0, 21},
      {buy, breakout, 0.1, 1.0852, 0, 0, 1},
      {buy, breakout, 0.1, 1.0846, 0, 0, 21},
      {sell, breakout, 0.1, 1.0840, 1.09, 0, 1},
      {sell, breakout, 0.1, 1.0850, 0, 0, 21},
      {buy, limit, 0.1, 1.08, 1.09, 0, 21},
      {buy, limit, 0.1, 1.08, 0, 1.07, 21},
      {buy, limit, 0.1, nan, 0, 0, 21},
      {buy, limit, nan, 1.08, 0, 0, 8},
      {operation::buy_stop, limit, 0.1, 1.08, 0, 0, 5},
      {buy, limit, 0.1, 1.08, nan, 0, 21},
  };
  for (const auto& one : cases) {
    *seat.seen = {};
    EXPECT_EQ(enter(seat, one.side, one.kind, one.amount, one.price, one.stop_loss, one.take_profit),
              RequestCode{one.code})
        << one.price << ' ' << one.amount;
    EXPECT_EQ(rig.heard(seat, 200), one.code == 1 ? (Words{"entry 1", "+LO"}) : Words{});
    if (one.code != 1) continue;
    EXPECT_EQ(seat.seen->orders.at(0).operation, one.kind == limit ? one.side
                                                 : one.side == buy ? operation::buy_stop
                                                                   : operation::sell_stop);
    EXPECT_EQ(seat.seen->orders.at(0).stop_loss, one.stop_loss);
  }
  EXPECT_EQ(seat.client->PendingOrderCount(), 6);

  *seat.seen = {};
  for (int i = 0; i < 3; ++i) {  // refused by the script, done, too late
    EXPECT_EQ(seat.client->DeleteEntryOrder(stop, next_id()), request::taken);
  }
  rig.run(200);
  EXPECT_EQ(seat.client->DeleteEntryOrder(stop, next_id()), request::invalid_order_id);
  std::sort(seat.seen->events.begin(), seat.seen->events.end());  // latencies differ
  EXPECT_EQ(seat.seen->events, (Words{"-LO", "cancel 1", "cancel 10", "cancel 12"}));
  EXPECT_EQ(seat.client->DeleteEntryOrder(stops, next_id()), request::invalid_order_id);
  EXPECT_EQ(seat.client->DeleteSLTPOrder(stop, next_id()), request::invalid_order_id);
  EXPECT_EQ(seat.client->DeleteSLTPOrder(stops, next_id()), request::taken);
  seat.seen->events.clear();
  EXPECT_EQ(rig.heard(seat, 200), (Words{"stops 1", "-ST"}));
  EXPECT_EQ(seat.client->PendingOrderCount(), 4);
}

// What AskRequest is told of a request that came to every kind of end, and of those that never came.
TEST(DealerRequests, AskedForARequestTheServerTellsWhatBecameOfIt) {
  DealerConfig config = still_market();
  config.ticks = {{std::chrono::seconds{20}, "EURUSD", 1.0700, 1.0702}};
  config.faults = {fault(FaultKind::swallow, {FaultPoint::open}, 0, {}, {first + 1}),
                   fault(FaultKind::silent, {FaultPoint::close}),
                   fault(FaultKind::pending, {FaultPoint::open}, 0, std::chrono::seconds{5}, {first + 2})};
  DealerRig rig(config);
  const auto seat = rig.trader(0), loses = rig.trader(1), deals = rig.trader(2);
  const auto asked = [&](const DealerRig::Seat& by, RequestId id, BookEra other = 0) {
    rig.drain();
    by.seen->events.clear();
    EXPECT_EQ(by.client->AskRequest(id, by.client->Era() + other), request::taken);
    EXPECT_EQ(by.seen->events, Words{}) << "never inside the call";
    return rig.heard(by, 0);
  };
  const auto open = [&](const DealerRig::Seat& by, double amount, RequestId id) {
    return by.client->NewMarketOrder(buy, by.client->FindSymbol("EURUSD")->id, amount, "", "", id);
  };
  const RequestId bought = next_id(), small = next_id(), bad = next_id(), lost = next_id(), dealt = next_id(),
                  placed = next_id(), gone = next_id(), close = next_id(), never = next_id();
  EXPECT_NE(seat.client->Era(), 0U);
  EXPECT_EQ(open(seat, 0.5, bought), request::taken);
  EXPECT_EQ(asked(seat, bought), Words{"waiting 0"});
  EXPECT_EQ(open(seat, 0.001, small), request::taken);
  EXPECT_EQ(open(seat, -1.0, bad), request::invalid_lots);
  EXPECT_EQ(open(loses, 0.5, lost), request::taken);
  EXPECT_EQ(open(deals, 0.5, dealt), request::taken);
  const std::int32_t symbol = seat.client->FindSymbol("EURUSD")->id;
  seat.client->NewEntryOrder({buy, EntryKind::limit, symbol, 0.2, 1.075}, placed);
  seat.client->NewEntryOrder({buy, EntryKind::limit, symbol, 0.2, 1.06}, gone);
  rig.run(200);
  EXPECT_EQ(asked(seat, gone), Words{"working 0"});
  seat.client->DeleteEntryOrder(seat.client->PendingOrderItem(2)->order, next_id());
  seat.client->ClosePosition(ticket_of(seat), "0.1", "", close);
  rig.run(200);
  EXPECT_EQ(asked(seat, bought), Words{"executed 0.5"});
  EXPECT_EQ(asked(seat, small), Words{"refused 0"});
  EXPECT_EQ(asked(seat, bad), Words{"refused 0"});
  EXPECT_EQ(open(seat, -1.0, bad), request::invalid_lots) << "as the first";
  EXPECT_EQ(asked(deals, dealt), Words{"waiting 0"});
  EXPECT_EQ(asked(seat, gone), Words{"cancelled 0"});
  EXPECT_EQ(asked(seat, close), Words{"executed 0.1"}) << "though nobody was answered";
  seat.client->ClosePosition(ticket_of(seat), "0.1", "", close);
  EXPECT_EQ(rig.heard(seat, 0), Words{"close 1"});
  EXPECT_EQ(asked(loses, lost), Words{"never taken 0"});
  EXPECT_EQ(asked(seat, placed), Words{"working 0"});
  rig.run(20'000);
  EXPECT_EQ(asked(seat, placed), Words{"executed 0.2"});
  EXPECT_EQ(asked(deals, dealt), Words{"executed 0.5"});

  // Ids are an account's own; asked about before it comes, one of this book never comes.
  EXPECT_EQ(asked(deals, bought, 1), Words{"another book 0"});
  EXPECT_EQ(asked(seat, bought, 1), Words{"executed 0.5"}) << "known from whatever book";
  EXPECT_EQ(open(loses, 0.1, bought), request::taken);
  EXPECT_EQ(asked(seat, never), Words{"never taken 0"});
  EXPECT_EQ(open(seat, 0.1, never), request::id_burnt);
  EXPECT_EQ(asked(seat, never), Words{"never taken 0"});
  EXPECT_EQ(open(deals, 0.1, never), request::taken);
  EXPECT_EQ(seat.client->AskRequest(0, seat.client->Era()), request::silent);
  seat.client->Logout();
  EXPECT_EQ(seat.client->AskRequest(bought, 0), request::invalid_account);
  EXPECT_EQ(seat.client->Era(), 0U);
}

}  // namespace
}  // namespace tutti
