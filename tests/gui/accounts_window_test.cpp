#include <QComboBox>
#include <QTextEdit>

#include "gui/kit/desktop_prompt.h"
#include "gui/windows/frmMain_window.h"
#include "gui/windows/frmaccount_window.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

struct AccountsWindowTest : ::testing::Test {
  AccountsWindowTest() {
    prompt.set_parent(&window);
    rig.terminal.prompt.screen = &prompt;
    show(window, {1000, 400});
    window.activateWindow();
    view.setFocus();
  }

  std::string notes(std::size_t row) { return form.lvwClients.row(row).text(frmMain::notes); }
  // User names.
  Texts users() { return shown(view.rows(), frmMain::user_name); }
  Texts selected() {
    Texts out;
    for (const Row* row : form.lvwClients.selected())
      out.push_back(row->text(frmMain::user_name));
    return out;
  }

  GuiRig rig{DealerConfig::sample(6)};
  frmMain& form = rig.main().accounts();
  DesktopPrompt prompt{rig.screen};
  Desktop desktop{rig};
  FrmMainWindow& window = desktop.panes().accounts();
  RowListView& view = window.list();
};

TEST_F(AccountsWindowTest, AnAccountIsAddedByKeyboard) {
  FrmaccountWindow& dialog = desktop.window.account_dialog();
  form.mnuclear_Click();
  form.add_account();
  rig.run(10ms);
  ASSERT_EQ(QApplication::activeModalWidget(), &dialog);
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Add account"));
  auto* password = &part<QLineEdit>(dialog, "txtpassword");

  type("12a");
  press(Qt::Key_Tab);
  type("aspen");
  press(Qt::Key_Tab);
  type("ASPEN02");
  const auto refused = [&](const char* expected) {
    std::string told;
    when_modal([&told](QWidget& box) {
      told = box.findChild<QTextEdit*>()->toPlainText().toStdString();
      press(Qt::Key_Return);
    });
    press(Qt::Key_Return);
    EXPECT_EQ(told, expected);
    QCoreApplication::processEvents();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(form.lvwClients.size(), 0u);
  };
  refused("Please enter a valid  account ID");
  // The keyboard is back where it was.
  EXPECT_EQ(QApplication::focusWidget(), password);

  press(Qt::Key_Tab);
  type("10.1.1.1");
  refused("Wrong server.\nServer must be of the (IP:PORT) format\ni.e\n10.0.0.1:443");
  dialog.findChild<QComboBox*>()->lineEdit()->selectAll();
  type("127.0.0.1:4950");

  QTest::mouseClick(&part(dialog, "txtaccount"), Qt::LeftButton);
  type("500101");
  QTest::mouseClick(&part(dialog, "chkAutoLogin"), Qt::LeftButton, {}, {8, 8});
  press(Qt::Key_Return);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_TRUE(password->text().isEmpty());
  rig.run(1s);
  ASSERT_EQ(form.lvwClients.size(), 1u);
  const Row& row = form.lvwClients.row(0);
  EXPECT_EQ(row.text(frmMain::user_name) + row.text(frmMain::account) + row.text(frmMain::state),
            "ASPEN500101Connected");
}

TEST_F(AccountsWindowTest, OfServersThatReadAlikeThePickedOneIsTaken) {
  FrmaccountWindow& dialog = desktop.window.account_dialog();
  rig.terminal.home->write("manage/SERVER.BUF", "Main&&h&&1&&Main&&h&&2&&Other&&h&&3\nh:1\n0\n\n");
  ASSERT_TRUE(rig.main().login_options().InitializeFromFile());
  form.add_account();
  rig.run(10ms);
  auto& box = *dialog.findChild<QComboBox*>();
  for (const int expected : {1, 2}) {
    QTest::keyClick(&box, Qt::Key_Down);
    rig.run(10ms);
    EXPECT_EQ(box.currentIndex(), expected);
    ASSERT_TRUE(rig.main().login_options().Servers(form.account_dialog().CBServer));
    EXPECT_EQ(rig.main().login_options().CurrentServerPort(), expected + 1);
  }
}

TEST_F(AccountsWindowTest, NotesAreEditedInTheList) {
  double_click_cell(view, 1, frmMain::notes);
  type("first ");
  press(Qt::Key_Return);
  EXPECT_EQ(notes(1), "first");

  double_click_cell(view, 1, frmMain::notes);
  type("second");
  press(Qt::Key_Escape);
  EXPECT_EQ(notes(1), "first");

  click_cell(view, 3, frmMain::account);
  window.edit_notes();
  type("third");
  window.edit_notes();
  click_cell(view, 0, frmMain::account);
  EXPECT_EQ(notes(3), "third");
  EXPECT_EQ(QApplication::focusWidget(), &view);
}

TEST_F(AccountsWindowTest, NotesFollowTheirRowAndEndWithIt) {
  double_click_cell(view, 3, frmMain::notes);
  type("kept");
  // A row above goes: the editor is on the same account, now one higher.
  view.go_to(form.lvwClients.row(0));
  rig.screen.acted();
  form.mnuRemove_Click();
  rig.run(100ms);
  press(Qt::Key_Return);
  EXPECT_EQ(notes(2), "kept");

  double_click_cell(view, 4, frmMain::notes);
  type("lost");
  form.mnuRemove_Click();
  rig.run(100ms);
  EXPECT_FALSE(form.txteditLo.visible());
  EXPECT_EQ(QApplication::focusWidget(), &view);
  for (std::size_t row = 0; row < 4; ++row)
    EXPECT_EQ(notes(row), row == 2 ? "kept" : "");
}

TEST_F(AccountsWindowTest, FindKeepsTheSelectionOnWhatIsShown) {
  rig.main().sessions().Item(2)->write_note("k\xC3\xB6ln");
  rig.main().sessions().Item(5)->write_note("family Birch");
  click_cell(view, 4, frmMain::account);
  const struct {
    const char* text;
    Texts shown, selected;
  } cases[] = {
      {"birch", {"BIRCH", "CEDAR"}, {"CEDAR"}},
      {"500102", {"BEECH"}, {"BEECH"}},
      {"K\xF6LN", {"ASPEN"}, {"ASPEN"}},
      {"nobody", {}, {}},
      {"a", {"ALDER", "ASPEN", "CEDAR", "HAZEL"}, {"ALDER"}},
      {"", {"ALDER", "ASPEN", "BEECH", "BIRCH", "CEDAR", "HAZEL"}, {"ALDER"}},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.text);
    window.find(QString::fromLatin1(each.text));
    EXPECT_EQ(users(), each.shown);
    EXPECT_EQ(selected(), each.selected);
    EXPECT_EQ(window.shown_text(), QStringLiteral("%1 of 6").arg(each.shown.size()));
  }
}

TEST_F(AccountsWindowTest, ADoubleClickConnectsADisconnectedAccount) {
  click_cell(view, 0, frmMain::account);
  form.MnuDisconnecte_Click();
  rig.run(500ms);
  const Row& row = form.lvwClients.row(0);
  ASSERT_EQ(row.text(frmMain::state), "Disconnected");
  double_click_cell(view, 0, frmMain::account);
  EXPECT_EQ(row.text(frmMain::state), "Connecting");
  std::string activated;
  window.activate_account = [&](Row& chosen) { activated = chosen.text(frmMain::account); };
  double_click_cell(view, 2, frmMain::state);
  EXPECT_EQ(activated, "500102");
}

}  // namespace
}  // namespace tutti::testing
