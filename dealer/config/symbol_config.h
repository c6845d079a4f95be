#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tutti {

// What the dealer does with orders in a symbol.
enum class Trading : std::uint8_t {
  open,
  closed,  // orders end with result::trading_closed
  halted,  // orders end with result::market_conditions
};

// One symbol of the market as configured. A price is counted in `profit` currency per unit of `base`.
struct SymbolConfig {
  std::string name;
  std::int32_t digits = 5;           // decimals of a price, 0 to 8; a point is one unit of the last
  double contract_size = 100'000.0;  // units of the base per lot
  double bid = 0.0;                  // start price; 0 means no quote until a replayed tick brings one
  double spread = 10.0;              // points between bid and ask
  // Smallest distance from the market, in points: of limit entry orders and take profits, and of stop entry
  // orders and stop losses.
  double limit_distance = 20.0;
  double stop_distance = 20.0;
  double volatility = 4.0;  // points, about the standard deviation of one move
  std::string base;         // currency or thing that is bought, "EUR"; margin is counted in it
  std::string profit;       // currency in which profit arises, "USD"
  double swap_long = 0.0;   // points that a bought lot earns per night; below 0 it pays
  double swap_short = 0.0;
  double commission = 0.0;  // account currency per lot and side; both sides are charged at opening
  Trading trading = Trading::open;
  double margin_rate = 1.0;              // part of the value that counts for the margin, above 0
  std::chrono::milliseconds dealing{0};  // as in AccountConfig; the longer of the two counts
};

}  // namespace tutti
