// What the histories and the ledger say of each other.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "apps/commands.h"
#include "apps/journal_anchor.h"
#include "core/texts.h"
#include "tests/support/command_line_rig.h"
#include "tests/support/ledger_home.h"
#include "tests/support/stored_terminal.h"

namespace tutti::testing {
namespace {

struct Histories : ::testing::Test {
  // The messages of a history, oldest first.
  Texts messages(int account) const {
    Texts out;
    const std::string history = rig.home.read(file_of(account));
    for (const std::string_view line : split(history, "\n"))
      if (!line.empty()) out.emplace_back(line.substr(line.find("*,%$") + 4));
    return out;
  }
  static std::string file_of(int account) { return "History/JN" + std::to_string(account) + ".his"; }
  // Takes lines that hold this text out of a history, as by hand.
  void take_out(int account, const std::string& text) const {
    std::string left;
    const std::string history = rig.home.read(file_of(account));
    for (const std::string_view line : split(history, "\n"))
      if (!line.empty() && line.find(text) == std::string_view::npos) left += std::string{line} + "\n";
    rig.home.write(file_of(account), left);
  }
  Texts anchors() const {
    Texts out = messages(no_account);
    std::erase_if(out, [](const std::string& each) { return !JournalAnchor::of(each); });
    return out;
  }
  std::string anchor_of_head() const {
    return ask("SELECT 'Ledger ' || lower(hex(l.id)) || ', commit ' || c.n || ': ' || lower(hex(c.hash)) "
               "FROM "
               "ledger l, commit_log c ORDER BY c.n DESC LIMIT 1")
        .at(0);
  }
  Texts ask(const std::string& sql) const { return ask_ledger(rig.home.path(), sql); }
  // Files of the home whose names begin so, as they are now; an empty text stands for one that is missing.
  std::map<std::string, std::string> copy(const std::string& begin) const {
    std::map<std::string, std::string> out;
    for (const auto& entry : std::filesystem::directory_iterator{rig.home.path()}) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with(begin) && entry.is_regular_file()) out[name] = rig.home.read(name);
    }
    return out;
  }
  void put_back(const std::string& begin, const std::map<std::string, std::string>& files) const {
    for (const auto& [name, content] : copy(begin))
      std::filesystem::remove(rig.home.path() / name);
    for (const auto& [name, content] : files)
      rig.home.write(name, content);
  }

  CommandLineRig rig{
      "sample_accounts = 3\n[[fault]]\nkind = \"reject\"\naccount = 500102\non = [\"open\"]\ncode = 2\n"};
};

constexpr auto buy = "order --buy EURUSD --amount 0.4 --rule equal --accounts 500100,500101";

TEST_F(Histories, AreAnchoredInTheLedgerAndSoIsItsEnd) {
  EXPECT_EQ(rig.run(buy), 0) << rig.err;
  ASSERT_EQ(anchors().size(), 2U) << "start and end";
  EXPECT_NE(anchors()[0].find(", commit 0: 000000"), std::string::npos) << anchors()[0];
  EXPECT_EQ(messages(no_account).back(), anchor_of_head());
  const auto before = copy("ledger.db");
  EXPECT_EQ(rig.run(buy), 0) << rig.err;
  EXPECT_EQ(messages(no_account).back(), anchor_of_head());
  EXPECT_EQ(rig.run("ledger check"), 0) << rig.out;

  // Put back it lacks its end, and says so until it goes on, and then that it went on otherwise.
  const std::string cut = anchors().back().substr(41, anchors().back().rfind(':') - 41);
  put_back("ledger.db", before);
  EXPECT_EQ(rig.run("ledger check"), 1);
  EXPECT_NE(rig.out.find(cut + ", which the journal names at 2026-01-01 00:00:"), std::string::npos)
      << rig.out;
  EXPECT_TRUE(rig.out.ends_with("\n1 faults\n")) << rig.out;
  for (const char* seen : {" --override seen", "", ""})
    EXPECT_EQ(rig.run(std::string{buy} + seen), 0) << rig.err;
  EXPECT_EQ(rig.run("ledger check"), 1);
  EXPECT_NE(rig.out.find(cut + " is another one than the journal names"), std::string::npos) << rig.out;

  // A history that was cleared says nothing, and one of another ledger nothing of this one.
  std::string other = rig.home.read(file_of(no_account));
  for (auto at = other.find("Ledger "); at != std::string::npos; at = other.find("Ledger ", at + 1))
    other[at + 7] = other[at + 7] == '0' ? '1' : '0';
  for (const std::string& history : {other, std::string{}}) {
    rig.home.write(file_of(no_account), history);
    EXPECT_EQ(rig.run("ledger check"), 0) << rig.out;
  }
}

