#include "sessions/sent_requests.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace tutti {

using Outcome = SentOrder::Outcome;

namespace {

LedgerState state_of(const SentOrder& request) {
  switch (request.outcome) {
    case Outcome::pending:
      return LedgerState::pending;
    case Outcome::partly:
      return LedgerState::part;
    case Outcome::accepted:
      break;
    case Outcome::refused:
      return request.filled > 0.0 ? LedgerState::part_filled : LedgerState::refused;
    default:
      return LedgerState::unknown;
  }
  switch (request.kind) {
    case RequestKind::open:
    case RequestKind::close:
      return LedgerState::filled;
    case RequestKind::entry:
      return LedgerState::working;
    default:
      return LedgerState::done;
  }
}

// What was final, and can't have been if this is true.
bool contradicts(Outcome final, Outcome told) {
  const bool executed = told == Outcome::accepted || told == Outcome::partly;
  return final == Outcome::accepted ? told == Outcome::refused : executed;
}

bool opens_or_closes(RequestKind kind) {
  return kind == RequestKind::open || kind == RequestKind::close || kind == RequestKind::entry;
}

void take_fill(LedgerEvent& event, const OrderReport& report, const SessionScope& scope) {
  event.order = report.number;
  event.note = report.text;
  event.server_time = report.time;
  event.execution = report.execution;
  event.closes = report.request_kind == request_kind::close;
  event.filled = report.filled;
  event.price = report.price;
  if (report.filled <= 0.0) return;
  event.symbol = report.symbol;
  // A report on a close tells the side of the position.
  event.side = buys(report.operation) != event.closes ? operation::buy : operation::sell;
  event.realised = report.realised;
  if (const auto account = scope.client.FindAccount(scope.account)) event.currency = account->currency;
}

}  // namespace

SentOrder* SentRequests::named(RequestId id, RequestKind kind) {
  SentOrder* request = named(id);
  return request != nullptr && request->kind == kind ? request : nullptr;
}

SentOrder* SentRequests::closing(const OrderReport& report) {
  if (report.id != 0) return named(report.id, RequestKind::close);
  return book_.fitting(sender_, {.kind = RequestKind::close, .number = report.number, .lots = report.amount});
}

SentOrder* SentRequests::opening(const OrderReport& report) {
  if (report.id != 0) return named(report.id, RequestKind::open);
  return book_.fitting(sender_, {.kind = RequestKind::open,
                                 .number = report.number,
                                 .symbol = scope_.symbols.find(report.symbol),
                                 .side = report.operation,
                                 .lots = report.amount});
}

// What is told of an order that went through dealing names a number that was told before.
SentOrder* SentRequests::dealt(const OrderReport& report) {
  if (report.id != 0) return named(report.id, RequestKind::open);
  const SentOrder* known = book_.last(sender_, RequestKind::open, report.number);
  return known == nullptr ? nullptr : named(known->id);
}

SentOrder* SentRequests::change(RequestKind kind, std::int64_t order, RequestId id) {
  return id != 0 ? named(id, kind) : book_.fitting(sender_, {.kind = kind, .number = order});
}

SentOrder* SentRequests::entry(std::int64_t order, ResultCode code, RequestId id) {
  return id != 0 ? named(id, RequestKind::entry) : unnamed_entry(order, code);
}

bool SentRequests::settle_stops(std::int64_t order, ResultCode code, RequestId id) {
  SentOrder* meant = id != 0 ? named(id, RequestKind::stops) : unnamed_stops(order, code);
  const Word word = take(meant, code, SentOrder::outcome_of(code), 0, id);
  const bool settled = told_of(meant, word, nullptr, order);
  if (settled) stops_told_.insert(order);
  return settled;
}

// The answer names no more than a number. That of a success is known to the server, as an order or as the
// position it has become; what was asked for is read from there. Of several open requests nobody knows which
// one was refused.
SentOrder* SentRequests::unnamed_entry(std::int64_t order, ResultCode code) {
  if (book_.last(sender_, RequestKind::entry, order) != nullptr || code != result::succeeded) {
    const SentOrder* known = book_.last(sender_, RequestKind::entry, order);
    return known != nullptr ? named(known->id)
                            : book_.only(sender_, RequestKind::entry, [](const SentOrder&) { return true; });
  }
  RequestBook::Figures figures{.kind = RequestKind::entry, .number = order};
  if (const PendingOrder* placed = records_.pending_order(order)) {
    figures.symbol = scope_.symbols.find(placed->symbol);
    SentOrder* at_price = book_.only(sender_, RequestKind::entry, [&](const SentOrder& o) {
      return o.symbol == figures.symbol && o.side == placed->operation && o.price == placed->price &&
             std::fabs(o.amount - placed->amount) <= RequestBook::same_lots;
    });
    if (at_price != nullptr) return at_price;
    figures.side = placed->operation;
    figures.lots = placed->amount;
  } else if (const OpenPosition* executed = records_.open_position(order)) {
    figures.symbol = scope_.symbols.find(executed->symbol);
    figures.side = executed->side;
    figures.lots = executed->amount;
  } else {
    return nullptr;
  }
  return book_.fitting(sender_, figures);
}

