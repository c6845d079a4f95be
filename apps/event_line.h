#pragma once

#include "apps/outcome_lines.h"
#include "ledger/request_events.h"

namespace tutti {

// What the line of the account's history says that tells of an event of the ledger: where it can be told in
// several ways, all of them. Nothing where no line tells of it: steps on the way, requests that did not
// leave, orders that ended without a request, and what the ledger does not know well enough.
//
// Of a cancel the first is that of an entry order and the second that of an SL/TP order; of stops the first
// is that of new ones, the second that of those which the position had before.
LineTexts event_line(const RequestEvent& event);

// The same, as histories have it, and without the details of an executed order.
std::string plain_history_text(std::string_view message);

}  // namespace tutti
