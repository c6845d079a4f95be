#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

#include "tests/support/session_rig.h"

namespace tutti::testing {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t codes[] = {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 99, 100, 101};
constexpr double infinity = std::numeric_limits<double>::infinity();

// Order and ticket are number 12 throughout, the account is 81.
const std::string in_journal = "journal 81: ", in_pending = "pending 12: ", in_market = "market 81: ";
const std::string in_entry = "entry 81: ", in_close = "close 12: ", box = "Alert: ";

// A text in the journal and in the pending orders view, and what comes beside it.
Heard both(const std::string& text, Heard more = {}) {
  more.insert(more.end(), {in_journal + text, in_pending + text});
  return more;
}

// What is read again from the client after an answer that matches nothing.
const Heard lists_again{"positions has 13",     "close opened 13",    "pending has LO 12 81",
                        "positions removes 81", "pending removes 81", "close removes 81"};

// An answer that matches nothing: all that is written but the rows of orders.
Heard stray(Heard lines) {
  std::erase_if(lines, [](const std::string& line) {
    return line.starts_with("market ") || line.starts_with("entry ") || line.starts_with("close ") ||
           line.starts_with("pending has");
  });
  lines.insert(lines.end(), lists_again.begin(), lists_again.end());
  return lines;
}

struct OneSession {
  OneSession() {
    client.orders = {{.order = 12,
                      .account = 81,
                      .kind = "LO",
                      .reference = 13,
                      .operation = 1,
                      .symbol = "EURUSD",
                      .amount = 0.5}};
    client.positions = {{.ticket = 13, .account = 81, .symbol = "EURUSD", .floating_pl = -12.5}};
  }

  Heard during(const std::function<void()>& step) { return rig.during(step); }
  void writes(const std::function<void()>& step, const Heard& lines) {
    EXPECT_EQ(during(step), sorted(lines));
  }
  // The second time it is settled already.
  void writes_once(const std::function<void()>& step, const Heard& lines) {
    writes(step, lines);
    writes(step, stray(lines));
  }
  void send(std::int32_t side = 1) {
    session.note_sent(
        {.amount = 0.5, .side = side, .request_code = 1, .outcome = SentOrder::Outcome::waiting});
  }
  static OrderReport report(std::int32_t result, std::int32_t state, std::int32_t operation = 1) {
    return {.number = 12,
            .account = 81,
            .result = result,
            .state = state,
            .operation = operation,
            .amount = 0.5,
            .symbol = "EURUSD",
            .price = 1.0845};
  }
  std::string cell(std::size_t column) const { return session.ClientListItem()->text(column); }
  Ink ink() const { return session.ClientListItem()->cell(2).ink(); }

  SessionRig rig;
  CClientAPIManager& session = rig.add(81);
  ScriptedClient& client = rig.client(session);
  CLAPICLASS& sink = *client.sink;
};

class SessionEvents : public ::testing::Test, protected OneSession {};

// Texts by code from 1 on, and that of 100; an empty one is none.
struct Texts {
  std::vector<std::string> from_one;
  std::string hundred;

