#pragma once

#include <map>
#include <string>
#include <vector>

#include "apps/records.h"
#include "ledger/ledger_queries.h"

namespace tutti {

// What the ledger has of one request that a command sent, as its report tells it: its order number, lots that
// were filled, their price, and when.
class StoredFill {
 public:
  // Looks into what CommandContext::stored gives, which outlives it. `request`: 0 when none was made.
  StoredFill(const std::map<RequestId, TicketRequest>& stored, RequestId request);

  // Null where it is not known.
  Json order() const;
  // Behind the fields of a record: filled, price, time; null what is not known.
  void add_to(std::vector<Json>& values) const;
  std::string order_text() const;
  std::string price_text() const;

 private:
  const TicketRequest* found_ = nullptr;
};

}  // namespace tutti