TEST(JournalAnchors, ComeWithEveryNewDay) {
  StoredTerminal rig{"sample_accounts = 1\n"};
  const auto anchors = [&] {
    const std::string general = rig.home.read("History/JN-1.his");
    Texts out;
    for (const std::string_view line : split(general, "\n"))
      if (line.find("*,%$Ledger ") != std::string_view::npos) out.emplace_back(line.substr(0, 19));
    return out;
  };
  EXPECT_EQ(anchors(), Texts{"2026-01-01 00:00:00"});
  // By the day in UTC, whatever the operator's clock shows.
  rig.clock.set_utc_offset(-1h);
  const struct {
    std::chrono::milliseconds step;
    std::size_t anchors;
  } steps[] = {{24h - 3s, 1}, {4s, 2}, {1s, 2}, {1h, 2}, {22h, 2}, {1h, 3}};
  for (const auto& [step, count] : steps) {
    rig.clock.advance(step);
    for (int frames = 0; frames < 2; ++frames) {
      rig.desktop->advance();
      EXPECT_EQ(anchors().size(), count);
    }
  }
  EXPECT_EQ(anchors().back(), "2026-01-02 23:00:04");
}

TEST_F(Histories, GetTheLinesThatAKillKeptFromThem) {
  // Each act is done and stored; the kill takes the lines that it told.
  const struct {
    std::string act;
    int account;
    std::string line;  // with # for a number of the server
  } acts[] = {
      {"order --buy EURUSD --amount 0.5 --rule equal --accounts 500100", 500100,
       "Order ## [BUY 0.5 EURUSD] has been accepted"},
      {"order --sell EURUSD --amount 900 --rule equal --accounts 500101 --override big", 500101,
       "Invalid Lots"},
      {"order --sell EURUSD --amount 0.3 --rule equal --accounts 500102", 500102, "Not enough money"},
      {"entry EURUSD --type buy-limit --amount 0.4 --at 1.01 --rule equal --accounts 500102", 500102,
       "Succeeded"},
      {"modify $order --at 1.02", 500102, "Order ##has been updated"},
      {"--yes cancel --order $order", 500102, "Order number ## Canceled successfully"},
      {"modify $ticket --sl 1.01", 500100, "Request SL/TP for ##"},
      {"modify $ticket --sl 1.02", 500100, "Updating SL/TP order ## result #Succeeded"},
      {"--yes cancel --order $stops", 500100, "Delete SLTP Order ## Succeeded"},
      {"--yes close --symbol EURUSD --accounts 500100", 500100, "Postion # is closed successfuly"},
  };
  rig.run("accounts");
  for (const auto& each : acts) {
    SCOPED_TRACE(each.act);
    const int account = each.account;
    std::string words = each.act;
    const auto fill_in = [&](const std::string& name, const std::string& sql) {
      if (const auto at = words.find(name); at != std::string::npos)
        words.replace(at, name.size(), ask(sql).at(0));
    };
    fill_in("$order",
            "SELECT e.order_no FROM event e JOIN request r ON r.id = e.request WHERE r.kind = 'entry' "
            "AND e.order_no IS NOT NULL ORDER BY e.seq DESC LIMIT 1");
    fill_in("$ticket", "SELECT position FROM fill ORDER BY seq LIMIT 1");
    fill_in("$stops",
            "SELECT e.order_no FROM event e JOIN request r ON r.id = e.request WHERE r.kind = "
            "'stops' ORDER BY e.seq DESC LIMIT 1");
    rig.clock.advance(60s);
    const std::string general = rig.home.read(file_of(no_account));
    const std::string history = rig.home.read(file_of(account));
    rig.run(words);
    const Texts whole = messages(account);
    const auto told = std::find_if(whole.rbegin(), whole.rend(), [&](const std::string& text) {
      std::string plain = text;
      if (const auto digits = plain.find("1000"); digits != std::string::npos) plain.replace(digits, 8, "#");
      return plain == each.line;
    });
    ASSERT_NE(told, whole.rend()) << ::testing::PrintToString(whole);
    const std::string happened = ask("SELECT datetime(max(t_here) / 1000, 'unixepoch') FROM event").at(0);
    // As if killed before the frame wrote them: the run's first anchor stands, its end does not.
    rig.home.write(file_of(account), history);
    const std::string start = rig.home.read(file_of(no_account)).substr(general.size());
    rig.home.write(file_of(no_account), general + start.substr(0, start.find('\n') + 1));
    rig.clock.advance(60s);
    for (const std::string& start_again : {std::string{"verify"}, "journal " + std::to_string(account)}) {
      EXPECT_EQ(rig.run(start_again), 0) << rig.out << rig.err;
      const Texts now = messages(account);
      EXPECT_EQ(std::count(now.begin(), now.end(),
                           *told + " (added at the next start: it happened at " + happened + ")"),
                1)
          << ::testing::PrintToString(now);
      EXPECT_EQ(now.size(), split(history, "\n").size()) << ::testing::PrintToString(now);
    }
  }
}

