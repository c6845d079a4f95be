#include "sessions/result_texts.h"

#include "sessions/contract/codes.h"

namespace tutti::result_texts {

std::string_view general(std::int32_t code) {
  switch (code) {
    case result::succeeded:
      return "Succeeded";
    case result::not_enough_money:
      return "Not enough money";
    case result::trading_closed:
      return "Trading is closed";
    case result::market_conditions:
      return "Failed - Market conditions";
    case result::bad_connection:
      return "Failed - Bad connection";
    case result::position_closed:
      return "Position is closed";
    case result::has_pending_orders:
      return "Position has pending orders";
    case result::invalid_amount:
      return "Invalid amount";
    case result::order_not_found:
      return "Order not found";
    case result::all_managed:
      return "All amount are managed";
    case result::unable:
      return "Unable to do operation";
    case result::hedging_not_allowed:
      return "Hedging not allowed";
    case result::failed:
      return "Failed";
    default:
      return "UNDEFINED RESULT";
  }
}

std::string_view new_order(std::int32_t code) {
  switch (code) {
    case result::not_enough_money:
      return "Not enough money";
    case result::trading_closed:
      return "Trading Is Closed";
    case result::market_conditions:
      return "Not Taken According to market Connditions";
    case result::bad_connection:
      return "Bad Connection";
    case result::position_closed:
      return "Position Is Closed";
    case result::position_pending:
      return "Position in peniding Order";
    case result::has_pending_orders:
      return "Position Has Pending Orders";
    case result::hedging_not_allowed:
      return "Heddging Not Allowed";
    default:
      return "";
  }
}

std::string_view delete_entry(std::int32_t code) {
  switch (code) {
    case result::succeeded:
      return " Canceled successfully";
    case result::not_enough_money:
      return " Not Enough Money";
    case result::trading_closed:
      return " Trading Is Closed";
    case result::market_conditions:
      return " Unable to get  quote on this symbol due to market conditions";
    case result::bad_connection:
      return " Unable Bad Connection";
    case result::position_closed:
      return " Position Is Closed ";
    case result::position_pending:
      return " Position Is Pending";
    case result::has_pending_orders:
      return " Position Has Pending Orders";
    case result::invalid_amount:
      return " Invalid Amount";
    case result::order_not_found:
      return " NotFound";
    case result::all_managed:
      return " All Amount Are Managed";
    case result::unable:
      return " Unable ToDo Operation";
    default:
      return " Unable To Do Operation";
  }
}

std::string_view new_entry(std::int32_t code) {
  switch (code) {
    case result::succeeded:
      return "Succeeded";
    case result::not_enough_money:
      return "Not Enough Money";
    case result::trading_closed:
      return "Trading Is Closed";
    case result::market_conditions:
      return "Unable MarketConditions";
    case result::bad_connection:
      return "Unable Bad Connection";
    case result::position_closed:
      return "Position Is Closed";
    case result::position_pending:
      return "Position Is Pending";
    case result::has_pending_orders:
      return "Position Has Pending Orders";
    case result::invalid_amount:
      return "Invalid Amount";
    case result::order_not_found:
      return "Not Found";
    default:
      return "";
  }
}

std::string_view update_entry(std::int32_t code) {
  switch (code) {
    case result::succeeded:
      return "has been updated";
    case result::not_enough_money:
      return " Not Enough Money ";
    case result::trading_closed:
      return " Trading Is Closed ";
    case result::bad_connection:
      return " Unable Bad Connection";
    case result::position_closed:
      return " Position Is Closed ";
    case result::position_pending:
      return " Position Is Pending ";
    case result::has_pending_orders:
      return " Position Has Pending Orders ";
    case result::invalid_amount:
      return " Invalid Amount ";
    case result::order_not_found:
      return " Not Found ";
    case result::all_managed:
      return " All Amount Are Managed ";
    case result::hedging_not_allowed:
      return " Hedging Not Allowed ";
    case result::failed:
      return " Failed Result ";
    default:
      return "";
  }
}

std::string_view new_stops(std::int32_t code) {
  switch (code) {
    case result::not_enough_money:
      return "NotEnoughMoney";
    case result::trading_closed:
      return "Trading Is Closed";
    case result::market_conditions:
      return "Unable to get  quote on this symbol due to market conditions";
    case result::bad_connection:
      return "Unable to get  quote due to a bad connection, Please try again";
    case result::position_closed:
      return "Position Is Closed ";
    case result::position_pending:
      return "Position Is Pending";
    case result::has_pending_orders:
      return "Position Has Pending Orders";
    case result::invalid_amount:
      return "InvalidAmount";
    case result::order_not_found:
      return "NotFound";
    case result::all_managed:
      return "All Amount Are Managed";
    case result::unable:
      return "Unable ToDo Operation";
    default:
      return "";
  }
}

CloseTexts close(std::int32_t code, std::int64_t ticket, std::int32_t account) {
  const std::string number = std::to_string(ticket);
  const auto the_same = [](const std::string& text) { return CloseTexts{text, text, text}; };
  switch (code) {
    case result::not_enough_money: {
      const std::string text = " not enough money";
      return {text, text, text + " for account " + std::to_string(account)};
    }
    case result::trading_closed:
      return {"Order " + number + " trading is closed", " Trading is closed",
              number + " trading is closed for account " + std::to_string(account)};
    case result::market_conditions: {
      const std::string text = "Unable to get  quote on this symbol due to market conditions";
      return {text, text,
              "Order " + number + " is Unable to get  quote on this symbol due to market conditions"};
    }
    case result::bad_connection:
      return {"Unable to get  quote due to  bad connection, Please try again",
              "Order " + number + " is Unable to get quote due to bad connection, Please try again ",
              "Order " + number + " is Unable to get  quote due to  bad connection, Please try again"};
    case result::position_closed:
      return {"Order " + number + " is closed", "Order " + number + " is closed",
              "Position " + number + " is closed"};
    case result::position_pending:
      return the_same("Position " + number + " is in pending mode");
    case result::has_pending_orders:
      return the_same("Position " + number + " has pending orders");
    default:
      return {};
  }
}

std::string_view buy_or_sell(std::int32_t operation) {
  return operation == operation::buy || operation == operation::buy_stop ? "buy" : "sell";
}

std::string_view type_word(std::int32_t operation) {
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

std::string update_entry_line(std::int64_t order, std::int32_t code) {
  const std::string_view text = update_entry(code);
  return text.empty() ? std::string{} : "Order #" + std::to_string(order) + std::string{text};
}

std::string new_stops_line(std::int64_t order) {
  return "Request SL/TP for #" + std::to_string(order);
}

}  // namespace tutti::result_texts
