#include <QPushButton>
#include <QTextEdit>

#include "gui/kit/desktop_prompt.h"
#include "gui/shell/message_queue_window.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

std::string text_of(const QWidget& box) {
  return box.findChild<QTextEdit*>()->toPlainText().toStdString();
}

// The buttons that look as if Enter pressed them.
std::string primary(const QWidget& box) {
  std::string out;
  for (const QPushButton* each : box.findChildren<QPushButton*>())
    if (each->property("role").toString() == QStringLiteral("primary"))
      out += each->objectName().toStdString();
  return out;
}

struct MessagesTest : ::testing::Test {
  MessagesTest() {
    prompt.set_parent(&window);
    rig.terminal.prompt.screen = &prompt;
    show(window, {400, 200});
    window.activateWindow();
    edit.setFocus();
  }
  // How many stand on the screen.
  int boxes() {
    int count = 0;
    for (const QWidget* each : QApplication::topLevelWidgets())
      count += each->isVisible() && each != &window ? 1 : 0;
    return count;
  }

  GuiRig rig{DealerConfig::sample(2)};
  DesktopPrompt prompt{rig.screen};
  QWidget window;
  QLineEdit edit{&window};
};

TEST_F(MessagesTest, AQuestionIsAnsweredByKeysAndClicks) {
  const struct {
    const char* name;
    std::function<void(QWidget& box)> act;
    bool yes;
  } cases[] = {
      {"Esc", [](QWidget&) { press(Qt::Key_Escape); }, false},
      {"frame", [](QWidget& box) { box.close(); }, false},
      {"Enter, No having the focus", [](QWidget&) { press(Qt::Key_Return); }, false},
      {"N", [](QWidget&) { press(Qt::Key_N); }, false},
      {"Y", [](QWidget&) { press(Qt::Key_Y); }, true},
      {"Alt+Y", [](QWidget&) { press(Qt::Key_Y, Qt::AltModifier); }, true},
      {"Enter on Yes",
       [](QWidget& box) {
         press(Qt::Key_Backtab);
         EXPECT_EQ(primary(box), "cmd1");
         press(Qt::Key_Enter);
       },
       true},
      {"second click of a double-click on what opened it",
       [](QWidget& box) {
         QTest::mouseDClick(&part(box, "cmd1"), Qt::LeftButton);
         QTest::mouseRelease(&part(box, "cmd1"), Qt::LeftButton);
         if (box.isVisible()) press(Qt::Key_Escape);
       },
       false},
      {"click on Yes", [](QWidget& box) { QTest::mouseClick(&part(box, "cmd1"), Qt::LeftButton); }, true},
  };
  int followed = 0;
  CQuestionBox& question = rig.main().question_box();
  question.on_yes[0] = [&] { ++followed; };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    followed = 0;
    when_modal([&](QWidget& box) {
      EXPECT_EQ(part<QTextEdit>(box, "label2").toPlainText().toStdString(), "2 positions");
      EXPECT_EQ(primary(box), "cmd2");
      each.act(box);
    });
    question.Show(1, "  Close all?\nTwo lines", "2 positions");
    EXPECT_EQ(followed, each.yes ? 1 : 0);
    EXPECT_FALSE(question.box().Displayed());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  }
}

TEST_F(MessagesTest, TheQuestionIsGoneBeforeItsFollowUpShowsTheNextBox) {
  CQuestionBox& question = rig.main().question_box();
  std::string second;
  question.on_yes[0] = [&] {
    when_modal([&](QWidget& box) {
      second = text_of(box);
      EXPECT_EQ(boxes(), 1);
      press(Qt::Key_Return);
    });
    rig.main().general().message_box("  three orders were refused");
  };
  when_modal([](QWidget&) { press(Qt::Key_Y); });
  question.Show(1, "Close all?");
  EXPECT_EQ(second, "  three orders were refused");
}

TEST_F(MessagesTest, AQuestionThatEndsByItselfIsTakenOffTheScreen) {
  CQuestionBox& question = rig.main().question_box();
  question.on_yes[0] = [] { FAIL() << "nobody said yes"; };
  when_modal([&](QWidget&) {
    question.Hide();
    rig.screen.refresh();
  });
  question.Show(1, "Close all?");
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(MessagesTest, SureRemovesAllOnYesOnly) {
  const RowList& list = rig.main().accounts().lvwClients;
  for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Y}) {
    when_modal([key](QWidget& box) {
      EXPECT_EQ(text_of(box), " Are you sure to remove all accounts?");
      press(key);
    });
    rig.main().sure().GeneralQuestionMsg("Remove All");
    EXPECT_EQ(list.size(), key == Qt::Key_Escape ? 2u : 0u);
  }
}

struct QueueTest : MessagesTest {
  bool open() { return messages.window().isVisible(); }
  std::string text() { return text_of(messages.window()); }
  void click(int button) { QTest::mouseClick(&messages.window().button(button), Qt::LeftButton); }

  static constexpr int all = 0;
  static constexpr int ok = 1;
  MessageQueueWindow messages{rig.main().messages(), rig.screen, rig.terminal.clock, window};
};

TEST_F(QueueTest, DropsShowOneBoxThatLeavesTheFocusAlone) {
  for (const std::int32_t account : {500100, 500101})
    rig.terminal.server.drop(account);
  rig.run(100ms);
  ASSERT_TRUE(open());
  EXPECT_EQ(text(), "account 500100 Session disconnected");
  // Offscreen every window that is shown becomes the active one; elsewhere this keeps it from that.
  EXPECT_TRUE(messages.window().testAttribute(Qt::WA_ShowWithoutActivating));
  window.activateWindow();

  rig.terminal.clock.set_by(1h);
  click(ok);
  EXPECT_EQ(text(), "account 500100 Session disconnected") << "not meant for it";
  rig.run(300ms);
  messages.next();
  QCoreApplication::processEvents();
  EXPECT_EQ(QApplication::focusWidget(), &edit);
  EXPECT_EQ(text(), "account 500101 Session disconnected");
  EXPECT_FALSE(messages.window().button(all).isEnabled());
  click(ok);
  EXPECT_FALSE(open());
  QCoreApplication::processEvents();
  EXPECT_EQ(QApplication::focusWidget(), &edit);
}

TEST_F(QueueTest, HundredsAreDismissedTogether) {
  MessageQueue& queue = rig.main().messages();
  for (int i = 0; i < 500; ++i)
    queue.post({"account " + std::to_string(i) + " Session disconnected", "Session Disconnected", "OK", ""});
  rig.run(10ms);
  rig.run(300ms);
  EXPECT_EQ(boxes(), 1);

  click(ok);
  EXPECT_EQ(text(), "account 1 Session disconnected");
  QTest::keyClick(&messages.window(), Qt::Key_Escape);
  EXPECT_EQ(text(), "account 2 Session disconnected");

  click(all);
  EXPECT_FALSE(open());
  EXPECT_EQ(queue.current(), nullptr);
}

}  // namespace
}  // namespace tutti::testing
