#include <gtest/gtest.h>

#include <filesystem>

#include "core/file_writer.h"
#include "dealer_rig.h"

namespace tutti {
namespace {

// A folder of its own for every test.
class DealerFiles : public ::testing::Test {
 protected:
  DealerFiles() {
    folder_ = std::filesystem::path(::testing::TempDir()) /
              (std::string("dealer_") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(folder_);
  }
  ~DealerFiles() override { std::filesystem::remove_all(folder_); }

  std::filesystem::path put(const char* name, std::string_view content) {
    EXPECT_TRUE(replace_file(folder_ / name, content));
    return folder_ / name;
  }

  std::filesystem::path folder_;
};

TEST_F(DealerFiles, ConfigurationFaultsNameTheLine) {
  put("late.csv", "2,EURUSD,1,1.1\n1,EURUSD,1,1.1\n");
  put("word.csv", "# seconds\n1,EURUSD,one,1.1\n");
  put("crossed.csv", "1,EURUSD,1.2,1.1\n");
  put("mixed.csv", "1,EURUSD,1,1.1\n2026-03-01 10:00:00,EURUSD,1,1.1\n");
  const std::pair<const char*, const char*> cases[] = {
      {"seed = 1\nsed = 2\n", "line 2: sed"},
      {"\nminimum_lot = \"1\"\n", "line 2: minimum_lot"},
      {"maximum_lot = inf\n", "line 1: maximum_lot"},
      {"tick_interval_ms = 0\n", "line 1: tick_interval_ms"},
      {"endpoint = \"here\"\n", "line 1: endpoint"},
      {"seed = = 1\n", "line 1: "},
      {"[[symbol]]\nname = \"EURUSD\"\nbid = nan\n", "line 3: bid"},
      {"[[symbol]]\nname = \"NEW\"\nprofit = \"USD\"\n", "line 1: base is missing"},
      {"[[symbol]]\nname = \"EURUSD\"\n[[symbol]]\nname = \"EURUSD\"\n", "line 4: name is given twice"},
      {"[[account]]\nnumber = 5000000000\n", "line 2: number"},
      {"[[account]]\nnumber = 1\nuser = \"A\"\npassword = \"B\"\nleverage = 0\n", "line 5: leverage"},
      {"[[account]]\nnumber = 1\nuser = \"A\"\npassword = \"B\"\ncurrency = \"XXX\"\n", "to XXX"},
      {"account = 3\n", "line 1: account"},
      {"[[fault]]\naccount = 500100\n", "line 1: kind is missing"},
      {"[[fault]]\nkind = \"slow\"\n", "line 2: kind must be"},
      {"[[fault]]\nkind = \"late\"\n", "line 1: seconds is missing"},
      {"[[fault]]\nkind = \"late\"\nseconds = -1\n", "line 3: seconds"},
      {"[[fault]]\nkind = \"twice\"\nseconds = 1\n", "line 3: seconds is not known"},
      {"[[fault]]\nkind = \"silent\"\naccount = [500100, 9]\n", "line 3: account names 9"},
      {"[[fault]]\nkind = \"silent\"\naccount = \"some\"\n", "line 3: account"},
      {"[[fault]]\nkind = \"silent\"\non = [\"open\", \"price\"]\n", "line 3: on can only list"},
      {"[[fault]]\nkind = \"silent\"\nevery = 0\n", "line 3: every"},
      {"[[fault]]\nkind = \"refuse\"\ncode = 1\n", "line 3: code"},
      {"[[fault]]\nkind = \"requote\"\npoints = 1\nseconds = 1.5\n", "line 4: seconds"},
      {"[[fault]]\nkind = \"garbage\"\nvalue = \"nan\"\n", "line 3: value"},
      {"[[fault]]\nkind = \"drop\"\nevery = 2\n", "line 3: every is not known"},
      {"[[entry_order]]\naccount = 9\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\nprice = 1\n",
       "line 2: account is not configured"},
      {"[[entry_order]]\naccount = 500100\nside = \"up\"\nsymbol = \"EURUSD\"\namount = 1\n", "line 3: side"},
      {"[[entry_order]]\naccount = 500100\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\nprice = 0\n",
       "line 6: price"},
      {"[[account]]\nnumber = 1\nuser = \"A\"\npassword = \"B\"\nstop_distance = -1\n",
       "line 5: stop_distance"},
      {"replay = \"late.csv\"\n", "late.csv: line 2: is earlier"},
      {"replay = \"word.csv\"\n", "word.csv: line 2: "},
      {"replay = \"crossed.csv\"\n", "crossed.csv: line 1: "},
      {"replay = \"mixed.csv\"\n", "mixed.csv: line 2: "},
      {"replay = \"none.csv\"\n", "none.csv: "},
  };
  for (const auto& [text, expected] : cases) {
    const auto config = DealerConfig::load(put("dealer.toml", text));
    ASSERT_FALSE(config) << text;
    EXPECT_NE(config.error().text().find(expected), std::string::npos) << config.error().text();
  }
}

TEST_F(DealerFiles, TheBookGoesOnWhereItStopped) {
  const auto file = folder_ / "book.toml";
  std::int64_t last = 0;
  {
    DealerConfig config = still_market(3);
    config.first_number = 9'000'000'000'000'000'000;  // beyond what a double tells apart
    DealerRig rig(config);
    EXPECT_TRUE(rig.server.load_book(file)) << "a missing book is fine";
    const auto seat = rig.trader(0);
    const auto revision = rig.server.book_revision();
    DealerRig::send(seat, operation::buy, "EURUSD", 0.3);
    DealerRig::send(seat, operation::sell, "XAUUSD", 0.1);
    rig.run(200);
    EXPECT_GT(rig.server.book_revision(), revision);
    seat.client->ClosePosition(std::to_string(seat.client->OpenPositionItem(1)->ticket), "0.1", "");
    rig.run(200);
    DealerRig::send(seat, operation::buy, "GBPUSD", 0.2);  // still in flight when the program ends
    last = seat.seen->reports.back().number;
    ASSERT_TRUE(rig.server.save_book(file));
  }
  // A run without the account keeps what the book says of it.
  {
    DealerConfig config = still_market(3);
    config.accounts.erase(config.accounts.begin());
    DealerRig rig(config);
    ASSERT_TRUE(rig.server.load_book(file));
    ASSERT_TRUE(rig.server.save_book(file));
  }
  DealerRig rig(still_market(3));
  ASSERT_TRUE(rig.server.load_book(file));
  const auto seat = rig.trader(0);
  ASSERT_EQ(seat.client->OpenPositionCount(), 3);
  EXPECT_EQ(seat.client->OpenPositionItem(1)->amount, 0.2);
  EXPECT_EQ(seat.client->OpenPositionItem(2)->side, operation::sell);
  EXPECT_GT(seat.client->OpenPositionItem(3)->ticket, last);
  EXPECT_NEAR(seat.client->GetAccountSummary(500100).values.balance, 50'000.0 - 0.1 * 12.0, 1e-6);
  DealerRig::send(seat, operation::buy, "EURUSD", 0.1);
  rig.run(200);
  EXPECT_GT(seat.seen->opened.at(0).ticket, seat.client->OpenPositionItem(3)->ticket);
}

TEST_F(DealerFiles, WhatWaitsAndWhatIsOwedOutlivesTheProgram) {
  const auto file = folder_ / "book.toml";
  DealerConfig config = still_market(3);
  config.entry_orders = {{500100, operation::sell_stop, "GBPUSD", 0.2, 1.2, 1.3, 0.0, 0},
                         {500101, operation::buy, "GBPUSD", 0.2, 1.2, 0.0, 0.0, 0}};
  config.accounts[0].dealing = std::chrono::seconds{60};
  FaultConfig fault;
  fault.kind = FaultKind::requote;
  fault.on = {FaultPoint::open};
  fault.wait = std::chrono::seconds{30};
  fault.accounts = {500101};
  config.faults = {fault};
  // A saturday noon, whose end costs nothing.
  const TimePoint start = std::chrono::sys_days{std::chrono::year{2026} / 3 / 7} + std::chrono::hours{12};
  std::int64_t waiting = 0;
  {
    DealerRig rig(config, start);
    const auto holder = rig.trader(2);
    DealerRig::send(holder, operation::buy, "EURUSD", 1.0);
    const auto seat = rig.trader(0);
    DealerRig::send(seat, operation::buy, "EURUSD", 0.3);
    const auto requoted = rig.trader(1);
    DealerRig::send(requoted, operation::buy, "EURUSD", 0.3);
    rig.run(5'000);
    EXPECT_EQ(requoted.seen->requotes.size(), 5U);
    ASSERT_EQ(seat.client->PendingOrderCount(), 2);
    waiting = seat.client->PendingOrderItem(2)->order;
    ASSERT_TRUE(rig.server.save_book(file));
  }
  config.accounts.erase(config.accounts.begin() + 1);  // keeps its own for a later run
  config.entry_orders.resize(1);
  {
    DealerRig rig(config, start + std::chrono::hours{48});
    ASSERT_TRUE(rig.server.load_book(file));
    const auto seat = rig.trader(0);
    ASSERT_EQ(seat.client->PendingOrderCount(), 2);
    EXPECT_EQ(seat.client->PendingOrderItem(1)->price, 1.2);
    EXPECT_EQ(seat.client->PendingOrderItem(1)->operation, operation::sell_stop);
    EXPECT_EQ(seat.client->PendingOrderItem(2)->order, waiting);
    rig.run(60'000);
    EXPECT_EQ(seat.seen->events, (std::vector<std::string>{"accepted 1", "-OP", "opened", "summary"}));
    EXPECT_EQ(seat.seen->reports.at(0).price, 1.08462);
    EXPECT_NEAR(rig.trader(1).client->OpenPositionItem(1)->interest, 0.0, 1e-9);  // Saturday and Sunday
    ASSERT_TRUE(rig.server.save_book(file));
  }
  // The new price that nobody had accepted is gone with the program that offered it.
  DealerRig rig(still_market(3), start + std::chrono::hours{72});
  ASSERT_TRUE(rig.server.load_book(file));
  const auto seat = rig.trader(1);
  EXPECT_EQ(seat.client->PendingOrderCount(), 1);
  EXPECT_EQ(seat.client->OpenPositionCount(), 0);
  EXPECT_EQ(rig.server.outcomes().back().result, 0);
  EXPECT_NEAR(rig.trader(2).client->OpenPositionItem(1)->interest, -6.5, 1e-9);  // Monday
}

TEST_F(DealerFiles, ADamagedBookChangesNothing) {
  const std::string head = "version = 1\nnext_number = 50\n[[account]]\nnumber = 500100\n";
  const std::string money = head + "balance = 7\ncredit = 0\n";
  const std::string position = money + "[[position]]\naccount = 500100\nside = \"buy\"\nopen_price = 1\n";
  const std::string waiting =
      "[[order]]\nnumber = 3\naccount = 500100\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\ntime_ms = "
      "1\n"
      "price = 0\n";
  const std::pair<std::string, const char*> cases[] = {
      {"", "version is missing"},
      {"version = 2\nnext_number = 1\n", "line 1: version"},
      {head + "balance = nan\ncredit = 0\n", "line 5: balance"},
      {head + "balance = 1e300\ncredit = 0\n", "line 5: balance"},
      {head + "balance = 1\n", "line 3: credit is missing"},
      {money + "[[account]]\nnumber = 500100\nbalance = 1\ncredit = 0\n", "line 8: number is given twice"},
      {position + "open_time_ms = 1\nsymbol = \"EURUSD\"\namount = 1\nticket = 50\n", "line 14: ticket"},
      {position + "open_time_ms = 1\nsymbol = \"EURUSD\"\namount = -1\nticket = 5\n", "line 13: amount"},
      {position + "open_time_ms = 1\nsymbol = \"NONE\"\namount = 1\nticket = 5\n", "trades NONE"},
      {money + "[[request]]\nnumber = 3\naccount = 9\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\n",
       "line 9: account"},
      {money + "[[order]]\nnumber = 3\naccount = 500100\nside = \"buy\"\nsymbol = \"EURUSD\"\namount = 1\n"
               "price = 1\ntime_ms = 1\nkind = \"OP\"\n",
       "line 15: kind must be"},
      {money + waiting + "kind = \"LO\"\n", "line 14: price must be above 0"},
      {money + waiting + "kind = \"ST\"\n", "line 7: reference is missing"},
      {position + "open_time_ms = 1\nsymbol = \"EURUSD\"\namount = 1\nticket = 5\n" + waiting +
           "kind = \"ST\"\nreference = 5\n",
       "line 18: side does not close"},
      {money + "[[request]]\nnumber = 3\naccount = 500100\nkind = \"close\"\n", "line 7: "},
      {money + "oops", "line 7: "},
      {std::string("\0\xff\x01", 3), "line 1: "},
  };
  for (const auto& [text, expected] : cases) {
    DealerRig rig(still_market(1));
    const auto loaded = rig.server.load_book(put("book.toml", text));
    ASSERT_FALSE(loaded) << text;
    EXPECT_NE(loaded.error().text().find(expected), std::string::npos) << loaded.error().text() << '\n'
                                                                       << text;
    EXPECT_EQ(rig.server.accounts()[0].summary().balance, 50'000.0);
  }
}

}  // namespace
}  // namespace tutti
