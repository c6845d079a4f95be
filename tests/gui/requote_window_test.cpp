#include <QProgressBar>

#include "gui/windows/frmPriceChanged_window.h"
#include "tests/gui/gui_rig.h"
#include "tests/support/scenario_desk.h"

namespace tutti::testing {
namespace {

DealerConfig requoting(int accounts) {
  DealerConfig config = DealerConfig::sample(accounts);
  config.faults = {fault(FaultKind::requote, {}, FaultPoint::open, 0, 10s)};
  return config;
}

// Every order of its accounts is requoted; they have been sent, and the first requote is on show.
struct RequoteRig : GuiRig {
  explicit RequoteRig(int accounts = 1)
      : GuiRig(requoting(accounts)), form(main().requote()), window(form, screen, &owner) {
    tested = &window;
    show(owner);
    owner.activateWindow();
    text_box.setFocus();
    buy("0.5");
    run(200ms);
  }
  void past_dead_time() {
    window.activateWindow();
    run(dead_time);
  }
  std::string result() { return main().market_order().lvwConClients.row(0).text(2); }
  std::size_t positions() { return main().trade().lvwOpenPos.size(); }

  QWidget owner;
  QLineEdit text_box{&owner};
  frmPriceChanged& form;
  FrmPriceChangedWindow window;
};

TEST(RequoteWindow, NothingAnswersDuringTheDeadTimeAndNoKeyboardIsTaken) {
  RequoteRig rig;
  EXPECT_TRUE(rig.window.testAttribute(Qt::WA_ShowWithoutActivating) && !rig.window.isModal());
  EXPECT_EQ(rig.window.windowTitle().toStdString(), rig.form.caption());
  EXPECT_EQ(rig.find<QProgressBar>("requote_countdown").value(), 10);
  EXPECT_EQ(rig.line("lblOrder") + rig.line("lblNewPrice"),
            rig.form.lblOrder.text() + rig.form.lblNewPrice.text());
  EXPECT_EQ(rig.line("requote_account"), "Account " + std::to_string(rig.form.account()));
  ASSERT_TRUE(rig.form.buttons_dead());
  EXPECT_FALSE(rig.find("cmdAccept").isEnabled());
  rig.click("cmdAccept");
  rig.click("cmdReject");
  for (const Qt::Key key : {Qt::Key_A, Qt::Key_R, Qt::Key_Escape, Qt::Key_Return, Qt::Key_Space})
    QTest::keyClick(&rig.window, key);
  rig.window.accept_requote();
  rig.window.reject_requote();
  EXPECT_FALSE(rig.window.close());
  EXPECT_TRUE(rig.form.Displayed() && rig.window.isVisible());
  for (const auto step : {1h, -1h}) {  // whoever sets the clock
    rig.terminal.clock.set_by(step);
    EXPECT_TRUE(rig.form.buttons_dead());
  }
  rig.past_dead_time();
  EXPECT_TRUE(rig.find("cmdAccept").isEnabled());
  EXPECT_TRUE(rig.find("cmdReject").hasFocus());
}

TEST(RequoteWindow, EveryWayToAnswer) {
  const auto press = [](Qt::Key key) { return [key](RequoteRig& rig) { rig.key(key); }; };
  const auto click = [](const char* name) { return [name](RequoteRig& rig) { rig.click(name); }; };
  const struct {
    const char* name;
    std::function<void(RequoteRig&)> act;
    bool accepted;
  } ways[] = {
      {"accept clicked", click("cmdAccept"), true},
      {"reject clicked", click("cmdReject"), false},
      {"A", press(Qt::Key_A), true},
      {"R", press(Qt::Key_R), false},
      {"Esc", press(Qt::Key_Escape), false},
      {"Enter", press(Qt::Key_Return), false},
      {"Enter on Accept",
       [&](RequoteRig& rig) {
         rig.find("cmdAccept").setFocus();
         press(Qt::Key_Enter)(rig);
       },
       true},
      {"accept command", [](RequoteRig& rig) { rig.window.accept_requote(); }, true},
      {"reject command", [](RequoteRig& rig) { rig.window.reject_requote(); }, false},
      {"frame", [](RequoteRig& rig) { rig.window.close(); }, false},
  };
  for (const auto& way : ways) {
    SCOPED_TRACE(way.name);
    RequoteRig rig;
    const std::string order = "Order number " + std::to_string(rig.form.order());
    rig.past_dead_time();
    way.act(rig);
    EXPECT_FALSE(rig.window.isVisible());
    EXPECT_EQ(rig.result(), order + (way.accepted ? " Accepted" : " rejected"));
    rig.run(1s);
    EXPECT_EQ(rig.positions(), way.accepted ? 1U : 0U);
    EXPECT_FALSE(rig.window.isVisible());
  }
}

TEST(RequoteWindow, AHeldKeyAnswersOneRequote) {
  RequoteRig rig{2};
  rig.past_dead_time();
  const std::int64_t first = rig.form.order();
  QTest::keyPress(&rig.window, Qt::Key_A);
  rig.run(2s);
  ASSERT_TRUE(rig.form.Displayed());
  ASSERT_NE(rig.form.order(), first);
  ASSERT_FALSE(rig.form.buttons_dead());
  for (int i = 0; i < 5; ++i)
    QTest::simulateEvent(&rig.window, true, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"), true);
  EXPECT_TRUE(rig.form.Displayed());
  rig.run(1s);
  EXPECT_EQ(rig.positions(), 1U);
}

}  // namespace
}  // namespace tutti::testing
