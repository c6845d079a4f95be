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

TEST_F(DealerFiles, ConfigurationStartsFromTheSample) {
  put("ticks.csv",
      "time,symbol,bid,ask\r\n2026-03-01 10:00:00,EURUSD,1.1,1.1002\n"
      "\n2026-03-01 10:00:01.500,EURUSD,1.2,1.2002\n");
  const auto config = DealerConfig::load(put("dealer.toml", R"(
seed = 9
endpoint = "10.1.2.3:99"
sample_accounts = 500
replay = "ticks.csv"
[[symbol]]
name = "EURUSD"
trading = "halted"
[[symbol]]
name = "XPTUSD"
base = "XPT"
profit = "USD"
digits = 2
[[account]]
number = 500100
balance = 1
[[account]]
number = 7
user = "ZOE"
password = "Z"
)"));
  ASSERT_TRUE(config) << config.error().text();
  EXPECT_EQ(config->symbols[0].trading, Trading::halted);
  EXPECT_EQ(config->symbols[0].bid, 1.0845);
  EXPECT_EQ(config->symbols.back().name, "XPTUSD");
  ASSERT_EQ(config->accounts.size(), 501U);
  EXPECT_EQ(config->accounts[0].balance, 1.0);
  EXPECT_EQ(config->accounts[0].user, "ALDER");
  DealerRig rig(*config);
  EXPECT_EQ(rig.server.market().quote(0).bid, 1.0845);
  rig.run(1'499);
  EXPECT_EQ(rig.server.market().quote(0).bid, 1.1);
  rig.run(1);
  EXPECT_EQ(rig.server.market().quote(0).ask, 1.2002);
  EXPECT_FALSE(rig.server.next_due());
}

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

TEST_F(DealerFiles, ADamagedBookChangesNothing) {
  const std::string head = "version = 1\nnext_number = 50\n[[account]]\nnumber = 500100\n";
  const std::string money = head + "balance = 7\ncredit = 0\n";
  const std::string position = money + "[[position]]\naccount = 500100\nside = \"buy\"\nopen_price = 1\n";
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
