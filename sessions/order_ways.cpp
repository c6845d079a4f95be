#include "sessions/order_ways.h"

#include <string>

#include "core/numbers.h"

namespace tutti {
namespace {

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

Sender OrderWays::add(std::int32_t account, OrderOperations& operations, const AccountClient& client) {
  ways_.push_back({account, &operations, &client});
  return static_cast<Sender>(ways_.size());
}

RequestCode OrderWays::call(const SentOrder& request) const {
  OrderOperations* to = way(request.sender).operations;
  if (to == nullptr) return request::invalid_account;
  switch (request.kind) {
    case RequestKind::open:
      return to->NewMarketOrder(request.side, request.symbol_id, request.amount, "", "", request.id);
    case RequestKind::close:
      return to->ClosePosition(std::to_string(request.number), number_text(request.amount), "", request.id);
    case RequestKind::cancel:
      return request.stops_of_position ? to->DeleteSLTPOrder(request.number, request.id)
                                       : to->DeleteEntryOrder(request.number, request.id);
    case RequestKind::entry:
      return to->NewEntryOrder(entry_of(request), request.id);
    case RequestKind::update:
      return to->UpdateEntryOrder(request.number, request.price, request.stops, request.id);
    case RequestKind::stops:
      return to->UpdateSLTP(request.number, request.stops, request.id);
    case RequestKind::requote:
      return request.accepts ? to->AcceptRequote(request.number, request.id)
                             : to->RejectRequote(request.number, request.id);
  }
  return request::invalid_account;
}

}  // namespace tutti
