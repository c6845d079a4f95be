// The ledger's file: what is stored before it leaves, what a crash leaves, and what becomes of a bad disk.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <fstream>

#include "core/key_file.h"
#include "core/network_folder.h"
#include "ledger/ledger_reader.h"
#include "ledger/ledger_start.h"
#include "ledger/ledger_writer.h"
#include "tests/support/kill_point.h"
#include "tests/support/ledger_home.h"

namespace tutti::testing {
namespace {

constexpr RequestId first_id = 1'000'000;

// A home with a ledger, in this process or in one that is killed.
struct Home {
  Home() { key = *key_file.find_or_create(); }

  std::unique_ptr<LedgerWriter> open() {
    auto out = LedgerWriter::open({folder.path(), "test"}, *key, clock);
    fault = out ? "" : out.error().text();
    if (!out) return nullptr;
    (*out)->know(1, {"10.0.0.9:443", "BOB", 81});
    return std::move(*out);
  }
  Texts ask(const std::string& sql) const { return ask_ledger(folder.path(), sql); }
  // Last state of each request; "-" where it has none.
  Texts states() const {
    return ask(
        "SELECT coalesce((SELECT state FROM event WHERE request = r.id ORDER BY seq DESC LIMIT 1), '-') FROM "
        "request r ORDER BY id");
  }
  Texts check() const {
    const auto file = LedgerFile::open_to_read(ledger_path(folder.path()), *key);
    return file ? (*file)->check() : Texts{file.error().text()};
  }

