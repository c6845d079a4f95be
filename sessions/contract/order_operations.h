#pragma once

#include <cstdint>
#include <string_view>

#include "sessions/contract/codes.h"
#include "sessions/contract/entry_order.h"
#include "sessions/contract/request_id.h"

namespace tutti {

// The operations of a trading client that change what an account has. Whoever holds this can send; it is
// apart from what can only ask, so that few do.
//
// Each answers a request code at once; the outcome follows as an event, which brings the id back. None
// blocks, none raises an event while it runs, and none throws for a trading failure. A repetition of an id
// does nothing but bring back what became of the first, where the broker knows it.
class OrderOperations {
 public:
  virtual ~OrderOperations() = default;

  // Market order of `amount` lots at the market price; the two texts are reserved and sent empty.
  virtual RequestCode NewMarketOrder(Operation side, std::int32_t symbol_id, double amount,
                                     std::string_view reserved1, std::string_view reserved2,
                                     RequestId id) = 0;
  virtual RequestCode NewEntryOrder(const EntryOrder& order, RequestId id) = 0;
  virtual RequestCode UpdateEntryOrder(std::int64_t order, double price, const StopPrices& stops,
                                       RequestId id) = 0;
  virtual RequestCode AcceptRequote(std::int64_t order, RequestId id) = 0;
  virtual RequestCode RejectRequote(std::int64_t order, RequestId id) = 0;
  // Ticket as a whole number, amount in lots as default number text, and a reserved text sent empty.
  virtual RequestCode ClosePosition(std::string_view ticket, std::string_view amount,
                                    std::string_view reserved, RequestId id) = 0;
  virtual RequestCode UpdateSLTP(std::int64_t ticket, const StopPrices& stops, RequestId id) = 0;
  // Cancel an entry order, or the SL/TP order of a position; answered by DeleteLimitOrderResult and
  // DeleteSLTPOrderResult.
  virtual RequestCode DeleteEntryOrder(std::int64_t order, RequestId id) = 0;
  virtual RequestCode DeleteSLTPOrder(std::int64_t order, RequestId id) = 0;
};

}  // namespace tutti
