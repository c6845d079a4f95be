#include "sessions/RequestGate.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>

#include "core/for_now.h"
#include "core/numbers.h"
#include "sessions/earlier_requests.h"
#include "sessions/gate_texts.h"

namespace tutti {
namespace {

// What was asked for in a handler and is not stored by then is dropped: nobody expects it any more.
constexpr std::chrono::milliseconds too_old{5'000};

}  // namespace

RequestGate::RequestGate(RequestBook& book, MGeneral& general, const Books& books, Ledger& ledger,
                         StopSign& stop)
    : book_(book),
      general_(general),
      books_(books),
      ledger_(ledger),
      ids_(general.clock),
      admission_(book, general, books, ledger, stop,
                 [this](Sender sender) -> const AccountClient& { return ways_.client(sender); }) {
  earlier_requests::restore(ledger_, book_, ids_);
}

Sender RequestGate::join(const LedgerAccount& account, OrderOperations& operations,
                         const AccountClient& client) {
  const Sender sender = ways_.add(account.account, operations, client);
  ledger_.know(sender, account);
  earlier_requests::hand_over(ledger_, book_, account, sender);
  return sender;
}

void RequestGate::as_one_ticket(const std::function<void()>& ask, const LedgerTicket& about) {
  if (collecting_) return ask();
  {
    const ForNow collecting{collecting_, true};
    ask();
  }
  // What is told of these may ask for the next.
  AskedRequests asked = std::exchange(collected_, std::exchange(spare_, {}));
  submit(about, asked);
  asked.clear();
  spare_ = std::move(asked);
}

void RequestGate::as_retry_of(RequestId request, const std::function<void()>& ask) {
  const ForNow retrying{retry_of_, request};
  ask();
}

SentOrder& RequestGate::make(Sender sender, RequestKind kind) {
  SentOrder& request = book_.add(ids_.next(), sender, kind);
  request.account = ways_.account(sender);
  request.era = ways_.client(sender).Era();
  request.retry_of = retry_of_;
  request.last_word = general_.clock.elapsed();
  return request;
}

const SentOrder& RequestGate::ask(SentOrder& request, Then&& then) {
  // Events may come while a box of the operator's action stands.
  if (collecting_ && !general_.in_handler()) {
    collected_.add(request, std::move(then));
    return request;
  }
  AskedRequests alone;
  alone.add(request, std::move(then));
  submit({}, alone);
  return request;
}

void RequestGate::submit(LedgerTicket about, AskedRequests& asked) {
  if (asked.empty()) return;
  admission_.admit(about, asked);
  if (!asked.empty()) store_and_send(std::move(about), asked);
}

void RequestGate::store_and_send(LedgerTicket about, AskedRequests& asked) {
  const std::size_t all = asked.size();
  const std::size_t step = WaitingTicket::step(all);
  const Ledger::Requests requests{asked.requests};
  std::vector<Ledger::Mark> marks;
  for (std::size_t first = 0; first < all; first += step) {
    marks.push_back(ledger_.store(about, requests, requests.subspan(first, std::min(step, all - first)),
                                  marks.empty() ? Ledger::Mark{0} : marks.front(), books_));
  }
  WaitingTicket ticket{std::move(marks), general_.clock.elapsed(), std::move(about), std::move(asked)};
  const auto stored =
      general_.in_handler() ? ledger_.state(ticket.mark()) : ledger_.wait(ticket.mark(), store_within);
  const bool late = stored == Ledger::Stored::waiting;
  if (stored == Ledger::Stored::yes) {
    send_part(ticket);
  } else if (!late || !general_.in_handler()) {
    not_stored(ticket, late,
               late ? fmt::format("the ledger took longer than {} ms to store it", store_within.count())
                    : ledger_.fault());
  }
  if (!ticket.done()) {
    // The operator may act again before the other parts have left: what they close is under way.
    if (!general_.in_handler())
      for (std::size_t place = ticket.first; place < all; ++place)
        book_.note_goes(*ticket.asked.requests[place], general_.clock.elapsed());
    waiting_.push_back(std::move(ticket));
  } else {
    asked = std::move(ticket.asked);  // whose room is used again
  }
}

void RequestGate::not_stored(WaitingTicket& ticket, bool late, const std::string& why) {
  const auto& requests = ticket.asked.requests;
  const bool ends_only = std::all_of(requests.begin(), requests.end(), [](const SentOrder* each) {
    return each->kind == RequestKind::close || each->kind == RequestKind::cancel;
  });
  if (!ends_only || general_.in_handler())
    return drop(ticket, late ? NotSent::stored_late : NotSent::not_stored, gate_texts::not_stored(why));
  if (ticket.about.override_reason.empty()) ticket.about.override_reason = admission_.override_reason();
  if (ticket.about.override_reason.empty())
    return admission_.hold_not_stored(std::move(ticket.about), std::exchange(ticket.asked, {}));
  send_unstored(std::exchange(ticket, {}), why);
}

void RequestGate::send_unstored(WaitingTicket ticket, const std::string& why) {
  general_.log(fmt::format("{} closes and cancels are sent whether they are stored or not ({}): {}",
                           ticket.asked.size(), ticket.about.override_reason, why),
               no_account);
  ticket.unrecorded = true;
  send_up_to(ticket, ticket.asked.size());
}

// What has no turn yet waits behind what has waited longer.
void RequestGate::send_part(WaitingTicket& ticket) {
  const std::size_t end = ticket.end();
  if (queue_.empty() || !TicketJudge::judged(*ticket.asked.requests[ticket.first])) send_up_to(ticket, end);
  if (ticket.first < end) queue(ticket, end, general_.clock.elapsed(), false);
}

void RequestGate::send_up_to(WaitingTicket& ticket, std::size_t end) {
  for (; ticket.first < end; ++ticket.first) {
    SentOrder& request = *ticket.asked.requests[ticket.first];
    // One that waited was dropped with its connection.
    if (request.settled()) continue;
    if (const auto refusal = admission_.leaving(request, ticket.about))
      return drop(ticket, refusal->why, ": " + refusal->text);
    if (waits_for_turn(request)) return;
    if (!request.has_left()) book_.note_goes(request, general_.clock.elapsed());
    if (!send(request, ticket.asked.then[ticket.first], ticket.unrecorded))
      return drop(ticket, NotSent::not_noted, gate_texts::not_stored(ledger_.fault()));
  }
}

bool RequestGate::waits_for_turn(const SentOrder& request) const {
  const auto& most = admission_.limits()[Limit::orders_per_second];
  return most && TicketJudge::judged(request) && rate_.next(most, general_.clock.elapsed()).has_value();
}

void RequestGate::queue(WaitingTicket& ticket, std::size_t end, std::chrono::milliseconds since,
                        bool in_front) {
  WaitingTicket rest{.marks = {}, .since = since, .about = ticket.about, .asked = {}};
  for (; ticket.first < end; ++ticket.first) {
    SentOrder& request = *ticket.asked.requests[ticket.first];
    const bool told = request.outcome == SentOrder::Outcome::queued;
    book_.note_kept(request, SentOrder::Outcome::queued, NotSent::turn);
    if (!told) ticket.asked.tell(ticket.first);
    rest.asked.add(request, std::move(ticket.asked.then[ticket.first]));
  }
  queue_.insert(in_front ? queue_.begin() : queue_.end(), std::move(rest));
}

void RequestGate::send_queued() {
  const auto& longest = admission_.limits()[Limit::queue_age];
  while (!queue_.empty()) {
    const std::chrono::duration<double> waited = general_.clock.elapsed() - queue_.front().since;
    const bool old = longest && waited.count() >= *longest;
    const SentOrder& next = *queue_.front().asked.requests.front();
    if (!old && !next.settled() && waits_for_turn(next) && !admission_.leaving(next, queue_.front().about))
      return;
    WaitingTicket first = std::move(queue_.front());
    queue_.pop_front();
    const std::size_t all = first.asked.size();
    if (old) {
      drop(
          first, NotSent::turn,
          fmt::format(": they waited for their turn for {} s, longer than the limit", number_text(*longest)));
    } else {
      send_up_to(first, all);
    }
    if (!first.done()) return queue(first, all, first.since, true);
  }
}

std::optional<std::chrono::milliseconds> RequestGate::next_turn() const {
  constexpr std::chrono::milliseconds soon{2};  // of what is being stored
  const std::chrono::milliseconds now = general_.clock.elapsed();
  if (!waiting_.empty())
    return ledger_.state(waiting_.front().mark()) == Ledger::Stored::waiting ? now + soon : now;
  if (queue_.empty()) return std::nullopt;
  return rate_.next(admission_.limits()[Limit::orders_per_second], now).value_or(now);
}

void RequestGate::send_held(int number, std::string_view reason) {
  auto ticket = admission_.let_go(number, reason);
  if (!ticket) return;
  if (!ticket->not_stored()) return store_and_send(std::move(ticket->about), ticket->asked);
  send_unstored({.marks = {},
                 .since = general_.clock.elapsed(),
                 .about = std::move(ticket->about),
                 .asked = std::move(ticket->asked)},
                ticket->text());
}

bool RequestGate::send(SentOrder& request, const Then& then, bool unrecorded) {
  const bool open = ways_.open(request.sender);
  if (open && !ledger_.leaves(request.id) && !unrecorded) return false;
  request.last_word = general_.clock.elapsed();
  rate_.left(request.last_word);
  book_.note_code(request, ways_.call(request));
  if (open) {
    ledger_.sent(request);
    // Else the next start would take it for one that somebody else has sent.
    if (unrecorded) ledger_.accept_missing(request.sender, 1);
  } else {
    note(request, LedgerState::refused_here, "request code", LedgerEvidence::answer);
  }
  if (then) then(request);
  return true;
}

void RequestGate::note(const SentOrder& request, LedgerState state, std::string_view reason,
                       LedgerEvidence evidence) {
  ledger_.note({.request = request.id,
                .sender = request.sender,
                .state = state,
                .evidence = evidence,
                .reason = std::string{reason},
                .code = format_as(request.request_code)});
}

void RequestGate::drop(SentOrder& request, const Then& then, NotSent why) {
  book_.note_dropped(request, why);
  note(request, LedgerState::dropped, gate_texts::reason(why), LedgerEvidence::clock);
  if (then) then(request);
}

void RequestGate::drop(WaitingTicket& ticket, NotSent why, const std::string& because) {
  const std::size_t all = ticket.asked.size();
  std::size_t dropped = 0;
  for (; ticket.first < all; ++ticket.first) {
    SentOrder& request = *ticket.asked.requests[ticket.first];
    if (request.settled()) continue;
    drop(request, ticket.asked.then[ticket.first], why);
    ++dropped;
  }
  if (dropped == 0) return;
  const std::string text = fmt::format("{} of {} requests were not sent{}", dropped, all, because);
  general_.log(text, no_account);
  general_.queue_message(text);
}

void RequestGate::send_stored() {
  if (admission_.look_at_stop()) {
    for (WaitingTicket& each : std::exchange(queue_, {}))
      drop(each, NotSent::stopped, ": trading is stopped. End the stop first");
  }
  for (bool large = false; !large && !waiting_.empty();) {
    const auto stored = ledger_.state(waiting_.front().mark());
    const bool old = general_.clock.elapsed() - waiting_.front().since >= too_old;
    if (stored == Ledger::Stored::waiting && !old) break;
    // What is told of it may let others wait.
    WaitingTicket next = std::move(waiting_.front());
    waiting_.pop_front();
    if (stored == Ledger::Stored::yes) {
      large = next.marks.size() > 1;
      send_part(next);
      if (!next.done()) waiting_.push_front(std::move(next));
    } else {
      drop(next, old ? NotSent::stored_late : NotSent::not_stored,
           gate_texts::not_stored(old ? "the ledger did not store them in time" : ledger_.fault()));
    }
  }
  send_queued();
}

void RequestGate::wait_for_stored() {
  while (!waiting_.empty() && ledger_.wait(waiting_.front().mark(), store_within) != Ledger::Stored::waiting)
    send_stored();
  send_stored();
}

void RequestGate::drop_waiting(Sender sender) {
  admission_.drop_held(sender);
  for (const std::deque<WaitingTicket>* list : {&waiting_, &queue_}) {
    for (const WaitingTicket& each : *list) {
      for (std::size_t place = each.first; place < each.asked.size(); ++place) {
        SentOrder& request = *each.asked.requests[place];
        if (request.sender == sender && !request.settled())
          drop(request, each.asked.then[place], NotSent::account_gone);
      }
    }
  }
}

const SentOrder& RequestGate::send_stored(const SentOrder& as, Then&& then) {
  SentOrder& request = book_.revive(as);
  request.last_word = general_.clock.elapsed();
  AskedRequests alone;
  alone.add(request, std::move(then));
  WaitingTicket ticket{.marks = {}, .since = request.last_word, .about = {}, .asked = std::move(alone)};
  ticket.about.override_reason = admission_.override_reason();
  // Whoever asks for it again does so at the price of now.
  if (request.symbol != no_symbol) {
    const SymbolCollection::Entry& quoted = books_.symbols.entry(request.symbol);
    ticket.about.price_at_click = buys(request.side) ? quoted.ask : quoted.bid;
  }
  send_part(ticket);
  return request;
}

}  // namespace tutti
