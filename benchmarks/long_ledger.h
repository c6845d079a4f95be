#pragma once

#include <filesystem>

#include "core/clock.h"

namespace tutti::bench {

// Days of trading, each of so many tickets over all accounts, every request filled with its third event.
// Every other ticket closes what the one before has opened.
struct TradingDays {
  int accounts = 500;
  int days = 0;
  int tickets_a_day = 0;

  int requests() const { return accounts * days * tickets_a_day; }
  int fills_a_day() const { return accounts * tickets_a_day; }
};

// Puts the ledger of such days into a home that has none yet, or a new one, through the classes that write
// the real one: two commits a ticket. The last day ends at the end of `last`. `key_file`: of the home.
void write_ledger(const std::filesystem::path& home, const std::filesystem::path& key_file,
                  const TradingDays& days, std::chrono::sys_days last);

}  // namespace tutti::bench
