#include <gtest/gtest.h>

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "gui/frmPriceChanged_window.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;

DealerConfig requoting(int accounts) {
  DealerConfig config = DealerConfig::sample(accounts);
  FaultConfig requote;
  requote.kind = FaultKind::requote;
  requote.on = {FaultPoint::open};
  requote.wait = 10s;
  requote.points = 30;
  config.faults = {requote};
  return config;
}

// Every order of its accounts is requoted; they have been sent, and the first requote is on show.
struct RequoteRig : GuiRig {
  explicit RequoteRig(int accounts = 1)
      : GuiRig(requoting(accounts)), form(main().requote()), dialog(form, screen, &owner) {
    show(owner);
    owner.activateWindow();
    text_box.setFocus();
    frmorder& order = main().market_order();
    order.cbsymbols.choose("EURUSD");
    order.CBdis.choose(0);
    order.txtammount.type("0.5");
    for (Row& row : order.lvwConClients)
      order.lvwConClients.tick(row, true);
    order.cmddis.click();
    order.cmdbuy.click();
    run(200ms);
  }
  template <class W>
  W& find(const char* name) {
    return *dialog.findChild<W*>(QString::fromLatin1(name));
  }
  void past_dead_time() {
    run(frmPriceChanged::dead_time);
    dialog.activateWindow();
    QCoreApplication::processEvents();
  }
  std::string result() { return main().market_order().lvwConClients.row(0).text(2); }
  std::size_t positions() { return main().trade().lvwOpenPos.size(); }

  QWidget owner;
  QLineEdit text_box{&owner};
  frmPriceChanged& form;
  FrmPriceChangedWindow dialog;
};

TEST(RequoteWindow, ShowsTheRequoteWithoutTakingTheKeyboard) {
  RequoteRig rig;
  ASSERT_TRUE(rig.dialog.isVisible());
  EXPECT_TRUE(rig.dialog.testAttribute(Qt::WA_ShowWithoutActivating));
  EXPECT_FALSE(rig.dialog.isModal());
  EXPECT_TRUE(rig.find<QLabel>("lblOrder").text().startsWith(QStringLiteral("Buy 0.5 EURUSD at ")));
  EXPECT_EQ(rig.find<QLabel>("lblNewPrice").text().toStdString(), rig.form.lblNewPrice.text());
  EXPECT_EQ(rig.dialog.windowTitle(), QStringLiteral("10 / 10"));
  rig.run(3s);
  EXPECT_EQ(rig.dialog.windowTitle(), QStringLiteral("7 / 10"));
  EXPECT_EQ(rig.find<QProgressBar>("requote_countdown").value(), 7);
  EXPECT_EQ(rig.find<QLabel>("requote_account").text().toStdString(),
            "Account " + std::to_string(rig.form.account()));
}

TEST(RequoteWindow, NothingAnswersDuringTheDeadTime) {
  RequoteRig rig;
  ASSERT_TRUE(rig.form.buttons_dead());
  EXPECT_FALSE(rig.find<QWidget>("cmdAccept").isEnabled());
  QTest::mouseClick(&rig.find<QWidget>("cmdAccept"), Qt::LeftButton);
  QTest::mouseClick(&rig.find<QWidget>("cmdReject"), Qt::LeftButton);
  for (const Qt::Key key : {Qt::Key_A, Qt::Key_R, Qt::Key_Escape, Qt::Key_Return, Qt::Key_Space})
    QTest::keyClick(&rig.dialog, key);
  rig.dialog.accept_requote();
  rig.dialog.reject_requote();
  EXPECT_FALSE(rig.dialog.close());
  EXPECT_TRUE(rig.form.Displayed() && rig.dialog.isVisible());
  rig.past_dead_time();
  EXPECT_TRUE(rig.find<QWidget>("cmdAccept").isEnabled());
  EXPECT_TRUE(rig.find<QWidget>("cmdReject").hasFocus());
}

TEST(RequoteWindow, EveryWayToAnswer) {
  const auto press = [](Qt::Key key) {
    return [key](RequoteRig& rig) { QTest::keyClick(rig.dialog.focusWidget(), key); };
  };
  const auto click = [](const char* name) {
    return [name](RequoteRig& rig) { QTest::mouseClick(&rig.find<QWidget>(name), Qt::LeftButton); };
  };
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
         rig.find<QWidget>("cmdAccept").setFocus();
         press(Qt::Key_Enter)(rig);
       },
       true},
      {"accept command", [](RequoteRig& rig) { rig.dialog.accept_requote(); }, true},
      {"reject command", [](RequoteRig& rig) { rig.dialog.reject_requote(); }, false},
      {"frame", [](RequoteRig& rig) { rig.dialog.close(); }, false},
      {"time over",
       [](RequoteRig& rig) {
         while (rig.form.Displayed())
           rig.run(10ms);
       },
       false},
  };
  for (const auto& way : ways) {
    SCOPED_TRACE(way.name);
    RequoteRig rig;
    const std::string order = "Order number " + std::to_string(rig.form.order());
    rig.past_dead_time();
    way.act(rig);
    EXPECT_FALSE(rig.dialog.isVisible());
    EXPECT_EQ(rig.result(), order + (way.accepted ? " Accepted" : " rejected"));
    rig.run(1s);
    EXPECT_EQ(rig.positions(), way.accepted ? 1U : 0U);
    EXPECT_FALSE(rig.dialog.isVisible());
  }
}

TEST(RequoteWindow, AHeldKeyAnswersOneRequote) {
  RequoteRig rig{2};
  rig.past_dead_time();
  const std::int64_t first = rig.form.order();
  QTest::keyPress(&rig.dialog, Qt::Key_A);
  rig.run(2s);
  ASSERT_TRUE(rig.form.Displayed());
  ASSERT_NE(rig.form.order(), first);
  ASSERT_FALSE(rig.form.buttons_dead());
  for (int i = 0; i < 5; ++i)
    QTest::simulateEvent(&rig.dialog, true, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"), true);
  EXPECT_TRUE(rig.form.Displayed());
  rig.run(1s);
  EXPECT_EQ(rig.positions(), 1U);
}

}  // namespace
}  // namespace tutti::testing
