#include "sessions/RequestGate.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>

#include "core/numbers.h"
#include "sessions/gate_texts.h"

namespace tutti {
namespace {

// What was asked for in a handler and is not stored by then is dropped: nobody expects it any more.
constexpr std::chrono::milliseconds too_old{5'000};

std::string not_stored_text(const std::string& why) {
  return fmt::format(
      ", since what is not stored must not leave: {}. See to the disk of the application folder, then send "
      "them again",
      why);
}

// The entry order as the broker takes it.
EntryOrder entry_of(const SentOrder& request) {
  const bool stop = request.side == operation::buy_stop || request.side == operation::sell_stop;
  return {.side = buys(request.side) ? operation::buy : operation::sell,
          .kind = stop ? EntryKind::stop : EntryKind::limit,
          .symbol_id = request.symbol_id,
          .amount = request.amount,
          .price = request.price,
          .stop_loss = request.stops.stop_loss,
          .take_profit = request.stops.take_profit,
          .has_stop_loss = request.stops.has_stop_loss,
          .has_take_profit = request.stops.has_take_profit};
}

}  // namespace

RequestGate::RequestGate(RequestBook& book, MGeneral& general, const Books& books, Ledger& ledger,
                         StopSign& stop)
    : book_(book),
      general_(general),
      books_(books),
      ledger_(ledger),
      ids_(general.clock),
      admission_(book, general, books, ledger, stop,
                 [this](Sender sender) -> const AccountClient& { return *senders_[sender - 1].client; }) {
  for (const LedgerUnknown& each : ledger_.unknown()) {
    book_.restore({.number = each.number,
                   .amount = each.lots,
                   .price = each.price,
                   .id = each.id,
                   .era = each.era,
                   .side = each.side,
                   .request_code = request::taken,
                   .account = each.account.account,
                   .kind = each.kind,
                   .outcome = SentOrder::Outcome::unknown});
    ids_.go_on_after(each.id);
  }
}

Sender RequestGate::join(const LedgerAccount& account, OrderOperations& operations,
                         const AccountClient& client) {
  senders_.push_back({account.account, &operations, &client});
  const auto sender = static_cast<Sender>(senders_.size());
  ledger_.know(sender, account);
  for (const LedgerUnknown& each : ledger_.unknown())
    if (each.account == account) book_.hand_over(each.id, sender);
  return sender;
}

void RequestGate::as_one_ticket(const std::function<void()>& ask, const LedgerTicket& about) {
  if (collecting_) return ask();
  struct Collecting {
    explicit Collecting(bool& flag) : flag_(flag) { flag_ = true; }
    ~Collecting() { flag_ = false; }
    bool& flag_;
  };
  {
    const Collecting collecting{collecting_};
    ask();
  }
  // What is told of these may ask for the next.
  AskedRequests asked = std::exchange(collected_, std::exchange(spare_, {}));
  submit(about, asked);
  asked.clear();
  spare_ = std::move(asked);
}

void RequestGate::as_retry_of(RequestId request, const std::function<void()>& ask) {
  struct Retrying {
    explicit Retrying(RequestId& now) : now_(now) {}
    ~Retrying() { now_ = 0; }
    RequestId& now_;
  };
  const Retrying retrying{retry_of_};
  retry_of_ = request;
  ask();
}

SentOrder& RequestGate::make(Sender sender, RequestKind kind) {
  const Way& way = senders_[sender - 1];
  SentOrder& request = book_.add(ids_.next(), sender, kind);
  request.account = way.account;
  request.era = way.client->Era();
  request.retry_of = retry_of_;
  request.last_word = general_.clock.elapsed();
  return request;
}

const SentOrder& RequestGate::ask(SentOrder& noted, Then&& then) {
  // Events may come while a box of the operator's action stands.
  if (collecting_ && !general_.in_handler()) {
    collected_.add(noted, std::move(then));
    return noted;
  }
  AskedRequests alone;
  alone.add(noted, std::move(then));
  submit({}, alone);
  return noted;
}

void RequestGate::submit(LedgerTicket about, AskedRequests& asked) {
  if (asked.empty()) return;
  quote_at_click(about, *asked.requests.front());
  admission_.admit(about, asked);
  if (!asked.empty()) store_and_send(about, asked);
}

void RequestGate::quote_at_click(LedgerTicket& about, const SentOrder& request) const {
  if (about.price_at_click > 0.0 || request.kind != RequestKind::open || request.symbol == no_symbol) return;
  const SymbolCollection::Entry& quoted = books_.symbols.entry(request.symbol);
  about.price_at_click = buys(request.side) ? quoted.ask : quoted.bid;
  about.quote_age = std::max(general_.clock.now() - quoted.quote_time, std::chrono::milliseconds{0});
}

void RequestGate::store_and_send(const LedgerTicket& about, AskedRequests& asked) {
  const std::size_t all = asked.size();
  const std::size_t step = all > whole_ticket ? part : all;
  const Ledger::Requests requests{asked.requests};
  std::vector<Ledger::Mark> marks;
  for (std::size_t first = 0; first < all; first += step) {
    marks.push_back(ledger_.store(about, requests, requests.subspan(first, std::min(step, all - first)),
                                  marks.empty() ? Ledger::Mark{0} : marks.front(), books_));
  }
  const std::chrono::milliseconds now = general_.clock.elapsed();
  if (general_.in_handler() && ledger_.state(marks.back()) == Ledger::Stored::waiting) {
    waiting_.push_back({marks.back(), now, about, std::move(asked)});
    return;
  }
  for (std::size_t first = 0; first < all; first += step) {
    const auto stored = ledger_.wait(marks[first / step], store_within);
    if (stored != Ledger::Stored::yes) {
      const bool late = stored == Ledger::Stored::waiting;
      return drop(asked, first, late ? NotSent::stored_late : NotSent::not_stored,
                  not_stored_text(late ? fmt::format("the ledger took longer than {} ms to store it",
                                                     store_within.count())
                                       : ledger_.fault()));
    }
    const std::size_t end = std::min(first + step, all);
    const std::size_t sent = send_all(about, asked, first, end);
    if (sent == all) return;
    if (sent < end) queue(about, asked, sent, end, now, false);
  }
}

std::size_t RequestGate::send_all(const LedgerTicket& about, AskedRequests& asked, std::size_t first,
                                  std::size_t end) {
  for (std::size_t place = first; place < end; ++place) {
    SentOrder& request = *asked.requests[place];
    // One that waited was dropped with its connection.
    if (request.settled()) continue;
    if (const auto refusal = admission_.leaving(request, about)) {
      drop(asked, place, refusal->why, ": " + refusal->text);
      return asked.size();
    }
    if (waits_for_turn(request)) return place;
    if (!request.has_left()) book_.note_goes(request, general_.clock.elapsed());
    if (!send(request, asked.then[place])) {
      drop(asked, place, NotSent::not_noted, not_stored_text(ledger_.fault()));
      return asked.size();
    }
  }
  return end;
}

bool RequestGate::waits_for_turn(const SentOrder& request) const {
  return TicketJudge::judged(request) &&
         rate_.next(admission_.limits()[Limit::orders_per_second], general_.clock.elapsed()).has_value();
}

void RequestGate::queue(const LedgerTicket& about, AskedRequests& asked, std::size_t first, std::size_t end,
                        std::chrono::milliseconds since, bool in_front) {
  Waiting rest{.since = since, .about = about, .asked = {}};
  for (std::size_t place = first; place < end; ++place) {
    SentOrder& request = *asked.requests[place];
    const bool told = request.outcome == SentOrder::Outcome::queued;
    book_.note_kept(request, SentOrder::Outcome::queued, NotSent::turn);
    if (!told) asked.tell(place);
    rest.asked.add(request, std::move(asked.then[place]));
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
    Waiting first = std::move(queue_.front());
    queue_.pop_front();
    if (old) {
      drop(
          first.asked, 0, NotSent::turn,
          fmt::format(": they waited for their turn for {} s, longer than the limit", number_text(*longest)));
      continue;
    }
    const std::size_t all = first.asked.size();
    const std::size_t sent = send_all(first.about, first.asked, 0, all);
    if (sent < all) return queue(first.about, first.asked, sent, all, first.since, true);
  }
}

std::optional<std::chrono::milliseconds> RequestGate::next_turn() const {
  if (queue_.empty()) return std::nullopt;
  const std::chrono::milliseconds now = general_.clock.elapsed();
  return rate_.next(admission_.limits()[Limit::orders_per_second], now).value_or(now);
}

void RequestGate::send_held(int number, std::string_view reason) {
  if (auto ticket = admission_.let_go(number, reason)) store_and_send(ticket->about, ticket->asked);
}

bool RequestGate::send(SentOrder& request, const Then& then) {
  OrderOperations* to = senders_[request.sender - 1].operations;
  if (to != nullptr && !ledger_.leaves(request.id)) return false;
  request.last_word = general_.clock.elapsed();
  rate_.left(request.last_word);
  book_.note_code(request, to == nullptr ? request::invalid_account : call(*to, request));
  if (to == nullptr) {
    note(request, LedgerState::refused_here, "request code", LedgerEvidence::answer);
  } else {
    ledger_.sent(request);
  }
  if (then) then(request);
  return true;
}

RequestCode RequestGate::call(OrderOperations& to, const SentOrder& request) {
  switch (request.kind) {
    case RequestKind::open:
      return to.NewMarketOrder(request.side, request.symbol_id, request.amount, "", "", request.id);
    case RequestKind::close:
      return to.ClosePosition(std::to_string(request.number), number_text(request.amount), "", request.id);
    case RequestKind::cancel:
      return request.stops_of_position ? to.DeleteSLTPOrder(request.number, request.id)
                                       : to.DeleteEntryOrder(request.number, request.id);
    case RequestKind::entry:
      return to.NewEntryOrder(entry_of(request), request.id);
    case RequestKind::update:
      return to.UpdateEntryOrder(request.number, request.price, request.stops, request.id);
    case RequestKind::stops:
      return to.UpdateSLTP(request.number, request.stops, request.id);
    case RequestKind::requote:
      return request.accepts ? to.AcceptRequote(request.number, request.id)
                             : to.RejectRequote(request.number, request.id);
  }
  return request::invalid_account;
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

void RequestGate::drop(AskedRequests& asked, std::size_t first, NotSent why, const std::string& because) {
  std::size_t dropped = 0;
  for (std::size_t place = first; place < asked.size(); ++place) {
    if (asked.requests[place]->settled()) continue;
    drop(*asked.requests[place], asked.then[place], why);
    ++dropped;
  }
  if (dropped == 0) return;
  const std::string text = fmt::format("{} of {} requests were not sent{}", dropped, asked.size(), because);
  general_.log(text, no_account);
  general_.queue_message(text);
}

void RequestGate::send_stored() {
  if (admission_.look_at_stop()) {
    for (Waiting& each : std::exchange(queue_, {}))
      drop(each.asked, 0, NotSent::stopped, ": trading is stopped. End the stop first");
  }
  while (!waiting_.empty()) {
    const auto stored = ledger_.state(waiting_.front().mark);
    const bool old = general_.clock.elapsed() - waiting_.front().since >= too_old;
    if (stored == Ledger::Stored::waiting && !old) break;
    Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    if (stored == Ledger::Stored::yes) {
      const std::size_t all = next.asked.size();
      const std::size_t sent = send_all(next.about, next.asked, 0, all);
      if (sent < all) queue(next.about, next.asked, sent, all, general_.clock.elapsed(), false);
    } else {
      drop(next.asked, 0, old ? NotSent::stored_late : NotSent::not_stored,
           not_stored_text(old ? "the ledger did not store them in time" : ledger_.fault()));
    }
  }
  send_queued();
}

void RequestGate::wait_for_stored() {
  if (!waiting_.empty()) ledger_.wait(waiting_.back().mark, store_within);
  send_stored();
}

void RequestGate::drop_waiting(Sender sender) {
  admission_.drop_held(sender);
  for (const std::deque<Waiting>* list : {&waiting_, &queue_}) {
    for (const Waiting& each : *list) {
      for (std::size_t place = 0; place < each.asked.size(); ++place) {
        SentOrder& request = *each.asked.requests[place];
        if (request.sender == sender && !request.settled())
          drop(request, each.asked.then[place], NotSent::account_gone);
      }
    }
  }
}

const SentOrder& RequestGate::market_order(Sender sender, Operation side, SymbolHandle symbol,
                                           std::int32_t symbol_id, double amount, Then&& then) {
  SentOrder& request = make(sender, RequestKind::open);
  request.side = side;
  request.symbol = symbol;
  request.symbol_id = symbol_id;
  request.amount = amount;
  return ask(request, std::move(then));
}

const SentOrder& RequestGate::close(Sender sender, std::int64_t ticket, double amount, Then&& then) {
  SentOrder& request = make(sender, RequestKind::close);
  request.number = ticket;
  request.amount = amount;
  return ask(request, std::move(then));
}

const SentOrder& RequestGate::cancel(Sender sender, std::int64_t order, bool stops_of_position, Then&& then) {
  SentOrder& request = make(sender, RequestKind::cancel);
  request.number = order;
  request.stops_of_position = stops_of_position;
  return ask(request, std::move(then));
}

const SentOrder& RequestGate::place_entry(Sender sender, const EntryOrder& order, SymbolHandle symbol,
                                          int round, Then&& then) {
  const bool stop = order.kind == EntryKind::stop;
  SentOrder& request = make(sender, RequestKind::entry);
  request.side = buys(order.side) ? (stop ? operation::buy_stop : operation::buy)
                                  : (stop ? operation::sell_stop : operation::sell);
  request.symbol = symbol;
  request.symbol_id = order.symbol_id;
  request.amount = order.amount;
  request.price = order.price;
  request.stops = {order.stop_loss, order.take_profit, order.has_stop_loss, order.has_take_profit};
  request.round = round;
  return ask(request, std::move(then));
}

const SentOrder& RequestGate::update_entry(Sender sender, std::int64_t order, double price,
                                           const StopPrices& stops, int round, Then&& then) {
  SentOrder& request = make(sender, RequestKind::update);
  request.number = order;
  request.price = price;
  request.stops = stops;
  request.round = round;
  return ask(request, std::move(then));
}

const SentOrder& RequestGate::set_stops(Sender sender, std::int64_t ticket, const StopPrices& stops,
                                        std::int64_t stops_order, int round, Then&& then) {
  SentOrder& request = make(sender, RequestKind::stops);
  request.number = ticket;
  request.stops_order = stops_order;
  request.stops = stops;
  request.round = round;
  return ask(request, std::move(then));
}

const SentOrder& RequestGate::answer_requote(Sender sender, std::int64_t order, bool accept, Then&& then) {
  SentOrder& request = make(sender, RequestKind::requote);
  request.number = order;
  request.accepts = accept;
  return ask(request, std::move(then));
}

}  // namespace tutti
