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
  const bool done = report.result == result::succeeded;
  const bool dealing = done && report.state == order_state::pending;
  const bool ours = settle_new_order(report, dealing ? SentOrder::Outcome::pending
                                             : done  ? SentOrder::Outcome::accepted
                                                     : SentOrder::Outcome::refused);
  if (ours && dealing) {
    desk_.pending->order({.order = report.number,
                          .account = account_,
                          .kind = "OP",
                          .operation = report.operation,
                          .symbol = report.symbol,
                          .amount = report.amount,
                          .price = report.price,
                          .time = general_.clock.now()});
  }
  const std::string line = dealing ? "Order " + std::to_string(report.number) + " in Pending mode"
                           : done  ? accepted_text(report)
                                   : std::string{result_texts::new_order(report.result)};
  if (!line.empty()) {
    log(line);
    if (ours) {
      desk_.market_order->result(dealing ? "Order in Pending mode"
                                 : done  ? "Market Order Accepted"
                                         : std::string_view{line},
                                 account_);
    }
    if (!done) general_.play_sound(report.result == result::hedging_not_allowed ? alert : no_equity);
  }
  read_again_unless(ours);
}

void CClientAPIManager::MarketOrderAccepted(const OrderReport& report) {
  const bool close = report.request_kind == request_kind::close;
  const bool ours = close ? settle_request(RequestKind::close, report.number, 0, SentOrder::Outcome::accepted)
                          : settle_order(report, SentOrder::Outcome::accepted);
  if (close) {
    log_order(report.number, "Ticket #" + std::to_string(report.number) + " has been closed successfully");
    if (ours) refresh_position(report.number);
  } else {
    log_order(report.number, accepted_text(report));
    if (ours) desk_.market_order->result("Market Order Accepted", account_);
  }
  desk_.requote->order_accepted(report.number, account_);
  read_again_unless(ours);
}

void CClientAPIManager::MarketOrderRejected(const OrderReport& report) {
  const bool close = report.request_kind == request_kind::close;
  const bool ours = close ? settle_request(RequestKind::close, report.number, 0, SentOrder::Outcome::refused)
                          : settle_order(report, SentOrder::Outcome::refused);
  if (close) {
    constexpr std::string_view text = "Closing has been rejected";
    log_order(report.number, text);
    if (ours) desk_.close_positions->result(report.number, account_, text);
  } else {
    log_order(report.number, "Order " + std::to_string(report.number) + " has been rejected");
    if (ours) desk_.market_order->result("order has been rejected", account_);
  }
  desk_.requote->order_rejected(report.number, account_);
  read_again_unless(ours);
}

void CClientAPIManager::OrderTimer(const Requote& requote) {
  // Nobody may accept a price that is none. The server rejects the request itself when its time is over.
  if (!std::isfinite(requote.amount) || !std::isfinite(requote.price) || !std::isfinite(requote.new_price))
    return refuse("The new price of order #" + std::to_string(requote.order));
  desk_.requote->tick(*this, requote);
}

void CClientAPIManager::CloseOrderResult(const OrderReport& report) {
  const bool done = report.result == result::succeeded;
  const bool ours = settle_request(RequestKind::close, report.number, report.result,
                                   !done                                  ? SentOrder::Outcome::refused
                                   : report.state == order_state::pending ? SentOrder::Outcome::pending
                                                                          : SentOrder::Outcome::accepted);
  tell_close(report, ours);
  read_again_unless(ours);
}

void CClientAPIManager::tell_close(const OrderReport& report, bool ours) {
  const std::int64_t ticket = report.number;
  const std::string number = std::to_string(ticket);
  const auto write_row = [&](std::string_view text) {
    if (ours) desk_.close_positions->result(ticket, account_, text);
  };
  const auto refused = [&](const std::string& text, const std::string& row_text, const std::string& message) {
    log(text);
    write_row(row_text);
    tell(message);
  };
  switch (report.result) {
    case result::succeeded: {
      log("Request close ticket #" + number + std::string{result_texts::type_word(report.operation)} +
          number_text(report.amount) + report.symbol + " at " + number_text(report.price));
      if (report.state == order_state::pending) {
        if (ours)
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
        write_row("Position in pending mode");
        return;
      }
      const std::string closed = "Postion " + number + " is closed successfuly";
      log(closed);
      write_row(closed);
      return;
    }
    case result::not_enough_money: {
      const std::string text = " not enough money";
      return refused(text, text, text + " for account " + std::to_string(account_));
    }
    case result::trading_closed:
      return refused("Order " + number + " trading is closed", " Trading is closed",
                     number + " trading is closed for account " + std::to_string(account_));
    case result::market_conditions: {
      const std::string text = "Unable to get  quote on this symbol due to market conditions";
      return refused(text, text,
                     "Order " + number + " is Unable to get  quote on this symbol due to market conditions");
    }
    case result::bad_connection:
      return refused("Unable to get  quote due to  bad connection, Please try again",
                     "Order " + number + " is Unable to get quote due to bad connection, Please try again ",
                     "Order " + number + " is Unable to get  quote due to  bad connection, Please try again");
    case result::position_closed: {
      const std::string text = "Order " + number + " is closed";
      return refused(text, text, "Position " + number + " is closed");
    }
    case result::position_pending: {
      const std::string text = "Position " + number + " is in pending mode";
      return refused(text, text, text);
    }
    case result::has_pending_orders: {
      const std::string text = "Position " + number + " has pending orders";
      return refused(text, text, text);
    }
    default:
      return;
  }
}

