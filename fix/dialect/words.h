#pragma once

#include <string>
#include <string_view>

#include "sessions/contract/codes.h"

// The letters that stand for values of the contract.
namespace tutti::wire {

inline constexpr std::string_view market = "1", limit = "2", stop = "3";  // 40
inline constexpr std::string_view buy = "1", sell = "2";                  // 54
inline constexpr std::string_view no_original = "NONE";                   // 41 of an order of unknown origin

inline std::string side(Operation operation) {
  return std::string{buys(operation) ? buy : sell};
}
// Of an entry order; a market order is neither.
inline bool is_stop(Operation operation) {
  return operation == operation::buy_stop || operation == operation::sell_stop;
}
inline std::string entry_type(Operation operation) {
  return std::string{is_stop(operation) ? stop : limit};
}
// `none` for letters that stand for neither side.
inline Operation operation(std::string_view side, std::string_view type) {
  const bool stops = type == stop;
  if (side == buy) return stops ? operation::buy_stop : operation::buy;
  if (side == sell) return stops ? operation::sell_stop : operation::sell;
  return Operation::none;
}

}  // namespace tutti::wire
