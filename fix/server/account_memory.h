#pragma once

#include <cstdint>
#include <string>

#include <tsl/robin_map.h>

#include "fix/dialect/wire_request.h"

namespace tutti {

// What the wire's end keeps of an account's requests, over its connections: how they are called there, and
// what they were about, since reports of the contract do not say it all again.
class AccountMemory {
 public:
  void note(const WireRequest& request);
  // nullptr for one that is not known, or has come to its end.
  const WireRequest* find(RequestId id) const;
  // As the other end calls it; empty for one that it has not named itself.
  std::string text_of(RequestId id) const;
  // The request stands no more. What it was called is kept as long as only that tells it.
  void end(RequestId id);

  // The request was accepted for the order, or placed it.
  void note_accepted(std::int64_t order, const std::string& id_text) { accepted_[order] = id_text; }
  std::string accepted_of(std::int64_t order) const;
  // The order that a request of this text placed or changed; 0 when none is known.
  std::int64_t order_of(const std::string& id_text) const;
  void end_order(std::int64_t order) { accepted_.erase(order); }

 private:
  tsl::robin_map<RequestId, WireRequest> requests_;
  tsl::robin_map<RequestId, std::string> foreign_texts_;
  tsl::robin_map<std::int64_t, std::string> accepted_;
};

}  // namespace tutti
