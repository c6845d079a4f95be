#include "views/ticket_texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>

#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/result_texts.h"

namespace tutti::ticket_texts {
namespace {

// In the order in which they are told.
constexpr std::string_view outcomes[] = {
    "closed",    "filled",      "filled in part",  "working", "done",
    "cancelled", "waiting",     "no margin",       "refused", "not connected",
    "not sent",  "never taken", "settled by hand", "unknown", "in conflict"};

bool fills(std::string_view outcome) {
  return outcome == "closed" || outcome == "filled" || outcome == "filled in part";
}

bool is_code(const std::string& reason, std::int64_t code, ResultCode wanted) {
  return reason == "result code" && code == format_as(wanted);
}

}  // namespace

std::string_view what(RequestKind kind) {
  switch (kind) {
    case RequestKind::open:
      return "Market order";
    case RequestKind::close:
      return "Close";
    case RequestKind::cancel:
      return "Cancel";
    case RequestKind::entry:
      return "Entry order";
    case RequestKind::update:
      return "Change of orders";
    case RequestKind::stops:
      return "SL/TP";
    case RequestKind::requote:
      return "Answer to requote";
  }
  return {};
}

std::string side(RequestKind kind, Operation side) {
  if (side == Operation::none) return {};
  std::string out = buys(side) ? "Buy" : "Sell";
  if (kind != RequestKind::entry) return out;
  const bool stop = side == operation::buy_stop || side == operation::sell_stop;
  return out + (stop ? " stop" : " limit");
}

std::string_view outcome(RequestKind kind, LedgerState state, const std::string& reason, std::int64_t code) {
  if (reason == ledger_conflict) return "in conflict";
  switch (state) {
    case LedgerState::filled:
      return kind == RequestKind::close ? "closed" : "filled";
    case LedgerState::part:
    case LedgerState::part_filled:
      return "filled in part";
    case LedgerState::working:
      return "working";
    case LedgerState::done:
      return "done";
    case LedgerState::cancelled:
      return "cancelled";
    case LedgerState::refused:
      return is_code(reason, code, result::not_enough_money) ? "no margin" : "refused";
    case LedgerState::refused_here:
      return reason.empty() || reason == "request code" ? "not connected" : "not sent";
    case LedgerState::dropped:
      return "not sent";
    case LedgerState::never:
      return "never taken";
    case LedgerState::hand:
      return "settled by hand";
    case LedgerState::unknown:
    case LedgerState::gone:
      return "unknown";
    case LedgerState::stored:
      // A later start found that it never left.
      return reason.empty() ? "waiting" : "not sent";
    case LedgerState::taken:
    case LedgerState::pending:
      return "waiting";
  }
  return {};
}

int place(RequestKind kind, LedgerState state, const std::string& reason, std::int64_t code) {
  const auto* at = std::find(std::begin(outcomes), std::end(outcomes), outcome(kind, state, reason, code));
  return static_cast<int>(at - std::begin(outcomes));
}

std::string why(const TicketRequest& request) {
  if (!request.note.empty()) return request.note;
  const auto number = static_cast<std::int32_t>(request.code);
  if (request.reason == "result code") {
    const std::string text{trim(result_texts::general(ResultCode{number}))};
    return text.empty() ? fmt::format("result code {}", number) : text;
  }
  if (request.reason == "request code") {
    const std::string text{trim(request::text(RequestCode{number}))};
    return text.empty() ? fmt::format("request code {}", number) : text;
  }
  return request.reason;
}

std::string summary(const TicketRecord& ticket) {
  std::map<int, std::pair<std::string_view, int>> groups;
  for (const TicketOutcome& each : ticket.outcomes) {
    auto& [text, requests] = groups[place(ticket.kind, each.state, each.reason, each.code)];
    text = outcome(ticket.kind, each.state, each.reason, each.code);
    requests += each.requests;
  }
  const TicketFills& filled = ticket.filled;
  std::string prices;
  if (filled.fills > 0) {
    prices = " " + number_text(lots_of_sum(filled.lots)) + " lots";
    if (!ticket.symbol.empty()) {
      prices += " at " + fixed_text(filled.average, filled.price_digits);
      const double worst = buys(ticket.side) ? filled.most : filled.least;
      if (ticket.side != Operation::none && filled.least != filled.most)
        prices += " (worst " + fixed_text(worst, filled.price_digits) + ")";
    }
  }
  std::string out;
  for (const auto& [order, group] : groups) {
    const auto& [text, requests] = group;
    out += fmt::format("{}{} {}", out.empty() ? "" : ", ", requests, text);
    if (fills(text)) out += std::exchange(prices, {});
  }
  return out;
}

}  // namespace tutti::ticket_texts
