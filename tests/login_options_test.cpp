#include "sessions/frmaccount.h"
#include "tests/support/session_rig.h"

namespace tutti::testing {
namespace {

const std::string server_file = "manage/SERVER.BUF";
const std::string account_file = "manage/Acountinfo.buf";

TEST(LoginOptions, TheServerFileComesBackAsItWasSaved) {
  SessionRig rig;
  rig.home.write(server_file,
                 " Main && 10.0.0.1 &&443&&Demo&&h2&& 77x&&&&h3&&port\r\n 10.0.0.1 :443\r\n12\r\n 7, 8 \r\n");
  CLoginOptions& options = rig.options;
  const auto check = [&] {
    ASSERT_TRUE(options.InitializeFromFile());
    EXPECT_EQ(options.ServerDesc(1), " Main ");
    EXPECT_EQ(options.Server(1) + " " + options.Server(2) + " " + options.Server(3),
              "10.0.0.1:443 h2:77 h3:0");
    EXPECT_EQ(options.CurrentServer() + options.CurrentServerDesc(), "10.0.0.1:443 Main ");
    EXPECT_EQ(std::to_string(options.ParentDemoAccounts()) + options.LoginUnderwlIDs(), "12 7, 8 ");
  };
  check();
  ASSERT_TRUE(options.Save());
  EXPECT_EQ(rig.home.read(server_file),
            " Main &&10.0.0.1&&443&&Demo&&h2&&77&&&&h3&&0\n10.0.0.1:443\n12\n 7, 8 \n");
  check();
  options.CurrentServerIP("H2");
  options.CurrentServerPort(77);
  EXPECT_EQ(options.CurrentServerIndex(), 0);
  EXPECT_EQ(options.CurrentServerDesc(), "H2:77");
}

TEST(LoginOptions, MissingShortAndMalformedServerFiles) {
  const struct {
    const char* content;  // nullptr: no file
    int servers;          // -1: an error
    const char* current;
  } cases[] = {{nullptr, 0, ":0"},      {"", 0, ":0"},    {"\nh:1\n", 0, "h:1"}, {"A&&h&&1", 1, ":0"},
               {"A&&h&&1\nh", 1, ":0"}, {"A&&h", -1, ""}, {"A&&h&&1&&", -1, ""}};
  for (const auto& one : cases) {
    SessionRig rig;
    rig.home.write(server_file, "B&&g&&2\ng:2\n5\nold\n");
    ASSERT_TRUE(rig.options.InitializeFromFile());
    std::filesystem::remove(rig.home.path() / server_file);
    if (one.content != nullptr) rig.home.write(server_file, one.content);
    const auto read = rig.options.InitializeFromFile();
    ASSERT_EQ(read.has_value(), one.servers >= 0);
    if (!read) {
      EXPECT_NE(read.error().text().find("SERVER.BUF"), std::string::npos);
      EXPECT_NE(read.error().text().find("line 1"), std::string::npos);
      continue;
    }
    EXPECT_EQ(rig.options.ServerCount(), one.servers);
    EXPECT_EQ(rig.options.CurrentServer(), one.current);
    EXPECT_EQ(std::to_string(rig.options.ParentDemoAccounts()) + rig.options.LoginUnderwlIDs(), "0");
    frmaccount dialog{rig.general, rig.windows.desk, rig.options, rig.sessions};
    dialog.open_add();
    EXPECT_EQ(dialog.CBServer.text(), one.current[0] == ':' ? "10.0.0.9:443" : one.current);
  }
}

TEST(LoginOptions, RoutingAndChoosingServers) {
  SessionRig rig;
  CLoginOptions& options = rig.options;
  const std::string before = "A&&h&&1&&B&&h&&2&&C&&h&&1\nh:1\n0\n\n";
  rig.home.write(server_file, before);
  ASSERT_TRUE(options.InitializeFromFile());
  for (const char* address : {"a&b", "a:1", "a\nb", "a\tb", "a\x7F", "&&"})
    EXPECT_FALSE(options.RoutServer(address, 9)) << address;
  EXPECT_EQ(options.AllServers() + options.CurrentServer(), "A&&h&&1&&B&&h&&2&&C&&h&&1h:1");
  EXPECT_TRUE(options.RoutServer("new", 9));
  EXPECT_EQ(options.AllServers(), "A&&new&&9&&B&&h&&2&&C&&new&&9");
  EXPECT_EQ(options.CurrentServer(), "new:9");
  EXPECT_EQ(rig.home.read(server_file), before) << "written with the next save";
  ComboBox box;
  box.set_items({"A", "B", "C"});
  box.choose(1);
  EXPECT_TRUE(options.Servers(box));
  EXPECT_EQ(rig.home.read(server_file), "A&&new&&9&&B&&h&&2&&C&&new&&9\nh:2\n0\n\n");
  box.type(" typed:8");
  EXPECT_TRUE(options.Servers(box));
  EXPECT_EQ(options.CurrentServer(), " typed:8");
}

class AccountDialog : public ::testing::Test {
 protected:
  AccountDialog() {
    rig.home.write(server_file, "Main&&10.0.0.1&&443\n10.0.0.1:443\n0\n\n");
    EXPECT_TRUE(rig.options.InitializeFromFile());
    rig.windows.accounts.taken_keys = {"BOB,123"};
  }
  void fill(const char* account, const char* user, const char* password, const char* server) {
    dialog.txtaccount.set_text(account);
    dialog.txtusername.set_text(user);
    dialog.txtpassword.set_text(password);
    dialog.CBServer.type(server);
  }
  bool saved() const { return !rig.home.read(account_file).empty(); }

