#pragma once

#include "books/request_book.h"
#include "books/request_ids.h"
#include "ledger/ledger.h"

namespace tutti::earlier_requests {

// Takes what earlier runs left into the book, before anything is added to it: those whose outcome nobody
// knows, those that never left and may be sent after all, and entry orders that work. New ids come after
// theirs.
void restore(const Ledger& ledger, RequestBook& book, RequestIds& ids);

// This sender's account has a session again: its earlier requests are his from now on.
void hand_over(const Ledger& ledger, RequestBook& book, const LedgerAccount& account, Sender sender);

}  // namespace tutti::earlier_requests
