// What outlives a program that ends in the middle: the server is dropped without its end, and another one
// starts in the folder.

#include <algorithm>
#include <optional>

#include "core/file_writer.h"
#include "dealer_rig.h"
#include "tests/support/test_terminal.h"

namespace tutti {
namespace {

using std::chrono::seconds;
using testing::TemporaryFolder;

const TimePoint noon = std::chrono::sys_days{std::chrono::year{2026} / 3 / 4} + std::chrono::hours{12};

// What the server has of all accounts, as a text.
std::string books(const DealingServer& server) {
  std::string text;
  for (const TradingAccount& account : server.accounts()) {
    const BookState::Account state = account.state();
    text += std::to_string(state.number) + " " + number_text(state.balance);
    for (const OpenPosition& one : state.positions)
      text += " #" + std::to_string(one.ticket) + (one.side > 0 ? "+" : "-") + number_text(one.amount) + "@" +
              number_text(one.open_price) + "/" + number_text(one.interest);
    for (const PendingOrder& one : state.orders)
      text += " " + one.kind + std::to_string(one.order) + ":" + number_text(one.price) + "," +
              number_text(one.stop_loss) + "," + number_text(one.take_profit);
    text += "\n";
  }
  return text;
}

struct KeptRig : DealerRig {
  KeptRig(const TemporaryFolder& home, DealerConfig config, TimePoint start = noon, bool fresh = false)
      : DealerRig(std::move(config), start), kept(server.keep_book(home.path(), fresh)) {}
  std::string fault() const { return kept ? "" : kept.error().text(); }

