#include "sessions/session_requests.h"

#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/result_texts.h"

namespace tutti {
namespace {

using Outcome = SentOrder::Outcome;

constexpr std::string_view order_ok = "\\sounds\\OrderOk.wav";
constexpr std::string_view no_equity = "\\sounds\\NoEquity.wav";
constexpr std::string_view alert = "\\sounds\\Alert.wav";

std::string accepted_text(const OrderReport& report) {
  return result_texts::accepted_line(
      report.number, result_texts::market_details(report.operation, report.amount, report.symbol));
}

PendingOrder in_dealing(const OrderReport& report, std::int32_t account, OrderKind kind, TimePoint now) {
  return {.order = report.number,
          .account = account,
          .kind = kind,
          .reference = kind == OrderKind::close ? report.number : 0,
          .operation = report.operation,
          .symbol = report.symbol,
          .amount = report.amount,
          .price = report.price,
          .time = now};
}

}  // namespace

bool SessionRequests::new_order(const OrderReport& report) {
  const bool done = report.result == result::succeeded;
  const bool dealing = done && report.state == order_state::pending;
  SentOrder* meant = sent_.opening(report);
  const bool ours = sent_.settle(meant, report);
  if (ours && dealing)
    records_.list(in_dealing(report, scope_.account, OrderKind::open, scope_.general.clock.now()));
  const std::string line = dealing ? "Order " + std::to_string(report.number) + " in Pending mode"
                           : done  ? accepted_text(report)
                                   : std::string{result_texts::new_order(report.result)};
  if (line.empty()) return ours;
  scope_.log(line);
  if (ours && sent_.has_row(meant)) {
    scope_.desk.market_order->result(dealing ? "Order in Pending mode"
                                     : done  ? "Market Order Accepted"
                                             : std::string_view{line},
                                     scope_.account);
  }
  if (!done) scope_.general.play_sound(report.result == result::hedging_not_allowed ? alert : no_equity);
  return ours;
}

bool SessionRequests::market_order_accepted(const OrderReport& report) {
  const bool close = report.request_kind == request_kind::close;
  SentOrder* meant = close ? sent_.closing(report) : sent_.dealt(report);
  const bool ours = sent_.settle(meant, report, ResultCode::none, Outcome::accepted);
  sent_.end_requote(report.number);
  if (close) {
    scope_.log_order(report.number,
                     "Ticket #" + std::to_string(report.number) + " has been closed successfully");
    if (ours) records_.refresh_position(report.number);
  } else {
    scope_.log_order(report.number, accepted_text(report));
    if (ours && sent_.has_row(meant))
      scope_.desk.market_order->result("Market Order Accepted", scope_.account);
  }
  scope_.desk.requote->order_accepted(report.number, scope_.account);
  return ours;
}

bool SessionRequests::market_order_rejected(const OrderReport& report) {
  const bool close = report.request_kind == request_kind::close;
  SentOrder* meant = close ? sent_.closing(report) : sent_.dealt(report);
  const bool ours = sent_.settle(meant, report, close ? ResultCode::none : report.result, Outcome::refused);
  sent_.end_requote(report.number);
  if (close) {
    constexpr std::string_view text = "Closing has been rejected";
    scope_.log_order(report.number, text);
    if (ours) scope_.desk.close_positions->result(report.number, scope_.account, text);
  } else {
    scope_.log_order(report.number, "Order " + std::to_string(report.number) + " has been rejected");
    if (ours && sent_.has_row(meant))
      scope_.desk.market_order->result("order has been rejected", scope_.account);
  }
  scope_.desk.requote->order_rejected(report.number, scope_.account);
  return ours;
}

bool SessionRequests::close_result(const OrderReport& report) {
  const bool ours = sent_.settle(sent_.closing(report), report);
  tell_close(report, ours);
  return ours;
}

void SessionRequests::tell_close(const OrderReport& report, bool ours) {
  const auto write_row = [&](std::string_view text) {
    if (ours) scope_.desk.close_positions->result(report.number, scope_.account, text);
  };
  if (report.result != result::succeeded) {
    const auto texts = result_texts::close(report.result, report.number, scope_.account);
    if (texts.line.empty()) return;
    scope_.log(texts.line);
    write_row(texts.row);
    return scope_.tell(texts.message);
  }
  const std::string number = std::to_string(report.number);
  scope_.log("Request close ticket #" + number + std::string{result_texts::type_word(report.operation)} +
             number_text(report.amount) + report.symbol + " at " + number_text(report.price));
  const bool pending = report.state == order_state::pending;
  if (ours && pending)
    records_.list(in_dealing(report, scope_.account, OrderKind::close, scope_.general.clock.now()));
  const std::string text =
      pending ? "Position in pending mode" : "Postion " + number + " is closed successfuly";
  scope_.log(text);
  write_row(text);
}

bool SessionRequests::new_entry(std::int64_t order, ResultCode code, RequestId id) {
  SentOrder* meant = sent_.entry(order, code, id);
  const bool ours = sent_.settle(meant, code, SentOrder::outcome_of(code), order, id);
  const std::string_view text = result_texts::new_entry(code);
  if (code == result::all_managed) {
    scope_.log_order(order, "Order " + std::to_string(order) + " :All Lots Are Managed");
  } else if (!text.empty()) {
    scope_.log_order(order, code == result::bad_connection ? "Unable_Bad Connection" : text);
    if (ours && sent_.has_row(meant)) scope_.desk.entry_order->result(text, scope_.account);
    if (ours && code == result::succeeded) records_.refresh_pending(order);
    if (code != result::position_pending)
      scope_.general.play_sound(code == result::succeeded ? order_ok : no_equity);
  }
  return ours;
}

bool SessionRequests::update_entry(std::int64_t order, ResultCode code, RequestId id) {
  SentOrder* meant = sent_.change(RequestKind::update, order, id);
  const bool ours = sent_.settle(meant, code, id);
  const std::string line = result_texts::update_entry_line(order, code);
  if (!line.empty()) scope_.log_order(order, line);
  if (!ours) return false;
  if (code == result::succeeded) {
    records_.refresh_pending(order);
  } else if (!line.empty() && sent_.has_row(meant)) {
    scope_.desk.entry_order->result(line, scope_.account);
  }
  return true;
}

bool SessionRequests::delete_entry(std::int64_t order, ResultCode code, RequestId id) {
  const bool ours = sent_.settle(sent_.change(RequestKind::cancel, order, id), code, id);
  if (code == result::succeeded) sent_.entry_cancelled(order, "cancel");
  const std::string text =
      "Order number #" + std::to_string(order) + std::string{result_texts::delete_entry(code)};
  scope_.log_order(order, text);
  if (code != result::succeeded) scope_.tell(text);
  return ours;
}

bool SessionRequests::new_stops(std::int64_t order, ResultCode code, RequestId id) {
  const bool ours = sent_.settle_stops(order, code, id);
  scope_.log_order(order, result_texts::new_stops_line(order));
  const std::string_view refusal = result_texts::new_stops(code);
  if (!refusal.empty()) scope_.log_order(order, refusal);
  if (!ours || code != result::succeeded) return ours;
  records_.refresh_pending(order);
  scope_.desk.entry_order->stop_request_succeeded(order, scope_.account);
  return true;
}

bool SessionRequests::update_stops(std::int64_t order, ResultCode code, RequestId id) {
  const bool ours = sent_.settle_stops(order, code, id);
  scope_.log("Updating SL/TP order #" + std::to_string(order) + " result #" +
             std::string{result_texts::general(code)});
  if (ours && code == result::succeeded)
    scope_.desk.entry_order->stop_request_succeeded(order, scope_.account);
  return ours;
}

bool SessionRequests::delete_stops(std::int64_t order, ResultCode code, RequestId id) {
  const bool ours = sent_.settle(sent_.change(RequestKind::cancel, order, id), code, id);
  scope_.log_order(
      order, "Delete SLTP Order #" + std::to_string(order) + " " + std::string{result_texts::general(code)});
  return ours;
}

void SessionRequests::entry_executed(const OrderReport& report) {
  // It was placed, then, whether that was told or not.
  if (report.id != 0)
    sent_.settle(sent_.named(report.id, RequestKind::entry), result::succeeded, Outcome::accepted,
                 report.number);
  sent_.entry_executed(report);
  scope_.orders.remove(report.number, scope_.account);
  scope_.log(result_texts::executed_line(
      report.number, result_texts::entry_details(report.operation, report.amount, report.symbol)));
}

void SessionRequests::entry_cancelled(std::int64_t order, std::int32_t account, std::string_view why) {
  const std::string text =
      "Limit Order:" + std::to_string(order) + std::string{why} + std::to_string(account);
  scope_.desk.pending->order_text(order, scope_.account, text);
  sent_.entry_cancelled(order, trim(why));
  scope_.tell(text);
}

LedgerAccount SessionRequests::identity(const AccountEntry& record) {
  const Endpoint& server = record.server;
  return {server.address.empty() ? "" : server.address + ":" + std::to_string(server.port), record.user,
          record.account};
}

}  // namespace tutti
