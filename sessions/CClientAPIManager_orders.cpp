// Results of market orders, closes, entry orders and SL/TP orders of an account session.

#include <cmath>

#include "core/numbers.h"
#include "sessions/CClientAPIManager.h"
#include "sessions/result_texts.h"

namespace tutti {
namespace {

// "Order #12 [BUY 0.5 EURUSD] has been accepted"
std::string accepted_text(const OrderReport& report) {
  return "Order #" + std::to_string(report.number) + " [" + (report.operation > 0 ? "BUY" : "SELL") + " " +
         number_text(report.amount) + " " + report.symbol + "] has been accepted";
}

constexpr std::string_view order_ok = "\\sounds\\OrderOk.wav";
constexpr std::string_view no_equity = "\\sounds\\NoEquity.wav";
constexpr std::string_view alert = "\\sounds\\Alert.wav";

}  // namespace

void CClientAPIManager::NewOrderResult(const OrderReport& report) {
  if (report.result == result::succeeded && report.state == order_state::pending) {
    settle_order(report, SentOrder::Outcome::pending);
    desk_.pending->order({.order = report.number,
                          .account = account_,
                          .kind = "OP",
                          .operation = report.operation,
                          .symbol = report.symbol,
                          .amount = report.amount,
                          .price = report.price,
                          .time = general_.clock.now()});
    log("Order " + std::to_string(report.number) + " in Pending mode");
    desk_.market_order->result("Order in Pending mode", account_);
    return;
  }
  const bool executed = report.result == result::succeeded;
  settle_order(report, executed ? SentOrder::Outcome::accepted : SentOrder::Outcome::refused);
  if (executed) {
    log(accepted_text(report));
    desk_.market_order->result("Market Order Accepted", account_);
    return;
  }
  const std::string_view text = result_texts::new_order(report.result);
  if (text.empty()) return;
  log(text);
  desk_.market_order->result(text, account_);
  general_.play_sound(report.result == result::hedging_not_allowed ? alert : no_equity);
}

void CClientAPIManager::MarketOrderAccepted(const OrderReport& report) {
  if (report.request_kind == request_kind::close) {
    settle_request(RequestKind::close, report.number, 0, SentOrder::Outcome::accepted);
    log_order(report.number, "Ticket #" + std::to_string(report.number) + " has been closed successfully");
    refresh_position(report.number);
  } else {
    settle_order(report, SentOrder::Outcome::accepted);
    log_order(report.number, accepted_text(report));
    desk_.market_order->result("Market Order Accepted", account_);
  }
  desk_.requote->order_accepted(report);
}

void CClientAPIManager::MarketOrderRejected(const OrderReport& report) {
  if (report.request_kind == request_kind::close) {
    constexpr std::string_view text = "Closing has been rejected";
    settle_request(RequestKind::close, report.number, 0, SentOrder::Outcome::refused);
    log_order(report.number, text);
    desk_.close_positions->result(report.number, text);
  } else {
    settle_order(report, SentOrder::Outcome::refused);
    log_order(report.number, "Order " + std::to_string(report.number) + " has been rejected");
    desk_.market_order->result("order has been rejected", account_);
  }
  desk_.requote->order_rejected(report);
}

void CClientAPIManager::OrderTimer(const Requote& requote) {
  // Nobody may accept a price that is none. The server rejects the request itself when its time is over.
  if (!std::isfinite(requote.amount) || !std::isfinite(requote.price) || !std::isfinite(requote.new_price))
    return refuse("The new price of order #" + std::to_string(requote.order));
  desk_.requote->tick(*this, requote);
  desk_.market_order->requote_tick(requote);
}

void CClientAPIManager::close_refused(std::int64_t ticket, const std::string& text,
                                      const std::string& row_text, const std::string& message) {
  log(text);
  desk_.close_positions->result(ticket, row_text);
  tell(message);
}

void CClientAPIManager::CloseOrderResult(const OrderReport& report) {
  const std::int64_t ticket = report.number;
  const std::string number = std::to_string(ticket);
  const bool dealing = report.result == result::succeeded && report.state == order_state::pending;
  settle_request(RequestKind::close, ticket, report.result,
                 dealing                              ? SentOrder::Outcome::pending
                 : report.result == result::succeeded ? SentOrder::Outcome::accepted
                                                      : SentOrder::Outcome::refused);
  switch (report.result) {
    case result::succeeded: {
      log("Request close ticket #" + number + std::string{result_texts::type_word(report.operation)} +
          number_text(report.amount) + report.symbol + " at " + number_text(report.price));
      if (dealing) {
        desk_.pending->order({.order = ticket,
                              .account = account_,
                              .kind = "CP",
                              .reference = ticket,
                              .operation = report.operation,
                              .symbol = report.symbol,
                              .amount = report.amount,
                              .price = report.price,
                              .time = general_.clock.now()});
        log("Position in pending mode");
        desk_.close_positions->result(ticket, "Position in pending mode");
        return;
      }
      const std::string closed = "Postion " + number + " is closed successfuly";
      log(closed);
      desk_.close_positions->result(ticket, closed);
      return;
    }
    case result::not_enough_money: {
      const std::string text = " not enough money";
      return close_refused(ticket, text, text, text + " for account " + std::to_string(account_));
    }
    case result::trading_closed:
      return close_refused(ticket, "Order " + number + " trading is closed", " Trading is closed",
                           number + " trading is closed for account " + std::to_string(account_));
    case result::market_conditions: {
      const std::string text = "Unable to get  quote on this symbol due to market conditions";
      return close_refused(
          ticket, text, text,
          "Order " + number + " is Unable to get  quote on this symbol due to market conditions");
    }
    case result::bad_connection:
      return close_refused(
          ticket, "Unable to get  quote due to  bad connection, Please try again",
          "Order " + number + " is Unable to get quote due to bad connection, Please try again ",
          "Order " + number + " is Unable to get  quote due to  bad connection, Please try again");
    case result::position_closed: {
      const std::string text = "Order " + number + " is closed";
      return close_refused(ticket, text, text, "Position " + number + " is closed");
    }
    case result::position_pending: {
      const std::string text = "Position " + number + " is in pending mode";
      return close_refused(ticket, text, text, text);
    }
    case result::has_pending_orders: {
      const std::string text = "Position " + number + " has pending orders";
      return close_refused(ticket, text, text, text);
    }
    default:
      return;
  }
}

void CClientAPIManager::NewLimitOrderResult(std::int64_t order, std::int32_t code) {
  settle_entry(order, code);
  if (code == result::all_managed) {
    log_order(order, "Order " + std::to_string(order) + " :All Lots Are Managed");
    return;
  }
  const std::string_view text = result_texts::new_entry(code);
  if (text.empty()) return;
  log_order(order, code == result::bad_connection ? "Unable_Bad Connection" : text);
  desk_.entry_order->result(text, account_);
  if (code == result::succeeded) refresh_pending(order);
  if (code != result::position_pending) general_.play_sound(code == result::succeeded ? order_ok : no_equity);
}

void CClientAPIManager::UpdateLimitOrderResult(std::int64_t order, std::int32_t code) {
  settle_request(RequestKind::update, order, code,
                 code == result::succeeded ? SentOrder::Outcome::accepted : SentOrder::Outcome::refused);
  const std::string line = result_texts::update_entry_line(order, code);
  if (line.empty()) return;
  log_order(order, line);
  if (code == result::succeeded) {
    refresh_pending(order);
  } else {
    desk_.entry_order->result(line, account_);
  }
}

void CClientAPIManager::DeleteLimitOrderResult(std::int64_t order, std::int32_t code) {
  settle_request(RequestKind::cancel, order, code,
                 code == result::succeeded ? SentOrder::Outcome::accepted : SentOrder::Outcome::refused);
  const std::string text =
      "Order number #" + std::to_string(order) + std::string{result_texts::delete_entry(code)};
  log_order(order, text);
  if (code != result::succeeded) tell(text);
}

void CClientAPIManager::LimitOrderAccepted(const OrderReport& report) {
  desk_.pending->remove_order(report.number);
  log("Entry Order " + std::to_string(report.number) + " [" + std::string{BuySellDesc(report.operation)} +
      " " + number_text(report.amount) + " " + report.symbol + "] " + "has been executed");
}

void CClientAPIManager::LimitOrderCanceledCannotHdg(std::int64_t order, std::int32_t account) {
  const std::string text = "Limit Order:" + std::to_string(order) +
                           " cancelled because cannot handge for account number #" + std::to_string(account);
  desk_.pending->order_text(order, account_, text);
  tell(text);
}

void CClientAPIManager::LimitOrderCanceledNoMoney(std::int64_t order, std::int32_t account) {
  const std::string text = "Limit Order:" + std::to_string(order) +
                           " cancelled because there is no money for account number #" +
                           std::to_string(account);
  desk_.pending->order_text(order, account_, text);
  tell(text);
}

void CClientAPIManager::NewSLTPOrderResult(std::int64_t order, std::int32_t code) {
  settle_stops(order, code);
  log_order(order, result_texts::new_stops_line(order, code));
  if (code != result::succeeded) return;
  refresh_pending(order);
  desk_.entry_order->stop_request_succeeded(order, account_);
}

void CClientAPIManager::DeleteSLTPOrderResult(std::int64_t order, std::int32_t code) {
  settle_request(RequestKind::cancel, order, code,
                 code == result::succeeded ? SentOrder::Outcome::accepted : SentOrder::Outcome::refused);
  log_order(order,
            "Delete SLTP Order #" + std::to_string(order) + " " + std::string{ResultDescription(code)});
}

void CClientAPIManager::UpdateSLTPOrderResult(std::int64_t order, std::int32_t code) {
  settle_stops(order, code);
  log("Updating SL/TP order #" + std::to_string(order) + " result #" + std::string{ResultDescription(code)});
  if (code == result::succeeded) desk_.entry_order->stop_request_succeeded(order, account_);
}

void CClientAPIManager::SlTpOrderAccepted(std::int64_t order) {
  log_order(order, "SL/TP request #" + std::to_string(order) + " is accepted");
}

void CClientAPIManager::SlTpOrderCanceledNoMoney(std::int64_t order) {
  log_order(order, "SL/TP request #" + std::to_string(order) + " is canceled - no money");
}

}  // namespace tutti
