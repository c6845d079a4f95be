#pragma once

#include <optional>
#include <string>
#include <vector>

#include <toml++/toml.h>

#include "dealer/config/account_config.h"
#include "dealer/config/fault_config.h"

namespace tutti {

// Reads one [[fault]] of a configuration. Keys that the kind has no use for, and accounts that are not
// configured, are faults too.
FaultConfig read_fault(const toml::table& table, const std::vector<AccountConfig>& accounts,
                       std::optional<std::string>& fault);

}  // namespace tutti
