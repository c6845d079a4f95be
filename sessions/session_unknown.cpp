#include "sessions/session_unknown.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "core/time_texts.h"
#include "sessions/result_texts.h"

namespace tutti {
namespace {

std::string request_words(const SentOrder& request, const SymbolCollection& symbols) {
  return result_texts::request_words(request.kind, request.side, request.amount,
                                     request.symbol == no_symbol ? "" : symbols.entry(request.symbol).name,
                                     request.price, request.number);
}

}  // namespace

void SessionUnknown::give_up(SentOrder& request, std::string_view reason) {
  if (request.settled()) return;
  const std::string what = request_words(request, scope_.symbols);
  sent_.give_up(request, reason);
  if (request.kind == RequestKind::requote) return;  // the order that it is for is told of
  scope_.log(result_texts::unknown_line(what, scope_.account));
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

void SessionUnknown::ask(bool whole) {
  asked_ = 0;
  reads_.clear();
  whole_ = whole;
  for (SentOrder* request : sent_.unknown())
    if (!ask(*request)) look_at_positions(*request);
  for (SentOrder* request : sent_.gone())
    if (!ask(*request)) sent_.note_gone(*request);
  // A home that has stored nothing knows of nothing that it could lack. Clocks differ, and what comes twice
  // is kept once.
  constexpr std::chrono::minutes before{5};
  const TimePoint now = scope_.general.clock.now();
  if (told_until_ == TimePoint{})
    told_until_ = now;
  else
    read(told_until_ - before, Reads::since_told);
}

bool SessionUnknown::ask(SentOrder& request) {
  // Of an earlier run the symbol's name is known; which one that is, since the symbols are there.
  if (request.symbol == no_symbol) {
    if (const LedgerUnknown* known = earlier(request)) request.symbol = scope_.symbols.find(known->symbol);
  }
  if (scope_.client.AskRequest(request.id, request.era) != request::taken) return false;
  ++asked_;
  return true;
}

const LedgerUnknown* SessionUnknown::earlier(const SentOrder& request) const {
  const auto& all = request.working ? ledger_.working() : ledger_.unknown();
  const auto at =
      std::find_if(all.begin(), all.end(), [&](const LedgerUnknown& each) { return each.id == request.id; });
  return at == all.end() ? nullptr : &*at;
}

// A number that another request was given, in this run or an earlier one.
bool SessionUnknown::is_of_another(std::int64_t ticket, const SentOrder& request) const {
  for (const RequestKind kind : {RequestKind::open, RequestKind::entry})
    if (const SentOrder* other = sent_.last(kind, ticket); other != nullptr && other != &request) return true;
  const LedgerUnknown* known = earlier(request);
  return known != nullptr && std::binary_search(known->taken_since.begin(), known->taken_since.end(), ticket);
}

void SessionUnknown::look_at_positions(SentOrder& request) {
  if (!whole_ || request.kind != RequestKind::open || request.outcome != SentOrder::Outcome::unknown ||
      request.symbol == no_symbol || request.era != scope_.client.Era())
    return;
  // Whatever else is under way may be the position's request as well.
  if (!sent_.open().empty()) return;
  const auto like = [&](const SentOrder& each) {
    return each.kind == RequestKind::open && buys(each.side) == buys(request.side) &&
           (each.symbol == request.symbol || each.symbol == no_symbol) &&
           std::fabs(each.amount - request.amount) <= RequestBook::same_lots;
  };
  const auto unknown = sent_.unknown();
  if (std::count_if(unknown.begin(), unknown.end(), [&](const SentOrder* each) { return like(*each); }) != 1)
    return;
  const LedgerUnknown* known = earlier(request);
  const std::int64_t before = known != nullptr ? known->greatest_before : request.greatest_before;
  if (before < 0) return;
  const std::string& symbol = scope_.symbols.entry(request.symbol).name;
  std::int64_t found = 0;
  for (int place = 1; place <= scope_.client.OpenPositionCount(); ++place) {
    const OpenPosition* each = scope_.client.OpenPositionItem(place);
    // Of an order that went through dealing the number is known.
    if (each == nullptr || (request.number != 0 && each->ticket != request.number) ||
        each->ticket <= before || each->symbol != symbol || buys(each->side) != buys(request.side) ||
        std::fabs(each->amount - request.amount) > RequestBook::same_lots ||
        is_of_another(each->ticket, request))
      continue;
    if (found != 0) return;
    found = each->ticket;
  }
  if (found == 0) return;
  sent_.settle_by_position(request, found);
  scope_.log(request_words(request, scope_.symbols) + " was unknown: position #" + std::to_string(found) +
             " says that it was executed");
  this->known(request);
}

void SessionUnknown::told(RequestId id, RequestState state, double lots) {
  asked_ = std::max(asked_ - 1, 0);
  SentOrder* request = sent_.named(id);
  if (request != nullptr && state == RequestState::not_told && !request->working)
    return look_at_positions(*request);
  const bool worked = request != nullptr && request->working;
  if (request == nullptr || !sent_.told(*request, state, lots)) return;
  scope_.log(result_texts::told_line(request_words(*request, scope_.symbols), worked, state));
  if (!worked) known(*request);
  // At what price, its answer would have told.
  if (lots > 0.0) read_fills(std::chrono::hours{24});
}

void SessionUnknown::read_fills(std::chrono::milliseconds of_late) {
  read(scope_.general.clock.now() - of_late, Reads::others);
}

bool SessionUnknown::read(TimePoint since, Reads what) {
  if (scope_.client.AskExecutions(since) != request::taken) return false;
  ++asked_;
  reads_.push_back(what);
  return true;
}

void SessionUnknown::fills_told(std::span<const Execution> fills, bool complete) {
  asked_ = std::max(asked_ - 1, 0);
  for (const Execution& fill : fills)
    sent_.fill_told(fill);
  Reads what = Reads::others;
  if (!reads_.empty()) {
    what = reads_.front();
    reads_.pop_front();
  }
  if (what == Reads::others) return;
  // It may lack only what was asked for to be sure.
  if (!complete && what == Reads::since_told && read(told_until_, Reads::exactly)) return;
  if (!complete)
    scope_.log("The server keeps no fills from " + full_time_text(told_until_) +
               " on any more: what was filled meanwhile may be missing here, compare the positions with its "
               "statement");
  // Only now: a login that failed, or was cut off, has read nothing back.
  told_until_ = scope_.general.clock.now();
}

}  // namespace tutti
