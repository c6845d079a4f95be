#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "books/sent_order.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/request_state.h"

// Texts of result codes, as the general table has them and as single handlers spell them in their own way.
// For a code without a text of its own `general` and `delete_entry` have a common one, the others an empty
// one.
namespace tutti::result_texts {

std::string_view general(ResultCode code);
std::string_view new_order(ResultCode code);
std::string_view delete_entry(ResultCode code);
std::string_view new_entry(ResultCode code);
std::string_view update_entry(ResultCode code);
std::string_view new_stops(ResultCode code);
// "BUY 0.5 EURUSD" of a market order, "buy 0.5 EURUSD" of an entry order.
std::string market_details(Operation side, double lots, std::string_view symbol);
std::string entry_details(Operation side, double lots, std::string_view symbol);
// Journal lines of an executed order; without the details they tell only which one it is.
std::string accepted_line(std::int64_t order, std::string_view details = {});
std::string executed_line(std::int64_t order, std::string_view details = {});
// Journal line of an update; empty for codes without a text.
std::string update_entry_line(std::int64_t order, ResultCode code);
// First journal line of the answer to stops; the text of the code is a line of its own.
std::string new_stops_line(std::int64_t order);
// Of a refused close: the journal's line, the position's row, the message. Empty for codes without a text.
struct CloseTexts {
  std::string line, row, message;
};
CloseTexts close(ResultCode code, std::int64_t ticket, std::int32_t account);
// "buy" or "sell"
std::string_view buy_or_sell(Operation operation);
// " Buy ", " Sell ", " Buy Stop " or " Sell Stop ", blanks included; " " for any other operation.
std::string_view type_word(Operation operation);

// A request, where what became of it is told later: "Order BUY 0.5 EURUSD", "Entry order BUY 0.5 EURUSD at
// 1.08", "The request for #12". `symbol` is empty when not known.
std::string request_words(RequestKind kind, Operation side, double lots, std::string_view symbol,
                          double price, std::int64_t number);
// Journal lines of such a request: nobody knows its outcome, the server was asked for it, the operator says
// what he knows.
std::string unknown_line(const std::string& words, std::int32_t account);
std::string told_line(const std::string& words, bool worked, RequestState state);
std::string by_hand_line(RequestId request, bool executed, std::string_view note);
// What the server says of a request that it was asked for: "was executed".
std::string_view told(RequestState state);
// What the row of a request says whose outcome was unknown and has become known by other ways than its
// answer; and that of an order whose cancel it was.
std::string_view learnt(SentOrder::Outcome outcome);
std::string_view learnt_of_cancel(SentOrder::Outcome outcome);
// What its row says when an answer contradicts what was known of it for good, and was believed.
std::string_view conflict(bool executed);

}  // namespace tutti::result_texts
