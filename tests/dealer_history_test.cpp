// Requests that are known by their id, and fills, over the runs of a server.

#include "kept_rig.h"

namespace tutti {
namespace {

// Every kind of request is sent again before and after its execution, in later runs, and to a fresh book.
TEST(DealerHistory, ARequestThatComesAgainIsExecutedOnce) {
  struct Scene {
    std::int64_t ticket, order, stops;
  };
  // As it was, or with something else in it.
  using Send = std::function<RequestCode(ClientAPI&, const Scene&, bool other, RequestId)>;
  const struct {
    Send send;
    Words answers;  // until its end
    const char* told;
  } cases[] = {
      {[](ClientAPI& c, const Scene&, bool other, RequestId id) {
         return c.NewMarketOrder(buy, c.FindSymbol("EURUSD")->id, other ? 0.3 : 0.2, "", "", id);
       },
       {"order pending", "accepted 1"},
       "executed 0.2"},
      {[](ClientAPI& c, const Scene& scene, bool other, RequestId id) {
         return c.ClosePosition(std::to_string(scene.ticket), other ? "0.3" : "0.2", "", id);
       },
       {"close pending", "accepted 1"},
       "executed 0.2"},
      {[](ClientAPI& c, const Scene&, bool other, RequestId id) {
         return c.NewEntryOrder({buy, other ? EntryKind::stop : EntryKind::limit, c.FindSymbol("EURUSD")->id,
                                 0.2, 1.04, 1.03, 0, true, false},
                                id);
       },
       {"entry 1"},
       "working 0"},
      {[](ClientAPI& c, const Scene& scene, bool other, RequestId id) {
         return c.UpdateEntryOrder(scene.order, 1.06, stop_prices(other ? 1.02 : 0.0, 0), id);
       },
       {"update 1"},
       "executed 0"},
      {[](ClientAPI& c, const Scene& scene, bool other, RequestId id) {
         return c.UpdateSLTP(scene.ticket, stop_prices(1.05, other ? 1.3 : 0.0), id);
       },
       {"update stops 1"},
       "executed 0"},
      {[](ClientAPI& c, const Scene& scene, bool other, RequestId id) {
         return c.DeleteEntryOrder(scene.order + (other ? 1 : 0), id);
       },
       {"cancel 1"},
       "executed 0"},
      {[](ClientAPI& c, const Scene& scene, bool other, RequestId id) {
         return c.DeleteSLTPOrder(scene.stops + (other ? 1 : 0), id);
       },
       {"stops 1"},
       "executed 0"},
  };
  DealerConfig config = still_market(1);
  config.faults = {fault(FaultKind::pending, {FaultPoint::open, FaultPoint::close}, 0, seconds{2})};
  config.faults[0].after = seconds{5};
  for (const auto& one : cases) {
    SCOPED_TRACE(one.answers[0] + one.told);
    std::string once;
    for (const bool again : {false, true}) {
      const TemporaryFolder home;
      const RequestId id = next_id();
      Scene scene{};
      TimePoint now;
      BookEra era = 0;
      const auto answered = [&](DealerRig& rig, const DealerRig::Seat& seat, Words answers) {
        *seat.seen = {};
        EXPECT_EQ(one.send(*seat.client, scene, false, id), request::taken);
        EXPECT_EQ(one.send(*seat.client, scene, true, id), request::other_request);
        EXPECT_EQ(rig.heard(seat, 0), answers);
        for (const OrderReport& report : seat.seen->reports)
          EXPECT_EQ(report.id, id);
      };
      {
        KeptRig rig(home, config);
        const auto seat = rig.trader(0);
        scene.ticket = open_half(rig, seat, buy);
        seat.client->UpdateSLTP(scene.ticket, stop_prices(1.06, 0), 0);
        rig.run(200);
        enter(seat, buy, EntryKind::limit, 0.1, 1.05);
        rig.run(5'000);
        scene.stops = seat.client->PendingOrderItem(1)->order;
        scene.order = seat.client->PendingOrderItem(2)->order;
        *seat.seen = {};
        EXPECT_EQ(one.send(*seat.client, scene, false, id), request::taken);
        if (again) answered(rig, seat, {});
        rig.run(200);
        EXPECT_EQ(seat.seen->events.at(0), one.answers[0]);
        EXPECT_EQ(seat.seen->reports.at(0).left, one.answers.size() == 2 ? 0.2 : 0.0);
        if (again) answered(rig, seat, {one.answers[0]});
        rig.run(3'000);
        if (!again) {
          once = books(rig.server);
          continue;
        }
        answered(rig, seat, {one.answers.back()});
        EXPECT_EQ(seat.seen->reports.at(0).filled, std::stod(std::string{one.told}.substr(8)));
        EXPECT_EQ(books(rig.server), once);
        era = seat.client->Era();
        now = rig.clock.now();
      }
      for (const bool saved : {false, true}) {  // killed, then ended
        KeptRig rig(home, config, now);
        ASSERT_TRUE(rig.kept) << rig.fault();
        const auto seat = rig.trader(0);
        EXPECT_EQ(seat.client->Era(), era);
        answered(rig, seat, {one.answers.back()});
        EXPECT_EQ(seat.client->AskRequest(id, era), request::taken);
        EXPECT_EQ(rig.heard(seat, 1'000), Words{one.told});
        EXPECT_EQ(books(rig.server), once);
        EXPECT_TRUE(!saved || rig.server.save_book());
      }
      KeptRig rig(home, config, now, true);
      const std::string fresh = books(rig.server);
      const auto seat = rig.trader(0);
      EXPECT_NE(seat.client->Era(), era);
      EXPECT_EQ(one.send(*seat.client, scene, false, id), request::taken);
      EXPECT_EQ(one.send(*seat.client, scene, true, id), request::other_request);
      // What waited went with its book.
      const bool waited = std::string_view{one.told} == "working 0";
      EXPECT_EQ(rig.heard(seat, 5'000), Words{waited ? "cancelled 0" : one.answers.back()});
      EXPECT_EQ(books(rig.server), fresh);
    }
  }
}

TEST(DealerHistory, IdsOutliveWhateverHappensToTheBook) {
  const TemporaryFolder home;
  const RequestId known = next_id(), burnt = next_id();
  const auto open = [](const DealerRig::Seat& seat, RequestId id) {
    return seat.client->NewMarketOrder(buy, seat.client->FindSymbol("EURUSD")->id, 0.1, "", "", id);
  };
  enum class End { killed, saved, torn, unreadable };
  bool fresh = false;
  for (const End end : {End::killed, End::saved, End::torn, End::unreadable, End::killed}) {
    SCOPED_TRACE(static_cast<int>(end));
    KeptRig rig(home, still_market(1), noon, fresh);
    ASSERT_TRUE(rig.kept) << rig.fault();
    const auto seat = rig.trader(0);
    EXPECT_EQ(open(seat, known), request::taken);
    if (!fresh) seat.client->AskRequest(burnt, seat.client->Era());
    rig.run(300);
    EXPECT_EQ(open(seat, burnt), request::id_burnt);
    rig.run(300);
    EXPECT_EQ(seat.client->OpenPositionCount(), fresh ? 0 : 1);
    // The fills of a book that went are told, too.
    EXPECT_EQ(seat.client->AskExecutions(noon), request::taken);
    rig.run(0);
    ASSERT_EQ(seat.seen->fills.size(), 1U);
    EXPECT_EQ(seat.seen->fills[0].id, known);
    DealerRig::send(seat, buy, "EURUSD", -1.0);  // something to be saved
    rig.run(0);
    EXPECT_TRUE(end == End::killed || rig.server.save_book());
    const std::string file = home.read("dealer-requests.log");
    if (end == End::torn) home.write("dealer-requests.log", file + "entry = {told = [\"5001");
    if (end == End::unreadable) home.write("dealer-book.toml", "book = 1\n" + home.read("dealer-book.toml"));
    fresh = end == End::unreadable;
    if (end != End::torn) continue;
    KeptRig next(home, still_market(1));
    ASSERT_TRUE(next.kept) << next.fault();
    ASSERT_EQ(next.kept->size(), 1U);
    EXPECT_NE(next.kept->front().find("dealer-requests.log"), std::string::npos);
    EXPECT_NE(home.read("dealer-requests.log.damaged"), "");
  }
  std::string file = home.read("dealer-requests.log");
  file[file.find("told = [\"") + 10] = 'x';
  home.write("dealer-requests.log", file + file.substr(file.find('\n') + 1));
  for (const bool from_new : {false, true})
    EXPECT_NE(KeptRig(home, still_market(1), noon, from_new).fault().find("dealer-requests.log: line 2"),
              std::string::npos);
}

TEST(DealerHistory, FillsAreToldSinceAMoment) {
  const TemporaryFolder home;
  DealerConfig config = prices({{seconds{30}, "EURUSD", 1.0700, 1.0702}});
  const auto told = [](DealerRig& rig, const DealerRig::Seat& seat, TimePoint since) {
    *seat.seen = {};
    EXPECT_EQ(seat.client->AskExecutions(since), request::taken);
    Words words = rig.heard(seat, 0);
    for (const Execution& fill : seat.seen->fills)
      words.push_back((fill.closes ? "close " : "open ") + number_text(fill.lots) + " of " +
                      std::to_string(fill.number - 10'000'000) + (fill.id != 0 ? " by id" : ""));
    return words;
  };
  TimePoint before, between;
  const Words all = {"fills", "open 0.5 of 1 by id", "close 0.1 of 1 by id", "close 0.4 of 1",
                     "open 0.3 of 5 by id"};
  {
    KeptRig rig(home, config);
    const auto seat = rig.trader(0), other = rig.trader(1);
    before = rig.clock.now();
    const std::int64_t ticket = open_half(rig, seat, buy);
    open_half(rig, other, sell);
    seat.client->ClosePosition(std::to_string(ticket), "0.1", "", next_id());
    rig.run(200);
    seat.client->UpdateSLTP(ticket, stop_prices(1.0750, 0), next_id());
    rig.run(200);
    between = rig.clock.now();
    enter(seat, buy, EntryKind::limit, 0.3, 1.0750);
    rig.run(200);
  }
  {
    KeptRig rig(home, config, between + seconds{1});
    const auto seat = rig.trader(0), other = rig.trader(1);
    rig.run(40'000);
    EXPECT_EQ(told(rig, seat, before), all);
    const TimePoint last = seat.seen->fills.back().time;
    EXPECT_EQ(told(rig, seat, last), (Words{"fills", all[3], all[4]}));  // one price filled both
    EXPECT_EQ(told(rig, seat, between).size(), 3U);
    EXPECT_EQ(told(rig, seat, rig.clock.now() + seconds{1}), Words{"fills"});
    EXPECT_EQ(told(rig, seat, noon - seconds{1}).front(), "some fills");
    EXPECT_EQ(told(rig, other, before), (Words{"fills", "open 0.5 of 2 by id"}));
  }
  for (int run = 0; run < 4; ++run) {
    KeptRig rig(home, config, noon + seconds{60});
    const auto seat = rig.trader(0);
    EXPECT_EQ(told(rig, seat, before).size(), 5U);
    EXPECT_EQ(told(rig, seat, noon).front(), "fills");
    EXPECT_EQ(told(rig, seat, noon - seconds{1}).front(), "some fills");
    for (int saves = 0; saves < 2 * run; ++saves) {
      DealerRig::send(seat, buy, "EURUSD", -1.0);  // something to be saved
      rig.run(0);
      EXPECT_TRUE(rig.server.save_book());
    }
  }
}

}  // namespace
}  // namespace tutti
