#pragma once

#include "books/record_book.h"
#include "sessions/contract/pending_order.h"

namespace tutti {

extern template class RecordBook<PendingOrder>;

// The pending orders of all accounts: market orders and closes in dealing, entry orders, and the SL/TP orders
// of positions.
class OrderBook final : public RecordBook<PendingOrder> {};

}  // namespace tutti
