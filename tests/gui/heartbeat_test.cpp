// How often the windows are laid out, brought up to date and painted.

#include "gui/kit/heartbeat.h"
#include "tests/gui/desktop_rig.h"

namespace tutti::testing {
namespace {

DealerConfig without_ticks() {
  DealerConfig config = DealerConfig::sample();
  config.tick_interval = std::chrono::hours{24};
  return config;
}

// The program's own heartbeat on time that goes by as fast as it is slept away.
struct HeartbeatTest : DesktopRig, QObject {
  HeartbeatTest() : DesktopRig(without_ticks()) {}
  void SetUp() override {
    open();
    to_front("journal");
    live_for(3s);
    qApp->installEventFilter(this);
  }
  void live_for(std::chrono::milliseconds time) {
    beats = layouts = paints = unsettled = 0;
    const std::uint64_t frame = rig.screen.frame();
    for (const TimePoint end = clock.now() + time; clock.now() < end; ++beats) {
      clock.advance(heartbeat.beat());
      QCoreApplication::processEvents();
    }
    frames = static_cast<int>(rig.screen.frame() - frame);
  }
  std::size_t advance(std::size_t limit) {
    rig.terminal.server.advance();
    if (!storm) return rig.main().deliver_events(limit);
    clock.advance(1ms);
    for (std::size_t i = 0; i < limit; ++i)
      rig.main().journal().log("a line", 500100);
    return limit;
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    const RowListView& list = window->panes().journal().list();
    layouts += event->type() == QEvent::LayoutRequest ? 1 : 0;
    if (watched != list.viewport() || event->type() != QEvent::Paint) return false;
    ++paints;
    unsettled += list.rows().settled() ? 0 : 1;
    return false;
  }

  ManualClock& clock = rig.terminal.clock;
  Heartbeat heartbeat{rig.screen,
                      clock,
                      {[this](std::size_t limit) { return advance(limit); },
                       [this] { return rig.terminal.server.next_due().value() - clock.now(); }}};
  bool storm = false;
  int beats = 0;
  int layouts = 0;
  int frames = 0;
  int paints = 0;  // of the journal
  int unsettled = 0;
};

TEST_F(HeartbeatTest, NothingIsLaidOutAndLittleLookedAtWhileNothingHappens) {
  live_for(10s);
  EXPECT_EQ(layouts, 0);
  EXPECT_EQ(paints, 0);
  // The server tells its time once a second.
  EXPECT_LE(frames, 50);
  EXPECT_LE(beats, 60);
}

TEST_F(HeartbeatTest, AListIsPaintedOnceAFrameHoweverManyLinesCome) {
  storm = true;
  live_for(160ms);
  EXPECT_GE(frames, 8);
  EXPECT_LE(frames, 10);
  EXPECT_EQ(paints, frames);
  EXPECT_EQ(unsettled, 0);
  // What else has the window painted finds every line as well.
  storm = false;
  live_for(1s);
  paints = 0;
  rig.main().journal().log("one more", 500100);
  window->panes().journal().list().viewport()->update();
  QCoreApplication::processEvents();
  EXPECT_EQ(paints, 1);
  EXPECT_EQ(unsettled, 0);
}

TEST_F(HeartbeatTest, WhatTheOperatorDoesWakesIt) {
  heartbeat.start();
  QCoreApplication::processEvents();
  const std::uint64_t frame = rig.screen.frame();
  clock.advance(16ms);
  QCoreApplication::processEvents();
  EXPECT_EQ(rig.screen.frame(), frame);
  press(Qt::Key_Shift);
  QCoreApplication::processEvents();
  EXPECT_EQ(rig.screen.frame(), frame + 1);
}

TEST_F(HeartbeatTest, ARequoteTakesAnAnswerAsSoonAsItsDeadTimeIsOver) {
  CClientAPIManager& session = *rig.main().sessions().by_account(500100);
  rig.main().requote().SetData(session, 77, 500100, operation::buy, 0.5, "EURUSD", 1.08, 1.09, 10, 10);
  rig.screen.stir();
  live_for(dead_time - 32ms);
  const auto& accept = part<QAbstractButton>(window->requote(), "cmdAccept");
  EXPECT_FALSE(accept.isEnabled());
  live_for(64ms);
  EXPECT_TRUE(accept.isEnabled());
}

}  // namespace
}  // namespace tutti::testing
