// "Send the rest again..." of the order windows, through the ledger and the dealing server.

#include <gtest/gtest.h>

#include "tests/support/ledger_home.h"
#include "tests/support/stored_terminal.h"

namespace tutti::testing {
namespace {

struct RoundRetries : ::testing::Test {
  static std::string refusing(const char* kind) {
    return std::string{"sample_accounts = 3\n[[fault]]\nkind = \"reject\"\naccount = 500101\non = [\""} +
           kind + "\"]\ncode = 2\ntimes = 1\n";
  }
  static Texts retried(StoredTerminal& rig) {
    EXPECT_TRUE(rig.desktop->keep());
    return ask_ledger(rig.home.path(),
                      "SELECT r.ticket, t.retry_of, a.account_text, r.kind, r.lots, r.lots_digits FROM "
                      "request r JOIN ticket t ON t.n = r.ticket JOIN account a ON a.n = r.account WHERE "
                      "r.retry_of IS NOT NULL");
  }
  // Presses it, and once more: asked and sent once, and the row of the account says so.
  static void press(StoredTerminal& rig, Button& button, const std::string& question) {
    const std::size_t before = rig.requests();
    ASSERT_TRUE(rig.until([&] { return button.enabled(); }));
    rig.prompt.take_texts();
    rig.prompt.answers = {2};
    button.click();
    EXPECT_EQ(rig.prompt.take_texts(), Texts{question});
    rig.run(1s);
    EXPECT_EQ(rig.requests(), before) << "the answer was no";
    ASSERT_TRUE(button.enabled());
    button.click();
    button.click();
    EXPECT_EQ(rig.prompt.take_texts(), Texts{question});
    rig.run(2s);
    EXPECT_EQ(rig.requests(), before + 1);
    EXPECT_FALSE(button.enabled());
  }
};

TEST_F(RoundRetries, TheMarketOrderWindowSendsTheRestOfItsRoundOnce) {
  StoredTerminal rig{refusing("open")};
  Button& button = rig.main().market_order().retry.button;
  EXPECT_FALSE(button.enabled());
  rig.buy("0.9");
  press(rig, button, "Send 1 request of ticket 1 again, 0.3 lots in all?");
  EXPECT_EQ(retried(rig), Texts{"2|1|500101|open|3|1"});
  EXPECT_EQ(rig.main().positions().size(), 3U);
  // A round of which all was executed has no rest, and Distribute ends a round.
  rig.buy("0.6");
  rig.run(1s);
  EXPECT_FALSE(button.enabled());
}

TEST_F(RoundRetries, TheEntryOrderWindowSendsTheRestOfItsRoundOnce) {
  StoredTerminal rig{refusing("entry")};
  rig.place("0.9", "1.01");
  press(rig, rig.main().entry_order().retry.button, "Send 1 request of ticket 1 again, 0.3 lots in all?");
  EXPECT_EQ(retried(rig), Texts{"2|1|500101|entry|3|1"});
  EXPECT_EQ(rig.main().orders().size(), 3U);
}

}  // namespace
}  // namespace tutti::testing
