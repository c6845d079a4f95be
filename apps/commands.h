#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/terminal.h"

// The commands of the command line. Each prints to standard output and answers the exit status.
namespace tutti {

struct OrderArguments {
  bool buy = true;
  std::string symbol;
  std::string amount;                  // lots, as typed
  int rule = 0;                        // index of the rule list: 0 equal, 1 margin, 2 equity
  std::vector<std::int32_t> accounts;  // empty: all
  bool dry_run = false;                // stop after the shares
};

int accounts_command(Terminal& terminal);
int order_command(Terminal& terminal, const OrderArguments& arguments);
int journal_command(Terminal& terminal, std::int32_t account);

}  // namespace tutti