// The ledger's thread was faster than the frame that writes the lines.
TEST(AKill, BetweenTheLedgerAndTheHistoriesCostsNoLine) {
  const char* const dealer = "sample_accounts = 3\n";
  StoredTerminal killed{dealer};
  send_in_equal_parts(killed.main().market_order(), "0.9", "EURUSD");
  const auto told = [&] {
    Texts out;
    for (const auto& entry : killed.main().journal_window().shown_entries())
      if (entry.message.ends_with("has been accepted")) out.push_back(entry.message);
    return out;
  };
  for (int steps = 0; steps < 100 && told().empty(); ++steps) {
    killed.clock.advance(10ms);
    killed.desktop->advance(0);
    killed.main().deliver_events();
  }
  const Texts lines = told();
  ASSERT_FALSE(lines.empty());
  ASSERT_TRUE(killed.desktop->keep());

  CommandLineRig next{dealer};
  namespace fs = std::filesystem;
  fs::copy(killed.home.path(), next.home.path(),
           fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  fs::copy_file(killed.home.key_file(), next.home.key_file());
  next.clock.advance(60s);
  // What is unknown is asked for meanwhile.
  EXPECT_EQ(next.run("verify"), 0) << next.out << next.err;
  std::string histories;
  for (const int account : {500100, 500101, 500102})
    histories += next.home.read("History/JN" + std::to_string(account) + ".his");
  for (const std::string& line : lines) {
    const auto at =
        histories.find("*,%$" + line + " (added at the next start: it happened at 2026-01-01 00:00:0");
    EXPECT_NE(at, std::string::npos) << histories;
    EXPECT_EQ(histories.find(line), at + 4);
  }
}

TEST_F(Histories, LackNothingAfterAKillThatTookNoLine) {
  rig.run("accounts");
  EXPECT_EQ(rig.run(buy), 0);
  EXPECT_EQ(rig.run(buy), 0);
  // Without its ends and later starts: from the first anchor on all is looked for, and found.
  const std::string general = rig.home.read(file_of(no_account));
  rig.home.write(file_of(no_account), general.substr(0, general.find('\n') + 1));
  const Texts before = messages(500100);
  EXPECT_EQ(rig.run("journal 500100"), 0);
  EXPECT_EQ(messages(500100), before);
  // Without any anchor nothing is.
  std::filesystem::remove(rig.home.path() / file_of(no_account));
  std::filesystem::remove(rig.home.path() / file_of(500100));
  EXPECT_EQ(rig.run("journal 500100"), 0);
  EXPECT_EQ(messages(500100), Texts{});
}

// Verify names the one outcome that is lost, wherever it is.
TEST_F(Histories, TheLossOfOneOutcomeIsFoundWhereverItIs) {
  rig.run("accounts");
  EXPECT_EQ(rig.run(buy), 0);
  EXPECT_EQ(rig.run("entry EURUSD --type buy-limit --amount 0.4 --at 1.01 --rule equal --accounts 500102"),
            0);
  const std::string order = ask("SELECT order_no FROM open_request").at(0);
  const auto server = copy("dealer-");
  const auto ledger = copy("ledger.db");
  EXPECT_EQ(rig.run("modify " + order + " --at 1.02"), 0) << rig.err;
  EXPECT_EQ(rig.run("verify"), 0) << rig.out;
  EXPECT_EQ(rig.out, "0 differences\n");
  const std::string request = ask("SELECT max(id) FROM request").at(0);
  const auto whole = copy("");

  const auto finds = [&](const std::string& lost, const std::string& difference) {
    SCOPED_TRACE(lost);
    EXPECT_EQ(rig.run("verify"), 1) << rig.err;
    EXPECT_EQ(rig.out, difference + "\n1 differences\n");
  };
  const std::string history = rig.home.read(file_of(500102));
  take_out(500102, "has been updated");
  finds("line of a history", "Account 500102: the history lacks a line of " +
                                 ask("SELECT datetime(max(t_here) / 1000, 'unixepoch') FROM event").at(0) +
                                 ": Order #" + order + "has been updated");
  rig.home.write(file_of(500102), history);

  put_back("dealer-", server);
  finds("server", "Account 500102: of request " + request +
                      " the ledger says DONE, the server that it never came and never will");
  put_back("dealer-", whole);

  put_back("ledger.db", ledger);
  finds("ledger", "Account 500102: the server has request " + request + ", and the ledger has not");
}

TEST(VerifyCommand, FindsTheLossOfOneRow) {
  StoredTerminal rig{"sample_accounts = 3\n"};
  rig.place("0.9", "1.01");
  const auto verify = [&] {
    const int nothing = ::memfd_create("in", 0), report = ::memfd_create("out", 0);
    Console console{nothing, report, nothing, [] { return false; }};
    const CommandPorts ports{console, rig.clock, [](auto) {}, [] { return 0; }};
    CommandContext context{*rig.desktop, *rig.server, ports, {}};
    const int status = verify_command(context);
    console.flush();
    std::string out(4096, '\0');
    out.resize(static_cast<std::size_t>(::pread(report, out.data(), out.size(), 0)));
    ::close(nothing);
    ::close(report);
    return std::to_string(status) + " " + out;
  };
  EXPECT_EQ(verify(), "0 0 differences\n");
  const PendingOrder order = rig.server->find_account(500102)->orders()[0];
  rig.main().sessions().by_account(500102)->DeletePendingOrder(order);
  EXPECT_EQ(verify(),
            "1 account 500102: order #" + std::to_string(order.order) + " is not listed\n1 differences\n");
}

TEST_F(Histories, ThatWereClearedAreCounted) {
  rig.run("accounts");
  EXPECT_EQ(rig.run(buy), 0);
  std::filesystem::remove(rig.home.path() / file_of(500100));
  EXPECT_EQ(rig.run("verify"), 1) << "removed by hand";
  rig.clock.advance(60s);
  rig.home.write(file_of(no_account),
                 rig.home.read(file_of(no_account)) +
                     "2026-01-01 00:01:00*,%$The history of account 500100 was cleared\n");
  EXPECT_EQ(rig.run("verify"), 0) << rig.out;
  EXPECT_EQ(rig.out, "1 outcomes stood in histories that were cleared\n0 differences\n");
  EXPECT_EQ(rig.run("--json verify"), 0);
  EXPECT_NE(rig.out.find("\"cleared\": 1"), std::string::npos) << rig.out;
  // What came later is looked for as ever.
  rig.clock.advance(120s);
  EXPECT_EQ(rig.run(buy), 0);
  EXPECT_EQ(rig.run("verify"), 0) << rig.out;
  take_out(500100, "has been accepted");
  EXPECT_EQ(rig.run("verify"), 1) << rig.out;
}

}  // namespace
}  // namespace tutti::testing
