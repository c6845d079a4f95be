#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <tsl/robin_map.h>

#include "sessions/contract/open_position.h"

namespace tutti::bench {

// The least that a profit event can cost, done straight: no session, no rows, no check of the values.
//
// The position is found by its ticket in one hash look-up, since the contract tells no other name of it. Four
// sums take the difference: of symbol, account, both, and all. Price, commission, interest and profit go into
// the position's place of a flat array. What has changed is marked with one bit each, for whoever shows it.
class PositionFloor {
 public:
  PositionFloor(std::size_t accounts, std::size_t symbols);

  void add(const OpenPosition& position, std::size_t account, std::size_t symbol);
  void changed(const OpenPosition& event);

  double of_symbol(std::size_t symbol) const { return by_symbol_[symbol]; }
  double of_account(std::size_t account) const { return by_account_[account]; }
  double total() const { return total_; }

 private:
  struct Held {
    std::uint32_t account = 0;
    std::uint32_t symbol = 0;
    double current_price = 0.0;
    double commission = 0.0;
    double interest = 0.0;
    double profit = 0.0;
  };
  using Bits = std::vector<std::uint64_t>;

  static void mark(Bits& bits, std::size_t place) { bits[place / 64] |= std::uint64_t{1} << place % 64; }

  tsl::robin_map<std::int64_t, std::uint32_t> place_of_;  // by ticket
  std::vector<Held> held_;
  std::vector<double> by_symbol_;
  std::vector<double> by_account_;
  std::vector<double> by_both_;  // by symbol, then account
  double total_ = 0.0;
  Bits dirty_positions_;
  Bits dirty_symbols_;
  Bits dirty_accounts_;
};

}  // namespace tutti::bench
