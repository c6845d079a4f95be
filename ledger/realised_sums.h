#pragma once

#include <span>
#include <string>
#include <vector>

#include "ledger/ledger_queries.h"

namespace tutti {

// What the closes of an account on one day have brought, in the account's currency.
struct RealisedSum {
  LedgerAccount account;
  std::chrono::sys_days day{};  // UTC
  std::string currency;
  int closes = 0;
  int untold = 0;           // so many of them without the broker's word on what they brought
  double profit = 0.0;      // interest included
  double commission = 0.0;  // below 0 when charged
};

// By day, then account, then currency.
std::vector<RealisedSum> realised_by_day(std::span<const FillRecord> fills);
// Those of one currency together, without account and day; by currency.
std::vector<RealisedSum> realised_by_currency(std::span<const RealisedSum> sums);

}  // namespace tutti
