#pragma once

#include <string>
#include <string_view>

#include "sessions/contract/codes.h"
#include "sessions/contract/request_state.h"

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

// 39 of a request in this state; of a refused one, and of one of which nothing is known, it is the same.
inline std::string_view letter_of(RequestState state) {
  switch (state) {
    case RequestState::waiting:
      return "A";
    case RequestState::working:
      return "0";
    case RequestState::partly_executed:
      return "1";
    case RequestState::executed:
      return "2";
    case RequestState::cancelled:
      return "4";
    default:
      return "8";
  }
}
// `not_told` for what says nothing of a request.
inline RequestState state_of(std::string_view letter) {
  if (letter == "0" || letter == "5") return RequestState::working;
  if (letter == "1") return RequestState::partly_executed;
  if (letter == "2") return RequestState::executed;
  if (letter == "4" || letter == "C") return RequestState::cancelled;
  if (letter == "A" || letter == "6" || letter == "E") return RequestState::waiting;
  return RequestState::not_told;
}

}  // namespace tutti::wire
