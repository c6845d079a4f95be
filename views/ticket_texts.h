#pragma once

#include <string>
#include <string_view>

#include "ledger/ledger_queries.h"

namespace tutti {

// What the operator reads of his acts and of what became of them.
namespace ticket_texts {

// "Market order", "Close"
std::string_view what(RequestKind kind);
// "Buy", "Sell limit"; empty where several are meant.
std::string side(RequestKind kind, Operation side);
// What has happened to a request, in the word that those it shares it with are counted by: "filled", "no
// margin".
std::string_view outcome(RequestKind kind, LedgerState state, const std::string& reason, std::int64_t code);
// The order in which a ticket's outcomes are told; what went well comes first.
int place(RequestKind kind, LedgerState state, const std::string& reason, std::int64_t code);
// Why, where the outcome does not say it: the server's words, or the text of the code.
std::string why(const TicketRequest& request);
// "487 filled 121.3 lots at 1.08467 (worst 1.08471), 9 no margin, 3 refused, 1 unknown"
std::string summary(const TicketRecord& ticket);

}  // namespace ticket_texts
}  // namespace tutti
