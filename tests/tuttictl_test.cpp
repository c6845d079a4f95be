// The terminal without a screen, from its arguments to its exit status.

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <regex>
#include <tuple>

#include "core/home_lock.h"
#include "core/stop_signals.h"
#include "core/texts.h"
#include "tests/support/command_line_rig.h"

namespace tutti::testing {
namespace {

using std::chrono::milliseconds;

// Every order of the second account is answered after half a minute.
constexpr auto slow_second =
    "sample_accounts = 3\n[[fault]]\nkind = \"delay\"\naccount = 500101\nseconds = 30\non = [\"open\"]\n";
constexpr auto buy_equal = "order --buy EURUSD --amount 3 --rule equal";

std::size_t count(const std::string& text, const std::string& piece) {
  return split(text, piece).size() - 1;
}

TEST(Tuttictl, ASignalEndsTheWaitAndKeepsWhatIsKnown) {
  // At 50 ms accounts are logging in, at 2000 two of three orders are answered.
  for (const auto& [signal, at, unknown, positions] :
       {std::tuple{SIGINT, 50ms, 0u, 0u}, {SIGTERM, 2000ms, 1u, 3u}, {SIGHUP, 2000ms, 1u, 3u}}) {
    CommandLineRig rig{slow_second};
    rig.on_pause = [&, signal = signal, at = at] { rig.signal = rig.clock.elapsed() >= at ? signal : 0; };
    EXPECT_EQ(rig.run(buy_equal), 128 + signal);
    EXPECT_LE(rig.lasted, at + milliseconds{10});
    EXPECT_EQ(rig.out.empty(), unknown == 0) << rig.out;
    EXPECT_EQ(count(rig.out, "unknown\n"), unknown);
    rig.on_pause = nullptr;
    rig.signal = 0;
    rig.clock.advance(milliseconds{60'000});
    // What became of it is told once, and is no difference.
    const std::string known = " of account 500101 from the earlier run: Succeeded";
    EXPECT_EQ(rig.run("verify"), 0) << rig.out;
    EXPECT_EQ(count(rig.err, known), unknown) << rig.err;
    EXPECT_EQ(rig.run("journal 500101"), 0);
    EXPECT_EQ(count(rig.out, known), unknown) << rig.out;
    EXPECT_EQ(count(rig.out, "no result came: the outcome is unknown"), unknown) << rig.out;
    EXPECT_EQ(rig.run("--csv positions"), 0);
    EXPECT_EQ(count(rig.out, "EURUSD"), positions) << rig.out;
  }
}

TEST(Tuttictl, AReportThatCannotBeWrittenCostsNoData) {
  int gone[2];
  ASSERT_EQ(::pipe(gone), 0);
  ::close(gone[0]);
  const int full = ::open("/dev/full", O_WRONLY);
  struct Case {
    const char* words;
    int report_to, status;
    const char* message;
    const char* positions;
  };
  const StopSignals no_death_by_pipe;
  const std::string sends = "The command was carried out and saved, but its report can't be written: ";
  for (const auto& [words, report_to, status, message, positions] :
       {Case{"positions", gone[1], 0, nullptr, "0 positions\n"},
        Case{"positions", full, 3, nullptr, "0 positions\n"},
        Case{buy_equal, gone[1], 3, "Broken pipe\n", "3 positions\n"},
        Case{buy_equal, full, 3, "No space left on device\n", "3 positions\n"}}) {
    CommandLineRig rig{"sample_accounts = 3"};
    rig.report_to = report_to;
    EXPECT_EQ(rig.run(words), status) << words;
    EXPECT_EQ(rig.err, message == nullptr ? "" : sends + message);
    rig.report_to = -1;
    rig.run("positions");
    EXPECT_TRUE(rig.out.ends_with(positions)) << rig.out;
  }
  ::close(gone[1]);
  ::close(full);
}

// The reader of a pipe may stop reading without closing it.
TEST(Tuttictl, ASignalEndsTheWaitForAReader) {
  int stalled[2];
  ASSERT_EQ(::pipe2(stalled, O_NONBLOCK), 0);
  while (::write(stalled[1], "x", 1) == 1) {
  }
  CommandLineRig rig{"sample_accounts = 3"};
  rig.report_to = stalled[1];
  rig.on_stall = [&] { rig.signal = SIGTERM; };
  EXPECT_EQ(rig.run(buy_equal), 128 + SIGTERM);
  ::close(stalled[0]);
  ::close(stalled[1]);
  rig.on_stall = nullptr;
  rig.signal = 0;
  rig.report_to = -1;
  rig.clock.advance(milliseconds{1000});
  EXPECT_EQ(rig.run("positions"), 0);
  EXPECT_TRUE(rig.out.ends_with("3 positions\n")) << rig.out;
}

TEST(Tuttictl, BytesThatAreNoUtf8EndNothing) {
  CommandLineRig rig{"sample_accounts = 3"};
  rig.home.write("manage/savelvinfo.buf", "ALDER,ALDER01,500100\nM\xfcLLER,x,7\n");
  EXPECT_EQ(rig.run(std::string{"--json "} + buy_equal), 1);
  EXPECT_EQ(count(rig.out, "\"user\": \"M\xef\xbf\xbdLLER\""), 1u) << rig.out;
}

TEST(Tuttictl, WaitsByAClockThatNobodySets) {
  for (const auto step : {std::chrono::hours{1}, std::chrono::hours{-1}}) {
    CommandLineRig rig{"sample_accounts = 3\n[[fault]]\nkind = \"swallow\"\naccount = 500101\n"};
    bool set = false;
    rig.on_pause = [&] {
      if (!set && rig.clock.elapsed() > milliseconds{1000}) rig.clock.set_by(step);
      set = rig.clock.elapsed() > milliseconds{1000};
    };
    EXPECT_EQ(rig.run(std::string{"--timeout 5 "} + buy_equal), 4);
    EXPECT_EQ(count(rig.out, "unknown\n"), 1u) << rig.out;
    EXPECT_GE(rig.lasted, milliseconds{5000});
    EXPECT_LT(rig.lasted, milliseconds{6000});
  }
}

TEST(Tuttictl, RefusesWhatIsWrong) {
  CommandLineRig rig{"sample_accounts = 3"};
  const char* range = "--timeout: must be a number of seconds from 0.1 to 3600";
  for (const auto& [words, message] :
       {std::pair{"--timeout abc positions", range},
        {"--timeout nan positions", range},
        {"--timeout -1 positions", range},
        {"--timeout inf positions", range},
        {"order --buy EURUSD --amount 3 --rule 2", "--rule: 2 not in "},
        {"order --buy EURUSD --amount 3 --rule equal --accounts 500100,",
         "--accounts: takes all, or numbers"},
        {"order --buy EURUSD --amount 3 --rule equal --accounts 7", "Account 7 is not in the accounts list"},
        {"order --buy EURUSD --amount 1e3 --rule equal", "--amount: must be a number of lots above 0"},
        {"order --buy EURUSD --sell EURUSD --amount 3 --rule equal", "Exactly 1 option from [--buy,--sell]"},
        {"order --buy EUR --amount 3 --rule equal", "Symbol EUR is not carried by any connected account"},
        {"modify 5 --at 1.2", "No connected account has the order or ticket 5"},
        {"close --ticket 5", "No connected account has ticket 5"},
        {"cancel --order 5,x", "--order: takes numbers with commas between them, not 5,x"},
        {"ordr --buy EURUSD", "There is no command ordr; the nearest one is order"},
        {"", "A command is required"}}) {
    EXPECT_EQ(rig.run(words), 2) << words;
    EXPECT_NE(rig.err.find(message), std::string::npos) << words << ": " << rig.err;
    EXPECT_EQ(rig.out, "") << words;
  }
}

TEST(Tuttictl, EveryCommandExplainsItself) {
  CommandLineRig rig{"sample_accounts = 1"};
  for (const std::string command : {"accounts", "positions", "orders", "order", "entry", "modify", "close",
                                    "cancel", "net", "journal", "verify"}) {
    EXPECT_EQ(rig.run(command + " --help"), 0);
    EXPECT_TRUE(std::regex_search(rig.out, std::regex{"\nExample: tuttictl .*" + command +
                                                      ".*\n\nExit status: 0 .*;\n  2 wrong usage"}))
        << rig.out;
  }
  EXPECT_NE(rig.out.find("Exit status: 0 no difference, 1 differences"), std::string::npos);
}

// A day on two accounts: each command once for people and once for machines.
TEST(Tuttictl, PrintsWhatEveryCommandFound) {
  // JSON without its line breaks, which mean nothing.
  const auto unbroken = [](std::string text) {
    return text.starts_with('{') ? std::regex_replace(text, std::regex{"\\n *"}, "") : text;
  };
  const struct {
    const char* words;
    int status;
    const char* out;
    const char* err = "";
  } steps[] = {
      {"--version", 0, "Tutti 1.0.0\n"},
      {"accounts", 0,
       R"(Index  Username  Connection Status   Account  Notes  Balance  Flt P/L  Credit  Equity  Used Margin  Margin Level  Free Margin
   01  ALDER     Connected            500100           50000        0       0   50000            0            0%        50000
   02  ASPEN     Connected            500101           25000        0       0   25000            0            0%        25000
Balance:75000  Flt P/L:0   Credit:0  Equity:75000  Used Margin:0  Free Margin:75000  Margin Level:0 %
)"},
      {"--csv order --buy EURUSD --amount 1 --rule equal", 0,
       R"(account,user,share,request_code,accepted,result,order,filled,price,time
500100,ALDER,0.5,1,true,Market Order Accepted,10000001,0.5,1.08462,2026-01-01T00:00:00.502Z
500101,ASPEN,0.5,1,true,Market Order Accepted,10000002,0.5,1.08462,2026-01-01T00:00:00.506Z
)"},
      {"journal 500101", 0, "2026-01-01 00:00:00  Order #10000002 [BUY 0.5 EURUSD] has been accepted\n"},
      {"--csv journal 500101", 0,
       "time,account,message\n2026-01-01T00:00:00+00:00,500101,Order #10000002 [BUY 0.5 EURUSD] has been "
       "accepted\n"},
      {"order --sell XAUUSD --amount 0.4 --rule equity --dry-run", 0,
       R"(Sell XAUUSD 0.4 lots, Distribute by equity Ratio
Account  User   Share  Result
 500100  ALDER    0.3
 500101  ASPEN    0.1
Shares 0.4 of 0.4 lots; 0 zero or below, 0 below the smallest lot of 0.01
)"},
      {"entry EURUSD --type buy-limit --amount 2 --at 1.0800 --sl 1.0700 --tp 1.0900 --rule margin", 0,
       R"(Buy Limit EURUSD at 1.0800 2 lots, Distribute by margin Ratio
Account  User   Share     Order  Price  Result
 500100  ALDER    1.3  10000004         Succeeded
 500101  ASPEN    0.7  10000003         Succeeded
Shares 2 of 2 lots; 0 zero or below, 0 below the smallest lot of 0.01
2 of 2 accepted
Balance:75000  Flt P/L:-12   Credit:0  Equity:74988  Used Margin:1084.56  Free Margin:73903.44  Margin Level:13828.28 %

Time                 Account  Message
2026-01-01 00:00:00   500101  Request Entry Order Buy Limit 0.7 EURUSD at 1.08 ( SL= 1.0700 TP= 1.0900 )
2026-01-01 00:00:00   500100  Request Entry Order Buy Limit 1.3 EURUSD at 1.08 ( SL= 1.0700 TP= 1.0900 )
2026-01-01 00:00:01   500101  Succeeded
2026-01-01 00:00:01   500100  Succeeded
)"},
      {"positions", 0,
       R"(  Ticket  Account  Date/Time            Type  Amount  Symbol  Open Price  Current Price  S/L  T/P  Comm  Interest    P/L
10000001   500100  2026-01-01 00:00:00  Buy      0.5  EURUSD     1.08462        1.08450            0.00      0.00  -6.00
10000002   500101  2026-01-01 00:00:00  Buy      0.5  EURUSD     1.08462        1.08450            0.00      0.00  -6.00
2 positions
)"},
      {"--csv positions", 0,
       R"(ticket,account,time,side,amount,symbol,open_price,current_price,stop_loss,take_profit,commission,interest,profit
10000001,500100,2026-01-01T00:00:00.502Z,buy,0.5,EURUSD,1.08462,1.0845,,,0,0,-6
10000002,500101,2026-01-01T00:00:00.506Z,buy,0.5,EURUSD,1.08462,1.0845,,,0,0,-6
)"},
      {"modify 10000001 --at 1.07", 2, "", "--at goes with entry orders, and 10000001 is none\n"},
      {"--csv modify 10000001 --sl 1.07", 0,
       "ticket,account,request_code,accepted,result\n10000001,500100,1,true,done\n"},
      {"--csv modify 10000001 --sl 2.07", 1,
       "ticket,account,request_code,accepted,result\n10000001,500100,21,false,Invalid Price\n"},
      {"modify 10000003 --at 1.0792 --tp none", 0, R"(   order  account  result
10000003   500101  done
Balance:75000  Flt P/L:-12   Credit:0  Equity:74988  Used Margin:1084.56  Free Margin:73903.44  Margin Level:13828.28 %

Time                 Account  Message
2026-01-01 00:00:02   500101  Request Limit Orders #10000003 Buy Limit EURUSD at 1.0792 ( SL= 1.07000 TP=  )
2026-01-01 00:00:02   500101  Order #10000003has been updated
)"},
      {"orders", 0,
       R"(   Order  Account  Type              Amount  Symbol    Price      S/L      T/P  Date/Time
10000004   500100  Limit/Stop           1.3  EURUSD  1.08000  1.07000  1.09000  2026-01-01 00:00:01
10000005   500100  SL/TP (10000001)     0.5  EURUSD  1.08462  1.07000           2026-01-01 00:00:01
10000003   500101  Limit/Stop           0.7  EURUSD  1.07920  1.07000           2026-01-01 00:00:01
3 orders
)"},
      {"--csv orders", 0, R"(order,account,type,side,ticket,amount,symbol,price,stop_loss,take_profit,time
10000004,500100,Limit/Stop,buy,,1.3,EURUSD,1.08,1.07,1.09,2026-01-01T00:00:01.012Z
10000005,500100,SL/TP (10000001),sell,10000001,0.5,EURUSD,1.08462,1.07,,2026-01-01T00:00:01.924Z
10000003,500101,Limit/Stop,buy,,0.7,EURUSD,1.0792,1.07,,2026-01-01T00:00:01.008Z
)"},
      {"net", 0, R"(Symbol              Accounts  Long  Avg Long  Short  Avg Short  Net     P/L
EURUSD                     2     1   1.08462      0               1  -12.00
Total(All Clients)         2     1                0               1  -12.00
)"},
      {"net --by account", 0, R"(           Account  Symbol  Long  Short  Net     P/L
            500100  EURUSD   0.5      0  0.5   -6.00
            500101  EURUSD   0.5      0  0.5   -6.00
Total(All Clients)             1      0    1  -12.00
)"},
      {"--csv net", 0, "symbol,long,short,net,floating,accounts\nEURUSD,1,0,1,-12,2\n"},
      {"--csv net --by account", 0,
       "account,symbol,long,short,net,floating\n500100,EURUSD,0.5,0,0.5,-6\n500101,EURUSD,0.5,0,0.5,-6\n"},
      {"--csv close --symbol EURUSD", 1,
       "ticket,account,request_code,accepted,result,filled,price,time\n10000001,500100,,false,not "
       "sent,,,\n10000002,500101,,false,not sent,,,\n",
       "Alert: Are you sure you want to close selected postion(s) at current market price(s)? No (--yes "
       "answers yes)\n  2 positions\n  EURUSD 1 lots\n  Floating P/L -12.00\n"},
      {"--yes close --symbol EURUSD --accounts 500100", 0, R"(  ticket  account   price  result
10000001   500100  1.0845  done
Balance:74994  Flt P/L:-6   Credit:0  Equity:74988  Used Margin:542.28  Free Margin:74445.72  Margin Level:4609.06 %

Time                 Account  Message
2026-01-01 00:00:04   500100  Request close ticket #10000001 Buy 0.5EURUSD at 1.0845
2026-01-01 00:00:04   500100  Postion 10000001 is closed successfuly
)",
       R"(Alert: Are you sure you want to close selected postion(s) at current market price(s)? Yes
  #10000001 of account 500100
  1 position
  EURUSD 0.5 lots
  Floating P/L -6.00
)"},
      {"--csv --yes cancel --order 10000004", 0,
       "order,account,request_code,accepted,result\n10000004,500100,1,true,done\n",
       "Alert: Are you sure you want to cancel selected order(s)? Yes\n  1 order\n  EURUSD 1.3 lots\n"},
      {"--json order --sell EURUSD --amount 0.2 --rule equal --accounts 500101", 0,
       R"({"accounts": [{"account": 500101,"user": "ASPEN","share": 0.2,"request_code": 1,"accepted": true,"result": "Market Order Accepted","order": 10000009,"filled": 0.2,"price": 1.0845,"time": "2026-01-01T00:00:04.752Z"}],
"totals": {"balance": 74994,"floating": -8.4,"credit": 0,"equity": 74985.6,"used_margin": 759.19,"margin_level": 3291.87,"free_margin": 74226.41,"line": "Balance:74994  Flt P/L:-8.4   Credit:0  Equity:74985.6  Used Margin:759.19  Free Margin:74226.41  Margin Level:3291.87 %"},
"journal": [{"time": "2026-01-01T00:00:04+00:00","account": 500101,"message": "Order #10000009 [SELL 0.2 EURUSD] has been accepted"}]})"},
      {"verify", 0, "0 differences\n"},
      {"--json verify", 0, "{\n  \"differences\": [],\n  \"elsewhere\": 0,\n  \"cleared\": 0\n}\n"},
      {"journal 7", 2, "", "Account 7 is not in the accounts list\n"},
      {"--json journal 7", 2, "", "{\"error\": \"Account 7 is not in the accounts list\"}\n"},
  };
  CommandLineRig rig{"sample_accounts = 2"};
  for (const auto& [words, status, out, err] : steps) {
    EXPECT_EQ(rig.run(words), status) << words;
    EXPECT_EQ(unbroken(rig.out), unbroken(out)) << words;
    EXPECT_EQ(rig.err, err) << words;
  }
}

TEST(Tuttictl, AnswersEveryRequoteInTime) {
  const std::string requoted = "[[fault]]\nkind = \"requote\"\npoints = 10\nseconds = 2\non = [\"open\"]\n";
  const struct {
    int accounts;
    const char* how;
    const char* typed;
    int status;
    std::size_t accepted, rejected;
    const char* ends;  // of the list, from the first account on
  } cases[] = {{12, "accept", "", 0, 12, 0, ""},
               {12, "reject", "", 1, 0, 12, ""},
               {3, "ask", "y\nn\nyes\n", 1, 2, 1, ",false,\n,true,\n,true,\n"},
               {2, "ask", "y\n", 1, 1, 1, ",true,\n,false,\n"}};
  for (const auto& [accounts, how, typed, status, accepted, rejected, ends] : cases) {
    CommandLineRig rig{"sample_accounts = " + std::to_string(accounts) + "\n" + requoted};
    rig.typed = typed;
    EXPECT_EQ(rig.run("--csv order --buy EURUSD --rule equal --amount " + std::to_string(accounts) +
                      " --requote " + how),
              status)
        << how;
    EXPECT_EQ(count(rig.out, ",true,"), accepted) << rig.out;
    EXPECT_EQ(count(rig.out, ",false,"), rejected) << rig.out;
    EXPECT_EQ(count(rig.err, "Requote of order "), static_cast<std::size_t>(accounts)) << rig.err;
    EXPECT_EQ(count(rig.err, "Accept? (y/n)"), *typed == '\0' ? 0u : static_cast<std::size_t>(accounts));
    std::string answers;
    for (const auto line : split(rig.out, "\n"))
      for (const char* word : {",true,", ",false,"})
        if (line.find(word) != std::string::npos) answers += word + std::string{"\n"};
    EXPECT_TRUE(*ends == '\0' || answers == ends) << answers;
    rig.run("positions");
    EXPECT_TRUE(rig.out.ends_with(std::to_string(accepted) + " positions\n")) << rig.out;
  }
}

// One number in two rows, of which the second is good, and one whose password is wrong.
TEST(Tuttictl, TellsAccountsApartAndWhichAreMissing) {
  CommandLineRig rig{"sample_accounts = 2"};
  rig.home.write("manage/savelvinfo.buf", "OTHER,x,500100\nALDER,ALDER01,500100\nASPEN,x,500101\n");
  const struct {
    const char* words;
    int status;
    const char* out;
    const char* err;
  } steps[] = {
      {"order --buy EURUSD --amount 1 --rule equal --require-connected", 1, "",
       "Nothing was sent; not connected: 500101\n"},
      {"--csv entry EURUSD --type buy-limit --at 1.0800 --amount 1 --rule equal", 1,
       "account,user,share,request_code,accepted,result,order,filled,price,time\n500100,OTHER,,,false,"
       "Invalid "
       "username or password,,,,\n500100,ALDER,1,1,true,Succeeded,10000001,0,,\n500101,ASPEN,,,false,Invalid "
       "username or password,,,,\n",
       ""},
      {"verify", 0, "0 differences\n", ""},
      {"--yes cancel --symbol EURUSD --require-connected", 1, "",
       "Nothing was sent; not connected: 500101\n"},
      {"--csv --yes cancel --symbol EURUSD --require-connected --accounts 500100", 0,
       "order,account,request_code,accepted,result\n10000001,500100,1,true,done\n",
       "Alert: Are you sure you want to cancel selected order(s)? Yes\n  1 order\n  EURUSD 1 lots\n"},
  };
  for (const auto& [words, status, out, err] : steps) {
    EXPECT_EQ(rig.run(words), status) << words;
    EXPECT_EQ(rig.out, out) << words;
    EXPECT_EQ(rig.err, err) << words;
  }
}

TEST(Tuttictl, ADryRunFailsForWhatIsSureToBeRefused) {
  CommandLineRig rig{"sample_accounts = 1"};
  const std::string order = "--csv order --buy EURUSD --dry-run --rule equal --amount ";
  const std::string entry = "--csv entry EURUSD --dry-run --amount 1 --rule equal --type ";
  const std::string as_texts =
      "1,,false,stop loss or take profit would not be sent: as texts they lie on the wrong side of the price";
  const std::pair<std::string, std::string> cases[] = {
      {order + "0.1", "0.1,,false,"},
      {order + "0.01", "0,,false,the share is not above 0"},
      {order + "0.009 --precision 3", "0.009,,false,below the smallest lot of 0.01"},
      {order + "5000", "5000,,false,above the largest lot of 100"},
      {entry + "buy-limit --at 1.08412 --sl 1.0799 --tp 1.0901", "1,,false,"},
      {entry + "buy-limit --at 1.0842", "1,,false,the price must be at most 1.08412 at the moment"},
      {entry + "sell-limit --at 1.0849", "1,,false,the price must be at least 1.08500 at the moment"},
      {entry + "buy-stop --at 1.0851", "1,,false,the price must be at least 1.08512 at the moment"},
      {entry + "sell-stop --at 1.0841", "1,,false,the price must be at most 1.08400 at the moment"},
      {entry + "sell-limit --at 1.2 --sl 1.3 --tp 1.25", as_texts},
      {entry + "buy-limit --at 1.08 --sl 1.09", as_texts},
      {entry + "buy-limit --at 1.08 --sl 01.09", "1,,false,the stop loss must be below 1.08"},
      {entry + "sell-limit --at 1.2 --tp 1.2", "1,,false,the take profit must be below 1.2"},
      {entry + "sell-stop --at 1.08 --tp 01.09", "1,,false,the take profit must be below 1.08"},
  };
  for (const auto& [words, line] : cases) {
    EXPECT_EQ(rig.run(words), line.ends_with(",,false,") ? 0 : 1) << words;
    EXPECT_EQ(split(rig.out, "\n")[1], "500100,ALDER," + line) << words;
  }
  EXPECT_EQ(rig.run("positions"), 0);
  EXPECT_EQ(rig.out, "0 positions\n");
}

TEST(Tuttictl, WaitsForTheHomeFolderAndMakesNone) {
  CommandLineRig rig{"sample_accounts = 1"};
  const std::string home = rig.home.path().string();
  rig.create = false;
  EXPECT_EQ(rig.run("accounts"), 2);
  EXPECT_EQ(rig.err, home + " is no application folder yet: --create makes one\n");
  rig.create = true;
  EXPECT_EQ(rig.run("accounts"), 0);
  rig.create = false;
  std::optional<HomeLock> other;
  for (const auto& [wait, status, lasted] : {std::tuple{"0", 3, 50}, {"0.5", 3, 550}, {"2", 0, 1050}}) {
    other.emplace(*HomeLock::take(rig.home.path()));
    const auto began = rig.clock.elapsed();
    rig.on_pause = [&] {
      if (rig.clock.elapsed() - began > milliseconds{1000}) other.reset();
    };
    EXPECT_EQ(rig.run(std::string{"--wait "} + wait + " journal 500100"), status) << rig.err;
    EXPECT_EQ(rig.lasted, milliseconds{lasted}) << wait;
    rig.on_pause = nullptr;
    other.reset();
  }
  rig.home.write("other.toml", "sample_accounts = 1\n");
  ::setenv("TUTTI_DEALER", (home + "/other.toml").c_str(), 1);
  rig.with_dealer = false;
  const std::string note = "Warning: The dealing server's book in " + home + " was made with " + home +
                           "/dealer.toml, and this run has " + home + "/other.toml\n";
  for (const auto& [words, said] : {std::pair{"positions", note},
                                    {"positions", note},
                                    {"--fresh --yes positions", ""},
                                    {"positions", ""}}) {
    EXPECT_EQ(rig.run(words), 0);
    EXPECT_EQ(rig.err, said);
  }
  ::unsetenv("TUTTI_DEALER");
}
}  // namespace
}  // namespace tutti::testing