  SessionRig rig;
  frmaccount dialog{rig.general, rig.windows.desk, rig.options, rig.sessions};
};

TEST_F(AccountDialog, TheFirstStepThatFailsIsToldAndChangesNothing) {
  const std::string wrong = "Wrong server.\nServer must be of the (IP:PORT) format\ni.e\n";
  const std::string fields = "Please fill all account information";
  const std::string comma = "User name and password must not contain a comma or a line end";
  const std::string number = "Please enter a valid  account ID";
  const struct {
    const char *account, *user, *password, *server;
    std::string message;
    const char* current;  // server afterwards
  } cases[] = {
      {"", "", "", "", fields, "10.0.0.1:443"},
      {"12a", "", "p", "10.1.1.1", fields, "10.0.0.1:443"},
      {"12a", "ann", "p", "10.1.1.1", wrong, "10.0.0.1:443"},
      {"12a", "ann", "p", "10.1.1.1:", wrong, "10.0.0.1:443"},
      {"12a", "ann", "p", ":77", wrong, "10.0.0.1:443"},
      {"12", "ann", "p", "10.1.1.1:port", wrong, "10.0.0.1:443"},
      {"12a", "ann", "", "10.1.1.1:77", fields, "10.1.1.1:77"},
      {"12a", "ann", "p", "10.1.1.1:78", number, "10.1.1.1:78"},
      {"1.5", "ann", "p", "Main", number, "10.0.0.1:443"},
      {"2147483648", "ann", "p", "Main", number, "10.0.0.1:443"},
      {"12", "ann", "p", "10.1.1.1,2:77", wrong, "10.0.0.1:443"},
      {"12", "ann", "p", "10.1.1.1\n:77", wrong, "10.0.0.1:443"},
      {"12", "an,n", "p", "Main", comma, "10.0.0.1:443"},
      {"12", "ann", "p\n", "Main", comma, "10.0.0.1:443"},
      {"12", "ann", "p,", "Main", comma, "10.0.0.1:443"},
      {"12", "an\rn", "p", "Main", comma, "10.0.0.1:443"},
      {"123", " bob ", "p", "Main", "Account 123 for client  bob  already exists", "10.0.0.1:443"},
  };
  dialog.open_add();
  EXPECT_EQ(dialog.CBServer.text(), "Main");
  dialog.chkSave.click();
  dialog.chkAutoLogin.click();
  for (const auto& one : cases) {
    fill(one.account, one.user, one.password, one.server);
    dialog.cmdLoginAA.click();
    ASSERT_EQ(rig.prompt.shown.size(), 1u) << one.message;
    const auto box = rig.prompt.shown[0];
    rig.prompt.shown.clear();
    EXPECT_EQ(box.text.substr(0, one.message == wrong ? wrong.size() : box.text.size()), one.message);
    EXPECT_EQ(box.buttons, one.message == wrong ? "system" : "OK");
    EXPECT_EQ(box.caption, "Alert");
    EXPECT_TRUE(dialog.Displayed());
    EXPECT_EQ(dialog.txtaccount.text() + dialog.txtusername.text() + dialog.CBServer.text(),
              std::string{one.account} + one.user + one.server);
    EXPECT_EQ(rig.sessions.Count(), 0);
    EXPECT_FALSE(saved());
    EXPECT_EQ(rig.general.files.line(rig.options.ServerFileName(), 2), one.current);
  }
}

TEST_F(AccountDialog, AnAcceptedAccountIsSavedAndLoggedInAsTicked) {
  std::int32_t account = 200;
  for (const bool save : {false, true}) {
    for (const bool login : {false, true}) {
      dialog.open_add();
      dialog.chkSave.set_checked(save);
      dialog.chkAutoLogin.set_checked(login);
      fill(std::to_string(++account).c_str(), "ann", "secret", "10.1.1.1:77");
      dialog.cmdLoginAA.click();
      EXPECT_FALSE(dialog.Displayed());
      CClientAPIManager& added = *rig.sessions.Item(rig.sessions.Count());
      EXPECT_EQ(added.account(), account);
      EXPECT_EQ(rig.client(added).login_data.server, (Endpoint{"10.1.1.1", 77}));
      EXPECT_EQ(rig.client(added).logins, login ? 1 : 0);
      const std::string records = rig.home.read(account_file);
      EXPECT_EQ(records.starts_with("\n1."), save) << "the first record stands on the second line";
      EXPECT_EQ(records.ends_with(login ? ",True\n" : ",False\n"), save);
    }
  }
  EXPECT_TRUE(rig.prompt.shown.empty());
  dialog.open_add();
  dialog.txtaccount.type("1.2");
  EXPECT_EQ(dialog.txtaccount.text(), "12");
}

TEST_F(AccountDialog, AFullCollectionLogsNobodyInAndKeepsTheDialogOpen) {
  for (int i = 1; i <= 500; ++i)
    rig.add(i);
  dialog.open_add();
  dialog.chkSave.set_checked(true);
  dialog.chkAutoLogin.set_checked(true);
  fill("999", "ann", "p", "Main");
  dialog.cmdLoginAA.click();
  EXPECT_EQ(rig.prompt.take_texts(), Heard{"Maximum account number exceeded"});
  EXPECT_TRUE(dialog.Displayed());
  EXPECT_FALSE(saved());
  EXPECT_EQ(rig.client(*rig.sessions.Item(500)).logins, 0);
}

TEST_F(AccountDialog, AnEditReplacesTheSelectedAccount) {
  CClientAPIManager& old = rig.add(123);
  rig.add(124);
  dialog.open_edit(old, true, false);
  EXPECT_EQ(dialog.txtaccount.text() + dialog.txtusername.text(), "123BOB");
  rig.windows.accounts.one_chosen = false;
  dialog.cmdLoginAA.click();
  EXPECT_TRUE(dialog.Displayed() && rig.prompt.shown.empty()) << "no row selected";
  EXPECT_EQ(rig.sessions.Count(), 2);
  rig.windows.accounts.one_chosen = true;
  dialog.txtpassword.set_text("new");  // the same key is no duplicate of itself
  rig.take();
  dialog.cmdLoginAA.click();
  EXPECT_FALSE(dialog.Displayed());
  ASSERT_EQ(rig.sessions.Count(), 2);
  EXPECT_EQ(rig.sessions.Item(1)->account(), 124);
  EXPECT_EQ(rig.sessions.Item(2)->password(), "new");
  const Heard heard = rig.take();
  EXPECT_EQ(std::count(heard.begin(), heard.end(), "accounts replaces BOB,123 by BOB,123"), 1);
  EXPECT_EQ(rig.client(*rig.sessions.Item(2)).logins, 0);
  EXPECT_TRUE(saved());
}

}  // namespace
}  // namespace tutti::testing