void CClientAPIManager::NewLimitOrderResult(std::int64_t order, std::int32_t code, RequestId) {
  const bool ours = settle_entry(order, code);
  const std::string_view text = result_texts::new_entry(code);
  if (code == result::all_managed) {
    log_order(order, "Order " + std::to_string(order) + " :All Lots Are Managed");
  } else if (!text.empty()) {
    log_order(order, code == result::bad_connection ? "Unable_Bad Connection" : text);
    if (ours) desk_.entry_order->result(text, account_);
    if (ours && code == result::succeeded) refresh_pending(order);
    if (code != result::position_pending)
      general_.play_sound(code == result::succeeded ? order_ok : no_equity);
  }
  read_again_unless(ours);
}

void CClientAPIManager::UpdateLimitOrderResult(std::int64_t order, std::int32_t code, RequestId) {
  const bool ours = settle_request(RequestKind::update, order, code, SentOrder::outcome_of(code));
  const std::string line = result_texts::update_entry_line(order, code);
  if (!line.empty()) log_order(order, line);
  if (!ours) return windows_.read_again(*this);
  if (code == result::succeeded) return refresh_pending(order);
  if (!line.empty()) desk_.entry_order->result(line, account_);
}

void CClientAPIManager::DeleteLimitOrderResult(std::int64_t order, std::int32_t code, RequestId) {
  const bool ours = settle_request(RequestKind::cancel, order, code, SentOrder::outcome_of(code));
  const std::string text =
      "Order number #" + std::to_string(order) + std::string{result_texts::delete_entry(code)};
  log_order(order, text);
  if (code != result::succeeded) tell(text);
  read_again_unless(ours);
}

void CClientAPIManager::LimitOrderAccepted(const OrderReport& report) {
  desk_.pending->remove_order(report.number, account_);
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

void CClientAPIManager::NewSLTPOrderResult(std::int64_t order, std::int32_t code, RequestId) {
  const bool ours = settle_stops(order, code);
  log_order(order, result_texts::new_stops_line(order));
  const std::string_view refusal = result_texts::new_stops(code);
  if (!refusal.empty()) log_order(order, refusal);
  if (!ours) return windows_.read_again(*this);
  if (code != result::succeeded) return;
  refresh_pending(order);
  desk_.entry_order->stop_request_succeeded(order, account_);
}

void CClientAPIManager::DeleteSLTPOrderResult(std::int64_t order, std::int32_t code, RequestId) {
  const bool ours = settle_request(RequestKind::cancel, order, code, SentOrder::outcome_of(code));
  log_order(order,
            "Delete SLTP Order #" + std::to_string(order) + " " + std::string{ResultDescription(code)});
  read_again_unless(ours);
}

void CClientAPIManager::UpdateSLTPOrderResult(std::int64_t order, std::int32_t code, RequestId) {
  const bool ours = settle_stops(order, code);
  log("Updating SL/TP order #" + std::to_string(order) + " result #" + std::string{ResultDescription(code)});
  if (ours && code == result::succeeded) desk_.entry_order->stop_request_succeeded(order, account_);
  read_again_unless(ours);
}

void CClientAPIManager::SlTpOrderAccepted(std::int64_t order) {
  log_order(order, "SL/TP request #" + std::to_string(order) + " is accepted");
}

void CClientAPIManager::SlTpOrderCanceledNoMoney(std::int64_t order) {
  log_order(order, "SL/TP request #" + std::to_string(order) + " is canceled - no money");
}

}  // namespace tutti
