#pragma once

#include "books/record_book.h"
#include "sessions/contract/open_position.h"

namespace tutti {

extern template class RecordBook<OpenPosition>;

// The open positions of all accounts.
class PositionBook final : public RecordBook<OpenPosition> {
 public:
  // What a position is worth now: its current price, costs and profit, and nothing else. One that is not
  // there is ignored.
  void write_worth(const OpenPosition& position);
};

}  // namespace tutti
