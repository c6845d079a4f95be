#include "sessions/result_texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "core/numbers.h"

namespace tutti::result_texts {
namespace {

// Of close {0} is the ticket, {1} the account.
struct Texts {
  ResultCode code;
  std::string_view general, new_order, delete_entry, new_entry, update_entry, new_stops;
  std::string_view close_line{}, close_row{}, close_message{};
};

// A row per code, a column per event; an empty text is none of its own.
constexpr Texts table[] = {
    {.code = result::succeeded,
     .general = "Succeeded",
     .new_order = "",
     .delete_entry = " Canceled successfully",
     .new_entry = "Succeeded",
     .update_entry = "has been updated",
     .new_stops = ""},
    {.code = result::not_enough_money,
     .general = "Not enough money",
     .new_order = "Not enough money",
     .delete_entry = " Not Enough Money",
     .new_entry = "Not Enough Money",
     .update_entry = " Not Enough Money ",
     .new_stops = "NotEnoughMoney",
     .close_line = " not enough money",
     .close_row = " not enough money",
     .close_message = " not enough money for account {1}"},
    {.code = result::trading_closed,
     .general = "Trading is closed",
     .new_order = "Trading Is Closed",
     .delete_entry = " Trading Is Closed",
     .new_entry = "Trading Is Closed",
     .update_entry = " Trading Is Closed ",
     .new_stops = "Trading Is Closed",
     .close_line = "Order {0} trading is closed",
     .close_row = " Trading is closed",
     .close_message = "{0} trading is closed for account {1}"},
    {.code = result::market_conditions,
     .general = "Failed - Market conditions",
     .new_order = "Not Taken According to market Connditions",
     .delete_entry = " Unable to get  quote on this symbol due to market conditions",
     .new_entry = "Unable MarketConditions",
     .update_entry = "",
     .new_stops = "Unable to get  quote on this symbol due to market conditions",
     .close_line = "Unable to get  quote on this symbol due to market conditions",
     .close_row = "Unable to get  quote on this symbol due to market conditions",
     .close_message = "Order {0} is Unable to get  quote on this symbol due to market conditions"},
    {.code = result::bad_connection,
     .general = "Failed - Bad connection",
     .new_order = "Bad Connection",
     .delete_entry = " Unable Bad Connection",
     .new_entry = "Unable Bad Connection",
     .update_entry = " Unable Bad Connection",
     .new_stops = "Unable to get  quote due to a bad connection, Please try again",
     .close_line = "Unable to get  quote due to  bad connection, Please try again",
     .close_row = "Order {0} is Unable to get quote due to bad connection, Please try again ",
     .close_message = "Order {0} is Unable to get  quote due to  bad connection, Please try again"},
    {.code = result::position_closed,
     .general = "Position is closed",
     .new_order = "Position Is Closed",
     .delete_entry = " Position Is Closed ",
     .new_entry = "Position Is Closed",
     .update_entry = " Position Is Closed ",
     .new_stops = "Position Is Closed ",
     .close_line = "Order {0} is closed",
     .close_row = "Order {0} is closed",
     .close_message = "Position {0} is closed"},
    {.code = result::position_pending,
     .general = "",
     .new_order = "Position in peniding Order",
     .delete_entry = " Position Is Pending",
     .new_entry = "Position Is Pending",
     .update_entry = " Position Is Pending ",
     .new_stops = "Position Is Pending",
     .close_line = "Position {0} is in pending mode",
     .close_row = "Position {0} is in pending mode",
     .close_message = "Position {0} is in pending mode"},
    {.code = result::has_pending_orders,
     .general = "Position has pending orders",
     .new_order = "Position Has Pending Orders",
     .delete_entry = " Position Has Pending Orders",
     .new_entry = "Position Has Pending Orders",
     .update_entry = " Position Has Pending Orders ",
     .new_stops = "Position Has Pending Orders",
     .close_line = "Position {0} has pending orders",
     .close_row = "Position {0} has pending orders",
     .close_message = "Position {0} has pending orders"},
    {.code = result::invalid_amount,
     .general = "Invalid amount",
     .new_order = "",
     .delete_entry = " Invalid Amount",
     .new_entry = "Invalid Amount",
     .update_entry = " Invalid Amount ",
     .new_stops = "InvalidAmount"},
    {.code = result::order_not_found,
     .general = "Order not found",
     .new_order = "",
     .delete_entry = " NotFound",
     .new_entry = "Not Found",
     .update_entry = " Not Found ",
     .new_stops = "NotFound"},
    {.code = result::all_managed,
     .general = "All amount are managed",
     .new_order = "",
     .delete_entry = " All Amount Are Managed",
     .new_entry = "",
     .update_entry = " All Amount Are Managed ",
     .new_stops = "All Amount Are Managed"},
    {.code = result::unable,
     .general = "Unable to do operation",
     .new_order = "",
     .delete_entry = " Unable ToDo Operation",
     .new_entry = "",
     .update_entry = "",
     .new_stops = "Unable ToDo Operation"},
    {.code = result::hedging_not_allowed,
     .general = "Hedging not allowed",
     .new_order = "Heddging Not Allowed",
     .delete_entry = "",
     .new_entry = "",
     .update_entry = " Hedging Not Allowed ",
     .new_stops = ""},
    {.code = result::failed,
     .general = "Failed",
     .new_order = "",
     .delete_entry = "",
     .new_entry = "",
     .update_entry = " Failed Result ",
     .new_stops = ""},
};

constexpr Texts none_of_its_own{};

const Texts& of(ResultCode code) {
  const auto* row = std::find_if(std::begin(table), std::end(table),
                                 [&](const Texts& texts) { return texts.code == code; });
  return row == std::end(table) ? none_of_its_own : *row;
}

}  // namespace

std::string_view general(ResultCode code) {
  const std::string_view text = of(code).general;
  return text.empty() ? "UNDEFINED RESULT" : text;
}

std::string_view new_order(ResultCode code) {
  return of(code).new_order;
}

std::string_view delete_entry(ResultCode code) {
  const std::string_view text = of(code).delete_entry;
  return text.empty() ? " Unable To Do Operation" : text;
}

std::string_view new_entry(ResultCode code) {
  return of(code).new_entry;
}

std::string_view update_entry(ResultCode code) {
  return of(code).update_entry;
}

std::string_view new_stops(ResultCode code) {
  return of(code).new_stops;
}

CloseTexts close(ResultCode code, std::int64_t ticket, std::int32_t account) {
  const Texts& texts = of(code);
  const auto filled = [&](std::string_view text) { return fmt::format(fmt::runtime(text), ticket, account); };
  return {filled(texts.close_line), filled(texts.close_row), filled(texts.close_message)};
}

std::string_view buy_or_sell(Operation operation) {
  return operation == operation::buy || operation == operation::buy_stop ? "buy" : "sell";
}

std::string_view type_word(Operation operation) {
  switch (operation) {
    case operation::sell_stop:
      return " Sell Stop ";
    case operation::sell:
      return " Sell ";
    case operation::buy:
      return " Buy ";
    case operation::buy_stop:
      return " Buy Stop ";
    default:
      return " ";
  }
}

std::string market_details(Operation side, double lots, std::string_view symbol) {
  return fmt::format("{} {} {}", buys(side) ? "BUY" : "SELL", number_text(lots), symbol);
}

std::string entry_details(Operation side, double lots, std::string_view symbol) {
  return fmt::format("{} {} {}", buy_or_sell(side), number_text(lots), symbol);
}

std::string accepted_line(std::int64_t order, std::string_view details) {
  if (details.empty()) return fmt::format("Order #{} has been accepted", order);
  return fmt::format("Order #{} [{}", order, details) + "] has been accepted";
}

std::string executed_line(std::int64_t order, std::string_view details) {
  if (details.empty()) return fmt::format("Entry Order {} has been executed", order);
  return fmt::format("Entry Order {} [{}", order, details) + "] has been executed";
}

std::string request_words(RequestKind kind, Operation side, double lots, std::string_view symbol,
                          double price, std::int64_t number) {
  if (kind != RequestKind::open && kind != RequestKind::entry)
    return fmt::format("The request for #{}", number);
  const std::string what = fmt::format("{} {}{}{}", buys(side) ? "BUY" : "SELL", number_text(lots),
                                       symbol.empty() ? "" : " ", symbol);
  if (kind == RequestKind::open) return "Order " + what;
  return fmt::format("Entry order {} at {}", what, number_text(price));
}

std::string unknown_line(const std::string& words, std::int32_t account) {
  return fmt::format(
      "{} was sent, but no result came: the outcome is unknown, check the positions of account {}", words,
      account);
}

std::string told_line(const std::string& words, bool worked, RequestState state) {
  return fmt::format("{}{}: the server says that it {}", words, worked ? " is gone" : " was unknown",
                     told(state));
}

std::string by_hand_line(RequestId request, bool executed, std::string_view note) {
  return fmt::format("Request {} was unknown: settled by hand as {}, {}", request,
                     executed ? "executed" : "not executed", note);
}

std::string update_entry_line(std::int64_t order, ResultCode code) {
  const std::string_view text = update_entry(code);
  return text.empty() ? std::string{} : "Order #" + std::to_string(order) + std::string{text};
}

std::string new_stops_line(std::int64_t order) {
  return "Request SL/TP for #" + std::to_string(order);
}

std::string_view told(RequestState state) {
  switch (state) {
    case RequestState::never_taken:
      return "never came and never will";
    case RequestState::waiting:
      return "is on its way";
    case RequestState::working:
      return "waits for its price";
    case RequestState::partly_executed:
      return "was executed in part";
    case RequestState::executed:
      return "was executed";
    case RequestState::refused:
      return "was refused";
    case RequestState::cancelled:
      return "was cancelled";
    case RequestState::another_book:
      return "was sent to a book that it has no more: check the positions";
    case RequestState::not_told:
      break;
  }
  return {};
}

std::string_view learnt(SentOrder::Outcome outcome) {
  switch (outcome) {
    case SentOrder::Outcome::accepted:
      return "Executed, as is known now";
    case SentOrder::Outcome::partly:
      return "Executed in part, as is known now";
    case SentOrder::Outcome::refused:
      return "Not executed, as is known now";
    case SentOrder::Outcome::pending:
      return "With the dealer, as is known now";
    default:
      return "unknown";
  }
}

std::string_view conflict(bool executed) {
  return executed ? "CONFLICT: executed after all" : "CONFLICT: not executed after all";
}

std::string_view learnt_of_cancel(SentOrder::Outcome outcome) {
  switch (outcome) {
    case SentOrder::Outcome::accepted:
      return "Its cancel was carried out, as is known now";
    case SentOrder::Outcome::refused:
      return "Its cancel was not carried out, as is known now";
    default:
      return "The outcome of its cancel is unknown";
  }
}

}  // namespace tutti::result_texts
