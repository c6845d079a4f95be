#include "sessions/RequestGate.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>

#include "core/numbers.h"

namespace tutti {
namespace {

// What was asked for in a handler and is not stored by then is dropped: nobody expects it any more.
constexpr std::chrono::milliseconds too_old{5'000};

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

void RequestGate::Asked::add(SentOrder& request, Then&& after) {
  requests.push_back(&request);
  then.push_back(std::move(after));
}

void RequestGate::Asked::clear() {
  requests.clear();
  then.clear();
}

RequestGate::RequestGate(RequestBook& book, MGeneral& general, const Books& books, Ledger& ledger)
    : book_(book), general_(general), books_(books), ledger_(ledger), ids_(general.clock) {
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
  Asked asked = std::exchange(collected_, std::exchange(spare_, {}));
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
  Asked alone;
  alone.add(noted, std::move(then));
  submit({}, alone);
  return noted;
}

void RequestGate::submit(const LedgerTicket& about, Asked& asked) {
  const std::size_t all = asked.size();
  if (all == 0) return;
  const std::size_t step = all > whole_ticket ? part : all;
  const Ledger::Requests requests{asked.requests};
  std::vector<Ledger::Mark> marks;
  for (std::size_t first = 0; first < all; first += step) {
    marks.push_back(ledger_.store(about, requests, requests.subspan(first, std::min(step, all - first)),
                                  marks.empty() ? Ledger::Mark{0} : marks.front(), books_));
  }
  if (general_.in_handler() && ledger_.state(marks.back()) == Ledger::Stored::waiting) {
    waiting_.push_back({marks.back(), general_.clock.elapsed(), std::move(asked)});
    return;
  }
  for (std::size_t first = 0; first < all; first += step) {
    const auto stored = ledger_.wait(marks[first / step], store_within);
    if (stored != Ledger::Stored::yes) {
      const bool late = stored == Ledger::Stored::waiting;
      return drop(asked, first, late ? "late" : "not stored",
                  late ? fmt::format("the ledger took longer than {} ms to store it", store_within.count())
                       : ledger_.fault());
    }
    send_all(asked, first, std::min(first + step, all));
  }
}

void RequestGate::send_all(Asked& asked, std::size_t first, std::size_t end) {
  for (std::size_t place = first; place < end; ++place) {
    if (!send(*asked.requests[place], asked.then[place]))
      return drop(asked, place, "not noted", ledger_.fault());
  }
}

bool RequestGate::send(SentOrder& request, const Then& then) {
  // One that waited was dropped with its connection.
  if (request.settled()) return true;
  OrderOperations* to = senders_[request.sender - 1].operations;
  if (to != nullptr && !ledger_.leaves(request.id)) return false;
  request.last_word = general_.clock.elapsed();
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

void RequestGate::drop(SentOrder& request, const Then& then, std::string_view reason) {
  book_.note_dropped(request);
  note(request, LedgerState::dropped, reason, LedgerEvidence::clock);
  if (then) then(request);
}

void RequestGate::drop(Asked& asked, std::size_t first, std::string_view reason, const std::string& why) {
  std::size_t dropped = 0;
  for (std::size_t place = first; place < asked.size(); ++place) {
    if (asked.requests[place]->settled()) continue;
    drop(*asked.requests[place], asked.then[place], reason);
    ++dropped;
  }
  const std::string text = fmt::format(
      "{} of {} requests were not sent, since what is not stored must not leave: {}. See to the disk of the "
      "application folder, then send them again",
      dropped, asked.size(), why);
  general_.log(text, -1);
  general_.queue_message(text);
}

void RequestGate::send_stored() {
  while (!waiting_.empty()) {
    const auto stored = ledger_.state(waiting_.front().mark);
    const bool old = general_.clock.elapsed() - waiting_.front().since >= too_old;
    if (stored == Ledger::Stored::waiting && !old) return;
    Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    if (stored == Ledger::Stored::yes) {
      send_all(next.asked, 0, next.asked.size());
    } else {
      drop(next.asked, 0, old ? "late" : "not stored",
           old ? "the ledger did not store them in time" : ledger_.fault());
    }
  }
}

void RequestGate::wait_for_stored() {
  if (!waiting_.empty()) ledger_.wait(waiting_.back().mark, store_within);
  send_stored();
}

void RequestGate::drop_waiting(Sender sender) {
  for (const Waiting& each : waiting_) {
    for (std::size_t place = 0; place < each.asked.size(); ++place) {
      SentOrder& request = *each.asked.requests[place];
      if (request.sender == sender && !request.settled())
        drop(request, each.asked.then[place], "account gone");
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
