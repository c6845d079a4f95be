#pragma once

#include <cmath>
#include <cstdint>
#include <string>

#include "core/clock.h"

namespace tutti {

// One tradable symbol as an account sees it. Owned by the trading client; prices change in place.
struct Symbol {
  std::int32_t id = 0;      // number of the symbol for this account, small and positive; order calls take it
  std::string name;         // "EURUSD"
  std::int32_t digits = 5;  // decimals of a price
  double contract_size = 0.0;  // units of the base per lot
  double bid = 0.0;            // price at which the account sells
  double ask = 0.0;            // price at which the account buys
  double high = 0.0;           // highest bid of the day
  double low = 0.0;            // lowest bid of the day
  TimePoint quote_time{};      // server time of the last quote
  std::string base{};          // currency or thing that is bought, "EUR"; empty when not told
  std::string profit{};        // currency in which profit arises, "USD"; empty when not told
  double margin_rate = 0.0;    // part of the value that counts for the margin; 0 when not told

  // Turns a distance in points (as SymbolLimitDistance gives it) into a price difference.
  double ScaleDistance(double points) const { return points / std::pow(10.0, digits); }
};

}  // namespace tutti
