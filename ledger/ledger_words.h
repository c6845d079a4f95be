#pragma once

#include <string_view>

#include "ledger/entries.h"

namespace tutti {

// The words that stand in the ledger for what the terminal knows as values.
namespace ledger_words {

std::string_view of(LedgerState state);  // "TAKEN"
std::string_view of(RequestKind kind);   // "open"
std::string_view of(LedgerEvidence evidence);
std::string_view of(TicketOrigin origin);
std::string_view of(Operation side);  // "buy stop"; empty for none
// The same the other way; what is none of them is `stored`, `open`, `none` and `answer`. A kind may have more
// words behind it.
LedgerState state(std::string_view word);
RequestKind kind(std::string_view word);
Operation side(std::string_view word);
LedgerEvidence evidence(std::string_view word);
// More is to come of it.
bool is_open(LedgerState state);

}  // namespace ledger_words
}  // namespace tutti
