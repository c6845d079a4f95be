#include "sessions/session_unknown.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/result_texts.h"

namespace tutti {
namespace {

// "BUY 0.5 EURUSD"
std::string words(const SentOrder& order, const SymbolCollection& symbols) {
  return (buys(order.side) ? "BUY " : "SELL ") + number_text(order.amount) + " " +
         (order.symbol == no_symbol ? "" : symbols.entry(order.symbol).name);
}

// "Order BUY 0.5 EURUSD", "The request for #12"
std::string request_words(const SentOrder& request, const SymbolCollection& symbols) {
  if (request.kind == RequestKind::open) return "Order " + std::string{trim(words(request, symbols))};
  if (request.kind == RequestKind::entry)
    return "Entry order " + std::string{trim(words(request, symbols))} + " at " + number_text(request.price);
  return "The request for #" + std::to_string(request.number);
}

}  // namespace

void SessionUnknown::give_up(SentOrder& request, std::string_view reason) {
  if (request.settled()) return;
  const std::string what = request_words(request, scope_.symbols);
  sent_.give_up(request, reason);
  if (request.kind == RequestKind::requote) return;  // the order that it is for is told of
  scope_.log(what + " was sent, but no result came: the outcome is unknown, check the positions of account " +
             std::to_string(scope_.account));
}

void SessionUnknown::give_up_all(std::string_view reason) {
  for (SentOrder* request : sent_.open())
    give_up(*request, reason);
}

void SessionUnknown::overdue(SentOrder& request) {
  give_up(request, "late");
  tell_row(request, "unknown", "The outcome of its cancel is unknown");
  ask(request);
}

void SessionUnknown::in_conflict(const SentOrder& request) {
  const bool executed = request.outcome != SentOrder::Outcome::refused;
  const std::string text = fmt::format(
      "CONFLICT: {} was known as {}, and the server says now that it {}. Compare the positions of account {} "
      "with the broker's",
      request_words(request, scope_.symbols), executed ? "not executed" : "executed",
      executed ? "was executed" : "was not", scope_.account);
  scope_.log(text);
  tell_row(request, result_texts::conflict(executed), result_texts::conflict(executed));
  scope_.tell(text);
  scope_.general.play_sound("\\sounds\\Alert.wav");
}

void SessionUnknown::known(const SentOrder& request) {
  tell_row(request, result_texts::learnt(request.outcome), result_texts::learnt_of_cancel(request.outcome));
}

// The entry order window is told of its requests as they are settled.
void SessionUnknown::tell_row(const SentOrder& request, std::string_view text,
                              std::string_view text_of_cancel) {
  if (request.kind == RequestKind::open && sent_.has_row(&request))
    scope_.desk.market_order->result(text, scope_.account);
  if (request.kind == RequestKind::cancel)
    scope_.desk.pending->order_text(request.number, scope_.account, text_of_cancel);
  if (request.kind == RequestKind::close)
    scope_.desk.close_positions->result(request.number, scope_.account, text);
}

void SessionUnknown::ask() {
  asked_ = 0;
  for (SentOrder* request : sent_.unknown())
    ask(*request);
  for (SentOrder* request : sent_.gone())
    if (!ask(*request)) sent_.note_gone(*request);
  // A home that has stored nothing knows of nothing that it could lack. Clocks differ, and what comes twice
  // is kept once.
  constexpr std::chrono::minutes before{5};
  const TimePoint now = scope_.general.clock.now();
  if (told_until_ == TimePoint{})
    told_until_ = now;
  else
    read_fills(now - told_until_ + before);
}

bool SessionUnknown::ask(SentOrder& request) {
  // Of an earlier run the symbol's name is known; which one that is, since the symbols are there.
  if (request.symbol == no_symbol) {
    const auto& earlier = request.working ? ledger_.working() : ledger_.unknown();
    const auto at = std::find_if(earlier.begin(), earlier.end(),
                                 [&](const LedgerUnknown& each) { return each.id == request.id; });
    if (at != earlier.end()) request.symbol = scope_.symbols.find(at->symbol);
  }
  if (scope_.client.AskRequest(request.id, request.era) != request::taken) return false;
  ++asked_;
  return true;
}

void SessionUnknown::told(RequestId id, RequestState state, double lots) {
  asked_ = std::max(asked_ - 1, 0);
  SentOrder* request = sent_.named(id);
  const bool worked = request != nullptr && request->working;
  if (request == nullptr || !sent_.told(*request, state, lots)) return;
  scope_.log(request_words(*request, scope_.symbols) +
             (worked ? " is gone: the server says that it " : " was unknown: the server says that it ") +
             std::string{result_texts::told(state)});
  if (!worked) known(*request);
  // At what price, its answer would have told.
  if (lots > 0.0) read_fills(std::chrono::hours{24});
}

void SessionUnknown::read_fills(std::chrono::milliseconds of_late) {
  if (scope_.client.AskExecutions(scope_.general.clock.now() - of_late) == request::taken) ++asked_;
}

void SessionUnknown::fills_told(std::span<const Execution> fills) {
  asked_ = std::max(asked_ - 1, 0);
  for (const Execution& fill : fills)
    sent_.fill_told(fill);
  // Only now: a login that failed, or was cut off, has read nothing back.
  told_until_ = scope_.general.clock.now();
}

}  // namespace tutti
