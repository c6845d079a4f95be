#include "apps/stored_fill.h"

#include "apps/times.h"
#include "core/numbers.h"

namespace tutti {

StoredFill::StoredFill(const std::map<RequestId, TicketRequest>& stored, RequestId request) {
  if (const auto at = stored.find(request); at != stored.end()) found_ = &at->second;
}

Json StoredFill::order() const {
  return found_ == nullptr || found_->number == 0 ? Json{} : Json(found_->number);
}

void StoredFill::add_to(std::vector<Json>& values) const {
  const bool known = found_ != nullptr;
  const bool filled = known && found_->filled > 0.0;
  values.push_back(known ? json_number(found_->filled) : Json{});
  values.push_back(filled && found_->fill_price != 0.0 ? json_number(found_->fill_price) : Json{});
  values.push_back(filled ? Json(utc_text(found_->filled_at)) : Json{});
}

std::string StoredFill::order_text() const {
  return found_ == nullptr || found_->number == 0 ? "" : std::to_string(found_->number);
}

std::string StoredFill::price_text() const {
  return found_ == nullptr || found_->fill_price == 0.0
             ? ""
             : fixed_text(found_->fill_price, found_->price_digits);
}

}  // namespace tutti
