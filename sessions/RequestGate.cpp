#include "sessions/RequestGate.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "core/numbers.h"

namespace tutti {
namespace {

// What was asked for in a handler and is not stored by then is dropped: nobody expects it any more.
constexpr std::chrono::milliseconds too_old{5'000};

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace

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
  submit(about, std::exchange(collected_, {}));
}

const SentOrder& RequestGate::ask(Sender sender, SentOrder&& request, const Terms& terms, Then&& then) {
  request.id = ids_.next();
  request.sender = sender;
  request.account = senders_[sender - 1].account;
  request.era = senders_[sender - 1].client->Era();
  request.outcome = SentOrder::Outcome::waiting;
  request.last_word = general_.clock.elapsed();
  SentOrder& noted = book_.add(request);
  Asked asked{&noted, terms, std::move(then)};
  // Events may come while a box of the operator's action stands.
  if (collecting_ && !general_.in_handler()) {
    collected_.push_back(std::move(asked));
    return noted;
  }
  AskedList alone;
  alone.push_back(std::move(asked));
  submit({}, std::move(alone));
  return noted;
}

LedgerRequest RequestGate::stored_form(const Asked& asked) const {
  const SentOrder& noted = *asked.noted;
  LedgerRequest out{.id = noted.id,
                    .sender = noted.sender,
                    .kind = noted.kind,
                    .side = noted.side,
                    .lots = noted.amount,
                    .price = noted.price,
                    .reference = noted.number,
                    .era = noted.era};
  if (noted.symbol != no_symbol) out.symbol = books_.symbols.entry(noted.symbol).name;
  const auto about = [&](const auto* record, Operation side) {
    if (record == nullptr) return;
    out.symbol = record->symbol;
    out.side = side;
  };
  const auto about_position = [&] {
    const auto* position = books_.positions.find(noted.number, noted.account);
    about(position, position == nullptr ? operation::none : opposite(position->side));
  };
  const auto about_order = [&] {
    const auto* order = books_.orders.find(noted.number, noted.account);
    about(order, order == nullptr ? operation::none : order->operation);
  };
  std::visit(
      Overloaded{
          [](const Market&) {}, [&](const Close&) { about_position(); },
          [&](const Cancel&) { about_order(); },
          [&](const EntryOrder& order) {
            out.stops = {order.stop_loss, order.take_profit, order.has_stop_loss, order.has_take_profit};
          },
          [&](const Update& update) {
            out.stops = update.stops;
            about_order();
          },
          [&](const Stops& stops) {
            out.stops = stops.stops;
            about_position();
          },
          [&](const Answer& answer) {
            out.accepts = answer.accept;
            about_order();
          }},
      asked.terms);
  return out;
}

void RequestGate::submit(LedgerTicket about, AskedList&& asked) {
  const std::size_t all = asked.size();
  if (all == 0) return;
  std::vector<LedgerRequest> requests;
  requests.reserve(all);
  for (const Asked& each : asked) {
    requests.push_back(stored_form(each));
    about.total += each.noted->amount;
  }
  about.kind = requests.front().kind;
  const auto all_have = [&](auto member) {
    return std::all_of(requests.begin(), requests.end(),
                       [&](const LedgerRequest& each) { return each.*member == requests.front().*member; });
  };
  if (all_have(&LedgerRequest::symbol)) about.symbol = requests.front().symbol;
  if (all_have(&LedgerRequest::side)) about.side = requests.front().side;
  const std::size_t step = all > whole_ticket ? part : all;
  std::vector<Ledger::Mark> marks;
  for (std::size_t first = 0; first < all; first += step) {
    const auto begin = std::make_move_iterator(requests.begin());
    const auto place = [&](std::size_t at) { return begin + static_cast<std::ptrdiff_t>(at); };
    marks.push_back(ledger_.store(about, all, {place(first), place(std::min(first + step, all))},
                                  marks.empty() ? Ledger::Mark{0} : marks.front()));
  }
  if (general_.in_handler() && ledger_.state(marks.back()) == Ledger::Stored::waiting) {
    waiting_.push_back({marks.back(), general_.clock.elapsed(), std::move(asked)});
    return;
  }
  for (std::size_t first = 0; first < all; first += step) {
    const std::size_t end = std::min(first + step, all);
    const auto stored = ledger_.wait(marks[first / step], store_within);
    if (stored != Ledger::Stored::yes) {
      const bool late = stored == Ledger::Stored::waiting;
      return drop(asked, first, all, late ? "late" : "not stored",
                  late ? fmt::format("the ledger took longer than {} ms to store it", store_within.count())
                       : ledger_.fault());
    }
    send_all(asked, first, end);
  }
}

void RequestGate::send_all(AskedList& asked, std::size_t first, std::size_t end) {
  for (std::size_t place = first; place < end; ++place) {
    if (!send(asked[place])) return drop(asked, place, asked.size(), "not noted", ledger_.fault());
  }
}

bool RequestGate::send(const Asked& asked) {
  SentOrder& noted = *asked.noted;
  // One that waited was dropped with its connection.
  if (noted.settled()) return true;
  OrderOperations* to = senders_[noted.sender - 1].operations;
  if (to != nullptr && !ledger_.leaves(noted.id)) return false;
  noted.last_word = general_.clock.elapsed();
  const RequestCode code = to == nullptr ? request::invalid_account : call(*to, asked);
  book_.note_code(noted, code);
  note(noted,
       to == nullptr            ? LedgerState::refused_here
       : code == request::taken ? LedgerState::taken
                                : LedgerState::refused,
       code == request::taken ? "" : "request code", LedgerEvidence::answer);
  if (asked.then) asked.then(noted);
  return true;
}

RequestCode RequestGate::call(OrderOperations& to, const Asked& asked) {
  const SentOrder& noted = *asked.noted;
  return std::visit(
      Overloaded{[&](const Market& market) {
                   return to.NewMarketOrder(noted.side, market.symbol_id, noted.amount, "", "", noted.id);
                 },
                 [&](const Close&) {
                   return to.ClosePosition(std::to_string(noted.number), number_text(noted.amount), "",
                                           noted.id);
                 },
                 [&](const Cancel& cancel) {
                   return cancel.stops_of_position ? to.DeleteSLTPOrder(noted.number, noted.id)
                                                   : to.DeleteEntryOrder(noted.number, noted.id);
                 },
                 [&](const EntryOrder& order) { return to.NewEntryOrder(order, noted.id); },
                 [&](const Update& update) {
                   return to.UpdateEntryOrder(noted.number, noted.price, update.stops, noted.id);
                 },
                 [&](const Stops& stops) { return to.UpdateSLTP(noted.number, stops.stops, noted.id); },
                 [&](const Answer& answer) {
                   return answer.accept ? to.AcceptRequote(noted.number, noted.id)
                                        : to.RejectRequote(noted.number, noted.id);
                 }},
      asked.terms);
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

void RequestGate::drop(const Asked& asked, std::string_view reason) {
  book_.note_dropped(*asked.noted);
  note(*asked.noted, LedgerState::dropped, reason, LedgerEvidence::clock);
  if (asked.then) asked.then(*asked.noted);
}

void RequestGate::drop(AskedList& asked, std::size_t first, std::size_t end, std::string_view reason,
                       const std::string& why) {
  std::size_t dropped = 0;
  for (std::size_t place = first; place < end; ++place) {
    if (asked[place].noted->settled()) continue;
    drop(asked[place], reason);
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
      drop(next.asked, 0, next.asked.size(), old ? "late" : "not stored",
           old ? "the ledger did not store them in time" : ledger_.fault());
    }
  }
}

void RequestGate::wait_for_stored() {
  if (!waiting_.empty()) ledger_.wait(waiting_.back().mark, store_within);
  send_stored();
}

void RequestGate::drop_waiting(Sender sender) {
  for (const Waiting& each : waiting_)
    for (const Asked& asked : each.asked)
      if (asked.noted->sender == sender && !asked.noted->settled()) drop(asked, "account gone");
}

const SentOrder& RequestGate::market_order(Sender sender, Operation side, SymbolHandle symbol,
                                           std::int32_t symbol_id, double amount, Then then) {
  return ask(sender, {.amount = amount, .symbol = symbol, .side = side, .kind = RequestKind::open},
             Market{symbol_id}, std::move(then));
}

const SentOrder& RequestGate::close(Sender sender, std::int64_t ticket, double amount, Then then) {
  return ask(sender, {.number = ticket, .amount = amount, .kind = RequestKind::close}, Close{},
             std::move(then));
}

const SentOrder& RequestGate::cancel(Sender sender, std::int64_t order, bool stops_of_position, Then then) {
  return ask(sender, {.number = order, .kind = RequestKind::cancel}, Cancel{stops_of_position},
             std::move(then));
}

const SentOrder& RequestGate::place_entry(Sender sender, const EntryOrder& order, SymbolHandle symbol,
                                          int round, Then then) {
  const bool stop = order.kind == EntryKind::stop;
  return ask(sender,
             {.amount = order.amount,
              .price = order.price,
              .symbol = symbol,
              .side = buys(order.side) ? (stop ? operation::buy_stop : operation::buy)
                                       : (stop ? operation::sell_stop : operation::sell),
              .round = round,
              .kind = RequestKind::entry},
             order, std::move(then));
}

const SentOrder& RequestGate::update_entry(Sender sender, std::int64_t order, double price,
                                           const StopPrices& stops, int round, Then then) {
  return ask(sender, {.number = order, .price = price, .round = round, .kind = RequestKind::update},
             Update{stops}, std::move(then));
}

const SentOrder& RequestGate::set_stops(Sender sender, std::int64_t ticket, const StopPrices& stops,
                                        std::int64_t stops_order, int round, Then then) {
  return ask(sender,
             {.number = ticket, .stops_order = stops_order, .round = round, .kind = RequestKind::stops},
             Stops{stops}, std::move(then));
}

const SentOrder& RequestGate::answer_requote(Sender sender, std::int64_t order, bool accept, Then then) {
  return ask(sender, {.number = order, .kind = RequestKind::requote}, Answer{accept}, std::move(then));
}

}  // namespace tutti