// The answer to stops names their order, which is a new one when the position had none before, and may be
// gone when it is refused.
SentOrder* SentRequests::unnamed_stops(std::int64_t order, ResultCode code) {
  const auto only = [&](auto&& meant) { return book_.only(sender_, RequestKind::stops, meant); };
  if (SentOrder* had = only([&](const SentOrder& o) { return o.stops_order == order; })) return had;
  if (const PendingOrder* placed = records_.pending_order(order))
    return only([&](const SentOrder& o) { return o.number == placed->reference; });
  // A refusal that comes again is that of the stops it was told of.
  if (code == result::succeeded || stops_told_.contains(order)) return nullptr;
  return only([&](const SentOrder& o) {
    return o.stops_order == 0 || records_.pending_order(o.stops_order) == nullptr;
  });
}

SentRequests::Word SentRequests::take(SentOrder* meant, ResultCode code, Outcome outcome, std::int64_t order,
                                      RequestId id) {
  if (meant == nullptr) return Word::nothing;
  const bool final = meant->settled() && meant->outcome != Outcome::unknown;
  // A word that comes again, or too late, changes nothing; what was given up it settles after all. By its
  // figures alone it may mean another one.
  if (final && (id == 0 || !contradicts(meant->outcome, outcome))) return Word::nothing;
  if (final) book_.note_conflict(*meant);
  book_.settle(*meant, code, outcome, order, scope_.general.clock.elapsed());
  meant->working = meant->kind == RequestKind::entry && outcome == Outcome::accepted;
  if (of_entry_window(meant->kind)) scope_.desk.entry_order->request_settled(*meant, scope_.account);
  return final ? Word::contradiction : Word::news;
}

bool SentRequests::settle(SentOrder* meant, ResultCode code, Outcome outcome, std::int64_t order,
                          RequestId id) {
  return told_of(meant, take(meant, code, outcome, order, id), nullptr);
}

// Into the ledger, and to whoever has to be told at once.
bool SentRequests::told_of(SentOrder* meant, Word word, const OrderReport* report, std::int64_t order) {
  if (word == Word::nothing) return false;
  if (word == Word::news) {
    note(*meant, {}, LedgerEvidence::answer, report, order);
    return true;
  }
  note(*meant, ledger_conflict, LedgerEvidence::answer, report, order);
  if (on_conflict) on_conflict(*meant);
  return false;
}

bool SentRequests::settle(SentOrder* meant, const OrderReport& report) {
  const Outcome outcome = report.result != result::succeeded     ? Outcome::refused
                          : report.state == order_state::pending ? Outcome::pending
                                                                 : Outcome::accepted;
  return settle(meant, report, report.result, outcome);
}

bool SentRequests::settle(SentOrder* meant, const OrderReport& report, ResultCode code, Outcome outcome) {
  // A fill that is told again is none.
  if (!book_.is_new_execution(sender_, report.execution)) return false;
  if (outcome == Outcome::accepted && report.left > 0.0) outcome = Outcome::partly;
  const Word word = take(meant, code, outcome, report.number, report.id);
  if (word == Word::nothing) {
    // What was filled was, whatever is known of the request, and be it nobody's here.
    SentOrder told;
    told.id = report.id;
    told.outcome = outcome;
    if (report.filled > 0.0) note(told, {}, LedgerEvidence::answer, &report);
    return false;
  }
  if (report.filled_all > 0.0) meant->filled = report.filled_all;
  return told_of(meant, word, &report);
}

void SentRequests::give_up(SentOrder& request, std::string_view reason) {
  if (take(&request, ResultCode::none, Outcome::unknown, 0, 0) == Word::news)
    note(request, reason, LedgerEvidence::clock, nullptr);
}

void SentRequests::note(const SentOrder& request, std::string_view reason, LedgerEvidence evidence,
                        const OrderReport* report, std::int64_t order) {
  LedgerEvent event{.request = request.id,
                    .sender = sender_,
                    .state = state_of(request),
                    .evidence = evidence,
                    .reason = std::string{reason},
                    .order = order != 0 ? order : request.number};
  if (request.outcome == Outcome::refused) {
    event.code = format_as(request.result_code);
    if (reason.empty()) event.reason = "result code";
  }
  if (report != nullptr) take_fill(event, *report, scope_);
  ledger_.note(std::move(event));
}

