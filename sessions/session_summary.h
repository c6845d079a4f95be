#pragma once

#include "sessions/session_scope.h"

namespace tutti::session_summary {

// The seven values of a session's account: what it reports goes into its record and into the totals, and is
// asked for again, since the answer is what the account's row shows. Most events of a day are these.

// Values that are none are refused.
void changed(SessionScope& scope, const AccountSummary& reported);
// Shows what the server answers now.
void query(SessionScope& scope);
// What the server answers for an account. When it does not answer with success, zeros but for the floating
// profit, which is the one given, and the global floating total becomes 0.
AccountSummary ask(SessionScope& scope, std::int32_t account, double floating_pl);

}  // namespace tutti::session_summary
