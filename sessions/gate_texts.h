#pragma once

#include <string>
#include <string_view>

#include "books/sent_order.h"

namespace tutti::gate_texts {

// What the row says of a request that has not left; empty for one that has.
std::string_view row(const SentOrder& request);
// What the ledger has as the reason.
std::string_view reason(NotSent why);
// The row's text for such a reason; empty when there is none like it.
std::string_view row_of(std::string_view reason);
// The end of "... were not sent", of what the ledger could not store.
std::string not_stored(const std::string& why);

}  // namespace tutti::gate_texts
