#include "fix/server/account_memory.h"

#include "fix/dialect/wire_values.h"

namespace tutti {

void AccountMemory::note(const WireRequest& request) {
  requests_[request.id] = request;
  if (!read_wire_id(request.id_text)) foreign_texts_[request.id] = request.id_text;
}

const WireRequest* AccountMemory::find(RequestId id) const {
  const auto at = requests_.find(id);
  return at == requests_.end() ? nullptr : &at->second;
}

std::string AccountMemory::text_of(RequestId id) const {
  const auto at = foreign_texts_.find(id);
  if (at != foreign_texts_.end()) return at->second;
  return id > 0 ? wire_id(id) : std::string{};
}

void AccountMemory::end(RequestId id) {
  requests_.erase(id);
}

std::string AccountMemory::accepted_of(std::int64_t order) const {
  const auto at = accepted_.find(order);
  return at == accepted_.end() ? std::string{} : at->second;
}

std::int64_t AccountMemory::order_of(const std::string& id_text) const {
  for (const auto& [order, text] : accepted_)
    if (text == id_text) return order;
  return 0;
}

}  // namespace tutti
