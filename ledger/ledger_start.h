#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "ledger/ledger_book.h"
#include "ledger/left_log.h"

namespace tutti {

// Where a home has its ledger, and the ids that left.
std::filesystem::path ledger_path(const std::filesystem::path& home);
std::filesystem::path left_log_path(const std::filesystem::path& home);

// What became, as far as is known, of requests that the last run left without an answer: those that left, or
// may have, are unknown; the others never did. `left`: as the last run has it; `boot`: of the machine now. In
// the order of their ids; to be added to the ledger by whoever may.
std::vector<LedgerEvent> unanswered_events(LedgerBook& book, const LedgerFile& file,
                                           const std::optional<LeftLog::Content>& left,
                                           const std::string& boot);

// What is wrong with the ledger as the last run left it, beyond what its own hashes say; empty when nothing
// is. Its end may have been cut off, or it may be an older copy.
std::string fault_of_end(LedgerFile& file, const std::optional<LeftLog::Content>& left);

}  // namespace tutti