  TemporaryFolder folder;
  KeyFile key_file{folder.key_file()};
  const Secret* key = nullptr;
  ManualClock clock;
  std::string fault;
};

std::vector<LedgerRequest> requests(int count, RequestId from = first_id) {
  std::vector<LedgerRequest> out;
  for (int i = 0; i < count; ++i)
    out.push_back({.id = from + i, .sender = 1, .symbol = "EURUSD", .side = operation::buy, .lots = 0.25});
  return out;
}

LedgerEvent event(RequestId id, LedgerState state) {
  return {.request = id, .sender = 1, .state = state};
}

bool stored(LedgerWriter& ledger, std::vector<LedgerRequest> what) {
  const auto count = what.size();
  return ledger.wait(ledger.store({}, count, std::move(what), 0), 10s) == Ledger::Stored::yes;
}

TEST(Ledger, KeepsTicketsRequestsEventsAndFillsAsTheyWere) {
  Home home;
  auto ledger = home.open();
  const auto entry = LedgerRequest{.id = first_id,
                                   .sender = 1,
                                   .kind = RequestKind::entry,
                                   .symbol = "EURUSD",
                                   .side = operation::buy_stop,
                                   .lots = 12.345,
                                   .price = 1.0851,
                                   .stops = {1.08, 0.0, true, false},
                                   .era = 0xF000'0000'0000'0001};
  const Ledger::Mark mark = ledger->store({.kind = RequestKind::entry,
                                           .symbol = "EURUSD",
                                           .side = operation::buy_stop,
                                           .total = 12.545,
                                           .price_at_click = 1.08467,
                                           .quote_age = 40ms},
                                          2, {entry}, 0);
  ledger->store({}, 2, {{.id = first_id + 1, .sender = 1, .kind = RequestKind::entry, .lots = 0.2}}, mark);
  ledger->note(event(first_id, LedgerState::taken));
  ledger->note({.request = first_id, .sender = 1, .state = LedgerState::working, .order = 77});
  // It is known by its order's number, too; a fill that comes again, or is nobody's.
  const LedgerEvent fill{.sender = 1,
                         .state = LedgerState::filled,
                         .order = 77,
                         .server_time = home.clock.now(),
                         .execution = "E1",
                         .filled = 12.345,
                         .price = 1.08515,
                         .symbol = "EURUSD",
                         .side = operation::buy,
                         .currency = "CHF",
                         .realised = Realised{-12.345678, 0.0}};
  ledger->note(fill);
  ledger->note({.request = 9, .sender = 1, .execution = "E1", .filled = 1.0});
  ledger->note({.request = 9, .sender = 1, .execution = "E2", .closes = true, .filled = 1.0, .price = 2.0});
  ledger->note(event(first_id + 1, LedgerState::refused));
  // What is read back later says nothing of its request, and is kept once.
  for (int times = 0; times < 2; ++times)
    ledger->note({.request = first_id + 1,
                  .sender = 1,
                  .execution = "E3",
                  .fill_alone = true,
                  .filled = 0.2,
                  .price = 1.2});
  ASSERT_TRUE(ledger->flush(10s));
  EXPECT_EQ(
      home.ask("SELECT n, kind, symbol, side, total, total_digits, price_at_click, price_digits, quote_age, "
               "\"by\", origin, planned_count FROM ticket"),
      Texts{"1|entry|EURUSD|buy stop|12545|3|108467|5|40|test|here|2"});
  EXPECT_EQ(home.ask("SELECT id, ticket, account, kind, lots, lots_digits, price, stop_loss, take_profit, "
                     "price_digits, era FROM request ORDER BY id"),
            (Texts{"1000000|1|1|entry|12345|3|10851|10800||4|-1152921504606846975",
                   "1000001|1|1|entry|2|1||||0|"}));
  EXPECT_EQ(home.ask("SELECT request, state, order_no FROM event ORDER BY seq"),
            (Texts{"1000000|TAKEN|", "1000000|WORKING|77", "1000000|FILLED|77", "1000001|REFUSED|"}));
  EXPECT_EQ(
      home.ask("SELECT request, exec_id, open_or_close, lots, lots_digits, price, price_digits, day, profit, "
               "commission, symbol, side, currency FROM fill"),
      (Texts{"1000000|E1|open|12345|3|108515|5|2026-01-01|-12345678|0|EURUSD|buy|CHF",
             "|E2|close|1|0|2|0|2026-01-01|||||", "1000001|E3|open|2|1|12|1|2026-01-01|||||"}));
  EXPECT_EQ(home.ask("SELECT * FROM open_request"), Texts{});
  const Texts sums{"1|FILLED||0|1", "1|REFUSED||0|1"};
  EXPECT_EQ(home.ask("SELECT * FROM ticket_sum"), sums);
  EXPECT_EQ(
      home.ask("SELECT ticket, fills, lots, round(value, 3), least, most, price_digits FROM ticket_fill"),
      Texts{"1|2|12.545|13.636|1.08515|1.2|5"});
  EXPECT_EQ(home.check(), Texts{});
  for (const std::string change : {"UPDATE fill SET lots = 1", "DELETE FROM event", "DELETE FROM commit_log"})
    EXPECT_EQ(home.ask(change), Texts{"the ledger only grows"}) << change;
  // What is kept for speed is made again when it is missing.
  ledger.reset();
  home.ask("DROP TABLE ticket_sum");
  EXPECT_TRUE(home.open());
  EXPECT_EQ(home.ask("SELECT * FROM ticket_sum"), sums);
}

// What the first version stored is kept as it was, hashes included, and gone on with.
TEST(Ledger, TakesUpAFileOfTheFirstVersion) {
  Home home;
  std::ofstream{home.key_file.path()} << "0123456789abcdef0123456789abcdef";
  KeyFile old_key{home.key_file.path()};
  home.key = *old_key.find();
  home.folder.write("ledger.db", "");
  std::ifstream dump{std::string{TUTTI_SOURCE} + "/tests/data/ledger-version-1.sql"};
  ASSERT_EQ(home.ask("PRAGMA journal_mode = WAL; " + std::string{std::istreambuf_iterator<char>{dump}, {}}),
            Texts{"wal"});
  const std::string rows =
      "SELECT count(*), max(seq) FROM (SELECT seq FROM request UNION SELECT seq FROM event)";
  const Texts before = home.ask(rows);
  LedgerReader reader{home.folder.path(), home.key_file.path()};
  // Who only reads it does so as it is.
  for (const bool taken_up : {false, true}) {
    SCOPED_TRACE(taken_up);
    EXPECT_EQ(home.check(), Texts{});
    const auto fills = reader.fills({.accounts = {500101}});
    ASSERT_TRUE(fills) << fills.error().text();
    ASSERT_EQ(fills->size(), 2U);
    EXPECT_EQ(fills->back().symbol, "EURUSD");
    EXPECT_EQ(fills->back().currency, "");
    EXPECT_FALSE(fills->back().profit);
    EXPECT_EQ(home.ask(rows), before);
    EXPECT_EQ(home.ask("SELECT schema FROM ledger"), Texts{taken_up ? "2" : "1"});
    if (!taken_up) home.open();
  }
  EXPECT_EQ(home.ask("SELECT * FROM ticket_sum"),
            (Texts{"1|FILLED||0|2", "2|FILLED||0|1", "3|REFUSED|request code|8|1"}));
  EXPECT_TRUE(std::filesystem::exists(home.folder.path() / "ledger-version-1.db"));
  const auto ledger = home.open();
  EXPECT_TRUE(stored(*ledger, requests(1)));
  EXPECT_EQ(home.check(), Texts{});
  // Nothing is put where nothing was.
  home.ask("DROP TRIGGER fill_no_UPDATE; UPDATE fill SET currency = 'EUR' WHERE seq = 8");
  EXPECT_EQ(home.check(), Texts{"commit 3 is not what its hash says"});
}

// A ticket of three, of which some had left and some were answered when the program was killed.
struct CrashPoint {
  const char* name;
  int left;
  std::vector<LedgerState> answers;  // stored by then
  std::function<void(Home&)> meanwhile;
  Texts after;
};

void begin_left_log(Home& home, LeftLog::Head head, std::optional<std::string> ledger = {}) {
  const auto before = LeftLog::read(left_log_path(home.folder.path()));
  head.ledger = ledger.value_or(before->head.ledger);
  if (head.boot.empty()) head.boot = before->head.boot;
  if (head.run == 0) head.run = before->head.run;
  ASSERT_TRUE(LeftLog::begin(left_log_path(home.folder.path()), head));
}

const CrashPoint crash_points[] = {
    {"stored, not sent", 0, {}, {}, {"STORED", "STORED", "STORED"}},
    {"in the middle", 2, {LedgerState::filled}, {}, {"FILLED", "UNKNOWN", "STORED"}},
    {"sent, answer not stored", 3, {}, {}, {"UNKNOWN", "UNKNOWN", "UNKNOWN"}},
    {"taken and pending are no answers",
     3,
     {LedgerState::taken, LedgerState::pending, LedgerState::working},
     {},
     {"UNKNOWN", "UNKNOWN", "WORKING"}},
    {"power lost",
     0,
     {},
     [](Home& h) { begin_left_log(h, {.boot = "another"}); },
     {"UNKNOWN", "UNKNOWN", "UNKNOWN"}},
    {"another run's left.log",
     0,
     {},
     [](Home& h) { begin_left_log(h, {.run = 9}); },
     {"UNKNOWN", "UNKNOWN", "UNKNOWN"}},
    {"foreign left.log",
     0,
     {},
     [](Home& h) { begin_left_log(h, {}, "f00"); },
     {"UNKNOWN", "UNKNOWN", "UNKNOWN"}},
    {"torn head",
     0,
     {},
     [](Home& h) { h.folder.write("left.log", "left1 x"); },
     {"UNKNOWN", "UNKNOWN", "UNKNOWN"}},
    {"missing left.log",
     0,
     {},
     [](Home& h) { std::filesystem::remove(left_log_path(h.folder.path())); },
     {"UNKNOWN", "UNKNOWN", "UNKNOWN"}},
    {"killed in the start that settles",
     1,
     {},
     [](Home& h) { killed([&] { h.open().release(); }); },
     {"UNKNOWN", "STORED", "STORED"}},
};

TEST(Ledger, KnowsAfterACrashWhatMayHaveLeft) {
  for (const CrashPoint& point : crash_points) {
    SCOPED_TRACE(point.name);
    Home home;
    killed([&] {
      const auto ledger = home.open().release();
      if (!stored(*ledger, requests(3))) ::_exit(1);
      for (int i = 0; i < point.left; ++i)
        ledger->leaves(first_id + i);
      for (std::size_t i = 0; i < point.answers.size(); ++i)
        ledger->note(event(first_id + static_cast<RequestId>(i), point.answers[i]));
      if (!ledger->flush(10s)) ::_exit(2);
    });
    if (point.meanwhile) point.meanwhile(home);
    std::size_t unknown = 0;
    for (const std::string& state : point.after)
      unknown += state == "UNKNOWN" ? 1 : 0;
    // Who only reads finds what the next start will, and leaves it to that.
    const Texts stored_before = home.states();
    const auto read = LedgerReader{home.folder.path(), home.key_file.path()}.unknown();
    ASSERT_TRUE(read) << read.error().text();
    EXPECT_EQ(read->requests.size(), unknown);
    EXPECT_EQ(read->notice, "");
    EXPECT_EQ(home.states(), stored_before);
    // The next start and the one after find the same.
    for (int start = 0; start < 2; ++start) {
      const auto ledger = home.open();
      ASSERT_TRUE(ledger) << home.fault;
      EXPECT_EQ(ledger->notice(), "");
      EXPECT_EQ(ledger->unknown().size(), unknown);
      EXPECT_EQ(home.states(), point.after);
    }
    EXPECT_EQ(home.check(), Texts{});
  }
}

TEST(Ledger, KilledBeforeItsCommitHasNothingSent) {
  Home home;
  killed([&] { home.open().release()->store({}, 3, requests(3), 0); });
  // Whole or not at all, and in neither case has anything left.
  const auto ledger = home.open();
  const Texts states = home.states();
  EXPECT_TRUE(states.empty() || states == (Texts{"STORED", "STORED", "STORED"}));
  EXPECT_TRUE(ledger->unknown().empty());
}

// What was sent again is not sent a third time: neither what may have left nor what is stored and did not.
TEST(Ledger, KilledInARetryHasEachRequestSentAgainOnce) {
  Home home;
  constexpr RequestId again = first_id + 10;
  const auto retry = [](RequestId from) {
    auto out = requests(2, from);
    for (std::size_t i = 0; i < out.size(); ++i)
      out[i].retry_of = first_id + static_cast<RequestId>(i);
    return out;
  };
  killed([&] {
    const auto ledger = home.open().release();
    if (!stored(*ledger, requests(2))) ::_exit(1);
    for (int i = 0; i < 2; ++i)
      ledger->note(event(first_id + i, LedgerState::refused));
    if (!stored(*ledger, retry(again)) || !ledger->leaves(again)) ::_exit(2);
  });
  const auto ledger = home.open();
  ASSERT_TRUE(ledger) << home.fault;
  EXPECT_EQ(home.states(), (Texts{"REFUSED", "REFUSED", "UNKNOWN", "STORED"}));
  EXPECT_FALSE(stored(*ledger, retry(again + 10)));
  EXPECT_EQ(home.ask("SELECT id, retry_of FROM request WHERE retry_of IS NOT NULL ORDER BY id"),
            (Texts{"1000010|1000000", "1000011|1000001"}));
  EXPECT_EQ(home.check(), Texts{});
}

// A ledger that was put back without the rest of its home: what left since is told, and its list is kept.
TEST(Ledger, PutBackFromABackupTellsWhatHasLeftSince) {
  Home home;
  const std::filesystem::path backup = home.folder.path() / "backup.db";
  killed([&] {
    const auto ledger = home.open().release();
    if (!stored(*ledger, requests(1))) ::_exit(1);
    if (!LedgerReader{home.folder.path(), home.key_file.path()}.back_up(backup)) ::_exit(2);
    if (!stored(*ledger, requests(2, first_id + 1))) ::_exit(3);
    for (int i = 0; i < 3; ++i)
      if (!ledger->leaves(first_id + i)) ::_exit(4);
  });
  const std::filesystem::path file = ledger_path(home.folder.path());
  for (const char* part : {"", "-wal", "-shm"})
    std::filesystem::remove(file.string() + part);
  std::filesystem::rename(backup, file);
  const auto ledger = home.open();
  ASSERT_TRUE(ledger) << home.fault;
  EXPECT_NE(ledger->notice().find("2 requests have left that the ledger does not have"), std::string::npos)
      << ledger->notice();
  EXPECT_EQ(home.states(), Texts{"UNKNOWN"});
  EXPECT_EQ(
      home.folder.read(fmt::format("left-{}.log", home.clock.now().time_since_epoch().count())).substr(0, 5),
      "left1");
}

// Nobody trades on a ledger that can't be written, and it is as it was when it can be again.
TEST(Ledger, OnAReadOnlyDiskDoesNotOpen) {
  Home home;
  ASSERT_TRUE(stored(*home.open(), requests(1)));
  const auto allow = [&](std::filesystem::perms folder, std::filesystem::perms file) {
    std::filesystem::permissions(ledger_path(home.folder.path()), file);
    std::filesystem::permissions(home.folder.path(), folder);
  };
  using std::filesystem::perms;
  allow(perms{0555}, perms{0444});
  killed([&] {
    // Nothing is read-only to root.
    if (::geteuid() == 0 && ::seteuid(65534) != 0) ::_exit(1);
    if (home.open() != nullptr) ::_exit(2);
    if (home.fault.find("the ledger can't be used") == std::string::npos) ::_exit(3);
  });
  allow(perms{0700}, perms{0600});
  const auto ledger = home.open();
  ASSERT_TRUE(ledger) << home.fault;
  EXPECT_TRUE(stored(*ledger, requests(1, first_id + 1)));
  EXPECT_EQ(home.ask("SELECT id FROM request"), (Texts{"1000000", "1000001"}));
}

// What a disk does to a ledger in use, and how it is made well again.
struct BadDisk {
  const char* name;
  std::function<std::shared_ptr<void>(Home&)> begin;  // lasts as long as what it gives
};

const BadDisk bad_disks[] = {
    {"full", [](Home&) -> std::shared_ptr<void> { return std::make_shared<FullDisk>(512); }},
    {"locked",
     [](Home& home) -> std::shared_ptr<void> {
       sqlite3* other = nullptr;
       ::sqlite3_open(ledger_path(home.folder.path()).c_str(), &other);
       ::sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
       return {other, [](void* held) { ::sqlite3_close(static_cast<sqlite3*>(held)); }};
     }},
};

TEST(Ledger, StoresNothingOnABadDiskAndGoesOnWhenItIsWellAgain) {
  for (const BadDisk& disk : bad_disks) {
    SCOPED_TRACE(disk.name);
    Home home;
    auto ledger = home.open();
    ASSERT_TRUE(stored(*ledger, requests(1)));
    {
      const auto bad = disk.begin(home);
      EXPECT_FALSE(stored(*ledger, requests(2, first_id + 1)));
      EXPECT_NE(ledger->fault(), "");
      // The answer to what had left before is kept until it can be stored.
      ledger->note(event(first_id, LedgerState::filled));
      EXPECT_FALSE(ledger->flush(10s));
    }
    EXPECT_TRUE(stored(*ledger, requests(2, first_id + 3)));
    EXPECT_TRUE(ledger->flush(10s));
    EXPECT_EQ(ledger->fault(), "");
    EXPECT_EQ(home.ask("SELECT id FROM request"), (Texts{"1000000", "1000003", "1000004"}));
    EXPECT_EQ(home.ask("SELECT request, state FROM event"), Texts{"1000000|FILLED"});
    EXPECT_EQ(home.check(), Texts{});
  }
}

// What ends something and what is answered is stored on a full disk, too, as long as the reserve lasts; new
// orders are once there is room again.
TEST(Ledger, OnAFullDiskTheReserveIsForAnswersClosesAndCancels) {
  Home home;
  auto ledger = home.open();
  ASSERT_TRUE(stored(*ledger, requests(1)));
  const std::filesystem::path reserve = home.folder.path() / "ledger-reserve";
  EXPECT_EQ(std::filesystem::file_size(reserve), 8u << 20);
  const auto of_kind = [](RequestKind kind, RequestId id) {
    std::vector<LedgerRequest> out = requests(1, id);
    out[0].kind = kind;
    return out;
  };
  fill_disk_but_for(reserve.string());
  EXPECT_TRUE(ledger->leaves(first_id)) << "it takes the reserve for that, too";
  fill_disk_but_for("");
  ASSERT_TRUE(stored(*ledger, requests(1, first_id + 1)));
  ledger.reset();
  ledger = home.open();
  ASSERT_TRUE(stored(*ledger, requests(1, first_id + 2)));
  fill_disk_but_for(reserve.string());
  ledger->note(event(first_id + 2, LedgerState::filled));
  EXPECT_TRUE(ledger->flush(10s));
  EXPECT_FALSE(std::filesystem::exists(reserve));
  EXPECT_NE(ledger->fault().find("the disk is full"), std::string::npos) << ledger->fault();
  RequestId id = first_id + 10;
  for (const auto& [kind, kept] : {std::pair{RequestKind::open, false},
                                   {RequestKind::close, true},
                                   {RequestKind::entry, false},
                                   {RequestKind::cancel, true},
                                   {RequestKind::update, false},
                                   {RequestKind::stops, false},
                                   {RequestKind::requote, true}}) {
    EXPECT_EQ(stored(*ledger, of_kind(kind, ++id)), kept) << static_cast<int>(kind);
    ledger->note(event(id, LedgerState::dropped));
  }
  EXPECT_TRUE(ledger->flush(10s));
  fill_disk_but_for("");
  EXPECT_TRUE(stored(*ledger, requests(1, first_id + 20)));
  EXPECT_EQ(ledger->fault(), "");
  EXPECT_TRUE(std::filesystem::exists(reserve));
  EXPECT_EQ(home.ask("SELECT kind, count(*) FROM request WHERE id > 1000002 GROUP BY 1 ORDER BY 1"),
            (Texts{"cancel|1", "close|1", "open|1", "requote reject|1"}));
  EXPECT_EQ(home.check(), Texts{});
}

TEST(Ledger, KnowsTheFileSystemsItDoesNotTrust) {
  const TemporaryFolder here;
  EXPECT_EQ(network_file_system(here.path()), "");
  EXPECT_EQ(network_file_system(here.path() / "none"), "");
  const std::pair<std::int64_t, std::string_view> kinds[] = {
      {0x6969, "NFS"}, {0xFF534D42, "CIFS"}, {0x00C36400, "Ceph"}, {0xEF53, ""}, {0x01021994, ""}};
  for (const auto& [kind, name] : kinds)
    EXPECT_EQ(network_file_system(kind), name) << kind;
}

// An id that was given before, as by a copied home, is not stored a second time, and holds up nothing else.
TEST(Ledger, TakesNoIdTwice) {
  Home home;
  auto ledger = home.open();
  ASSERT_TRUE(stored(*ledger, requests(1)));
  ledger->note(event(first_id, LedgerState::taken));
  EXPECT_FALSE(stored(*ledger, requests(1)));
  EXPECT_TRUE(stored(*ledger, requests(1, first_id + 1)));
  EXPECT_TRUE(ledger->flush(10s));
  EXPECT_EQ(home.states(), (Texts{"TAKEN", "-"}));
}

// What somebody did to the files: what `check` says, what a start says, and whether it opens at all.
struct Damage {
  const char* name;
  std::string sql;
  std::string check;
  std::string notice;
  std::string fault;
};

TEST(Ledger, ShowsWhatWasDoneToItsFiles) {
  const std::string open_up =
      "DROP TRIGGER event_no_UPDATE; DROP TRIGGER event_no_DELETE; DROP TRIGGER "
      "commit_log_no_DELETE; DROP TRIGGER request_no_DELETE; DROP TRIGGER ticket_no_DELETE;";
  const std::string cut = open_up +
                          "DELETE FROM event WHERE seq > (SELECT max(last_seq) FROM commit_log WHERE n = 2);"
                          "DELETE FROM commit_log WHERE n > 2; DROP TABLE open_request";
  const Damage damages[] = {
      {"changed in the middle", open_up + "UPDATE event SET state = 'DONE' WHERE seq = 4",
       "commit 2 is not what its hash says", "", ""},
      {"changed at the end", open_up + "UPDATE event SET state = 'DONE' WHERE seq = 5",
       "commit 3 is not what its hash says", "", "commit 3 of the ledger is not what its hash says"},
      {"end cut off", cut, "", "the last run began with commit 3, which the ledger does not have", ""},
      {"derived table changed", "DELETE FROM ticket_sum", "ticket_sum is not what the events say", "", ""},
      {"made by a newer program", "DROP TRIGGER ledger_no_UPDATE; UPDATE ledger SET schema = 99", "", "",
       "was made by a newer program"},
  };
  for (const Damage& damage : damages) {
    SCOPED_TRACE(damage.name);
    Home home;
    {
      auto ledger = home.open();
      ASSERT_TRUE(stored(*ledger, requests(1)));
      for (int i = 0; i < 2; ++i) {
        ledger->note(event(first_id, i == 0 ? LedgerState::taken : LedgerState::filled));
        ASSERT_TRUE(ledger->flush(10s));
      }
    }
    home.open();
    ASSERT_EQ(home.check(), Texts{});
    ASSERT_EQ(home.ask(damage.sql), Texts{});
    const Texts found = home.check();
    EXPECT_EQ(found.empty() ? "" : found.front(), damage.check);
    const auto ledger = home.open();
    const std::string said = ledger ? ledger->fault() : home.fault;
    EXPECT_EQ(said.empty(), damage.fault.empty()) << said;
    EXPECT_NE(said.find(damage.fault), std::string::npos) << said;
    if (!ledger) continue;
    EXPECT_EQ(ledger->notice().empty(), damage.notice.empty()) << ledger->notice();
    EXPECT_NE(ledger->notice().find(damage.notice), std::string::npos) << ledger->notice();
    EXPECT_EQ(stored(*ledger, requests(1, first_id + 1)), said.empty());
  }
}

}  // namespace
}  // namespace tutti::testing
