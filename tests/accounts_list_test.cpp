#include "accounts/account_texts.h"
#include "core/texts.h"
#include "sessions/account_record.h"
#include "tests/support/scenario_desk.h"
#include "tests/support/scripted_terminal.h"

namespace tutti::testing {
namespace {

namespace fs = std::filesystem;
constexpr const char* all_list = "manage/savelvinfo.buf";
constexpr const char* connected_list = "manage/saveconnected.buf";
constexpr const char* records = "manage/Acountinfo.buf";

// "C1 01 ALDER 500100 Connected green" of every row.
Texts rows(TestTerminal& terminal) {
  Texts out;
  for (const Row& row : terminal.main->accounts().lvwClients) {
    const Rgb ink = rgb(row.cell(frmMain::state).ink());
    const char* colour = ink == Rgb{0, 200, 0} ? " green" : ink == Rgb{255, 0, 0} ? " red" : " other";
    out.push_back(row.key().text() + " " + row.text(0) + " " + row.text(1) + " " + row.text(3) + " " +
                  row.text(2) + colour);
  }
  return out;
}

// Logins end in any order.
Texts sorted_lines(const std::string& text) {
  Texts out;
  for (const auto line : split(text, "\n"))
    if (!line.empty()) out.emplace_back(line);
  return sorted(out);
}

std::string record(const TemporaryFolder& home, const char* user, const char* password, std::int32_t account,
                   bool auto_login) {
  KeyFile key{home.key_file()};
  return encode_record({user, password, account, auto_login}, *key.find_or_create().value()) + "\n";
}

TEST(AccountsList, SaysWhoIsNotConnectedAndWhy) {
  DealerConfig config = DealerConfig::sample(5);
  config.unreachable_after = 500ms;
  config.faults = {fault(FaultKind::unreachable, {500'101}, FaultPoint::login),
                   fault(FaultKind::refuse_login, {500'102}, FaultPoint::login)};
  TestTerminal terminal{config};
  terminal.start_logged_in();
  const AccountBook& book = terminal.main->account_book();
  ASSERT_TRUE(terminal.server.drop(500'103));
  terminal.main->accounts().LogoutClient(terminal.client(500'104).key());
  terminal.run(1s);
  EXPECT_EQ(sorted(terminal.journal()), (Texts{"500101 Not connected: No connection to the server",
                                               "500102 Not connected: Invalid username or password",
                                               "500103 Not connected: Connection lost"}));
  EXPECT_EQ(not_connected_text(book), "4 accounts are not connected; what they hold is not in this view");
  for (const std::int32_t account : {500'103, 500'104})
    terminal.main->accounts().LoginClient(terminal.client(account).key());
  terminal.run(1s);
  // One account stands there twice.
  ASSERT_TRUE(terminal.main->accounts().account_dialog().accept_quietly("Other", "x", "500103") ==
              frmaccount::Added::yes);
  EXPECT_EQ(not_connected_text(book), "2 accounts are not connected; what they hold is not in this view");
  EXPECT_EQ(user_names(book, 500'103), terminal.client(500'103).text(frmMain::user_name) + ", OTHER");
  terminal.main->sessions().Remove(terminal.client(500'101).key().text());
  EXPECT_EQ(not_connected_text(book), "1 account is not connected; what it holds is not in this view");
}

TEST(AccountsList, FirstLoginAndNotes) {
  TestTerminal terminal{DealerConfig::sample(2)};
  terminal.home->write(all_list, "alder,alder01,500100\r\nAspen,wrong,500101\nAspen,aspen02,77\n");
  ASSERT_TRUE(terminal.start());
  frmMain& list = terminal.main->accounts();
  EXPECT_EQ(
      list.labelinfo1.text(),
      "Note:- No guarantee to deliver your order to the server with the requested prices as this depends on "
      "your internet speed.");
  EXPECT_EQ(list.labelinfo2.text(),
            "         - Trade will be made at  market prices not at the displayed prices.");
  EXPECT_EQ(rows(terminal), (Texts{"C1 01 ALDER 500100 Connecting red", "C2 02 ASPEN 500101 Connecting red",
                                   "C3 03 ASPEN 77 Connecting red"}));
  terminal.run(2s);
  EXPECT_EQ(rows(terminal),
            (Texts{"C1 01 ALDER 500100 Connected green", "C2 02 ASPEN 500101 Invalid account red",
                   "C3 03 ASPEN 77 Invalid account red"}));
  EXPECT_EQ(list.lvwClients.row(1).text(4), "Invalid username or password");
  EXPECT_EQ(list.lvwClients.row(2).text(4), "Invalid account ID");
}

TEST(AccountsList, OnlyDisconnectedRowsLogInAndSummariesAreFormatted) {
  ScriptedTerminal terminal{{{5, 5}}};
  ScriptedClient& client = terminal.client(1);
  frmMain& list = terminal.main->accounts();
  Row& row = list.lvwClients.row(0);
  const std::pair<AccountState, std::function<void()>> events[] = {
      {AccountState::connecting, [&] { client.sink->WaitingMode(waiting_mode::connecting); }},
      {AccountState::connected, [&] { client.sink->ConnectionState(true); }},
      {AccountState::invalid, [&] { client.sink->InvalidUsernamePassword(); }},
      {AccountState::disconnected, [&] { client.sink->ConnectionState(false); }}};
  for (const auto& [state, event] : events) {
    event();
    EXPECT_EQ(row.text(frmMain::state), state_text(state));
    list.LoginClient(client_key(1));
    list.LoginClient(client_key(2));
    EXPECT_EQ(client.logins, state == AccountState::disconnected ? 2 : 1);
  }
  EXPECT_EQ(rows(terminal), Texts{"C1 01 USER 1 Connecting red"});

  client.summary.values = {1234567.891, -0.001, 0.125, -20.5, -12.345, 0.153, 1e15};
  list.refreshsummery_Click(row);
  EXPECT_EQ(row_text(row),
            "01|USER|Connected|1|Invalid username or "
            "password|1234567.89|0|0.12|-20.5|12.34|15.3%|1000000000000000");
  EXPECT_EQ(rows(terminal), Texts{"C1 01 USER 1 Connected green"});
}

TEST(AccountsList, SummariesAreRefreshedWhereSelectedAndConnected) {
  ScriptedTerminal terminal;
  frmMain& list = terminal.main->accounts();
  for (std::int32_t account : {1, 2, 3})
    terminal.client(account).summary.values.balance = account;
  for (const std::size_t at : {0u, 1u})
    list.lvwClients.row(at).set_selected(true);
  terminal.client(2).sink->WaitingMode(waiting_mode::connecting);
  list.refresh_summaries();
  const auto balance = [&](std::size_t at) { return list.lvwClients.row(at).text(frmMain::balance); };
  EXPECT_EQ((Texts{balance(0), balance(1), balance(2)}), (Texts{"1", "", ""}));
}

TEST(AccountsList, LogoutEmptiesTheRowAndLoginComesBack) {
  TestTerminal terminal{DealerConfig::sample(3)};
  terminal.start_logged_in();
  frmMain& list = terminal.main->accounts();
  Row& row = terminal.client(500'101);
  terminal.note(500'101, "vip");
  list.lvwClients.select(row);
  terminal.sound.take();
  list.MnuDisconnecte_Click();
  EXPECT_EQ(terminal.sound.take(), Texts{"Disconnect.wav"});
  EXPECT_EQ(terminal.order_row(500'101), nullptr);
  terminal.run(100ms);
  EXPECT_EQ(rows(terminal)[1], "C2 02 ASPEN 500101 Disconnected red");
  EXPECT_EQ(row_text(row), "02|ASPEN|Disconnected|500101||||||||");
  EXPECT_EQ(terminal.main->account_book().totals.balance, 300'000.0);
  list.MnuDisconnecte_Click();
  EXPECT_TRUE(terminal.sound.take().empty());
  list.MnuConnecte_Click();
  EXPECT_EQ(row.text(2), "Connecting");
  terminal.run(1s);
  EXPECT_NE(terminal.order_row(500'101), nullptr);
  EXPECT_EQ(terminal.main->account_book().totals.balance, 325'000.0);
}

TEST(AccountsList, RemovalRenumbersKeepsTheOthersAndIsForGood) {
  const auto home = std::make_shared<TemporaryFolder>();
  const std::string birch = record(*home, "BIRCH", "BIRCH04", 500'103, true);
  home->write(records, record(*home, "ALDER", "ALDER01", 500'100, true) + birch);
  home->write(all_list,
              "alder,alder01,500100\nASPEN,bad,500101\nBEECH,BEECH03,500102\nBIRCH,BIRCH04,500103\n"
              "CEDAR,CEDAR05,500104\n");
  {
    TestTerminal terminal{DealerConfig::sample(5), home};
    ASSERT_TRUE(terminal.start());
    terminal.run(2s);
    frmMain& list = terminal.main->accounts();
    terminal.note(500'104, "vip");
    for (const std::size_t at : {0u, 2u})
      list.lvwClients.row(at).set_selected(true);
    list.mnuRemove_Click();
    terminal.run(500ms);
    EXPECT_EQ(rows(terminal),
              (Texts{"C1 01 ASPEN 500101 Invalid account red", "C2 02 BIRCH 500103 Connected green",
                     "C3 03 CEDAR 500104 Connected green"}));
    EXPECT_EQ(list.lvwClients.row(0).text(4) + list.lvwClients.row(2).text(4),
              "Invalid username or passwordvip");
    EXPECT_EQ(terminal.main->market_order().lvwConClients.size(), 2u);
    EXPECT_EQ(terminal.main->account_book().totals.balance, 138'500.0);
    EXPECT_EQ(home->read(all_list), "ASPEN,bad,500101\nBIRCH,BIRCH04,500103\nCEDAR,CEDAR05,500104\n");
    EXPECT_EQ(sorted_lines(home->read(connected_list)),
              (Texts{"BIRCH,BIRCH04,500103", "CEDAR,CEDAR05,500104"}));
    EXPECT_EQ(home->read(records), birch);
  }
  TestTerminal next{DealerConfig::sample(5), home};
  ASSERT_TRUE(next.start());
  EXPECT_EQ(rows(next), (Texts{"C1 01 ASPEN 500101 Connecting red", "C2 02 BIRCH 500103 Connecting red",
                               "C3 03 CEDAR 500104 Connecting red"}));
}

TEST(SavedAccounts, BothFilesMakeOneSessionOverThreeStarts) {
  const auto home = std::make_shared<TemporaryFolder>();
  home->write(all_list,
              "alder,alder01,500100\r\n\r\nshort,line\r\nASPEN,wrong,500101\nuser,pass,word,1\n"
              "aspen,ASPEN02,500101\nBEECH,BEECH03,500102,more\n");
  home->write(records, record(*home, "ALDER", "ALDER01", 500'100, true) +
                           record(*home, "BIRCH", "WRONG", 500'103, false) + "not a record\n" +
                           record(*home, "BIRCH", "BIRCH04", 500'103, true) +
                           record(*home, "CEDAR", "CEDAR05", 500'104, false));
  const std::string records_before = home->read(records);
  Texts settled;
  for (int start = 1; start <= 3; ++start) {
    SCOPED_TRACE(start);
    TestTerminal terminal{DealerConfig::sample(5), home};
    ASSERT_TRUE(terminal.start());
    terminal.run(2s);
    // CEDAR waits for the operator until it stands in the saved list, whose accounts all log in.
    EXPECT_EQ(
        rows(terminal),
        (Texts{"C1 01 ALDER 500100 Connected green", "C2 02 ASPEN 500101 Connected green",
               "C3 03 BEECH 500102 Connected green", "C4 04 BIRCH 500103 Connected green",
               std::string{"C5 05 CEDAR 500104 "} + (start == 1 ? "Disconnected red" : "Connected green")}));
    const Texts journal = terminal.journal();
    ASSERT_EQ(journal.size(), 2u);
    EXPECT_NE(journal[0].find("lines 3, 5 "), std::string::npos) << journal[0];
    EXPECT_NE(journal[1].find("lines 3"), std::string::npos) << journal[1];
    EXPECT_EQ(home->read(records), records_before);
    const std::string all = home->read(all_list);
    for (const char* number : {"500100", "500103", "500104"})
      EXPECT_EQ(split(all, number).size(), 2u) << all;
    const Texts lists = sorted_lines(all + home->read(connected_list));
    if (start == 3) {
      EXPECT_EQ(lists, settled);
    }
    settled = lists;
    EXPECT_TRUE(terminal.prompt.shown.empty() && terminal.take_messages().empty());
  }
}

TEST(SavedAccounts, LoadReplacesTheWholeList) {
  TestTerminal terminal{DealerConfig::sample(5)};
  terminal.home->write(records, record(*terminal.home, "CEDAR", "CEDAR05", 500'104, true));
  terminal.start_logged_in();
  frmMain& list = terminal.main->accounts();
  const auto everything = [&] {
    terminal.run(2s);
    Texts out = rows(terminal);
    for (const char* file : {all_list, connected_list, records})
      out.push_back(terminal.home->read(file));
    return out;
  };
  const Texts before = everything();
  list.mnuload_Click();
  EXPECT_TRUE(terminal.prompt.shown.empty());
  terminal.file_dialog.answer = (terminal.home->path() / "missing.buf").string();
  list.mnuload_Click();
  EXPECT_EQ(terminal.prompt.shown.size(), 1u);
  const TemporaryFolder elsewhere;
  elsewhere.write("no.buf", "user,password\n,,\nann,pw,number\n");
  terminal.file_dialog.answer = (elsewhere.path() / "no.buf").string();
  list.mnuload_Click();
  ASSERT_EQ(terminal.prompt.shown.size(), 2u);
  EXPECT_EQ(terminal.prompt.shown[1].text,
            "The list was not loaded, nothing is changed: " + terminal.file_dialog.answer +
                ": has no line with user name, password and account number");
  EXPECT_EQ(everything(), before);
  const fs::path kept = terminal.home->path() / "manage/savelvinfo.buf.old";
  EXPECT_FALSE(fs::exists(kept));

  elsewhere.write("other.buf", "BEECH,BEECH03,500102\nASPEN,ASPEN02,500101");
  terminal.file_dialog.answer = (elsewhere.path() / "other.buf").string();
  list.mnuload_Click();
  EXPECT_EQ(rows(terminal),
            (Texts{"C1 01 BEECH 500102 Connecting red", "C2 02 ASPEN 500101 Connecting red"}));
  EXPECT_TRUE(terminal.main->market_order().lvwConClients.empty());
  EXPECT_EQ(terminal.main->account_book().totals.balance, 0.0);
  EXPECT_EQ(terminal.home->read(connected_list), "");
  EXPECT_EQ(terminal.home->read("manage/savelvinfo.buf.old"), before[before.size() - 3]);
  EXPECT_EQ(static_cast<unsigned>(fs::status(kept).permissions()), 0600u);
  // Then one of the two lists, which are discarded on the way.
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(everything()[1], "C2 02 ASPEN 500101 Connected green");
    EXPECT_EQ(sorted_lines(terminal.home->read(connected_list)),
              (Texts{"ASPEN,ASPEN02,500101", "BEECH,BEECH03,500102"}));
    EXPECT_EQ(terminal.home->read(records), before.back());
    terminal.file_dialog.answer = (terminal.home->path() / all_list).string();
    list.mnuload_Click();
  }
  EXPECT_EQ(terminal.file_dialog.titles, Texts(6, "Load File"));
  EXPECT_TRUE(fs::exists(kept));
  // In place of no list: the one before that is none to go back to.
  terminal.file_dialog.answer = (elsewhere.path() / "other.buf").string();
  for (const bool empty : {true, false}) {
    if (empty) terminal.home->write(all_list, "");
    list.mnuload_Click();
    EXPECT_EQ(fs::exists(kept), !empty);
  }
  list.mnuclear_Click();
  EXPECT_FALSE(fs::exists(kept));
}

// New files take the places of the old ones, which are whole for whoever has them open.
TEST(SavedAccounts, AnEditLeavesTheOldOrTheNewLineAtEveryMoment) {
  TestTerminal terminal{DealerConfig::sample(2)};
  terminal.start_logged_in();
  frmMain& list = terminal.main->accounts();
  const fs::path home = terminal.home->path();
  for (const char* password : {"old", "new"}) {
    for (const char* file : {all_list, connected_list, records})
      if (fs::exists(home / file)) fs::create_hard_link(home / file, home / (std::string{file} + password));
    list.lvwClients.select(terminal.client(500'100));
    list.edit_account();
    list.account_dialog().txtpassword.set_text(password);
    list.account_dialog().chkSave.set_checked(true);
    list.account_dialog().cmdLoginAA.click();
  }
  for (const char* file : {all_list, connected_list}) {
    EXPECT_EQ(sorted_lines(terminal.home->read(file)), (Texts{"ALDER,new,500100", "ASPEN,ASPEN02,500101"}));
    EXPECT_EQ(sorted_lines(terminal.home->read(std::string{file} + "new")),
              (Texts{"ALDER,old,500100", "ASPEN,ASPEN02,500101"}));
  }
  KeyFile key{terminal.home->key_file()};
  for (const auto& [file, password] :
       {std::pair{std::string{records}, "NEW"}, {records + std::string{"new"}, "OLD"}})
    EXPECT_EQ(decode_record(sorted_lines(terminal.home->read(file)).at(0), **key.find())->password, password);

  // What only the connected are known to have comes into the list of all.
  terminal.home->write(all_list, "ASPEN,ASPEN02,500101\n");
  const Paths paths{home};
  const TextFile files{paths};
  ASSERT_TRUE((SavedLists{files, paths}.replace("ALDER,500100", {"ALDER", std::string{"newer"}, 500'100})));
  for (const char* file : {all_list, connected_list})
    EXPECT_EQ(sorted_lines(terminal.home->read(file)), (Texts{"ALDER,newer,500100", "ASPEN,ASPEN02,500101"}));
}

TEST(SavedAccounts, EqualLinesAreWrittenOnceAndSaveAsCopiesTheConnected) {
  TestTerminal terminal{DealerConfig::sample(2)};
  ASSERT_TRUE(terminal.start());
  frmMain& list = terminal.main->accounts();
  const TemporaryFolder elsewhere;
  terminal.file_dialog.answer = (elsewhere.path() / "mine.buf").string();
  list.mnusaveas_Click();
  EXPECT_EQ(terminal.prompt.take_texts(), Texts{"There is no data in the list"});
  EXPECT_TRUE(terminal.file_dialog.titles.empty());

  for (const char* password : {"secret", "", "secret", "other"})
    list.savedListViw("ann", password, 5);
  EXPECT_EQ(terminal.home->read(all_list), "ann,secret,5\nann,other,5\n");
  terminal.main->sessions().Add({"ASPEN", "ASPEN02", 500'101, terminal.server.config().endpoint}, "new",
                                true);
  terminal.main->sessions().Add({"ALDER", "ALDER01", 500'100, terminal.server.config().endpoint}, "", false);
  terminal.run(2s);
  list.mnusaveas_Click();
  EXPECT_EQ(elsewhere.read("mine.buf"), "ASPEN,ASPEN02,500101\n");
  terminal.file_dialog.answer = "";
  list.mnusaveas_Click();
  EXPECT_TRUE(terminal.prompt.shown.empty());
}

TEST(AccountsList, AmountKeysAndRequestTexts) {
  const std::string_view amounts[] = {"12", "1."};
  std::string passed[2];
  for (int box = 0; box < 2; ++box)
    for (std::int16_t key = 1; key < 256; ++key)
      if (frmMain::askycodekeypress(key, amounts[box]) == key) passed[box] += static_cast<char>(key);
  EXPECT_EQ(passed[0], "\b.0123456789");
  EXPECT_EQ(passed[1], "\b0123456789");

  TestTerminal terminal{DealerConfig::sample(1)};
  ASSERT_TRUE(terminal.start());
  const std::pair<const char*, int> cases[] = {
      {"No Privilege Result", 2}, {"Invalid Account Result", 3}, {"Cannot Change Price Result", 4},
      {"Timer Expired", 6},       {"Invalid Ticket", 7},         {"Invalid Lots", 8},
      {"Invalid Order ID", 10},   {"Invalid Price", 21},         {"Success Result", 1}};
  for (const auto& [text, code] : cases) {
    EXPECT_TRUE(terminal.sound.take().empty());
    EXPECT_EQ(terminal.main->accounts().Result(RequestCode{code}, 5, "SLTP ", "#12", 1.0845, "1.08", "1.09"),
              text);
  }
  EXPECT_EQ(terminal.sound.take(), Texts{"OrderOk.wav"});
  EXPECT_EQ(terminal.journal().back(), "5 Request SLTP  #12 at 1.0845 ( SL= 1.08 TP= 1.09 )");
}

}  // namespace
}  // namespace tutti::testing
