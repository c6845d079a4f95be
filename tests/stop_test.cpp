// An order over a limit, and STOP ALL, as the operator has them: in the windows and on the command line.

#include <gtest/gtest.h>

#include "tests/support/command_line_rig.h"
#include "tests/support/scenario_desk.h"

namespace tutti::testing {
namespace {

struct StopDesk : ::testing::Test {
  // Heartbeats, as the programs have them.
  void run(std::chrono::milliseconds time) {
    for (auto gone = 0ms; gone < time; gone += 50ms) {
      desk.run(50ms);
      desk.main->poll_timers();
    }
  }
  Texts open_rows() { return rows_of(stop.lvwOpen); }

  ScenarioDesk desk{still_market(3)};
  frmHeld& held = desk.main->held();
  frmStop& stop = desk.main->stop_form();
  frmorder& order = desk.main->market_order();
};

TEST_F(StopDesk, AnOrderOverALimitLeavesWithTheSecondKeyOnly) {
  Limits limits;
  limits[Limit::account_lots] = 10.0;
  desk.main->sessions().admission().set_limits(limits);
  desk.open("45");
  ASSERT_TRUE(held.Displayed());
  EXPECT_EQ(held.lblHeld.text(), "Nothing of this order was sent: 3 requests, 45 lots together");
  EXPECT_EQ(rows_of(held.lvwHeld), (Texts{"500100|15 lots, above the limit of 10 for one account",
                                          "500101|15 lots, above the limit of 10 for one account",
                                          "500102|15 lots, above the limit of 10 for one account"}));
  EXPECT_EQ(order.answers().text(), "3 held");
  EXPECT_EQ(desk.result(500100), "Held: a limit is exceeded");
  EXPECT_EQ(desk.sound.take(), Texts{});
  run(40s);
  EXPECT_EQ(desk.server.outcomes().size(), 0U);
  EXPECT_EQ(order.answers().text(), "3 held");
  held.cmdDrop.click();
  EXPECT_FALSE(held.Displayed());
  EXPECT_EQ(order.answers().text(), "3 refused");
  EXPECT_EQ(desk.result(500100), "Not sent: a limit is exceeded");

  desk.open("45");
  // Who still presses the key that sent it has not read it.
  held.refresh();
  held.cmdSend.click();
  EXPECT_TRUE(held.Displayed());
  run(dead_time);
  held.cmdSend.click();
  EXPECT_FALSE(held.Displayed());
  EXPECT_EQ(order.answers().text(), "3 waiting");
  run(500ms);
  EXPECT_EQ(order.answers().waiting, 0);
  EXPECT_EQ(desk.server.outcomes().size(), 3U);
  EXPECT_EQ(desk.differences(), Texts{});
}

TEST_F(StopDesk, StopAllEndsWhatARateLimitHoldsBackAndClosesTheRest) {
  Limits limits;
  limits[Limit::orders_per_second] = 1.0;
  desk.main->sessions().admission().set_limits(limits);
  desk.open("0.9");
  EXPECT_EQ(order.answers().text(), "1 accepted, 2 waiting");
  // One has left when the stop comes, and is filled in it.
  run(700ms);
  desk.take_messages();
  stop.stop("the operator");
  EXPECT_TRUE(stop.Displayed() && stop.stopped());
  EXPECT_EQ(order.answers().accepted + order.answers().waiting, 2);
  const std::string dropped = "1 of 1 requests were not sent: trading is stopped. End the stop first";
  EXPECT_EQ(desk.take_messages(), Texts{dropped});
  run(500ms);
  const Texts alarms = desk.take_messages();
  ASSERT_EQ(alarms.size(), 1U);
  EXPECT_NE(alarms[0].find("0.3 lots EURUSD has come on account"), std::string::npos);
  desk.server.drop(500102);
  run(1s);
  desk.take_messages();
  EXPECT_EQ(open_rows().size(), 3U);
  EXPECT_EQ(open_rows().back(), "500102|not verified: not connected");
  EXPECT_EQ(stop.figures_text(), "0 entry orders and 2 positions of 0.6 lots; 1 account not connected");
  EXPECT_FALSE(stop.chkOrders.enabled());
  // Neither is an answer as well.
  stop.cmdCarryOut.click();
  run(1s);
  EXPECT_EQ(desk.positions().size(), 2U);
  stop.chkPositions.click();
  stop.cmdCarryOut.click();
  // What is asked for already is not asked for again.
  stop.cmdCarryOut.click();
  run(1s);
  EXPECT_EQ(desk.positions().size(), 0U);
  EXPECT_EQ(desk.server.outcomes().size(), 4U);
  EXPECT_FALSE(stop.verified_flat());
  EXPECT_EQ(open_rows(), Texts{"500102|not verified: not connected"});
  desk.main->accounts().LoginClient(client_key(3));
  run(2s);
  EXPECT_TRUE(stop.verified_flat());
  EXPECT_EQ(open_rows(), Texts{});
  desk.open("0.9");
  EXPECT_EQ(order.answers().text(), "2 refused");
  EXPECT_EQ(desk.result(500100), "Not sent: trading is stopped");
  stop.cmdEnd.click();
  EXPECT_FALSE(stop.Displayed() || stop.stopped());
  desk.open("0.3");
  EXPECT_EQ(desk.differences(), Texts{});
  EXPECT_GT(order.answers().accepted, 0);
}

TEST_F(StopDesk, SomebodyElsesSignIsSeenAtTheHeartbeat) {
  ASSERT_TRUE(desk.stop.set("by hand"));
  run(50ms);
  EXPECT_TRUE(stop.Displayed() && stop.shows_stopped());
  EXPECT_TRUE(desk.journaled(" Trading is stopped: nothing leaves any more"));
  ASSERT_TRUE(desk.stop.clear());
  run(50ms);
  EXPECT_FALSE(stop.Displayed() || stop.shows_stopped());
}

TEST_F(StopDesk, TheLimitsWindowSavesWhatCanBe) {
  frmLimits& form = desk.main->limits();
  const auto line = [&](Limit limit) -> frmLimits::Line& {
    return form.lines[static_cast<std::size_t>(limit)];
  };
  form.show();
  EXPECT_EQ(line(Limit::account_lots).txtValue.text(), "10");
  EXPECT_FALSE(line(Limit::ticket_lots).chkOn.checked() || line(Limit::ticket_lots).txtValue.enabled());
  line(Limit::ticket_lots).chkOn.click();
  form.cmdSave.click();
  EXPECT_EQ(desk.prompt.take_texts(),
            Texts{"Lots of one order, all accounts together: must be a number from 0.001 to 1000000"});
  EXPECT_TRUE(form.Displayed());
  line(Limit::ticket_lots).txtValue.type("25");
  line(Limit::quote_age).chkOn.click();
  line(Limit::odd_shares).chkOn.click();
  form.cmdSave.click();
  EXPECT_FALSE(form.Displayed());
  Limits wanted = Limits::of_new_home();
  wanted[Limit::ticket_lots] = 25.0;
  wanted[Limit::quote_age].reset();
  wanted[Limit::odd_shares] = 1.0;
  EXPECT_EQ(desk.main->sessions().admission().limits(), wanted);
  EXPECT_EQ(LimitsFile{desk.home->path()}.open().value(), wanted);
  EXPECT_TRUE(desk.journaled(" Limit changed, Age of the quote: never, was 10"));
}

TEST(Commands, HoldWhatIsOverALimitUnlessAReasonIsGiven) {
  CommandLineRig rig;
  EXPECT_EQ(rig.run("order --buy EURUSD --amount 12.5 --rule equal"), 0) << rig.err;
  EXPECT_EQ(rig.run("order --buy EURUSD --amount 132 --rule equal"), 1);
  EXPECT_NE(rig.err.find("account 500100: 11 lots, above the limit of 10 for one account"),
            std::string::npos);
  EXPECT_NE(rig.out.find("Not sent: a limit is exceeded"), std::string::npos);
  EXPECT_EQ(rig.run("positions"), 0);
  EXPECT_NE(rig.out.find("\n12 positions"), std::string::npos);
  rig.run("order --buy EURUSD --amount 132 --rule equal --override big");
  EXPECT_EQ(rig.out.find("Not sent"), std::string::npos);
  EXPECT_EQ(rig.run("ledger export"), 0);
  EXPECT_NE(rig.out.find("\"override_reason\":\"big\""), std::string::npos);
  rig.home.write("limits.toml", "account_lots = 1,5\n");
  EXPECT_EQ(rig.run("accounts"), 3);
  EXPECT_NE(rig.err.find("limits.toml: line 1: "), std::string::npos);
}

TEST(Commands, StopAndGoOn) {
  CommandLineRig rig;
  const std::string order = "order --buy EURUSD --amount 1.2 --rule equal";
  EXPECT_EQ(rig.run(order), 0);
  EXPECT_EQ(rig.run("entry EURUSD --type buy-limit --amount 1.2 --at 1.01 --rule equal"), 0);
  EXPECT_EQ(rig.run("stop"), 0);
  EXPECT_EQ(rig.home.read("stop"), "by tuttictl\n");
  EXPECT_EQ(rig.run(order), 1);
  EXPECT_NE(rig.out.find("Not sent: trading is stopped"), std::string::npos);
  EXPECT_EQ(rig.err.find("has come"), std::string::npos) << "what a login lists was there before";
  EXPECT_EQ(rig.run("--yes close --symbol EURUSD"), 1) << "only the stop's own";
  EXPECT_EQ(rig.run("--yes --json stop --cancel-orders"), 1);
  EXPECT_NE(rig.out.find("\"flat\": false"), std::string::npos);
  EXPECT_EQ(rig.run("--yes stop --close-positions"), 0) << rig.out << rig.err;
  EXPECT_EQ(rig.run("orders"), 0);
  EXPECT_NE(rig.out.find("0 orders"), std::string::npos);
  EXPECT_EQ(rig.run("stop --end"), 0);
  EXPECT_EQ(rig.home.read("stop"), "");
  EXPECT_EQ(rig.run(order), 0);
  EXPECT_EQ(rig.run("verify"), 0) << rig.out;
}

}  // namespace
}  // namespace tutti::testing
