#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string_view>
#include <vector>

#include "dealer/config/dealer_config.h"
#include "dealer/market/quote.h"

namespace tutti {

// The prices of all symbols over time: a seeded random walk in fixed steps, or a replay of recorded ticks.
// Symbols are addressed by their place in the configuration. The same seed and start give the same prices
// however time is cut into calls.
class Market {
 public:
  // In which of the market's steps a symbol changed last; 0: in none.
  struct Moved {
    std::uint64_t price = 0;     // anything of it
    std::uint64_t high_low = 0;  // the day's high or low
  };

  // Keeps a reference to the configuration.
  Market(const DealerConfig& config, TimePoint start);

  std::size_t count() const { return quotes_.size(); }
  const std::vector<SymbolConfig>& symbols() const { return config_.symbols; }
  const SymbolConfig& symbol(std::size_t index) const { return config_.symbols[index]; }
  const Quote& quote(std::size_t index) const { return quotes_[index]; }
  std::vector<double> middles() const;  // of all symbols; 0 where there is no price yet
  std::optional<std::size_t> find(std::string_view name) const;

  // When the next step is due; nothing after the last replayed tick.
  std::optional<TimePoint> next_due() const;
  // Makes the step that is due at next_due(); false when no price moved in it.
  bool step();
  // How many steps were made. What was told of all the symbols up to one of them is told the rest by
  // comparing it with moved().
  std::uint64_t steps() const { return steps_; }
  Moved moved(std::size_t index) const { return moved_[index]; }
  // The last step in which any price moved.
  std::uint64_t last_move() const { return last_move_; }
  // Leaves out the steps of the walk between now and `target`, so that a sleeping machine wakes up without
  // an hour of steps to make. Replayed ticks are never left out.
  void skip_to(TimePoint target);

 private:
  void walk(TimePoint at);
  void replay(TimePoint at);
  void set_price(std::size_t symbol, double bid, double ask, TimePoint at);

  const DealerConfig& config_;
  TimePoint start_;
  TimePoint next_step_;
  std::size_t next_tick_ = 0;
  std::mt19937_64 random_;
  std::vector<Quote> quotes_;
  std::uint64_t steps_ = 0;
  std::uint64_t last_move_ = 0;
  std::vector<Moved> moved_;
  std::vector<std::size_t> tick_symbols_;                        // symbol of each tick
  std::vector<std::pair<std::string_view, std::size_t>> names_;  // sorted by name
};

}  // namespace tutti
