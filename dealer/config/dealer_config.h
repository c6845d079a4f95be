#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dealer/config/account_config.h"
#include "dealer/config/entry_order_config.h"
#include "dealer/config/fault_config.h"
#include "dealer/config/symbol_config.h"
#include "dealer/config/tick.h"
#include "pricing/currency_pair.h"
#include "sessions/contract/login_data.h"

namespace tutti {

// Everything the dealing server is told at its start. docs/dealer.md explains the file form.
struct DealerConfig {
  std::uint64_t seed = 2026;
  Endpoint endpoint{"127.0.0.1", 4950};  // the server's own address; logins elsewhere don't reach it
  double min_lot = 0.01;
  double max_lot = 100.0;  // of one order; more is refused as a request
  double lot_step = 0.0;   // amounts are whole multiples of it; 0: any amount
  std::chrono::milliseconds login_latency{150};
  std::chrono::milliseconds order_latency{80};
  std::chrono::milliseconds unreachable_after{30'000};
  std::chrono::milliseconds tick_interval{250};  // between two steps of the random walk, above 0
  std::int64_t first_number = 10'000'001;        // of orders and tickets, when there is no book yet
  std::vector<Tick> ticks;                       // replayed instead of the random walk when not empty
  std::vector<SymbolConfig> symbols;
  std::vector<AccountConfig> accounts;
  std::vector<EntryOrderConfig> entry_orders;  // accounts and symbols must exist
  std::vector<FaultConfig> faults;

  // A market of FX pairs, metals and indices, and `accounts` accounts. The first twelve are healthy; from
  // then on the 13th, 14th, 15th and 16th of each fifty hide EURUSD, are broke, may not trade, and may not
  // hedge.
  static DealerConfig sample(int accounts = 12);
  // 500 sample accounts on a busy day: some orders wait, some are with the dealer for a while, and now and
  // then one account is requoted.
  static DealerConfig demo();

  // Of all symbols, in their order.
  std::vector<CurrencyPair> pairs() const;

  // The first thing wrong with the whole, in the operator's words: a number given twice, a hidden symbol that
  // does not exist, a currency that no symbol converts.
  std::optional<std::string> fault() const;
};

}  // namespace tutti
