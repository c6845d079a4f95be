#include <QDialog>

#include "tests/gui/desktop_rig.h"
#include "tests/support/scenario_desk.h"

namespace tutti::testing {
namespace {

struct StopWindows : DesktopRig {
  StopWindows() : DesktopRig(still_market(2)) {}
  // A dialog of the main window, with what it shows by now.
  QDialog& dialog(const char* name) {
    rig.run(1ms);
    return part<QDialog>(*window, name);
  }
  std::string result() { return rig.main().market_order().lvwConClients.row(0).text(2); }
};

TEST_F(StopWindows, AHeldOrderTakesAnotherKeyThanTheOneThatSentIt) {
  auto& held = dialog("frmHeld");
  EXPECT_TRUE(held.isHidden());
  const auto hold = [&] {
    rig.distribute("30");
    rig.main().market_order().cmdbuy.click();
    rig.run(1ms);
    ASSERT_TRUE(held.isVisible());
    rig.run(dead_time);
  };
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape}) {
    hold();
    EXPECT_EQ(part<RowListView>(held, "lvwHeld").rows().rowCount(), 2);
    EXPECT_EQ(held.focusWidget(), &part(held, "cmdDrop"));
    QTest::keyClick(held.focusWidget(), key);
    rig.run(1ms);
    EXPECT_TRUE(held.isHidden());
    EXPECT_EQ(result(), "Not sent: a limit is exceeded");
  }
  hold();
  held.activateWindow();
  QTest::keyClicks(&part(held, "txtReason"), QStringLiteral("asked for"));
  QTest::keyClick(&held, Qt::Key_F10, Qt::ControlModifier);
  rig.run(500ms);
  EXPECT_TRUE(held.isHidden());
  EXPECT_EQ(result().find("Not sent"), std::string::npos);
  EXPECT_EQ(rig.terminal.server.outcomes().size(), 2U);
}

TEST_F(StopWindows, OneKeyStopsAndTheStatusBarSaysSo) {
  auto& stop = dialog("frmStop");
  auto& strip = part<QLabel>(*window, "stopped");
  EXPECT_TRUE(strip.text().isEmpty() && stop.isHidden());
  press(Qt::Key_Pause);
  rig.run(1ms);
  EXPECT_TRUE(stop.isVisible() && strip.isVisible());
  EXPECT_EQ(strip.text(), QStringLiteral("TRADING IS STOPPED"));
  QTest::keyClick(&stop, Qt::Key_Escape);
  rig.run(1ms);
  EXPECT_TRUE(stop.isHidden() && strip.isVisible());
  rig.buy("1");
  EXPECT_EQ(result(), "Not sent: trading is stopped");
  trigger("stop_all");
  rig.run(1ms);
  QTest::mouseClick(&part(stop, "cmdEnd"), Qt::LeftButton);
  rig.run(1ms);
  EXPECT_TRUE(stop.isHidden() && strip.isHidden());
}

TEST_F(StopWindows, LimitsAreTickedAndTyped) {
  auto& limits = dialog("frmLimits");
  trigger("limits");
  rig.run(1ms);
  ASSERT_TRUE(limits.isVisible());
  auto& value = part<QLineEdit>(limits, "value_ticket_lots");
  EXPECT_FALSE(value.isEnabled());
  QTest::mouseClick(&part(limits, "on_ticket_lots"), Qt::LeftButton, {}, {8, 8});
  rig.run(1ms);
  QTest::keyClicks(&value, QStringLiteral("25"));
  QTest::mouseClick(&part(limits, "cmdSave"), Qt::LeftButton);
  rig.run(1ms);
  EXPECT_TRUE(limits.isHidden());
  EXPECT_EQ(rig.main().sessions().admission().limits()[Limit::ticket_lots], 25.0);
}

}  // namespace
}  // namespace tutti::testing
