// The ledger as the command line fills and reads it.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <regex>

#include "apps/records.h"
#include "core/home_lock.h"
#include "core/numbers.h"
#include "core/texts.h"
#include "tests/support/command_line_rig.h"
#include "tests/support/ledger_home.h"

namespace tutti::testing {
namespace {

constexpr auto by_ticket =
    "SELECT r.ticket, r.kind, coalesce(r.symbol, ''), coalesce(r.side, ''), count(*), coalesce((SELECT state "
    "FROM "
    "event WHERE request = r.id ORDER BY seq DESC LIMIT 1), '-') FROM request r GROUP BY 1, 2, 3, 4, 6 ORDER "
    "BY 1, 6";

struct Ledgers : ::testing::Test {
  Texts ask(const std::string& sql) const { return ask_ledger(rig.home.path(), sql); }
  // A buy on three accounts, killed when all have left and none is answered.
  void kill_in_flight(const std::string& more = {}) {
    killed([this, &more] {
      rig.on_pause = [this] {
        const std::string left = rig.home.read("left.log");
        if (std::count(left.begin(), left.end(), '\n') == 4) ::_exit(0);
      };
      rig.run(order + more);
      ::_exit(1);
    });
  }

  const std::string order = "order --buy EURUSD --amount 0.9 --rule equal --accounts 500101,500102,500103";
  CommandLineRig rig;
};

TEST_F(Ledgers, HaveWhatBecameOfEveryWayOut) {
  EXPECT_EQ(rig.run(order), 0) << rig.err;
  EXPECT_EQ(rig.run("order --sell EURUSD --amount 500 --rule equal --accounts 500101 --override big"), 1);
  EXPECT_EQ(
      rig.run("entry EURUSD --type buy-limit --amount 0.4 --at 1.01 --rule equal --accounts 500101,500102"),
      0);
  const std::string ticket = ask("SELECT position FROM fill ORDER BY seq LIMIT 1")[0];
  EXPECT_EQ(rig.run("modify " + ticket + " --sl 1.01"), 0) << rig.err;
  const std::string placed = ask("SELECT order_no FROM open_request ORDER BY request LIMIT 1")[0];
  EXPECT_EQ(rig.run("modify " + placed + " --at 1.02"), 0) << rig.err;
  EXPECT_EQ(rig.run("--yes cancel --order " + placed), 0) << rig.err;
  EXPECT_EQ(rig.run("--yes close --symbol EURUSD"), 0) << rig.err;
  EXPECT_EQ(ask(by_ticket), (Texts{"1|open|EURUSD|buy|3|FILLED", "2|open|EURUSD|sell|1|REFUSED",
                                   "3|entry|EURUSD|buy|1|CANCELLED", "3|entry|EURUSD|buy|1|WORKING",
                                   "4|stops|EURUSD|sell|1|DONE", "5|update|EURUSD|buy|1|DONE",
                                   "6|cancel|EURUSD|buy|1|DONE", "7|close|EURUSD|sell|3|FILLED"}));
  EXPECT_EQ(
      ask("SELECT open_or_close, count(*), count(DISTINCT exec_id), min(price > 0) FROM fill GROUP BY 1"),
      (Texts{"close|3|3|1", "open|3|3|1"}));
  // Stored before it left, and noted as it did.
  EXPECT_EQ(ask("SELECT count(*) FROM request r JOIN event e ON e.request = r.id WHERE e.seq < r.seq"),
            Texts{"0"});
  EXPECT_EQ(rig.run("ledger check"), 0);
  EXPECT_EQ(rig.out, "0 faults\n");
  EXPECT_EQ(rig.run("ledger export"), 0);
  const std::string rows =
      ask("SELECT (SELECT count(*) FROM account) + (SELECT count(*) FROM ticket) + (SELECT count(*) "
          "FROM request) + (SELECT count(*) FROM event) + (SELECT count(*) FROM fill) + (SELECT "
          "count(*) FROM commit_log) + 1")[0];
  EXPECT_EQ(std::to_string(std::count(rig.out.begin(), rig.out.end(), '\n')), rows);
  EXPECT_NE(rig.out.find(R"("open_or_close":"close")"), std::string::npos);
  // A copy is a ledger of its own, and is put where nothing is.
  const TemporaryFolder other;
  const std::string copy = (other.path() / "ledger.db").string();
  EXPECT_EQ(rig.run("ledger backup " + copy), 0) << rig.err;
  EXPECT_EQ(ask_ledger(other.path(), by_ticket), ask(by_ticket));
  EXPECT_EQ(rig.run("ledger backup " + copy), 3);
}

TEST_F(Ledgers, TellAfterAKillWhatNobodyKnows) {
  EXPECT_EQ(rig.run("accounts"), 0);
  EXPECT_EQ(rig.run("unknown"), 0);
  EXPECT_EQ(rig.out, "0 unknown\n");
  kill_in_flight();
  const std::filesystem::path home = rig.home.path();
  const Texts left = ask(by_ticket);
  {
    // While a terminal has the folder it waits for the answers itself.
    const auto used = HomeLock::take(home);
    ASSERT_TRUE(used);
    EXPECT_EQ(rig.run("unknown"), 0) << rig.err;
  }
  EXPECT_EQ(rig.run("--json unknown"), 4);
  const std::regex line{R"("account": (\d+))"};
  std::string accounts;
  for (std::sregex_iterator at{rig.out.begin(), rig.out.end(), line}, end; at != end; ++at)
    accounts += (*at)[1].str() + " ";
  EXPECT_EQ(accounts, "500101 500102 500103 ");
  EXPECT_NE(rig.out.find(R"("why": "crash")"), std::string::npos);
  // It only reads: what becomes of them is settled by who may send.
  EXPECT_EQ(ask(by_ticket), left);
  EXPECT_EQ(rig.run("journal 500101"), 0);
  EXPECT_EQ(ask(by_ticket), Texts{"1|open|EURUSD|buy|3|UNKNOWN"});
  // They stay so until the server is asked, with the next login. No later order counts them as its own.
  rig.clock.advance(60s);
  EXPECT_EQ(rig.run("order --buy EURUSD --amount 0.1 --rule equal --accounts 500104"), 0);
  EXPECT_EQ(ask("SELECT state, evidence, count(*) FROM event WHERE request IN (SELECT id FROM request WHERE "
                "ticket = 1) AND state <> 'TAKEN' "
                "GROUP BY 1, 2 ORDER BY 1 DESC"),
            (Texts{"UNKNOWN|clock|3", "FILLED|asked|3"}));
  const std::string told = "Order BUY 0.3 EURUSD was unknown: the server says that it was executed";
  std::size_t lines = 0;
  for (std::size_t at = 0; (at = rig.out.find(told, at)) != std::string::npos; ++at)
    ++lines;
  EXPECT_EQ(lines, 3U) << rig.out;
  EXPECT_EQ(rig.run("unknown"), 0);
  EXPECT_EQ(rig.run("ledger check"), 0) << rig.out;
}

// A script asks for its act until it is done: killed between storing and sending, it leaves what has yet to
// go.
TEST_F(Ledgers, GoOnWithANamedActAndSendNothingTwice) {
  const std::string named = order + " --id morning";
  // The order for 500103 never comes to the server.
  CommandLineRig rig{"sample_accounts = 5\n[[fault]]\nkind = \"swallow\"\naccount = 500103\ntimes = 1\n"};
  const auto ask = [&](const std::string& sql) { return ask_ledger(rig.home.path(), sql); };
  killed([&] {
    rig.on_pause = [&] {
      const std::string left = rig.home.read("left.log");
      if (std::count(left.begin(), left.end(), '\n') == 4) ::_exit(0);
    };
    rig.run(named);
    ::_exit(1);
  });
  // As if the kill had come before the last two left.
  const std::string left = rig.home.read("left.log");
  const std::size_t end = left.find('\n', left.find('\n') + 1) + 1;
  rig.home.write("left.log", left.substr(0, end));
  rig.home.write("dealer.toml", "sample_accounts = 5\n");
  rig.clock.advance(60s);
  EXPECT_EQ(rig.run("positions"), 0) << rig.err;
  EXPECT_EQ(ask(by_ticket), (Texts{"1|open|EURUSD|buy|1|FILLED", "1|open|EURUSD|buy|2|STORED"}));
  const Texts ids = ask("SELECT id FROM request ORDER BY id");

  struct Case {
    const char* words;
    int status;
  };
  for (const Case& other :
       {Case{"order --buy EURUSD --amount 1.2 --rule equal --accounts 500101,500102,500103 --id morning", 2},
        Case{"order --sell EURUSD --amount 0.9 --rule equal --accounts 500101,500102,500103 --id morning", 2},
        Case{"order --buy EURUSD --amount 0.9 --rule equal --accounts 500101,500102 --id morning", 2},
        Case{"--yes close --symbol EURUSD --id morning", 2}}) {
    EXPECT_EQ(rig.run(other.words), other.status) << other.words;
    EXPECT_NE(rig.err.find("another plan before, ticket 1"), std::string::npos) << rig.err;
  }
  // The same plan in other words; one of the two had come to the server after all, which knows it by its id.
  EXPECT_EQ(rig.run("order --buy EURUSD --amount 0.90 --rule equal --accounts 500103,500101,500102 --id "
                    "morning --override seen"),
            0)
      << rig.out << rig.err;
  EXPECT_NE(rig.err.find("2 of its 3 requests were sent now"), std::string::npos) << rig.err;
  EXPECT_EQ(ask(by_ticket), (Texts{"1|open|EURUSD|buy|3|FILLED"}));
  EXPECT_EQ(ask("SELECT id FROM request ORDER BY id"), ids);
  EXPECT_EQ(rig.run(named), 0) << rig.err;
  EXPECT_NE(rig.err.find("0 of its 3 requests were sent now"), std::string::npos) << rig.err;
  EXPECT_EQ(rig.run("--csv positions"), 0);
  EXPECT_EQ(split(rig.out, "\n").size(), 5U) << rig.out;
  EXPECT_EQ(rig.run("verify"), 0) << rig.out;
  EXPECT_EQ(rig.run("ledger check"), 0) << rig.out;
  // Another name is another act, and what has none is none.
  EXPECT_EQ(rig.run(order + " --id noon"), 0);
  EXPECT_EQ(rig.run(order), 0);
  EXPECT_EQ(ask("SELECT count(*), count(key_text), count(DISTINCT plan_digest) FROM ticket"), Texts{"3|2|1"});
}

// What never left by one start's word may have left since: a second kill, right behind the sending.
TEST_F(Ledgers, AskAboutWhatMayHaveLeftMeanwhile) {
  kill_in_flight(" --id morning");
  const std::string left = rig.home.read("left.log");
  const std::size_t head = left.find('\n') + 1;
  rig.home.write("left.log", left.substr(0, head));
  rig.clock.advance(60s);
  EXPECT_EQ(rig.run("positions"), 0) << rig.err;
  EXPECT_EQ(ask(by_ticket), Texts{"1|open|EURUSD|buy|3|STORED"});
  rig.home.write("left.log", rig.home.read("left.log") + left.substr(head));
  EXPECT_EQ(rig.run(order + " --id morning"), 0) << rig.out << rig.err;
  EXPECT_NE(rig.err.find("0 of its 3 requests were sent now"), std::string::npos) << rig.err;
  EXPECT_EQ(ask(by_ticket), Texts{"1|open|EURUSD|buy|3|FILLED"});
  EXPECT_EQ(
      ask("SELECT state, reason, evidence, count(*) FROM event WHERE state = 'UNKNOWN' GROUP BY 1, 2, 3"),
      Texts{"UNKNOWN|crash|clock|3"});
}

// What has no name and never left is sent again by the retry of its ticket, which leaves nothing behind under
// the old id; and so is what such a retry left behind.
TEST_F(Ledgers, SendAgainWhatWasLeftBehind) {
  const auto leave_behind = [&](const std::string& words) {
    killed([&] {
      rig.on_pause = [&] {
        const std::string left = rig.home.read("left.log");
        if (std::count(left.begin(), left.end(), '\n') == 4) ::_exit(0);
      };
      rig.run(words);
      ::_exit(1);
    });
    // As if the kill had come before any of them left: neither the server nor this home heard of it.
    const std::string left = rig.home.read("left.log");
    rig.home.write("left.log", left.substr(0, left.find('\n') + 1));
    for (const auto& file : std::filesystem::directory_iterator{rig.home.path()})
      if (file.path().filename().string().starts_with("dealer-")) std::filesystem::remove(file.path());
    rig.clock.advance(60s);
  };
  leave_behind(order);
  EXPECT_EQ(rig.run("positions"), 0) << rig.err;
  EXPECT_EQ(ask(by_ticket), Texts{"1|open|EURUSD|buy|3|STORED"});
  leave_behind("--yes retry 1");
  EXPECT_EQ(rig.run("--yes retry 2"), 0) << rig.out << rig.err;
  EXPECT_EQ(ask(by_ticket), (Texts{"1|open|EURUSD|buy|3|DROPPED", "2|open|EURUSD|buy|3|DROPPED",
                                   "3|open|EURUSD|buy|3|FILLED"}));
  EXPECT_EQ(rig.run("--yes retry 1"), 0);
  EXPECT_EQ(rig.run("--yes retry 2"), 0);
  EXPECT_EQ(ask("SELECT count(*) FROM request"), Texts{"9"});
  EXPECT_EQ(rig.run("ledger check"), 0) << rig.out;
}

// A home put back from a backup lacks what the server has taken from it since: trading waits for the
// operator, who is asked once.
TEST_F(Ledgers, ThatWerePutBackFromABackupSendNothingUnseen) {
  EXPECT_EQ(rig.run(order), 0) << rig.err;
  const std::filesystem::path home = rig.home.path();
  const std::filesystem::path backup = home / "backup.db";
  EXPECT_EQ(rig.run("ledger backup " + backup.string()), 0) << rig.err;
  EXPECT_EQ(rig.run("order --buy EURUSD --amount 0.4 --rule equal --accounts 500101,500102"), 0) << rig.err;
  for (const char* name : {"ledger.db-wal", "ledger.db-shm", "left.log"})
    std::filesystem::remove(home / name);
  std::filesystem::rename(backup, home / "ledger.db");
  rig.clock.advance(60s);
  EXPECT_EQ(rig.run(order), 1);
  EXPECT_NE(rig.out.find("Not sent: the ledger lacks earlier requests"), std::string::npos) << rig.out;
  EXPECT_NE(rig.err.find("account 500101: the server has taken 1 requests that this ledger lacks"),
            std::string::npos)
      << rig.err;
  // What was filled meanwhile is read back, as nobody's.
  EXPECT_EQ(ask("SELECT count(*), sum(lots) FROM fill WHERE request IS NULL"), Texts{"2|4"})
      << "0.2 lots each";
  // Who is missing nothing, and what ends something, waits for nobody.
  EXPECT_EQ(rig.run("order --buy EURUSD --amount 0.1 --rule equal --accounts 500103"), 0) << rig.err;
  EXPECT_EQ(rig.run("--yes close --accounts 500102 --symbol EURUSD"), 0) << rig.out << rig.err;
  EXPECT_EQ(rig.run(order + " --override seen"), 0) << rig.out << rig.err;
  EXPECT_EQ(rig.run(order), 0) << rig.out << rig.err;
  EXPECT_EQ(ask("SELECT account, requests FROM missing_accepted ORDER BY 1"), (Texts{"1|1", "2|1"}));
  EXPECT_EQ(rig.run("ledger check"), 1);
  EXPECT_NE(rig.out.find("the ledger was put back and went on otherwise, or was changed\n1 faults"),
            std::string::npos)
      << rig.out;
}

// Whatever is lost on one side is found by who compares it with the other.
TEST_F(Ledgers, AreComparedWithWhatTheServerKeeps) {
  EXPECT_EQ(rig.run(order), 0) << rig.err;
  EXPECT_EQ(rig.run("entry EURUSD --type buy-limit --amount 0.4 --at 1.01 --rule equal --accounts 500101"),
            0);
  EXPECT_EQ(rig.run("--yes close --symbol EURUSD --accounts 500102"), 0) << rig.err;
  // What is lost of the last minutes is read back from the server.
  rig.clock.advance(3600s);
  EXPECT_EQ(rig.run("order --buy EURUSD --amount 0.1 --rule equal --accounts 500104"), 0);
  EXPECT_EQ(rig.run("verify"), 0) << rig.out;
  const std::string before = rig.home.read("ledger.db");
  const std::string first = ask("SELECT min(id) FROM request WHERE ticket = 1")[0];
  const struct {
    const char* loss;
    std::string told;
  } cases[] = {
      {"DROP TRIGGER event_no_DELETE; DELETE FROM event WHERE request = (SELECT min(id) FROM request WHERE "
       "ticket = 1)",
       "Account 500101: of request " + first + " the ledger says STORED, the server that it was executed\n"},
      {"DROP TRIGGER event_no_UPDATE; UPDATE event SET state = 'REFUSED' WHERE state = 'FILLED' AND request "
       "= "
       "(SELECT min(id) FROM request WHERE ticket = 1)",
       "Account 500101: of request " + first + " the ledger says REFUSED, the server that it was executed\n"},
      {"DROP TRIGGER event_no_UPDATE; UPDATE event SET state = 'CANCELLED' WHERE state = 'WORKING'",
       " the ledger says CANCELLED, the server that it waits for its price\n"},
      {"DROP TRIGGER fill_no_DELETE; DELETE FROM fill WHERE open_or_close = 'close'",
       "Account 500102: the server has fill "},
      {"DROP TRIGGER fill_no_UPDATE; UPDATE fill SET lots = 7 WHERE open_or_close = 'close'",
       "Account 500102: fill "},
      {"DROP TRIGGER fill_no_UPDATE; UPDATE fill SET exec_id = 'none' WHERE open_or_close = 'close'",
       "Account 500102: the ledger has fill none of 0.3 lots, and the server has not\n"},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.loss);
    ASSERT_EQ(ask(each.loss), Texts{});
    EXPECT_EQ(rig.run("verify"), 1) << rig.err;
    EXPECT_NE(rig.out.find(each.told), std::string::npos) << rig.out;
    for (const char* beside : {"ledger.db-wal", "ledger.db-shm"})
      std::filesystem::remove(rig.home.path() / beside);
    rig.home.write("ledger.db", before);
  }
  EXPECT_EQ(rig.run("verify"), 0) << rig.out;
  EXPECT_EQ(rig.out, "0 differences\n") << "no fill is of nobody's request";
}

TEST_F(Ledgers, TakeTheOperatorsWordWhereNobodyElseKnows) {
  kill_in_flight();
  EXPECT_EQ(rig.run("--csv unknown"), 4);
  const std::string table = rig.out;
  const auto lines = split(table, "\n");
  ASSERT_EQ(lines.size(), 5U) << rig.out;
  const auto id = [&](std::size_t line) { return std::string{split(lines[line], ",")[0]}; };
  EXPECT_EQ(rig.run("settle " + id(1) + " --as filled"), 2);
  EXPECT_EQ(rig.run("settle " + id(1) + " --as maybe --note x"), 2);
  EXPECT_EQ(rig.run("settle 7 --as filled --note x"), 2);
  EXPECT_EQ(rig.run("settle " + id(1) + " --as filled --note phone"), 0) << rig.err;
  EXPECT_EQ(rig.run("settle " + id(2) + " --as not-executed --note phone"), 0);
  EXPECT_EQ(rig.run("settle " + id(2) + " --as filled --note later"), 2);
  EXPECT_EQ(rig.run("unknown"), 4);
  EXPECT_NE(rig.out.find("\n1 unknown\n"), std::string::npos) << rig.out;
  EXPECT_EQ(ask("SELECT state, evidence, reason, note FROM event WHERE evidence = 'hand' ORDER BY seq"),
            (Texts{"HAND|hand|filled|phone", "HAND|hand|not-executed|phone"}));
  EXPECT_EQ(rig.run("tickets"), 0);
  EXPECT_NE(rig.out.find("2 settled by hand, 1 unknown"), std::string::npos) << rig.out;
  // His word sends nothing again, and the server is asked about the rest alone, with what was filled of it.
  rig.clock.advance(60s);
  EXPECT_EQ(rig.run("--yes retry 1"), 0);
  EXPECT_NE(rig.err.find("1 request settled by hand as not executed: only with the second key"),
            std::string::npos)
      << rig.err;
  EXPECT_EQ(rig.run("unknown"), 0);
  EXPECT_EQ(ask("SELECT count(*), min(price > 0), max(side) FROM fill WHERE request = " + id(3)),
            Texts{"1|1|buy"});
  // Only with the second key, once, and never what he said was executed.
  EXPECT_EQ(rig.run("retry 1 --settled"), 1);
  EXPECT_EQ(ask("SELECT count(*) FROM request"), Texts{"3"});
  EXPECT_EQ(rig.run("--yes retry 1 --settled"), 0) << rig.err;
  EXPECT_NE(
      rig.err.find("Send 1 request of ticket 1 again that you settled by hand as not executed, 0.3 lots "
                   "in all? Yes"),
      std::string::npos)
      << rig.err;
  EXPECT_EQ(rig.run("--yes retry 1 --settled"), 0);
  EXPECT_NE(rig.err.find("Nothing of ticket 1 that was settled by hand can be sent again"), std::string::npos)
      << rig.err;
  EXPECT_EQ(ask("SELECT retry_of FROM request WHERE retry_of IS NOT NULL"), Texts{id(2)});
  EXPECT_EQ(rig.run("ledger check"), 0) << rig.out;
}

TEST_F(Ledgers, AnswerTheQuestionsOfTheirDocument) {
  EXPECT_EQ(rig.run("order --sell EURUSD --amount 0.9 --rule equal --accounts 500101,500102,500103"), 0);
  EXPECT_EQ(rig.run("--yes close --symbol EURUSD --accounts 500103"), 0);
  kill_in_flight();
  EXPECT_EQ(rig.run("journal 500101"), 0);
  std::ifstream file{std::string{TUTTI_SOURCE} + "/docs/ledger.md"};
  const std::string text{std::istreambuf_iterator<char>{file}, {}};
  std::vector<Texts> answers;
  for (std::size_t at = 0; (at = text.find("```sql\n", at)) != std::string::npos;) {
    const std::size_t begin = at + 7;
    at = text.find("```", begin);
    answers.push_back(ask(text.substr(begin, at - begin)));
  }
  ASSERT_EQ(answers.size(), 4U);
  EXPECT_EQ(answers[0], Texts{"UNKNOWN|3|0.9"});
  ASSERT_EQ(answers[1].size(), 4U);
  EXPECT_TRUE(sorted(answers[1])[0].starts_with("500101|sell|0.3|1.")) << answers[1][0];
  ASSERT_EQ(answers[2].size(), 1U);
  EXPECT_TRUE(answers[2][0].starts_with("2026-01-01|500103|USD|1|-")) << answers[2][0];
  ASSERT_EQ(answers[3].size(), 3U);
  EXPECT_TRUE(answers[3][0].starts_with("500101|open|EURUSD|crash|")) << answers[3][0];
}

// What is told of fills adds up to what the server's books say.
TEST_F(Ledgers, TellWhatWasFilledAndWhatItBrought) {
  EXPECT_EQ(rig.run("fills"), 3);
  EXPECT_NE(rig.err.find("there is no ledger in this folder yet"), std::string::npos) << rig.err;
  const auto balance = [&] {
    EXPECT_EQ(rig.run("--csv accounts"), 0);
    const auto lines = split(rig.out, "\n");
    return parse_number(split(lines[2], ",")[4]).value_or(0.0);
  };
  const double before = balance();
  EXPECT_EQ(rig.run(order), 0);
  rig.clock.advance(26h);
  EXPECT_EQ(rig.run("order --sell XAUUSD --amount 0.1 --rule equal --accounts 500101"), 0) << rig.out;
  EXPECT_EQ(rig.run("--yes close --symbol EURUSD --accounts 500101,500102"), 0) << rig.err;
  const double realised = balance() - before;
  EXPECT_NE(realised, 0.0);
  EXPECT_EQ(rig.run("--json fills"), 0) << rig.err;
  const Json all = Json::parse(rig.out);
  ASSERT_EQ(all["fills"].size(), 6U);
  const Json& last = all["fills"].back();
  EXPECT_EQ(last["kind"], "close");
  EXPECT_EQ(last["side"], "sell");
  EXPECT_EQ(last["currency"], "USD");
  EXPECT_EQ(last["ticket"], 3);
  EXPECT_EQ(all["fills"][0]["profit"], Json{});
  ASSERT_EQ(all["realised"].size(), 2U);
  const Json& sum = all["realised"][0];
  EXPECT_EQ(sum["account"], 500101);
  EXPECT_EQ(sum["day"], "2026-01-02");
  EXPECT_NEAR(sum["profit"].get<double>() + sum["commission"].get<double>(), realised, 0.006);
  const struct {
    const char* words;
    int fills;
  } narrowed[] = {{"--account 500101", 3},
                  {"--account 500101,500103", 4},
                  {"--symbol XAUUSD", 1},
                  {"--ticket 1", 3},
                  {"--ticket 3 --account 500102", 1},
                  {"--ticket 9", 0},
                  {"--since 2026-01-02", 3},
                  {"--until 2026-01-01", 3},
                  {"--until 2026-01-01T00:00:00", 0},
                  {"--since 2026-01-02T00:00:00Z --until 2026-01-02 --symbol EURUSD", 2}};
  for (const auto& [words, fills] : narrowed) {
    EXPECT_EQ(rig.run("--csv fills " + std::string{words}), 0) << words;
    EXPECT_EQ(std::count(rig.out.begin(), rig.out.end(), '\n'), fills + 1) << words << "\n" << rig.out;
  }
  for (const char* wrong :
       {"--since 2026-13-01", "--since yesterday", "--until 2026-01-01T25:00", "--ticket -1"})
    EXPECT_EQ(rig.run(std::string{"fills "} + wrong), 2) << wrong;
}

// What stands in the way of a ledger, and what a command says of it.
TEST_F(Ledgers, ThatCannotBeUsedStopWhatSends) {
  EXPECT_EQ(rig.run("ledger check"), 3);
  EXPECT_NE(rig.err.find("there is no ledger in this folder yet"), std::string::npos) << rig.err;
  EXPECT_EQ(rig.run(order), 0);
  ask("DROP TRIGGER ledger_no_UPDATE; UPDATE ledger SET schema = 99");
  EXPECT_EQ(rig.run(order), 1);
  EXPECT_NE(rig.out.find("Not sent: it could not be stored"), std::string::npos) << rig.out;
  EXPECT_NE(rig.err.find("was made by a newer program"), std::string::npos) << rig.err;
  EXPECT_EQ(ask(by_ticket), Texts{"1|open|EURUSD|buy|3|FILLED"});
  EXPECT_EQ(rig.run("positions"), 0);
  rig.home.write(
      "ledger.db",
      "no ledger at all, but something longer than a hundred bytes, which a database's head has; so "
      "that it is read as one, and found to be none");
  EXPECT_EQ(rig.run(order), 3);
  EXPECT_NE(rig.err.find("ledger.db"), std::string::npos) << rig.err;
}

}  // namespace
}  // namespace tutti::testing
