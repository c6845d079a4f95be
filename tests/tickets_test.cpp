// The ticket board and the fills over a ledger that the command line has filled, and sending the rest again.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <thread>

#include "core/numbers.h"
#include "core/texts.h"
#include "ledger/ledger_watch.h"
#include "tests/support/command_line_rig.h"
#include "tests/support/ledger_home.h"
#include "views/fill_list.h"
#include "views/ticket_board.h"
#include "views/ticket_texts.h"

namespace tutti::testing {
namespace {

constexpr auto no_margin =
    "sample_accounts = 3\n[[fault]]\nkind = \"reject\"\naccount = 500101\non = [\"open\"]\ncode = 2\n";

Texts column(const RowList& list, std::size_t column) {
  Texts out;
  for (const Row& row : list)
    out.push_back(row.text(column));
  return out;
}

Texts points(const TicketPicture& picture) {
  Texts out;
  for (const FillPoint& each : picture.points)
    out.push_back(fmt::format("{} {} {} at {}, {} worse", each.account, each.buys ? "bought" : "sold",
                              number_text(each.lots), fixed_text(each.price, picture.digits),
                              each.worse ? fixed_text(*each.worse, picture.digits) : "?"));
  return out;
}

TEST(Tickets, HaveAPointForEachFillOfOneSymbol) {
  const TimePoint click{100s};
  const auto fill = [&](std::int32_t account, Operation side, double price, std::chrono::milliseconds after) {
    return FillRecord{.time = click + 1h,  // the server's clock is another one
                      .heard = click + after,
                      .account = {"", "", account},
                      .symbol = "EURUSD",
                      .side = side,
                      .lots = 0.5,
                      .price = price,
                      .price_digits = 5};
  };
  const std::vector<FillRecord> fills{
      fill(1, operation::buy, 1.08471, 40ms), fill(2, operation::buy, 0.0, 50ms),
      fill(3, operation::sell_stop, 1.08471, 70ms), fill(1, operation::buy, 1.0846, -5s)};
  using State = TicketPicture::State;
  const TicketPicture picture =
      TicketPicture::of({.time = click, .symbol = "EURUSD", .price_at_click = 1.08462}, fills);
  EXPECT_EQ(points(picture),
            (Texts{"1 bought 0.5 at 1.08471, 0.00009 worse", "3 sold 0.5 at 1.08471, -0.00009 worse",
                   "1 bought 0.5 at 1.08460, -0.00002 worse"}));
  EXPECT_EQ(picture.points[1].after, 70ms);
  EXPECT_EQ(picture.points[2].after, 0ms) << "the clock was set back";
  EXPECT_TRUE(picture.state == State::shown && picture.lots() == 1.5);
  EXPECT_EQ(points(TicketPicture::of({.time = click, .symbol = "EURUSD"}, {fills[0]})),
            Texts{"1 bought 0.5 at 1.08471, ? worse"});
  EXPECT_EQ(TicketPicture::of({.time = click, .symbol = "EURUSD"}, {fills[1]}).state, State::nothing_filled);
  const TicketPicture several = TicketPicture::of({.time = click}, fills);
  EXPECT_TRUE(several.state == State::several_symbols && several.points.empty());
}

TEST(Tickets, AreToldInOneLine) {
  const auto taken = [](LedgerState state, int requests, std::string reason = {}, std::int64_t code = 0) {
    return TicketOutcome{state, std::move(reason), code, requests};
  };
  const TicketFills prices{487, 121.3, 1.0846701, 1.0846, 1.08471, 5};
  const struct {
    TicketRecord ticket;
    const char* text;
  } lines[] = {
      {{.symbol = "EURUSD",
        .side = operation::buy,
        .outcomes = {taken(LedgerState::refused, 2, "result code", 5),
                     taken(LedgerState::refused, 1, "request code", 8),
                     taken(LedgerState::refused, 9, "result code", 2), taken(LedgerState::filled, 487),
                     taken(LedgerState::unknown, 1, "late")},
        .filled = prices},
       "487 filled 121.3 lots at 1.08467 (worst 1.08471), 9 no margin, 3 refused, 1 unknown"},
      {{.symbol = "EURUSD",
        .side = operation::sell,
        .outcomes = {taken(LedgerState::part, 2), taken(LedgerState::taken, 1),
                     taken(LedgerState::pending, 1)},
        .filled = prices},
       "2 filled in part 121.3 lots at 1.08467 (worst 1.08460), 2 waiting"},
      // Over several symbols no price means anything.
      {{.kind = RequestKind::close,
        .outcomes = {taken(LedgerState::filled, 3), taken(LedgerState::gone, 1)},
        .filled = prices},
       "3 closed 121.3 lots, 1 unknown"},
      {{.kind = RequestKind::entry,
        .outcomes = {taken(LedgerState::working, 403), taken(LedgerState::refused_here, 1)}},
       "403 working, 1 not connected"},
      // What a later start found never left; what is stored now is on its way.
      {{.outcomes = {taken(LedgerState::stored, 1, "crash"), taken(LedgerState::stored, 2),
                     taken(LedgerState::dropped, 3, "late"), taken(LedgerState::never, 1)}},
       "2 waiting, 4 not sent, 1 never taken"},
  };
  for (const auto& [ticket, text] : lines)
    EXPECT_EQ(ticket_texts::summary(ticket), text);
}

TEST(Tickets, HaveTheirRestSentAgainOnce) {
  CommandLineRig rig{no_margin};
  const auto ask = [&](const std::string& sql) { return ask_ledger(rig.home.path(), sql); };
  EXPECT_EQ(rig.run("order --buy EURUSD --amount 0.9 --rule equal"), 1);
  EXPECT_EQ(rig.run("--csv tickets"), 0) << rig.err;
  EXPECT_NE(rig.out.find("2 filled 0.6 lots at 1.08462, 1 no margin"), std::string::npos) << rig.out;
  const std::string requests = "SELECT count(*) FROM request";
  EXPECT_EQ(rig.run("retry 1"), 1);
  EXPECT_EQ(ask(requests), Texts{"3"});
  EXPECT_EQ(rig.run("--yes retry 1"), 1);
  EXPECT_NE(rig.err.find("Send 1 request of ticket 1 again, 0.3 lots in all? Yes"), std::string::npos)
      << rig.err;
  EXPECT_EQ(ask(requests), Texts{"4"});
  // Once, whatever became of it; what was refused again is the next ticket's.
  EXPECT_EQ(rig.run("--yes retry 1"), 0);
  EXPECT_NE(rig.err.find("Nothing of ticket 1 can be sent again"), std::string::npos) << rig.err;
  rig.home.write("dealer.toml", "sample_accounts = 3\n");
  EXPECT_EQ(rig.run("--csv --yes retry 2"), 0);
  EXPECT_NE(rig.out.find("500101,open,0.3,1,true,done,"), std::string::npos) << rig.out;
  for (const char* again : {"1", "2", "3"})
    EXPECT_EQ(rig.run(std::string{"--yes retry "} + again), 0) << again;
  EXPECT_EQ(rig.run("retry 9"), 2);
  EXPECT_EQ(ask("SELECT n, coalesce(retry_of, 0), price_at_click > 0 FROM ticket ORDER BY n"),
            (Texts{"1|0|1", "2|1|1", "3|2|1"}));
  EXPECT_EQ(ask("SELECT ticket FROM request WHERE id IN (SELECT retry_of FROM request) ORDER BY ticket"),
            (Texts{"1", "2"}));
  EXPECT_EQ(rig.run("--csv positions"), 0);
  EXPECT_EQ(std::count(rig.out.begin(), rig.out.end(), '\n'), 4) << rig.out;
  EXPECT_EQ(rig.run("verify"), 0) << rig.out;
}

TEST(Tickets, AreShownWithTheirAccountsAndFills) {
  CommandLineRig rig{no_margin};
  LedgerWatch watch{rig.home.path(), rig.home.key_file()};
  TicketBoard board{rig.clock, &watch};
  FillList fills{rig.clock, &watch};
  // Time goes by until it holds; how long the other thread takes is of no matter.
  const auto until = [&](auto&& holds) {
    for (int tries = 0; tries < 1'000'000 && !holds(); ++tries) {
      rig.clock.advance(TicketBoard::interval);
      board.poll();
      fills.poll();
      watch.deliver();
      std::this_thread::yield();
    }
    return holds();
  };
  board.Displayed(true);
  EXPECT_TRUE(until([&] { return board.head.text().starts_with("The ledger can't be read: "); }));
  EXPECT_EQ(rig.run("order --buy EURUSD --amount 0.9 --rule equal"), 1);
  EXPECT_TRUE(until([&] { return board.lvwTickets.size() == 1; }));
  EXPECT_EQ(board.head.text(), "Select a ticket to see its accounts");
  EXPECT_EQ(
      rig.run("entry EURUSD --type sell-limit --amount 0.2 --at 1.2 --rule equal --accounts 500100,500102"),
      0);
  EXPECT_EQ(rig.run("--yes close --symbol EURUSD --accounts 500102"), 0);
  EXPECT_TRUE(until([&] { return board.lvwTickets.size() == 3; }));
  const auto told = [&](std::size_t row) {
    const Row& line = board.lvwTickets.row(row);
    return line.text(TicketBoard::side) + "|" + line.text(TicketBoard::lots) + "|" +
           line.text(TicketBoard::price) + "|" + line.text(TicketBoard::what) + "|" +
           line.text(TicketBoard::outcome);
  };
  EXPECT_EQ(told(0), "Sell|0.3||Close|1 closed 0.3 lots at 1.0845");
  EXPECT_EQ(told(1), "Sell limit|0.2|1.2|Entry order|2 working");
  EXPECT_EQ(told(2), "Buy|0.9|1.08462|Market order|2 filled 0.6 lots at 1.08462, 1 no margin");
  EXPECT_FALSE(board.retry.enabled());
  EXPECT_EQ(points(board.picture()), Texts{});

  board.lvwTickets.select(board.lvwTickets.row(2));
  EXPECT_TRUE(until([&] { return board.lvwRequests.size() == 3; }));
  using Column = TicketBoard::RequestColumn;
  EXPECT_EQ(column(board.lvwRequests, Column::happened), (Texts{"filled", "filled", "no margin"}));
  EXPECT_EQ(column(board.lvwRequests, Column::account), (Texts{"500100", "500102", "500101"}));
  EXPECT_EQ(column(board.lvwRequests, Column::fill_price), (Texts{"1.08462", "1.08462", ""}));
  EXPECT_EQ(column(board.lvwRequests, Column::slippage), (Texts{"0.00000", "0.00000", ""}));
  EXPECT_EQ(board.head.text(), "Ticket 1, 1 may be sent again");
  EXPECT_FALSE(board.retry_settled.visible());
  EXPECT_EQ(sorted(points(board.picture())), (Texts{"500100 bought 0.3 at 1.08462, 0.00000 worse",
                                                    "500102 bought 0.3 at 1.08462, 0.00000 worse"}));
  // What the button hands over is sent again by the terminal, which is another one here.
  EXPECT_FALSE(board.retry.enabled());
  std::vector<std::int64_t> sent;
  board.send_again = [&](std::int64_t ticket, const std::vector<TicketRequest>& requests, RetryPart part) {
    EXPECT_EQ(part, RetryPart::no_effect);
    sent.push_back(ticket);
    EXPECT_EQ(requests.size(), 3U);
    EXPECT_EQ(rig.run("--yes retry 1"), 1);
  };
  EXPECT_TRUE(until([&] { return board.retry.enabled(); }));
  board.retry.click();
  EXPECT_TRUE(until([&] { return !board.retry.enabled(); }));
  board.retry.click();
  EXPECT_EQ(sent, std::vector<std::int64_t>{1});
  EXPECT_EQ(board.lvwRequests.row(2).text(Column::why), "sent again");
  EXPECT_EQ(board.lvwTickets.size(), 4U);

  fills.Displayed(true);
  EXPECT_TRUE(until([&] { return fills.lvwFills.size() == 3; }));
  EXPECT_EQ(column(fills.lvwFills, FillList::what), (Texts{"Close", "Open", "Open"}));
  EXPECT_TRUE(fills.sums.text().starts_with("3 fills; realised: USD -")) << fills.sums.text();
  rig.clock.advance(24h);
  EXPECT_TRUE(until([&] { return fills.lvwFills.empty(); }));
  fills.period.choose(1);
  EXPECT_TRUE(until([&] { return fills.lvwFills.size() == 3; }));
}

}  // namespace
}  // namespace tutti::testing
