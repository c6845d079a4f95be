// What sessions make of the answers to their requests.

#include <optional>

#include "tests/support/one_session.h"

namespace tutti::testing {
namespace {

constexpr std::int32_t codes[] = {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 99, 100, 101};
const std::string in_market = "market 81: ", in_entry = "entry 81: ", in_close = "close 12: ",
                  box = "Alert: ";

// A text in the journal and in the pending orders view, and what comes beside it.
Heard both(const std::string& text, Heard more = {}) {
  more.insert(more.end(), {in_journal + text, in_pending + text});
  return more;
}

// What is read again from the client after an answer that matches nothing.
const Heard lists_again{"positions has 13", "pending has LO 12 81", "positions removes 81",
                        "pending removes 81", "close removes 81"};

// An answer that matches nothing: all that is written but the rows of orders.
Heard stray(Heard lines) {
  std::erase_if(lines, [](const std::string& line) {
    return line.starts_with("market ") || line.starts_with("entry ") || line.starts_with("close ") ||
           line.starts_with("pending has");
  });
  lines.insert(lines.end(), lists_again.begin(), lists_again.end());
  return lines;
}

struct Answers : OneSession {
  // The second time it is settled already.
  void writes_once(const std::function<void()>& step, const Heard& lines) {
    writes(step, lines);
    writes(step, stray(lines));
  }
};

class SessionAnswered : public ::testing::Test, protected Answers {};

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
  void (CLAPICLASS::*fire)(std::int64_t, ResultCode, RequestId);
  std::function<void(CClientAPIManager&)> send;  // what it answers
  Texts texts;
  std::optional<std::string> other;
  std::function<Heard(std::int32_t, const std::string&)> written;
};

const Family families[] = {
    {&CLAPICLASS::NewLimitOrderResult,
     [](auto& session) { session.place_entry({.side = operation::buy, .amount = 0.5}, no_symbol, 1); },
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
      Answers one;
      family.send(one.session);
      one.writes_once([&] { (one.sink.*family.fire)(12, ResultCode{code}, 0); },
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
    if (code == 1) continue;
    const std::string text = texts.of(code);
    const std::string sound = code == 13 ? "sound Alert.wav" : "sound NoEquity.wav";
    Answers one;
    one.send();
    one.writes_once([&] { one.sink.NewOrderResult(one.report(code, 0)); },
                    text.empty() ? Heard{} : Heard{in_journal + text, in_market + text, sound});
  }
}

TEST_F(SessionAnswered, CloseResultsDifferInJournalRowAndMessage) {
  const std::string no_quote = "Unable to get  quote on this symbol due to market conditions";
  const std::string pending_mode = "Position 12 is in pending mode";
  const std::string has_orders = "Position 12 has pending orders";
  const struct {
    std::int32_t code;
    std::string line, row, message;
  } cases[] = {
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
  for (const auto& one : cases) {
    session.close_position(12, 0.5);
    writes_once([&] { sink.CloseOrderResult(report(one.code, 0)); },
                {in_journal + one.line, in_close + one.row, box + one.message});
    EXPECT_EQ(rig.general.last_message, one.message);
  }
  EXPECT_TRUE(rig.prompt.shown.empty()) << "a handler never waits";
  const char* const types[] = {" Sell Stop ", " Sell ", "", " Buy ", " Buy Stop "};
  for (const int operation : {-2, -1, 1, 2}) {
    const std::string request =
        std::string{"Request close ticket #12"} + types[operation + 2] + "0.5EURUSD at 1.0845";
    session.close_position(12, 0.5);
    writes([&] { sink.CloseOrderResult(report(1, 2, Operation{operation})); },
           {in_journal + request, in_journal + "Position in pending mode", "pending has CP 12 81",
            "close 12: Position in pending mode"});
    writes_once([&] { sink.CloseOrderResult(report(1, 1, Operation{operation})); },
                {in_journal + request, in_journal + "Postion 12 is closed successfuly",
                 "close 12: Postion 12 is closed successfuly"});
  }
}

TEST_F(SessionAnswered, OrdersThatAreExecutedOrGoThroughDealing) {
  const std::string bought = "Order #12 [BUY 0.5 EURUSD] has been accepted";
  const std::string sold = "Order #12 [SELL 0.5 EURUSD] has been accepted";
  const std::string no_hedge = "Limit Order:12 cancelled because cannot handge for account number #81";
  const std::string no_money = "Limit Order:12 cancelled because there is no money for account number #81";
  OrderReport close = report(1, 1);
  close.request_kind = request_kind::close;
  for (const Operation side : {operation::buy, operation::sell}) {
    const std::string& done = buys(side) ? bought : sold;
    for (const bool accepted : {true, false}) {
      Answers executed, dealt;
      for (Answers* one : {&executed, &dealt})
        one->send(side);
      executed.writes_once([&] { executed.sink.NewOrderResult(report(1, 1, side)); },
                           {in_journal + done, in_market + "Market Order Accepted"});
      dealt.writes([&] { dealt.sink.NewOrderResult(report(1, 2, side)); },
                   {"pending has OP 12 81", in_journal + "Order 12 in Pending mode",
                    in_market + "Order in Pending mode"});
      const auto confirmed = [&](Answers& one, bool yes) {
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
  during([&] { sink.NewOpenPosition({.ticket = 12, .account = 81, .symbol = "EURUSD"}); });
  session.close_position(12, 0.5);
  writes([&] { sink.MarketOrderAccepted(close); },
         both("Ticket #12 has been closed successfully", {"requote accepted 12", "positions drops 12"}));
  client.positions[0].ticket = 12;  // a part of it is left
  session.close_position(12, 0.5);
  writes([&] { sink.MarketOrderAccepted(close); },
         both("Ticket #12 has been closed successfully", {"requote accepted 12", "positions has 12"}));
  during([&] { sink.PendingOrdersLoaded(); });
  writes([&] { sink.LimitOrderAccepted(report(1, 1, operation::buy_stop)); },
         {"pending drops 12", in_journal + "Entry Order 12 [buy 0.5 EURUSD] has been executed"});
  during([&] { sink.PendingOrdersLoaded(); });
  writes([&] { sink.LimitOrderAccepted(report(1, 1, operation::sell)); },
         {"pending drops 12", in_journal + "Entry Order 12 [sell 0.5 EURUSD] has been executed"});
  writes([&] { sink.LimitOrderCanceledCannotHdg(12, 81); }, {in_pending + no_hedge, box + no_hedge});
  writes([&] { sink.LimitOrderCanceledNoMoney(12, 81); }, {in_pending + no_money, box + no_money});
  writes([&] { sink.SlTpOrderAccepted(12); }, both("SL/TP request #12 is accepted"));
  writes([&] { sink.SlTpOrderCanceledNoMoney(12); }, both("SL/TP request #12 is canceled - no money"));
  writes([&] { sink.OrderTimer({.order = 12, .account = 81, .symbol = "EURUSD"}); }, {"requote 12 of 81"});
}

TEST_F(SessionAnswered, AnOrderWithoutAnswerIsUnknownAfterADisconnection) {
  using Outcome = SentOrder::Outcome;
  client.symbols = {{.id = 3, .name = "EURUSD"}};
  during([&] { sink.SymbolsLoaded(); });
  const auto order = [&](double amount, Outcome outcome) {
    client.request_code = outcome == Outcome::refused ? request::invalid_lots : request::taken;
    session.market_order(operation::buy, rig.books.symbols.find("EURUSD"), amount);
  };
  const auto answer = [&](std::int64_t number, double amount, OrderState state) {
    OrderReport reply = report(1, format_as(state));
    reply.number = number;
    reply.amount = amount;
    during([&] { sink.NewOrderResult(reply); });
  };
  const auto unknown_after = [&](const std::function<void()>& step) {
    const Heard heard = during(step);
    return std::count_if(heard.begin(), heard.end(), [](const std::string& line) {
      return line.starts_with(in_journal) && line.find("unknown") != std::string::npos;
    });
  };
  for (const double amount : {0.5, 0.7, 0.6})
    order(amount, Outcome::waiting);
  answer(20, 0.7, order_state::pending);  // until the end; that of 0.5 never comes
  answer(21, 0.6, order_state::executed);
  for (const int unknown : {2, 0}) {
    EXPECT_EQ(unknown_after([&] { sink.ConnectionState(false); }), unknown);
    EXPECT_EQ(session.last_order().outcome, Outcome::accepted) << "its own answer came";
  }
  rig.sessions.admission().override_limits("the positions were looked at");
  order(0.8, Outcome::waiting);
  order(0.9, Outcome::refused);
  answer(22, 0.8, order_state::executed);
  EXPECT_EQ(session.last_order().amount, 0.9) << "a late answer to an order before";
  order(1.0, Outcome::waiting);
  EXPECT_EQ(unknown_after([&] { rig.sessions.Remove("C1"); }), 1);
}

// A stop loss tells nothing of what it closed: the session asks, and the ledger has it.
TEST(SessionAnswers, ReadBackWhatStopsHaveFilled) {
  OneSession one;
  const TimePoint now = one.rig.general.clock.now();
  one.during([&] { one.session.SlTpOrderAccepted(12); });
  EXPECT_EQ(one.client.executions_since, std::vector<TimePoint>{now - std::chrono::minutes{10}});
  const Execution fill{.execution = "E9",
                       .number = 13,
                       .account = 81,
                       .closes = true,
                       .operation = operation::buy,
                       .symbol = "EURUSD",
                       .lots = 0.5,
                       .price = 1.07,
                       .time = now,
                       .realised = Realised{-50.0, -1.0}};
  one.rig.ledger.events.clear();
  one.during([&] { one.session.ExecutionsTold({&fill, 1}, true); });
  ASSERT_EQ(one.rig.ledger.events.size(), 1U);
  const LedgerEvent& told = one.rig.ledger.events[0];
  EXPECT_TRUE(told.fill_alone && told.closes);
  EXPECT_EQ(told.request, 0);
  EXPECT_EQ(told.side, operation::sell);
  EXPECT_EQ(told.order, 13);
  EXPECT_EQ(told.execution, "E9");
  EXPECT_EQ(told.realised, fill.realised);
}

}  // namespace
}  // namespace tutti::testing
