// Whole ways of entry orders on the embedded server.

#include <gtest/gtest.h>

#include "tests/support/scenario_desk.h"

namespace tutti::testing {
namespace {

// The operator places a buy limit of EURUSD, shared out among all accounts.
void place(ScenarioDesk& desk, const char* amount, const char* price, const char* sl = "",
           const char* tp = "") {
  frmlimitorder& form = desk.main->entry_order();
  form.Displayed(true);
  form.cblimitordersymbols.choose("EURUSD");
  form.CBlimitorderdis.choose(0);
  form.txtlimitorderammount.type(amount);
  form.txtatprice.type(price);
  form.txtsl.type(sl);
  form.txttp.type(tp);
  form.chkAllClients.click();
  form.cmdlimiorderdis.click();
  form.cmdsubmitlimiorder.click();
}

// He double-clicks an order or position, and submits other prices; nullptr leaves the at-price as it is.
void change(ScenarioDesk& desk, RowList& list, std::size_t row, const char* price, const char* sl = "") {
  frmlimitorder& form = desk.main->entry_order();
  list.activate(list.row(row));
  if (price != nullptr) form.txtatprice.set_text(price);
  form.txtsl.set_text(sl);
  form.cmdsubmitlimiorder.click();
  desk.run(1s);
}

// Everything the server does is told silently, twice, or not at all; the comparison with its books says so.
TEST(EntryScenario, TheBooksTellWhatTheJournalDoesNot) {
  const std::string account = "account 500100: ", missing = account + "the journal does not say: ",
                    surplus = account + "the journal says what the server's books don't: ";
  const struct {
    FaultKind kind;
    FaultPoint on;
    Texts differences;
  } cases[] = {
      {FaultKind::silent, FaultPoint::entry, {missing + "Succeeded"}},
      {FaultKind::twice, FaultPoint::entry, {surplus + "Succeeded"}},
      {FaultKind::silent, FaultPoint::update, {missing + "Order #10000001has been updated"}},
      {FaultKind::twice, FaultPoint::trigger, {surplus + "Entry Order 10000001 has been executed"}},
      {FaultKind::delay, FaultPoint::trigger, {}},
  };
  for (const auto& c : cases) {
    DealerConfig config = still_market(1);
    config.ticks.insert(config.ticks.begin(), {5s, "EURUSD", 1.0798, 1.07992});
    config.faults = {fault(c.kind, {}, c.on)};
    ScenarioDesk desk{config};
    place(desk, "1", "1.07");
    desk.run(1s);
    ASSERT_EQ(desk.orders().size(), 1u);
    change(desk, desk.orders(), 0, "1.08");
    desk.run(4s);
    EXPECT_EQ(desk.positions().size(), 1u);
    EXPECT_EQ(desk.differences(), c.differences);
  }
}

// Fifty accounts place a buy limit, the market comes down to it, where five have not the money, then further
// down to its stop loss.
TEST(EntryScenario, PlacedExecutedAndStoppedOut) {
  DealerConfig config = still_market(50);
  config.ticks.insert(config.ticks.begin(),
                      {{8s, "EURUSD", 1.0798, 1.07992}, {12s, "EURUSD", 1.0749, 1.07502}});
  for (AccountConfig& account : config.accounts) {
    account.balance = 50'000.0;
    account.privilege = true;
    account.hidden_symbols.clear();
  }
  for (std::size_t poor = 40; poor < 45; ++poor)
    config.accounts[poor].balance = 500.0;
  ScenarioDesk desk{config};
  RowList &orders = desk.orders(), &positions = desk.positions();
  const frmlimitorder& form = desk.main->entry_order();
  place(desk, "50", "1.08", "1.075", "1.09");
  EXPECT_EQ(form.answers().text(), "50 waiting");
  desk.run(2s);
  EXPECT_EQ(form.answers().text(), "50 accepted");
  EXPECT_EQ(orders.size(), 50u);
  EXPECT_EQ(desk.differences(), Texts{});

  // One order is moved away and lives on.
  const RowKey moved = orders.row(7).key();
  change(desk, orders, 7, "1.05");
  EXPECT_EQ(orders.find(moved)->text(frmPending::price), "1.05000");

  desk.run(5s);
  EXPECT_EQ(positions.size(), 44u);
  EXPECT_EQ(orders.size(), 45u);  // SL/TP orders, and the one that was moved
  const Texts messages = desk.take_messages();
  EXPECT_EQ(messages.size(), 5u);
  EXPECT_NE(messages.at(0).find("cancelled because there is no money for account number #"),
            std::string::npos);
  EXPECT_EQ(desk.differences(), Texts{});
  // The stop loss of one position is taken away.
  const RowKey kept = positions.row(3).key();
  change(desk, positions, 3, nullptr);
  EXPECT_EQ(
      positions.find(kept)->text(frmTrade::stop_loss) + positions.find(kept)->text(frmTrade::take_profit),
      "1.09000");

  desk.run(4s);
  ASSERT_EQ(positions.size(), 1u);
  EXPECT_EQ(positions.row(0).key(), kept);
  EXPECT_EQ(orders.size(), 2u);
  EXPECT_EQ(desk.differences(), Texts{});
}

}  // namespace
}  // namespace tutti::testing
