#pragma once

namespace tutti::bounds {

// What is asked of the server, configured, or comes of the two stays within these, so that the book can hold
// it and sums stay finite.
inline constexpr double smallest_lots = 1e-8;  // amounts are kept to so many decimals
inline constexpr double most_lots = 1e9;
inline constexpr double lowest_price = 1e-8;
inline constexpr double highest_price = 1e9;
inline constexpr double most_money = 1e100;  // beyond all lots at the highest price

constexpr bool is_price(double price) {
  return price >= lowest_price && price <= highest_price;
}

}  // namespace tutti::bounds
