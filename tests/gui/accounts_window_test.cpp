#include <QComboBox>
#include <QTextEdit>

#include "gui/kit/desktop_prompt.h"
#include "gui/windows/frmaccount_window.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

struct AccountsWindowTest : ::testing::Test, PaneRig<&Panes::accounts> {
  AccountsWindowTest() : PaneRig(DealerConfig::sample(6), {1000, 400}) {
    prompt.set_parent(&window);
    terminal.prompt.screen = &prompt;
    window.activateWindow();
    list.setFocus();
  }

  std::string notes(std::size_t row) { return form.lvwClients.row(row).text(frmMain::notes); }
  // User names.
  Texts users() { return shown(list.rows(), frmMain::user_name); }
  Texts selected() {
    Texts out;
    for (const Row* row : form.lvwClients.selected())
      out.push_back(row->text(frmMain::user_name));
    return out;
  }

  frmMain& form = main().accounts();
  DesktopPrompt prompt{screen};
};

TEST_F(AccountsWindowTest, AnAccountIsAddedByKeyboard) {
  FrmaccountWindow& dialog = desktop.window.account_dialog();
  form.mnuclear_Click();
  form.add_account();
  run(10ms);
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
  dialog.findChild<QComboBox*>()->lineEdit()->selectAll();
  type("127.0.0.1:4950");

  QTest::mouseClick(&part(dialog, "txtaccount"), Qt::LeftButton);
  type("500101");
  QTest::mouseClick(&part(dialog, "chkAutoLogin"), Qt::LeftButton, {}, {8, 8});
  press(Qt::Key_Return);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_TRUE(password->text().isEmpty());
  run(1s);
  ASSERT_EQ(form.lvwClients.size(), 1u);
  const Row& row = form.lvwClients.row(0);
  EXPECT_EQ(row.text(frmMain::user_name) + row.text(frmMain::account) + row.text(frmMain::state),
            "ASPEN500101Connected");
}

TEST_F(AccountsWindowTest, OfServersThatReadAlikeThePickedOneIsTaken) {
  FrmaccountWindow& dialog = desktop.window.account_dialog();
  terminal.home->write("manage/SERVER.BUF", "Main&&h&&1&&Main&&h&&2&&Other&&h&&3\nh:1\n0\n\n");
  ASSERT_TRUE(main().login_options().InitializeFromFile());
  form.add_account();
  run(10ms);
  auto& box = *dialog.findChild<QComboBox*>();
  for (const int expected : {1, 2}) {
    QTest::keyClick(&box, Qt::Key_Down);
    run(10ms);
    EXPECT_EQ(box.currentIndex(), expected);
    ASSERT_TRUE(main().login_options().Servers(form.account_dialog().CBServer));
    EXPECT_EQ(main().login_options().CurrentServerPort(), expected + 1);
  }
}

TEST_F(AccountsWindowTest, NotesAreEditedInTheList) {
  double_click_cell(list, 1, frmMain::notes);
  type("first ");
  press(Qt::Key_Return);
  EXPECT_EQ(notes(1), "first");

  double_click_cell(list, 1, frmMain::notes);
  type("second");
  press(Qt::Key_Escape);
  EXPECT_EQ(notes(1), "first");

  click_cell(list, 3, frmMain::account);
  window.edit_notes();
  type("third");
  window.edit_notes();
  click_cell(list, 0, frmMain::account);
  EXPECT_EQ(notes(3), "third");
  EXPECT_EQ(QApplication::focusWidget(), &list);
}

TEST_F(AccountsWindowTest, NotesFollowTheirRowAndEndWithIt) {
  double_click_cell(list, 3, frmMain::notes);
  type("kept");
  // A row above goes: the editor is on the same account, now one higher.
  list.go_to(form.lvwClients.row(0));
  screen.acted();
  form.mnuRemove_Click();
  run(100ms);
  press(Qt::Key_Return);
  EXPECT_EQ(notes(2), "kept");

  double_click_cell(list, 4, frmMain::notes);
  type("lost");
  form.mnuRemove_Click();
  run(100ms);
  EXPECT_FALSE(form.txteditLo.visible());
  EXPECT_EQ(QApplication::focusWidget(), &list);
  for (std::size_t row = 0; row < 4; ++row)
    EXPECT_EQ(notes(row), row == 2 ? "kept" : "");
}

TEST_F(AccountsWindowTest, FindKeepsTheSelectionOnWhatIsShown) {
  main().sessions().Item(2)->write_note("k\xC3\xB6ln");
  main().sessions().Item(5)->write_note("family Birch");
  click_cell(list, 4, frmMain::account);
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
  click_cell(list, 0, frmMain::account);
  form.MnuDisconnecte_Click();
  run(500ms);
  const Row& row = form.lvwClients.row(0);
  ASSERT_EQ(row.text(frmMain::state), "Disconnected");
  double_click_cell(list, 0, frmMain::account);
  EXPECT_EQ(row.text(frmMain::state), "Connecting");
  std::string activated;
  window.activate_account = [&](Row& chosen) { activated = chosen.text(frmMain::account); };
  double_click_cell(list, 2, frmMain::state);
  EXPECT_EQ(activated, "500102");
}

}  // namespace
}  // namespace tutti::testing
