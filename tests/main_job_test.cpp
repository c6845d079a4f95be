#include <gtest/gtest.h>

#include "tests/support/test_terminal.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;

TEST(MainJob, TwelveAccountsLogInSplitAnOrderAndAnswer) {
  TestTerminal terminal;
  terminal.start_logged_in();
  frmorder& form = terminal.main->market_order();
  ASSERT_EQ(form.lvwConClients.size(), 12u);
  form.CBdis.choose(2);
  form.cbsymbols.choose("EURUSD");
  form.txtammount.type("12.5");
  form.chkAllClients.click();
  form.cmddis.click();
  ASSERT_TRUE(form.cmdbuy.enabled());
  terminal.sound.take();
  form.cmdbuy.click();
  EXPECT_FALSE(form.cmdbuy.enabled());
  EXPECT_EQ(terminal.sound.take(), std::vector<std::string>(12, "OrderOk.wav"));
  terminal.run(1s);
  for (const Row& row : form.lvwConClients) {
    EXPECT_EQ(row.text(frmorder::result_text), "Market Order Accepted") << row.text(0);
  }
  EXPECT_EQ(terminal.journal().size(), 12u);
  EXPECT_TRUE(terminal.prompt.shown.empty());
}

}  // namespace
}  // namespace tutti::testing