bool SentRequests::told(SentOrder& request, RequestState state, double lots) {
  struct Meaning {
    Outcome outcome;
    LedgerState stored;
  };
  const auto meaning = [&]() -> Meaning {
    switch (state) {
      case RequestState::executed:
        return {Outcome::accepted, opens_or_closes(request.kind) ? LedgerState::filled : LedgerState::done};
      case RequestState::working:
        return {Outcome::accepted, LedgerState::working};
      case RequestState::partly_executed:
        return {Outcome::partly, LedgerState::part};
      case RequestState::waiting:
        return {Outcome::pending, LedgerState::pending};
      case RequestState::refused:
        return {Outcome::refused, LedgerState::refused};
      case RequestState::cancelled:
        return {Outcome::refused, lots > 0.0 ? LedgerState::part_filled : LedgerState::cancelled};
      case RequestState::never_taken:
        return {Outcome::refused, LedgerState::never};
      case RequestState::another_book:
        return {Outcome::unknown, LedgerState::gone};
      case RequestState::not_told:
        break;
    }
    return {Outcome::none, LedgerState::unknown};
  }();
  if (request.working) return told_of_gone(request, state, lots, meaning.stored);
  if (request.outcome != Outcome::unknown || meaning.outcome == Outcome::none) return false;
  request.filled = std::max(request.filled, lots);
  if (meaning.outcome != Outcome::unknown) take(&request, ResultCode::none, meaning.outcome, 0, 0);
  note_asked(request, meaning.stored);
  request.working = state == RequestState::working;
  return true;
}

void SentRequests::note_asked(const SentOrder& request, LedgerState state) {
  ledger_.note({.request = request.id,
                .sender = sender_,
                .state = state,
                .evidence = LedgerEvidence::asked,
                .order = request.number});
}

// What the account does not list and the server calls no end of nobody knows the outcome of.
bool SentRequests::told_of_gone(SentOrder& request, RequestState state, double lots, LedgerState stored) {
  const bool over =
      state == RequestState::executed || state == RequestState::cancelled || state == RequestState::refused;
  // One whose number nobody told, or of which a part is alive, is asked about with every login.
  if (state == RequestState::working || state == RequestState::waiting ||
      state == RequestState::partly_executed)
    return false;
  if (!over) {
    note_gone(request);
    return false;
  }
  request.working = false;
  request.filled = std::max(request.filled, lots);
  note_asked(request, stored);
  return true;
}

std::vector<SentOrder*> SentRequests::gone() const {
  std::vector<SentOrder*> out = book_.working(sender_);
  std::erase_if(out,
                [this](const SentOrder* each) { return records_.pending_order(each->number) != nullptr; });
  return out;
}

void SentRequests::note_gone(SentOrder& request) {
  request.working = false;
  const OpenPosition* position = records_.open_position(request.number);
  if (position == nullptr) {
    book_.settle(request, ResultCode::none, Outcome::unknown, 0, scope_.general.clock.elapsed());
    return note(request, "gone", LedgerEvidence::clock, nullptr);
  }
  note_position(request);
}

void SentRequests::settle_by_position(SentOrder& request, std::int64_t ticket) {
  take(&request, ResultCode::none, Outcome::accepted, ticket, 0);
  note_position(request);
}

void SentRequests::note_position(const SentOrder& request) {
  ledger_.note({.request = request.id,
                .sender = sender_,
                .state = LedgerState::filled,
                .evidence = LedgerEvidence::positions,
                .order = request.number});
}

void SentRequests::fill_told(const Execution& fill) {
  LedgerEvent event{.request = fill.id,
                    .sender = sender_,
                    .evidence = LedgerEvidence::asked,
                    .order = fill.number,
                    .server_time = fill.time,
                    .execution = fill.execution,
                    .closes = fill.closes,
                    .fill_alone = true,
                    .filled = fill.lots,
                    .price = fill.price,
                    .symbol = fill.symbol,
                    .side = buys(fill.operation) != fill.closes ? operation::buy : operation::sell,
                    .realised = fill.realised};
  if (const auto account = scope_.client.FindAccount(scope_.account)) event.currency = account->currency;
  ledger_.note(std::move(event));
}

void SentRequests::entry_executed(const OrderReport& report) {
  LedgerEvent event{.request = report.id,
                    .sender = sender_,
                    .state = report.left > 0.0 ? LedgerState::part : LedgerState::filled};
  take_fill(event, report, scope_);
  ledger_.note(std::move(event));
  const SentOrder* known =
      report.id != 0 ? named(report.id) : book_.last(sender_, RequestKind::entry, report.number);
  if (known != nullptr) named(known->id)->working = report.left > 0.0;
}

void SentRequests::entry_cancelled(std::int64_t order, std::string_view reason) {
  if (const SentOrder* request = book_.last(sender_, RequestKind::entry, order))
    named(request->id)->working = false;
  ledger_.note(
      {.sender = sender_, .state = LedgerState::cancelled, .reason = std::string{reason}, .order = order});
}

void SentRequests::end_requote(std::int64_t order) {
  if (const SentOrder* answer = book_.last(sender_, RequestKind::requote, order))
    settle(named(answer->id), ResultCode::none, Outcome::accepted);
}

void SentRequests::dealer_has(std::int64_t number) {
  for (const RequestKind kind : {RequestKind::open, RequestKind::close}) {
    const SentOrder* last = book_.last(sender_, kind, number);
    if (last == nullptr) continue;
    SentOrder& order = *named(last->id);
    if (order.outcome == Outcome::unknown) settle(&order, ResultCode::none, Outcome::pending);
    if (!order.settled()) book_.heard_of(order, scope_.general.clock.elapsed());
  }
}

}  // namespace tutti
