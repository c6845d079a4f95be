#include "sessions/RequestGate.h"

#include <string>
#include <utility>

#include "core/numbers.h"

namespace tutti {

Sender RequestGate::join(std::int32_t account, OrderOperations& operations) {
  senders_.push_back({account, &operations});
  return static_cast<Sender>(senders_.size());
}

template <class Call>
const SentOrder& RequestGate::send(Sender sender, SentOrder&& request, Call&& call) {
  const Way& way = senders_[sender - 1];
  request.id = ids_.next();
  request.sender = sender;
  request.account = way.account;
  request.outcome = SentOrder::Outcome::waiting;
  request.last_word = clock_.elapsed();
  SentOrder& noted = book_.add(request);
  book_.note_code(noted,
                  way.operations == nullptr ? request::invalid_account : call(*way.operations, noted.id));
  return noted;
}

const SentOrder& RequestGate::market_order(Sender sender, Operation side, SymbolHandle symbol,
                                           std::int32_t symbol_id, double amount) {
  return send(sender, {.amount = amount, .symbol = symbol, .side = side, .kind = RequestKind::open},
              [&](OrderOperations& to, RequestId id) {
                return to.NewMarketOrder(side, symbol_id, amount, "", "", id);
              });
}

const SentOrder& RequestGate::close(Sender sender, std::int64_t ticket, double amount) {
  return send(sender, {.number = ticket, .amount = amount, .kind = RequestKind::close},
              [&](OrderOperations& to, RequestId id) {
                return to.ClosePosition(std::to_string(ticket), number_text(amount), "", id);
              });
}

const SentOrder& RequestGate::cancel(Sender sender, std::int64_t order, bool stops_of_position) {
  return send(sender, {.number = order, .kind = RequestKind::cancel}, [&](OrderOperations& to, RequestId id) {
    return stops_of_position ? to.DeleteSLTPOrder(order, id) : to.DeleteEntryOrder(order, id);
  });
}

const SentOrder& RequestGate::place_entry(Sender sender, const EntryOrder& order, SymbolHandle symbol,
                                          int round) {
  const bool stop = order.kind == EntryKind::stop;
  return send(sender,
              {.amount = order.amount,
               .price = order.price,
               .symbol = symbol,
               .side = buys(order.side) ? (stop ? operation::buy_stop : operation::buy)
                                        : (stop ? operation::sell_stop : operation::sell),
               .round = round,
               .kind = RequestKind::entry},
              [&](OrderOperations& to, RequestId id) { return to.NewEntryOrder(order, id); });
}

const SentOrder& RequestGate::update_entry(Sender sender, std::int64_t order, double price,
                                           const StopPrices& stops, int round) {
  return send(
      sender, {.number = order, .price = price, .round = round, .kind = RequestKind::update},
      [&](OrderOperations& to, RequestId id) { return to.UpdateEntryOrder(order, price, stops, id); });
}

const SentOrder& RequestGate::set_stops(Sender sender, std::int64_t ticket, const StopPrices& stops,
                                        std::int64_t stops_order, int round) {
  return send(sender,
              {.number = ticket, .stops_order = stops_order, .round = round, .kind = RequestKind::stops},
              [&](OrderOperations& to, RequestId id) { return to.UpdateSLTP(ticket, stops, id); });
}

const SentOrder& RequestGate::answer_requote(Sender sender, std::int64_t order, bool accept) {
  return send(sender, {.number = order, .kind = RequestKind::requote},
              [&](OrderOperations& to, RequestId id) {
                return accept ? to.AcceptRequote(order, id) : to.RejectRequote(order, id);
              });
}

}  // namespace tutti
