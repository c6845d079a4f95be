#pragma once

#include <cstdint>
#include <string_view>

namespace tutti {

// Which terminal's ledger a request is stored in: the first 16 digits of the ledger's id; 0 without one.
using LedgerTag = std::uint64_t;

// 0 for what is no id.
LedgerTag ledger_tag(std::string_view id);

}  // namespace tutti