  std::string of(std::int32_t code) const {
    const auto at = static_cast<std::size_t>(code) - 1;
    return code == 100 ? hundred : code >= 1 && at < from_one.size() ? from_one[at] : "";
  }
};

const Texts general_texts{
    {"Succeeded", "Not enough money", "Trading is closed", "Failed - Market conditions",
     "Failed - Bad connection", "Position is closed", "", "Position has pending orders", "Invalid amount",
     "Order not found", "All amount are managed", "Unable to do operation", "Hedging not allowed"},
    "Failed"};

// An event that carries a result code: its texts, that of all other codes if there is one, and what is
// written where.
struct Family {
  void (CLAPICLASS::*fire)(std::int64_t, std::int32_t, RequestId);
  std::function<void(CClientAPIManager&)> send;  // what it answers
  Texts texts;
  std::optional<std::string> other;
  std::function<Heard(std::int32_t, const std::string&)> written;
};

const Family families[] = {
    {&CLAPICLASS::NewLimitOrderResult,
     [](auto& session) { session.place_entry({.side = 1, .amount = 0.5}, no_symbol, 1); },
     {{"Succeeded", "Not Enough Money", "Trading Is Closed", "Unable MarketConditions",
       "Unable Bad Connection", "Position Is Closed", "Position Is Pending", "Position Has Pending Orders",
       "Invalid Amount", "Not Found", "Order 12 :All Lots Are Managed"},
      ""},
     std::nullopt,
     [](std::int32_t code, const std::string& text) {
       Heard out = both(code == 5 ? "Unable_Bad Connection" : text);
       if (code == 11) return out;
       out.push_back(in_entry + text);
       if (code == 1) out.emplace_back("pending has LO 12 81");
       if (code != 7) out.emplace_back(code == 1 ? "sound OrderOk.wav" : "sound NoEquity.wav");
       return out;
     }},
    {&CLAPICLASS::UpdateLimitOrderResult,
     [](auto& session) { session.update_entry(12, 1.1, {}, 1); },
     {{"has been updated", " Not Enough Money ", " Trading Is Closed ", "", " Unable Bad Connection",
       " Position Is Closed ", " Position Is Pending ", " Position Has Pending Orders ", " Invalid Amount ",
       " Not Found ", " All Amount Are Managed ", "", " Hedging Not Allowed "},
      " Failed Result "},
     std::nullopt,
     [](std::int32_t code, const std::string& text) {
       const std::string line = "Order #12" + text;
       return both(line, {code == 1 ? "pending has LO 12 81" : in_entry + line});
     }},
    {&CLAPICLASS::DeleteLimitOrderResult,
     [](auto& session) { session.cancel_order(12, false); },
     {{" Canceled successfully", " Not Enough Money", " Trading Is Closed",
       " Unable to get  quote on this symbol due to market conditions", " Unable Bad Connection",
       " Position Is Closed ", " Position Is Pending", " Position Has Pending Orders", " Invalid Amount",
       " NotFound", " All Amount Are Managed", " Unable ToDo Operation"},
      ""},
     " Unable To Do Operation",
     [](std::int32_t code, const std::string& text) {
       const std::string line = "Order number #12" + text;
       return both(line, code == 1 ? Heard{} : Heard{box + line});
     }},
    {&CLAPICLASS::NewSLTPOrderResult,
     [](auto& session) { session.set_stops(13, {}, 1); },
     {{"", "NotEnoughMoney", "Trading Is Closed",
       "Unable to get  quote on this symbol due to market conditions",
       "Unable to get  quote due to a bad connection, Please try again", "Position Is Closed ",
       "Position Is Pending", "Position Has Pending Orders", "InvalidAmount", "NotFound",
       "All Amount Are Managed", "Unable ToDo Operation"},
      ""},
     "",
     [](std::int32_t code, const std::string& text) {
       return both("Request SL/TP for #12", code == 1      ? Heard{"pending has LO 12 81", "entry stops 12"}
                                            : text.empty() ? Heard{}
                                                           : both(text));
     }},
    {&CLAPICLASS::DeleteSLTPOrderResult, [](auto& session) { session.cancel_order(12, true); }, general_texts,
     "UNDEFINED RESULT",
     [](std::int32_t, const std::string& text) { return both("Delete SLTP Order #12 " + text); }},
    {&CLAPICLASS::UpdateSLTPOrderResult, [](auto& session) { session.set_stops(13, {}, 1); }, general_texts,
     "UNDEFINED RESULT",
     [](std::int32_t code, const std::string& text) {
       Heard out{in_journal + "Updating SL/TP order #12 result #" + text};
       if (code == 1) out.push_back("entry stops 12");
       return out;
     }},
};

TEST(SessionAnswers, EveryResultCodeHasItsTextsInItsWindows) {
  for (const Family& family : families) {
    for (const std::int32_t code : codes) {
      const std::string own = family.texts.of(code);
      const auto text = own.empty() ? family.other : own;
      SCOPED_TRACE(std::to_string(&family - families) + " " + std::to_string(code));
      OneSession one;
      family.send(one.session);
      one.writes_once([&] { (one.sink.*family.fire)(12, code, 0); },
                      text ? family.written(code, *text) : Heard{});
    }
  }
}

TEST(SessionAnswers, MarketOrdersThatAreRefused) {
  const Texts texts{{"", "Not enough money", "Trading Is Closed", "Not Taken According to market Connditions",
                     "Bad Connection", "Position Is Closed", "Position in peniding Order",
                     "Position Has Pending Orders", "", "", "", "", "Heddging Not Allowed"},
                    ""};
  for (const std::int32_t code : codes) {
    if (code == result::succeeded) continue;
    const std::string text = texts.of(code);
    const std::string sound = code == 13 ? "sound Alert.wav" : "sound NoEquity.wav";
    OneSession one;
    one.send();
    one.writes_once([&] { one.sink.NewOrderResult(one.report(code, 0)); },
                    text.empty() ? Heard{} : Heard{in_journal + text, in_market + text, sound});
  }
}

TEST_F(SessionEvents, CloseResultsDifferInJournalRowAndMessage) {
  const std::string no_quote = "Unable to get  quote on this symbol due to market conditions";
  const std::string pending_mode = "Position 12 is in pending mode";
  const std::string has_orders = "Position 12 has pending orders";
  struct Case {
    std::int32_t code;
    std::string line, row, message;
  };
  const Case cases[] = {
      {2, " not enough money", " not enough money", " not enough money for account 81"},
      {3, "Order 12 trading is closed", " Trading is closed", "12 trading is closed for account 81"},
      {4, no_quote, no_quote, "Order 12 is " + no_quote},
      {5, "Unable to get  quote due to  bad connection, Please try again",
       "Order 12 is Unable to get quote due to bad connection, Please try again ",
       "Order 12 is Unable to get  quote due to  bad connection, Please try again"},
      {6, "Order 12 is closed", "Order 12 is closed", "Position 12 is closed"},
      {7, pending_mode, pending_mode, pending_mode},
      {8, has_orders, has_orders, has_orders},
  };
  for (const Case& one : cases) {
    session.close_position(12, 0.5);
    writes_once([&] { sink.CloseOrderResult(report(one.code, 0)); },
                {in_journal + one.line, in_close + one.row, box + one.message});
    EXPECT_EQ(rig.general.last_message, one.message);
  }
  EXPECT_TRUE(rig.prompt.shown.empty()) << "a handler never waits";
  const char* const types[] = {" Sell Stop ", " Sell ", "", " Buy ", " Buy Stop "};
  for (const std::int32_t operation : {-2, -1, 1, 2}) {
    const std::string request =
        std::string{"Request close ticket #12"} + types[operation + 2] + "0.5EURUSD at 1.0845";
    session.close_position(12, 0.5);
    writes([&] { sink.CloseOrderResult(report(1, order_state::pending, operation)); },
           {in_journal + request, in_journal + "Position in pending mode", "pending has CP 12 81",
            "close 12: Position in pending mode"});
    writes_once([&] { sink.CloseOrderResult(report(1, order_state::executed, operation)); },
                {in_journal + request, in_journal + "Postion 12 is closed successfuly",
                 "close 12: Postion 12 is closed successfuly"});
  }
}

TEST_F(SessionEvents, OrdersThatAreExecutedOrGoThroughDealing) {
  const std::string bought = "Order #12 [BUY 0.5 EURUSD] has been accepted";
  const std::string sold = "Order #12 [SELL 0.5 EURUSD] has been accepted";
  const std::string no_hedge = "Limit Order:12 cancelled because cannot handge for account number #81";
  const std::string no_money = "Limit Order:12 cancelled because there is no money for account number #81";
  OrderReport close = report(1, 1);
  close.request_kind = request_kind::close;
  for (const std::int32_t side : {1, -1}) {
    const std::string& done = side > 0 ? bought : sold;
    for (const bool accepted : {true, false}) {
      OneSession executed, dealt;
      for (OneSession* one : {&executed, &dealt})
        one->send(side);
      executed.writes_once([&] { executed.sink.NewOrderResult(report(1, 1, side)); },
                           {in_journal + done, in_market + "Market Order Accepted"});
      dealt.writes([&] { dealt.sink.NewOrderResult(report(1, 2, side)); },
                   {"pending has OP 12 81", in_journal + "Order 12 in Pending mode",
                    in_market + "Order in Pending mode"});
      const auto confirmed = [&](OneSession& one, bool yes) {
        return [&one, yes, side] {
          yes ? one.sink.MarketOrderAccepted(report(1, 1, side))
              : one.sink.MarketOrderRejected(report(1, 1, side));
        };
      };
      const Heard yes = both(done, {"requote accepted 12", in_market + "Market Order Accepted"});
      const Heard no =
          both("Order 12 has been rejected", {"requote rejected 12", in_market + "order has been rejected"});
      dealt.writes_once(confirmed(dealt, accepted), accepted ? yes : no);
      // What is settled stays so, whatever comes for its number.
      executed.writes(confirmed(executed, accepted), stray(accepted ? yes : no));
      dealt.writes(confirmed(dealt, !accepted), stray(accepted ? no : yes));
      EXPECT_EQ(executed.session.last_order().outcome, SentOrder::Outcome::accepted);
      // It is not taken for the answer to the next order either, though that one looks the same.
      executed.send(side);
      executed.during([&] { executed.sink.NewOrderResult(report(2, 0, side)); });
      executed.during(confirmed(executed, accepted));
      EXPECT_EQ(executed.session.unanswered(), 1);
    }
  }
  session.close_position(12, 0.5);
  writes_once(
      [&] { sink.MarketOrderRejected(close); },
      both("Closing has been rejected", {"requote rejected 12", "close 12: Closing has been rejected"}));
  session.close_position(12, 0.5);
  writes([&] { sink.MarketOrderAccepted(close); },
         both("Ticket #12 has been closed successfully",
              {"requote accepted 12", "positions drops 12", "close closed 12"}));
  client.positions[0].ticket = 12;  // a part of it is left
  session.close_position(12, 0.5);
  writes([&] { sink.MarketOrderAccepted(close); },
         both("Ticket #12 has been closed successfully",
              {"requote accepted 12", "positions has 12", "close opened 12"}));
  writes([&] { sink.LimitOrderAccepted(report(1, 1, 2)); },
         {"pending drops 12", in_journal + "Entry Order 12 [buy 0.5 EURUSD] has been executed"});
  writes([&] { sink.LimitOrderAccepted(report(1, 1, -1)); },
         {"pending drops 12", in_journal + "Entry Order 12 [sell 0.5 EURUSD] has been executed"});
  writes([&] { sink.LimitOrderCanceledCannotHdg(12, 81); }, {in_pending + no_hedge, box + no_hedge});
  writes([&] { sink.LimitOrderCanceledNoMoney(12, 81); }, {in_pending + no_money, box + no_money});
  writes([&] { sink.SlTpOrderAccepted(12); }, both("SL/TP request #12 is accepted"));
  writes([&] { sink.SlTpOrderCanceledNoMoney(12); }, both("SL/TP request #12 is canceled - no money"));
  writes([&] { sink.OrderTimer({.order = 12, .account = 81, .symbol = "EURUSD"}); }, {"requote 12 of 81"});
}

TEST_F(SessionEvents, OtherEventsReachTheirWindows) {
  const OpenPosition& position = client.positions[0];
  const PendingOrder& order = client.orders[0];
  writes([&] { sink.NewOpenPosition(position); }, {"positions has 13", "close opened 13"});
  writes([&] { sink.UpdateOpenPosition(position); }, {"positions has 13", "close opened 13"});
  writes([&] { sink.OpenPositionsLoaded(); }, {"positions has 13", "close opened 13"});
  writes([&] { sink.DeleteOpenPosition(position); }, {"positions drops 13", "close closed 13"});
  writes([&] { sink.NewPendingOrder(order); }, {"pending has LO 12 81"});
  writes([&] { sink.PendingOrdersLoaded(); }, {"pending has LO 12 81"});
  writes([&] { sink.DeletePendingOrder(order); }, {"pending drops 12"});
  writes([&] { sink.ServerTime(rig.clock.now() + 9h + 5min + 7s); }, {"status time 2026-01-01 09:05:07"});
  writes([&] { sink.ServerRouted("10.0.0.2", "444"); }, {});
  EXPECT_EQ(rig.options.CurrentServer(), "10.0.0.2:444");
  writes([&] { sink.ServerRouted("10.0.0.3:1", "444"); },
         {"journal 81: The server's new address was refused: it holds a character that no address has"});
  writes([&] { sink.WaitingMode(2); }, {"entry submit off"});
  writes([&] { sink.WaitingMode(1); },
         {"status 100025 reads Waiting", "status 100026 reads Connected", "entry submit off"});
  writes([&] { sink.WaitingMode(0); }, {"status 100025 reads ", "status 100017 on", "status 100018 on",
                                        "status 100019 on", "status 100020 on", "entry distribute on"});
  writes([&] { sink.WaitingMode(3); }, {});
  writes([&] { sink.SessionDisconnected(); },
         {"Session Disconnected: account 81 Session disconnected", "sound Disconnect.wav",
          "journal 81: Not connected: Session disconnected"});
  writes([&] { sink.ConnectionState(false); },
         {"market removes 81", "entry removes 81", "close removes 81", "positions removes 81",
          "pending removes 81", "requote gone 81"});
  writes([&] { sink.PosFloatingPLChanged(position); }, {"net 13 -12.5"});
  struct CommaPort final : LocalePort {
    void set(int, int, std::string_view) override {}
    int get(int, int, std::string& buffer) const override { return buffer[0] = ',', 2; }
  } comma;
  CLocalSettings with_comma{comma};
  rig.general.locale = &with_comma;
  writes([&] { sink.PosFloatingPLChanged(position); }, {"net 13 -12,5"});
}

TEST_F(SessionEvents, StatesOfTheAccountsRow) {
  const auto row_reads = [&](const char* state, Ink colour) {
    EXPECT_EQ(cell(2), state);
    EXPECT_EQ(ink(), colour) << state;
  };
  Row& row = *session.ClientListItem();
  during([&] { sink.WaitingMode(2); });
  row_reads("Connecting", Ink::red);
  during([&] { sink.ConnectionState(true); });
  row_reads("Connected", Ink::white);
  during([&] { sink.SessionDisconnected(); });
  row_reads("Connected", Ink::green);
  for (std::size_t column = 3; column < 12; ++column)
    row.set_text(column, "x");
  during([&] { sink.ConnectionState(false); });
  row_reads("Disconnected", Ink::red);
  EXPECT_EQ(row_text(row), "||Disconnected|x|x|||||||");
  row.set_ink(2, Ink::white);
  during([&] { sink.SessionDisconnected(); });
  row_reads("Disconnected", Ink::red);
  during([&] { sink.InvalidUsernamePassword(); });
  row_reads("Invalid account", Ink::red);
}

// One line for each time, the reason in the Notes, and there again what stood there once it is over.
TEST_F(SessionEvents, WhyAnAccountIsNotConnected) {
  Row& row = *session.ClientListItem();
  row.set_text(4, "mine");
  const std::string not_connected = "journal 81: Not connected: ";
  const auto on = [&] { sink.ConnectionState(true); };
  const auto off = [&] { sink.ConnectionState(false); };
  const auto begin = [&] { sink.WaitingMode(2); };
  struct Case {
    std::vector<std::function<void()>> events;
    std::string reason;  // empty: nothing is told
    int lines = 1;
  };
  const Case cases[] = {
      {{begin, off}, "No connection to the server"},
      {{begin, off, begin, off, off}, "No connection to the server", 2},
      {{on, off, off}, "Connection lost"},
      {{on, off, [&] { sink.SessionDisconnected(); }}, "Connection lost"},
      {{on, [&] { sink.SessionDisconnected(); }, off}, "Session disconnected"},
      {{begin, [&] { sink.InvalidUsernamePassword(); }}, "Invalid username or password"},
      {{begin, off, [&] { sink.InvalidUsernamePassword(); }}, "Invalid username or password"},
      {{on, [&] { session.log_out(); }, off}, ""},
  };
  for (const Case& c : cases) {
    Heard lines;
    for (const auto& event : c.events) {
      const Heard heard = during(event);
      std::copy_if(heard.begin(), heard.end(), std::back_inserter(lines),
                   [&](const auto& line) { return line.starts_with(not_connected + c.reason); });
    }
    EXPECT_EQ(lines.size(), c.reason.empty() ? 0U : static_cast<std::size_t>(c.lines)) << c.reason;
    EXPECT_EQ(cell(4), c.reason.empty() ? "mine" : c.reason);
    during(on);
    EXPECT_EQ(cell(4), "mine") << c.reason;
  }
  // What was written meanwhile stays.
  during(off);
  row.set_text(4, "called them");
  during(on);
  EXPECT_EQ(cell(4), "called them");
}

TEST_F(SessionEvents, TotalsFollowSummariesAndDisconnections) {
  const AccountSummary first{1000.5, -20.25, 10.0, 990.25, -100.0, 0.153, 890.25};
  const AccountSummary second{1.0, 2.0, 3.0, 4.0, -5.0, 0.06, 7.0};
  rig.windows.accounts.with_rows = false;
  CClientAPIManager& rowless = rig.add(82);
  CLAPICLASS& other = *rig.client(rowless).sink;
  EXPECT_EQ(during([&] { sink.SummariesChanged(first); }), Heard{"accounts refreshes C1"});
  EXPECT_EQ(rig.totals(),
            "Balance:1000.5  Flt P/L:-20.25   Credit:10  Equity:990.25  Used Margin:100  Free Margin:890.25"
            "  Margin Level:15.3 %");
  during([&] { other.SummariesChanged({9.0, 9.0, 9.0, 9.0, 9.0, 9.0, 9.0}); });
  during([&] { other.SummariesChanged(second); });
  EXPECT_EQ(rig.totals(),
            "Balance:1001.5  Flt P/L:-18.25   Credit:13  Equity:994.25  Used Margin:105  Free Margin:897.25"
            "  Margin Level:21.3 %");
  const std::string first_alone =
      "Balance:1000.5   Flt P/L:-20.25   Credit:10   Equity:990.25   Used Margin:100   Free Margin:890.25"
      "   Margin Level:15.3 %";
  during([&] { other.ConnectionState(false); });
  EXPECT_EQ(rig.totals(), first_alone);
  // A session that was dropped leaves its last values in the totals, for good.
  during([&] { sink.SessionDisconnected(); });
  EXPECT_EQ(session.summary().balance, 0.0);
  during([&] { sink.ConnectionState(false); });
  EXPECT_EQ(rig.totals(), first_alone);
  // What is large goes before what is small comes, so that nothing of the small is rounded off.
  during([&] { other.SummariesChanged({.balance = 1e14}); });
  during([&] { other.SummariesChanged({.balance = 0.3}); });
  EXPECT_EQ(rig.general.totals.balance, 1000.5 + 1e14 - 1e14 + 0.3);
  EXPECT_EQ(session.SummaryDesc(1.256, -0.001, 2.5), "Balance: 1.26  Equity: 0  EffMargin: 2.5");
}

TEST_F(SessionEvents, ValuesThatAreNoNumbersAreRefused) {
  const double worst = std::numeric_limits<double>::max();  // finite, but not as a percentage
  double AccountSummary::*const fields[] = {
      &AccountSummary::balance,     &AccountSummary::floating_pl,  &AccountSummary::credit,
      &AccountSummary::equity,      &AccountSummary::used_margin,  &AccountSummary::margin_level,
      &AccountSummary::free_margin, &AccountSummary::margin_level,
  };
  for (std::size_t i = 0; i < std::size(fields); ++i) {
    AccountSummary bad{};
    bad.*fields[i] = i == 7 ? worst : i % 2 == 0 ? std::nan("") : infinity;
    during([&] { sink.ConnectionState(true); });
    const Heard heard = during([&] { sink.SummariesChanged(bad); });
    EXPECT_TRUE(heard.size() == 1 && heard[0].starts_with("journal 81: ")) << i;
    EXPECT_TRUE(during([&] { sink.SummariesChanged(bad); }).empty()) << "said once per connection";
    during([&] { sink.SummariesChanged({}); });
    EXPECT_EQ(rig.general.totals.margin_level, 0.0) << i;
  }
  for (const double bad : {std::nan(""), infinity}) {
    during([&] { sink.ConnectionState(true); });
    OpenPosition position = client.positions[0];
    position.open_price = bad;
    EXPECT_TRUE(during([&] { sink.NewOpenPosition(position); }).at(0).starts_with("journal 81: "));
    EXPECT_TRUE(during([&] { sink.PosFloatingPLChanged(position); }).at(0).starts_with("journal 81: "));
    PendingOrder order = client.orders[0];
    order.price = bad;
    EXPECT_TRUE(during([&] { sink.NewPendingOrder(order); }).at(0).starts_with("journal 81: "));
  }
}

TEST_F(SessionEvents, AFailedSummaryKeepsTheSecondValueAndZeroesTheGlobalOne) {
  client.summary.values = {1, 2, 3, 4, 5, 6, 7};
  rig.general.totals.floating_pl = 50.0;
  AccountSummary out;
  session.Summary(81, out);
  EXPECT_EQ(out.free_margin, 7.0);
  EXPECT_EQ(rig.general.totals.floating_pl, 50.0);
  client.summary.result = result::failed;
  out = {10, 20, 30, 40, 50, 60, 70};
  session.Summary(81, out);
  EXPECT_EQ(out.floating_pl, 20.0);
  EXPECT_EQ(rig.general.totals.floating_pl, 0.0);
  for (const double value :
       {out.balance, out.credit, out.equity, out.used_margin, out.margin_level, out.free_margin})
    EXPECT_EQ(value, 0.0);
}

TEST_F(SessionEvents, LoadedDataOfAKnownAccountReachTheOrderWindows) {
  client.info = AccountInfo{.number = 81, .name = "Bob", .currency = "USD"};
  rig.windows.market_order.asks_lots = true;
  const Heard known{"market lots 0.01 100", "market adds 81", "close adds 81",
                    "entry adds 81",        "close symbols",  "sound Connect.WAV"};
  EXPECT_EQ(during([&] { sink.AllDataAreLoaded(); }), sorted(known)) << "not marked connected";
  EXPECT_EQ(rig.general.minimum_lot, 0.01);
  EXPECT_EQ(rig.general.maximum_lot, 100.0);
  during([&] { sink.ConnectionState(true); });
  rig.windows.market_order.asks_lots = false;
  Heard connected{known.begin() + 1, known.end()};
  connected.insert(connected.end(), {"accounts records BOB,81", "sound Connect.wav"});
  EXPECT_EQ(during([&] { sink.AllDataAreLoaded(); }), sorted(connected));
}

TEST_F(SessionEvents, LoadedDataOfAnUnknownAccountMarkItsRow) {
  during([&] { sink.ConnectionState(true); });
  EXPECT_EQ(during([&] { sink.AllDataAreLoaded(); }),
            sorted({"sound Connect.WAV", "pending removes 81", in_journal + "81 is invalid account",
                    "accounts selects C1"}));
}

TEST_F(SessionEvents, SymbolsAndPricesGoWhereTheyAreShown) {
  client.symbols = {{.id = 3, .name = "EURUSD", .bid = 1.08, .quote_time = rig.clock.now() + 9h + 5min}};
  EXPECT_EQ(during([&] { sink.SymbolsLoaded(); }),
            sorted({"watch EURUSD 09:05", "market symbols", "entry symbols"}));
  EXPECT_EQ(during([&] { sink.SymbolsLoaded(); }), Heard{"watch EURUSD 09:05"});
  EXPECT_EQ(session.GetIDByName("EURUSD"), 3);
  EXPECT_EQ(session.GetIDByName("GBPUSD"), 0);
  Symbol& symbol = client.symbols[0];
  symbol.bid = 1.09;
  const auto moves = {std::function<void()>{[&] { sink.SymbolPricesChanged(symbol); }},
                      std::function<void()>{[&] { sink.SymbolHighLowChanged(symbol); }}};
  for (const auto& move : moves)
    EXPECT_EQ(during(move), Heard{}) << "not connected";
  during([&] { sink.ConnectionState(true); });
  for (const auto& move : moves)
    EXPECT_EQ(during(move), sorted({"watch prices EURUSD", "entry prices EURUSD", "close prices EURUSD"}));
  symbol.bid = symbol.high = std::nan("");
  for (const auto& move : moves)
    EXPECT_TRUE(during(move).at(0).starts_with("journal 81: "));
  EXPECT_EQ(rig.symbols.entry(rig.symbols.find("EURUSD")).bid, 1.09);
}

TEST_F(SessionEvents, EverySymbolWithAnIdentifierOfItsOwnIsServed) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  client.symbols = {{.id = 65'535, .name = "A"}, {.id = 65'536, .name = "B"}, {.id = largest, .name = "C"},
                    {.id = 0, .name = "D"},      {.id = -7, .name = "E"},     {.id = 65'536, .name = "F"},
                    {.id = 1, .name = "A"},      {.id = largest, .name = "C"}};
  const auto refused = [](const char* name, const char* id) {
    return in_journal + name + " came with the identifier " + id +
           ", which can't be used; the account does not trade it";
  };
  const Heard names{"market symbols", "entry symbols"},
      watched{"watch A 00:00", "watch B 00:00", "watch C 00:00", "watch C 00:00"};
  Heard lines{refused("D", "0"), refused("E", "-7"), refused("F", "65536"), refused("A", "1")};
  for (const Heard* more : {&names, &watched})
    lines.insert(lines.end(), more->begin(), more->end());
  writes([&] { sink.SymbolsLoaded(); }, lines);
  writes([&] { sink.SymbolsLoaded(); }, watched);
  const std::pair<const char*, std::int32_t> served[]{{"A", 65'535}, {"B", 65'536}, {"C", largest}, {"D", 0}};
  for (const auto& [name, id] : served)
    EXPECT_EQ(session.GetIDByName(name), id) << name;
  during([&] { sink.ConnectionState(true); });
  for (std::size_t at = 0; at < 3; ++at) {
    const std::string prices = "prices " + client.symbols[at].name;
    writes([&] { sink.SymbolPricesChanged(client.symbols[at]); },
           {"watch " + prices, "entry " + prices, "close " + prices});
  }
  for (const std::int32_t id : {-7, 0, 1, 65'534, 65'537, largest - 1})
    writes([&] { sink.SymbolPricesChanged({.id = id, .name = "X"}); }, {});
}

TEST_F(SessionEvents, AnOrderWithoutAnswerIsUnknownAfterADisconnection) {
  using Outcome = SentOrder::Outcome;
  client.symbols = {{.id = 3, .name = "EURUSD"}};
  during([&] { sink.SymbolsLoaded(); });
  const SymbolHandle euro = rig.symbols.find("EURUSD");
  const auto send = [&](double amount, Outcome outcome) {
    session.note_sent({.amount = amount, .side = 1, .symbol = euro, .request_code = 1, .outcome = outcome});
  };
  const auto answer = [&](std::int64_t number, double amount, std::int32_t state) {
    OrderReport reply = report(1, state);
    reply.number = number;
    reply.amount = amount;
    during([&] { sink.NewOrderResult(reply); });
  };
  const auto unknown_after = [&](const std::function<void()>& step) {
    const Heard heard = during(step);
    return std::count_if(heard.begin(), heard.end(), [](const std::string& line) {
      return line.starts_with("journal 81: ") && line.find("unknown") != std::string::npos;
    });
  };
  send(0.5, Outcome::waiting);  // never answered
  send(0.7, Outcome::waiting);  // in dealing until the end
  answer(20, 0.7, order_state::pending);
  send(0.6, Outcome::waiting);
  answer(21, 0.6, order_state::executed);
  EXPECT_EQ(session.last_order().outcome, Outcome::accepted);
  EXPECT_EQ(unknown_after([&] { sink.ConnectionState(false); }), 2);
  EXPECT_EQ(session.last_order().outcome, Outcome::accepted) << "its own answer came";
  EXPECT_EQ(unknown_after([&] { sink.ConnectionState(false); }), 0) << "told once";

  send(0.8, Outcome::waiting);
  send(0.9, Outcome::refused);
  answer(22, 0.8, order_state::executed);
  EXPECT_EQ(session.last_order().amount, 0.9) << "a late answer to an order before";
  send(1.0, Outcome::waiting);
  EXPECT_EQ(unknown_after([&] { rig.sessions.Remove("C1"); }), 1);
}

}  // namespace
}  // namespace tutti::testing