  tl::expected<Words, FileError> kept;
};

DealerConfig prices(std::vector<Tick> ticks, int accounts = 2) {
  DealerConfig config = still_market(accounts);
  config.ticks = std::move(ticks);
  return config;
}

TEST(DealerLog, EveryKindOfChangeIsThereAfterACrash) {
  const TemporaryFolder home;
  DealerConfig config =
      prices({{seconds{20}, "EURUSD", 1.0700, 1.0702}, {seconds{40}, "EURUSD", 1.0600, 1.0602}});
  config.first_number = 9'000'000'000'000'000'000;  // beyond what a double tells apart
  config.symbols[0].commission = 3;
  config.entry_orders = {{first + 1, buy, "EURUSD", 0.4, 1.0650, 1.05, 0, 0}};
  KeptRig rig(home, config);
  const auto one = rig.trader(0), two = rig.trader(1);
  const auto expect_kept = [&](int at) {
    KeptRig next(home, config, rig.clock.now());
    ASSERT_TRUE(next.kept) << next.fault();
    EXPECT_EQ(*next.kept, Words{}) << at;
    EXPECT_EQ(books(next.server), books(rig.server)) << at;
    // The same where the book was written anew, elsewhere.
    const TemporaryFolder copy;
    for (const char* file : {"dealer-book.toml", "dealer-book.log", "dealer-numbers.toml"})
      copy.write(file, home.read(file));
    ASSERT_TRUE(KeptRig(copy, config, rig.clock.now()).server.save_book());
    const KeptRig saved(copy, config, rig.clock.now());
    ASSERT_TRUE(saved.kept) << saved.fault();
    EXPECT_EQ(books(saved.server), books(rig.server)) << at;
  };
  const std::int64_t ticket = open_half(rig, one, buy);
  expect_kept(1);
  one.client->UpdateSLTP(ticket, stop_prices(1.0750, 1.2), next_id());
  one.client->ClosePosition(std::to_string(ticket), "0.1", "", next_id());
  rig.run(500);
  expect_kept(2);
  enter(two, buy, EntryKind::limit, 0.3, 1.1, 0, 0, "GBPUSD");
  rig.run(500);
  const std::int64_t waiting = two.client->PendingOrderItem(2)->order;
  two.client->UpdateEntryOrder(waiting, 1.2, {}, next_id());
  rig.run(500);
  expect_kept(3);
  two.client->DeleteEntryOrder(waiting, next_id());
  rig.run(20'000);  // the stop loss goes with its position
  EXPECT_EQ(one.client->OpenPositionCount() + one.client->PendingOrderCount(), 0);
  expect_kept(4);
  rig.run(20'000);  // the entry order becomes a position with a stop loss
  EXPECT_EQ(two.client->OpenPositionCount(), 1);
  expect_kept(5);
  rig.run(12 * 3'600'000);  // midnight
  EXPECT_NE(two.client->OpenPositionItem(1)->interest, 0.0);
  expect_kept(6);
}

// Whatever was told is there; what stood in the piece that is lost never was told.
TEST(DealerLog, ATornLastLineIsCutAndReportedDamageElsewhereEndsTheStart) {
  const TemporaryFolder home;
  Words at_line;  // the books after so many lines of the log
  {
    KeptRig rig(home, still_market(1));
    const auto seat = rig.trader(0);
    for (int i = 0; i < 3; ++i) {
      DealerRig::send(seat, buy, "EURUSD", 0.1 * (i + 1));
      rig.run(0);
      ASSERT_TRUE(i > 0 || rig.server.save_book());
      at_line.push_back(books(rig.server));
      rig.run(200);
      at_line.push_back(books(rig.server));
    }
  }
  const std::string log = home.read("dealer-book.log");
  const std::string book = home.read("dealer-book.toml");
  Words lines;
  for (std::size_t at = 0; at < log.size(); at = log.find('\n', at) + 1)
    lines.push_back(log.substr(at, log.find('\n', at) + 1 - at));
  ASSERT_EQ(lines.size(), at_line.size()) << log;  // with the head in front, and the first one in the book
  const auto start = [&](const std::string& changed_log, const std::string& changed_book) {
    home.write("dealer-book.log", changed_log);
    home.write("dealer-book.toml", changed_book);
    KeptRig rig(home, still_market(1), noon);
    if (!rig.kept) return rig.fault();
    std::string found = books(rig.server);
    for (const std::string& note : *rig.kept)
      found += note.substr(note.find("dealer-book"));
    return found;
  };
  std::string whole;
  for (std::size_t line = 0; line < lines.size(); ++line) {
    for (std::size_t kept = 0; kept <= lines[line].size(); kept += kept < 3 ? 1 : 17) {
      const bool torn = (line == 0 || kept > 0) && kept + 1 < lines[line].size();
      const std::string note = "dealer-book.log: line " + std::to_string(line + 1) +
                               " was damaged and is left out; the file as it was is dealer-book.log.damaged";
      EXPECT_EQ(start(whole + lines[line].substr(0, kept), book),
                at_line[line == 0 ? 0 : line - 1] + (torn ? note : ""))
          << line << ' ' << kept;
    }
    whole += lines[line];
  }
  EXPECT_EQ(start(log, book), at_line.back());
  {
    KeptRig rig(home, still_market(1), noon + seconds{5});
    DealerRig::send(rig.trader(0), buy, "EURUSD", 0.5);
    rig.run(200);
    ASSERT_TRUE(rig.server.save_book());
    const std::string found = books(rig.server);
    EXPECT_EQ(start(log, home.read("dealer-book.toml")), found) << "the book holds what is still in its log";
  }
  const std::string first_log = lines[0];
  const auto last_line = book.rfind('\n', book.size() - 2) + 1;
  const auto before = book.rfind('\n', last_line - 2) + 1;
  const std::string left_out = " was damaged and is left out; the file as it was is dealer-book.toml.damaged";
  const struct {
    const char* what;
    std::string log, book, found;
  } cases[] = {
      {"a log that was never made", "", book, at_line[0] + "dealer-book.log: line 1 was damaged"},
      {"an older book put back", lines[0] + lines[1], "# x\nversion = 1\nnext_number = 5\n",
       "line 1: goes with another book"},
      {"the book's end torn", first_log, book.substr(0, book.size() - 9),
       at_line[0] + "dealer-book.toml: line 7" + left_out},
      {"the book's end missing", first_log, book.substr(0, last_line),
       at_line[0] + "dealer-book.toml: line 7" + left_out},
      {"an entry of the book torn", first_log, book.substr(0, last_line - 5),
       "dealer-book.toml: line 6: 2 of 4 entries are there"},
      {"an entry of the book missing", first_log, book.substr(0, before),
       "dealer-book.toml: line 6: 2 of 4 entries are there"},
      {"an entry changed by hand", first_log, book.substr(0, before - 20) + book.substr(before - 1),
       at_line[0]},
  };
  for (const auto& one : cases)
    EXPECT_NE(start(one.log, one.book).find(one.found), std::string::npos) << one.what << '\n'
                                                                           << start(one.log, one.book);
}

// The blocks of a piece reach the disk in any order, so that any part of the last one may be missing.
TEST(DealerLog, AnUnfinishedLastPieceIsCutWhole) {
  const TemporaryFolder home;
  const auto found_in = [](const DealingServer& server) {
    return books(server) + std::to_string(server.requests_in_flight()) + " on their way";
  };
  std::string sent, log, book;
  {
    KeptRig rig(home, still_market(3));
    std::vector<DealerRig::Seat> seats;
    for (std::size_t account = 0; account < 3; ++account)
      seats.push_back(rig.trader(account));
    for (const auto amount : {0.1, 0.2}) {
      for (const auto& seat : seats)
        DealerRig::send(seat, buy, "EURUSD", amount);
      rig.run(0);
      sent = found_in(rig.server);
      rig.run(500);
      ASSERT_TRUE(amount > 0.1 || rig.server.save_book());
    }
    log = home.read("dealer-book.log");
    book = home.read("dealer-book.toml");
  }
  std::vector<std::size_t> begins{0};  // of lines: the head, two pieces of three, the end
  for (std::size_t at = 0; (at = log.find('\n', at) + 1) != 0;)
    begins.push_back(at);
  ASSERT_EQ(begins.size(), 8U) << log;
  enum How { changed, zeroed, ended };  // zeroed with its end, ended in front of it
  const std::string broken = "is damaged";
  const struct {
    How how;
    std::vector<std::size_t> lines;
    std::string note;
  } cases[] = {{changed, {5}, "lines 5 to 7 were"},
               {changed, {6}, "lines 5 to 7 were"},
               {changed, {7}, "lines 5 to 7 were"},
               {changed, {5, 6}, "lines 5 to 7 were"},
               {zeroed, {5}, "lines 5 to 6 were"},
               {zeroed, {5, 6}, "line 5 was"},
               {zeroed, {6, 7}, "lines 5 to 6 were"},
               {ended, {7}, "lines 5 to 6 were"},
               {ended, {6}, "line 5 was"},
               {changed, {4}, broken},
               {changed, {3, 7}, broken},
               {zeroed, {4, 5}, broken},
               {changed, {4, 5, 6, 7}, broken},
               {changed, {1, 5}, broken}};
  for (const auto& one : cases) {
    std::string text = log;
    for (const std::size_t line : one.lines) {
      if (one.how == changed) text[begins[line - 1] + 20] ^= 0x40;
      if (one.how == zeroed)
        text.replace(begins[line - 1], begins[line] - begins[line - 1], begins[line] - begins[line - 1],
                     '\0');
      if (one.how == ended) text.resize(begins[line - 1]);
    }
    home.write("dealer-book.log", text);
    home.write("dealer-book.toml", book);
    const KeptRig rig(home, still_market(3));
    const bool cut = one.note != broken;
    ASSERT_EQ(rig.kept.has_value(), cut) << rig.fault();
    EXPECT_NE((cut ? rig.kept->at(0) : rig.fault()).find(one.note), std::string::npos)
        << one.note << ": " << (cut ? rig.kept->at(0) : rig.fault());
    if (!cut) continue;
    EXPECT_EQ(found_in(rig.server), sent);
    EXPECT_EQ(home.read("dealer-book.log.damaged"), text);
  }
}

TEST(DealerLog, WhatTheBookCanNotHoldIsRefusedAtOnce) {
  const TemporaryFolder home;
  DealerConfig config = still_market(1);
  SymbolConfig& gold = config.symbols[15];
  gold.bid = gold.spread = 1e9;
  gold.digits = 0;
  gold.contract_size = 1e-6;
  config.entry_orders = {{first, buy, "EURUSD", 0.4, 1.0, 0, 0, 0}};
  KeptRig rig(home, config);
  const auto seat = rig.trader(0);
  const std::int64_t ticket = open_half(rig, seat, buy);
  const std::int64_t waiting = seat.client->PendingOrderItem(1)->order;
  const auto close = [&](const char* amount) {
    return seat.client->ClosePosition(std::to_string(ticket), amount, "", next_id());
  };
  const auto enter_at = [&](EntryKind kind, double amount, double price, double take_profit) {
    return enter(seat, buy, kind, amount, price, 0, take_profit);
  };
  const auto change = [&](double price, double stop_loss, double take_profit) {
    return seat.client->UpdateEntryOrder(waiting, price, stop_prices(stop_loss, take_profit), next_id());
  };
  const auto stops = [&](double stop_loss, double take_profit) {
    return seat.client->UpdateSLTP(ticket, stop_prices(stop_loss, take_profit), next_id());
  };
  const auto limit = EntryKind::limit, stop = EntryKind::stop;
  const auto taken = request::taken, lots = request::invalid_lots, price = request::invalid_price;
  const std::pair<std::function<std::int32_t()>, std::int32_t> cases[] = {
      {[&] { return DealerRig::send(seat, buy, "EURUSD", 1e-9); }, lots},
      {[&] { return DealerRig::send(seat, buy, "EURUSD", 1e-8); }, taken},
      {[&] { return DealerRig::send(seat, buy, "XAUUSD", 0.1); }, taken},
      {[&] { return close("0.000000009"); }, lots},
      {[&] { return close("0.00000001"); }, taken},
      {[&] { return enter_at(limit, 9e-9, 1.0, 0); }, lots},
      {[&] { return enter_at(limit, 0.1, 9e-9, 0); }, price},
      {[&] { return enter_at(limit, 1e-8, 1e-8, 0); }, taken},
      {[&] { return enter_at(stop, 0.1, 2e9, 0); }, price},
      {[&] { return enter_at(stop, 0.1, 1.2, 1.1e9); }, price},
      {[&] { return enter_at(stop, 0.1, 9e8, 1e9); }, taken},
      {[&] { return change(1.0, 1e-300, 0); }, price},
      {[&] { return change(1.0, 0, 1.1e9); }, price},
      {[&] { return change(1.0, 1e-8, 1e9); }, taken},
      {[&] { return stops(1e-9, 0); }, price},
      {[&] { return stops(0, 1.1e9); }, price},
      {[&] { return stops(1e-8, 1e9); }, taken},
  };
  for (const auto& [ask, code] : cases) {
    const auto at = &ask - &cases[0].first;
    EXPECT_EQ(ask(), code) << at;
    for (const int wait : {0, 500}) {
      rig.run(wait);
      const KeptRig next(home, config, rig.clock.now());
      ASSERT_TRUE(next.kept) << at << ": " << next.fault();
      EXPECT_EQ(books(next.server), books(rig.server));
      EXPECT_EQ(next.server.requests(), rig.server.requests());
    }
  }
  EXPECT_EQ(seat.client->OpenPositionItem(2)->open_price, 1e9);
}

// A replay may bring the first price of a symbol later than the requests of the run before.
TEST(DealerLog, ResumedRequestsWaitForTheFirstPrice) {
  const TemporaryFolder home;
  DealerConfig config = prices({{seconds{1}, "EURUSD", 1.0700, 1.0702}}, 1);
  config.symbols[0].bid = 0;
  config.faults = {fault(FaultKind::delay, {FaultPoint::open}, 0, seconds{30})};
  {
    KeptRig rig(home, config);
    const auto seat = rig.trader(0);
    rig.run(2'000);
    ASSERT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.1), request::taken);
    rig.run(0);
  }
  {
    KeptRig rig(home, config, noon + seconds{60});
    rig.run(999);
    EXPECT_EQ(rig.server.requests_in_flight(), 1U);
    rig.run(1);
    EXPECT_EQ(rig.server.accounts()[0].positions().at(0).record.open_price, 1.0702);
  }
}

TEST(DealerLog, RequestsKeepTheirDueTime) {
  const TemporaryFolder home;
  DealerConfig config = still_market(3);
  config.accounts[1].dealing = seconds{60};
  config.faults = {fault(FaultKind::delay, {FaultPoint::open}, 0, seconds{30}, {first}),
                   fault(FaultKind::requote, {FaultPoint::open}, 0, seconds{20}, {first + 2})};
  std::vector<TradeRequest> left;
  {
    KeptRig rig(home, config);
    for (std::size_t account = 0; account < 3; ++account)
      DealerRig::send(rig.trader(account), buy, "EURUSD", 0.1);
    rig.run(5'000);
    left = rig.server.requests();
    ASSERT_EQ(left.size(), 3U);
  }
  KeptRig rig(home, config, noon + seconds{10});
  EXPECT_EQ(rig.server.requests(), left);
  // The requote runs out, the delayed one arrives, the dealer decides; each at its time and only once.
  for (const TradeRequest& request : left) {
    rig.run((request.due - rig.clock.now()).count() - 1);
    const auto before = rig.server.outcomes().size();
    rig.run(1);
    ASSERT_EQ(rig.server.outcomes().size(), before + 1);
    EXPECT_EQ(rig.server.outcomes().back().account, request.account);
    EXPECT_EQ(rig.server.outcomes().back().result, request.account == first + 2 ? 0 : 1);
  }
  KeptRig last(home, config, noon + seconds{300});
  last.run(1'000);
  EXPECT_EQ(books(last.server), books(rig.server));
  EXPECT_TRUE(last.server.outcomes().empty());
}

TEST(DealerLog, AGroupIsStoredAtOnceAndTheBookIsWrittenWhenTheLogHasGrown) {
  const TemporaryFolder home;
  DealerConfig config = still_market(500);
  KeptRig rig(home, config);
  std::vector<DealerRig::Seat> seats;
  for (const AccountConfig& account : config.accounts)
    seats.push_back(rig.seat({account.user, account.password, account.number, {}}));
  rig.run(1'000);
  std::size_t longest = 0;
  for (int round = 0; round < 4; ++round) {
    const auto stores = rig.server.book().stores();
    for (const auto& seat : seats)
      DealerRig::send(seat, buy, "EURUSD", 0.1);
    rig.run(0);
    EXPECT_EQ(rig.server.book().stores(), stores + 1);
    rig.run(500);
    EXPECT_EQ(rig.server.book().stores(), stores + 2);
    longest = std::max(longest, home.read("dealer-book.log").size());
  }
  EXPECT_GT(longest, 256U * 1024);
  EXPECT_LT(longest, 1024U * 1024);
  EXPECT_GT(home.read("dealer-book.toml").size(), 200'000U);
  KeptRig next(home, config, rig.clock.now());
  EXPECT_EQ(books(next.server), books(rig.server));
  ASSERT_TRUE(rig.server.save_book());
  EXPECT_LT(home.read("dealer-book.log").size(), 100U);
}

TEST(DealerLog, NothingIsToldThatCanNotBeStored) {
  const TemporaryFolder home;
  KeptRig rig(home, still_market(2));
  const auto seat = rig.trader(0);
  open_half(rig, seat, buy);
  const auto stored = books(rig.server);
  DealerRig::send(seat, buy, "EURUSD", 0.1);
  rig.run(0);
  const std::size_t size = home.read("dealer-book.log").size();
  auto full = std::make_optional<testing::FullDisk>(size + 40);
  EXPECT_EQ(rig.heard(seat, 200), Words{});
  const auto& failure = rig.server.book().failure();
  EXPECT_TRUE(failure && failure->file == home.path() / "dealer-book.log");
  EXPECT_EQ(home.read("dealer-book.log").size(), size);
  EXPECT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.2), request::silent);
  EXPECT_EQ(rig.heard(seat, 5'000), Words{});
  {
    KeptRig next(home, still_market(2), noon);  // what the next program would find
    EXPECT_EQ(books(next.server), stored);
    EXPECT_EQ(next.server.requests_in_flight(), 1U);
  }
  full.reset();
  EXPECT_EQ(rig.heard(seat, 1'000), (Words{"order 1", "opened", "summary"}));
  EXPECT_FALSE(failure);
  EXPECT_EQ(DealerRig::send(seat, buy, "EURUSD", 0.2), request::taken);
  rig.run(200);
  KeptRig next(home, still_market(2), rig.clock.now());
  EXPECT_EQ(books(next.server), books(rig.server));
  EXPECT_EQ(next.server.accounts()[0].positions().size(), 3U);
}

TEST(DealerLog, NumbersAreNeverGivenTwiceAndSeedsRepeat) {
  const TemporaryFolder home;
  DealerConfig config = still_market(1);
  config.entry_orders = {{first, buy, "EURUSD", 0.2, 1.07, 0, 0, 0}};
  std::int64_t last = 0;
  std::optional<Words> course;
  enum class End { saved, killed, deleted, damaged };
  bool damaged = false;
  for (const End end : {End::saved, End::killed, End::deleted, End::damaged, End::killed, End::saved}) {
    KeptRig rig(home, config, noon, true);
    ASSERT_TRUE(rig.kept) << rig.fault();
    EXPECT_EQ(rig.kept->size(), damaged ? 1U : 0U);
    damaged = end == End::damaged;
    const auto seat = rig.trader(0);
    EXPECT_EQ(seat.client->OpenPositionCount(), 0);
    EXPECT_GT(seat.client->PendingOrderItem(1)->order, last);
    Words heard;
    for (int i = 0; i < 40; ++i) {
      if (i < 5) DealerRig::send(seat, buy, "EURUSD", 0.1);
      for (const std::string& word : rig.heard(seat, 10))
        heard.push_back(std::to_string(i) + word);
    }
    EXPECT_EQ(course.value_or(heard), heard);
    course = heard;
    EXPECT_GT(seat.seen->reports.front().number, last);
    last = seat.seen->reports.back().number;
    EXPECT_TRUE(end != End::saved || rig.server.save_book());
    if (damaged) {  // and the numbers of their own are gone
      home.write("dealer-book.toml", "book = 1\n" + home.read("dealer-book.toml"));
      std::filesystem::remove(home.path() / "dealer-numbers.toml");
    }
    if (end != End::deleted) continue;
    for (const char* name : {"dealer-book.toml", "dealer-book.log"})
      std::filesystem::remove(home.path() / name);
  }
  EXPECT_TRUE(
      home.read("dealer-numbers.toml").ends_with("\nnext_number = " + std::to_string(last + 1) + "\n"));
  home.write("dealer-numbers.toml", "next_number = none\n");
  EXPECT_NE(KeptRig(home, config, noon, true).fault().find("dealer-numbers.toml: line 1: "),
            std::string::npos);
}

// Every kind of request is sent again before and after its execution, in later runs, and to a fresh book.
TEST(DealerLog, ARequestThatComesAgainIsExecutedOnce) {
  struct Scene {
    std::int64_t ticket, order, stops;
  };
  // As it was, or with something else in it.
  using Send = std::function<std::int32_t(ClientAPI&, const Scene&, bool other, RequestId)>;
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

TEST(DealerLog, IdsOutliveWhateverHappensToTheBook) {
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

TEST(DealerLog, FillsAreToldSinceAMoment) {
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
  const Words all = {"fills", "open 0.5 of 1 by id", "close 0.1 of 1 by id", "open 0.3 of 5 by id",
                     "close 0.4 of 1"};
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
    Words found = told(rig, seat, before);
    std::sort(found.begin() + 3, found.end());
    Words sorted = all;
    std::sort(sorted.begin() + 3, sorted.end());
    EXPECT_EQ(found, sorted);
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
