// The entry orders of a ticket, changed and cancelled together at the dealing server.

#include <gtest/gtest.h>

#include "core/numbers.h"
#include "tests/support/ledger_home.h"
#include "tests/support/stored_terminal.h"

namespace tutti::testing {
namespace {

struct OrdersOfATicket : ::testing::Test {
  // Opens the ticket on the board, where the buttons are.
  void open(std::int64_t ticket) {
    board.Displayed(true);
    board.open(ticket);
    ASSERT_TRUE(rig.until([&] { return board.change_orders.visible(); }));
    rig.prompt.shown.clear();
  }
  // Account, price, stop loss and take profit of each order, as the accounts list them.
  Texts orders() {
    Texts out;
    for (const auto& record : sorted_records())
      out.push_back(std::to_string(record.account) + " " + number_text(record.price) + " " +
                    number_text(record.stop_loss) + " " + number_text(record.take_profit));
    return out;
  }
  std::vector<PendingOrder> sorted_records() {
    std::vector<PendingOrder> out;
    for (const TradingAccount& account : rig.server->accounts())
      for (const PendingOrder& order : account.state().orders)
        out.push_back(order);
    return out;
  }
  Texts tickets() {
    EXPECT_TRUE(rig.desktop->keep());
    return ask_ledger(
        rig.home.path(),
        "SELECT t.n, t.kind, count(*) FROM ticket t JOIN request r ON r.ticket = t.n GROUP BY 1");
  }
  void cancel_of(std::int32_t account) {
    CClientAPIManager& session = *rig.main().sessions().by_account(account);
    for (const PendingOrder& each : sorted_records())
      if (each.account == account) session.cancel_order(each.order, false);
    rig.run(1s);
  }

  StoredTerminal rig{"sample_accounts = 3\n"};
  TicketBoard& board = rig.main().tickets();
  TicketOrdersForm& form = rig.main().ticket_orders_form();
};

TEST_F(OrdersOfATicket, AreChangedAsOneTicket) {
  rig.place("0.9", "1.01");
  ASSERT_EQ(orders(), (Texts{"500100 1.01 0 0", "500101 1.01 0 0", "500102 1.01 0 0"}));
  open(1);
  board.change_orders.click();
  ASSERT_TRUE(form.Displayed());
  EXPECT_EQ(form.head.text(), "3 of 3 orders of ticket 1 can be reached, 0.9 lots in all");
  form.change.click();
  form.price.type("0");
  form.change.click();
  EXPECT_EQ(rig.prompt.take_texts(),
            (Texts{"Nothing is changed: type a price, SL or TP", "At price: must be a number above 0"}));
  form.price.set_text("");
  form.price.type("1.02");
  form.stop_loss.type("1.005");
  rig.prompt.answers = {2};
  form.change.click();
  EXPECT_EQ(rig.prompt.take_texts(),
            Texts{"Change 3 orders of ticket 1, 0.9 lots in all: price 1.02, SL 1.005?"});
  rig.run(1s);
  EXPECT_EQ(tickets(), Texts{"1|entry|3"});
  EXPECT_TRUE(form.Displayed());
  form.change.click();
  EXPECT_FALSE(form.Displayed());
  rig.run(2s);
  EXPECT_EQ(orders(), (Texts{"500100 1.02 1.005 0", "500101 1.02 1.005 0", "500102 1.02 1.005 0"}));
  EXPECT_EQ(tickets(), (Texts{"1|entry|3", "2|update|3"}));
  // What is not typed stays, and 0 takes off; the one that was cancelled is named, and left alone.
  cancel_of(500101);
  rig.prompt.shown.clear();
  ASSERT_TRUE(rig.until([&] { return board.lvwRequests.row(2).text(TicketBoard::happened) == "cancelled"; }));
  board.change_orders.click();
  form.stop_loss.type("0");
  form.change.click();
  ASSERT_EQ(rig.prompt.shown.size(), 1U);
  EXPECT_EQ(rig.prompt.shown[0].text, "Change 2 orders of ticket 1, 0.6 lots in all: SL taken off?");
  EXPECT_NE(rig.prompt.shown[0].details.find("Account 500101: cancelled"), std::string::npos)
      << rig.prompt.shown[0].details;
  rig.run(2s);
  EXPECT_EQ(orders(), (Texts{"500100 1.02 0 0", "500102 1.02 0 0"}));
}

TEST_F(OrdersOfATicket, AreCancelledAsOneTicketAndOnce) {
  rig.place("0.9", "1.01");
  rig.main().sessions().by_account(500102)->log_out();
  rig.run(1s);
  open(1);
  // The second press comes before the server has answered the first.
  board.cancel_orders.click();
  board.cancel_orders.click();
  ASSERT_EQ(rig.prompt.shown.size(), 2U);
  EXPECT_EQ(rig.prompt.shown[0].text, "Cancel 2 orders of ticket 1, 0.6 lots in all?");
  EXPECT_NE(rig.prompt.shown[0].details.find("Account 500102: not connected"), std::string::npos);
  EXPECT_TRUE(rig.prompt.shown[1].text.starts_with("No order of ticket 1 can be reached"))
      << rig.prompt.shown[1].text;
  rig.run(2s);
  EXPECT_EQ(orders(), Texts{"500102 1.01 0 0"});
  EXPECT_EQ(tickets(), (Texts{"1|entry|3", "2|cancel|2"}));
}

}  // namespace
}  // namespace tutti::testing
