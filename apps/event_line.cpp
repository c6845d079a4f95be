#include "apps/event_line.h"

#include <string>
#include <utility>

#include "sessions/contract/codes.h"
#include "sessions/result_texts.h"
#include "views/history_line.h"

namespace tutti {
namespace {

std::int64_t number_of(const RequestEvent& event) {
  return event.order != 0 ? event.order : event.reference;
}

bool executed(LedgerState state) {
  return state == LedgerState::filled || state == LedgerState::part || state == LedgerState::done;
}

// An answer as the server's own outcome. Where that depends on what the ledger does not have, there are
// several; none where no line tells of it.
std::vector<Outcome> outcomes(const RequestEvent& event) {
  const bool refused = event.state == LedgerState::refused || event.state == LedgerState::part_filled;
  const bool placed = event.kind == RequestKind::entry && event.state == LedgerState::working;
  if (!refused && !placed && !executed(event.state)) return {};
  Outcome out{.account = event.account,
              .number = number_of(event),
              .result = refused ? ResultCode{event.code} : result::succeeded,
              .dealt = event.dealt,
              .told = true};
  if (refused && event.reason == "request code") {
    // Requests that are sent again tell it in their rows alone, and so does an account that is none.
    if (event.sent_again || event.code == format_as(request::invalid_account)) return {};
    out.request = RequestCode{event.code};
    out.result = ResultCode::none;
  }
  Outcome other = out;
  switch (event.kind) {
    case RequestKind::open:
    case RequestKind::close:
      out.kind = other.kind = event.kind == RequestKind::open ? TradeKind::open : TradeKind::close;
      if (!refused) return {out};
      other.dealt = !out.dealt;
      return {out, other};
    case RequestKind::entry:
      // One whose answer did not come before it was executed.
      if (placed && event.filled_at_once) return {};
      out.kind = TradeKind::entry;
      out.set_off = executed(event.state);
      return {out};
    case RequestKind::update:
      out.kind = TradeKind::update_entry;
      return {out};
    case RequestKind::cancel:
      out.kind = TradeKind::cancel_entry;
      other.kind = TradeKind::cancel_stops;
      return {out, other};
    case RequestKind::stops:
      // The order that the line names was not kept once.
      if (number_of(event) == event.reference) return {};
      out.kind = other.kind = TradeKind::set_stops;
      other.updated = true;
      return {out, other};
    case RequestKind::requote:
      break;
  }
  return {};
}

LineTexts answer_line(const RequestEvent& event) {
  const std::string details = event.kind == RequestKind::open
                                  ? result_texts::market_details(event.side, event.lots, event.symbol)
                                  : result_texts::entry_details(event.side, event.lots, event.symbol);
  LineTexts out;
  for (const Outcome& outcome : outcomes(event)) {
    const auto lines = outcome_lines(outcome, details);
    // A refusal that no line tells of, unless the dealer was asked.
    const bool opens_or_closes = event.kind == RequestKind::open || event.kind == RequestKind::close;
    if (lines.empty() && out.empty() && opens_or_closes && !event.dealt) return {};
    if (!lines.empty()) out.insert(out.end(), lines.front().begin(), lines.front().end());
  }
  return out;
}

RequestState state_told(LedgerState state) {
  switch (state) {
    case LedgerState::filled:
    case LedgerState::done:
      return RequestState::executed;
    case LedgerState::working:
      return RequestState::working;
    case LedgerState::part:
      return RequestState::partly_executed;
    case LedgerState::pending:
      return RequestState::waiting;
    case LedgerState::refused:
      return RequestState::refused;
    case LedgerState::cancelled:
    case LedgerState::part_filled:
      return RequestState::cancelled;
    case LedgerState::never:
      return RequestState::never_taken;
    case LedgerState::gone:
      return RequestState::another_book;
    default:
      return RequestState::not_told;
  }
}

std::string words_of(const RequestEvent& event, const std::string& symbol) {
  return result_texts::request_words(event.kind, event.side, event.lots, symbol, event.price,
                                     number_of(event));
}

LineTexts asked_line(const RequestEvent& event) {
  const RequestState state = state_told(event.state);
  if (state == RequestState::not_told) return {};
  const bool worked = event.before == LedgerState::working || event.before == LedgerState::part;
  LineTexts out;
  for (const bool each : {worked, !worked})
    // Of an earlier run's request the symbol may not be known where it is asked for.
    for (const std::string& symbol : {event.symbol, std::string{}})
      out.push_back(result_texts::told_line(words_of(event, symbol), each, state));
  return out;
}

}  // namespace

LineTexts event_line(const RequestEvent& event) {
  switch (event.evidence) {
    case LedgerEvidence::answer:
      return answer_line(event);
    case LedgerEvidence::asked:
      return asked_line(event);
    case LedgerEvidence::hand:
      return {result_texts::by_hand_line(event.request, event.reason == hand_filled, event.note)};
    case LedgerEvidence::clock:
      if (event.state == LedgerState::unknown && event.kind != RequestKind::requote &&
          (event.reason == "late" || event.reason == "lost"))
        return {result_texts::unknown_line(words_of(event, event.symbol), event.account)};
      break;
    case LedgerEvidence::positions:
      break;
  }
  return {};
}

std::string plain_history_text(std::string_view message) {
  return history_line::written(without_details(message));
}

}  // namespace tutti
