#pragma once

#include <vector>

#include "ledger/ledger.h"

namespace tutti {

// What the ledger keeps of requests, as values that outlive their records. Symbol and side of what is about
// an order or a position are those of the record in the books, as long as there is one.
std::vector<LedgerRequest> stored_form(Ledger::Requests requests, const Books& books);

// What is the same for all requests of a ticket, and their lots together; prices as `about` has them.
LedgerTicket ticket_of(LedgerTicket about, const std::vector<LedgerRequest>& requests);

// What the call that sent it answered.
LedgerEvent answer_of(const SentOrder& request);

}  // namespace tutti
