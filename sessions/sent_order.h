#pragma once

#include <cstdint>

#include "sessions/symbol_collection.h"

namespace tutti {

// A market order, a close or a cancel on its way: what was sent, what the request answered, and what became
// of it.
struct SentOrder {
  enum class Outcome : std::uint8_t {
    none,      // nothing was sent
    refused,   // the request was not taken, or the result is a refusal
    waiting,   // taken, no result yet
    pending,   // the dealer has it
    accepted,  // executed
    unknown,   // the connection was lost before the result came
  };

  std::int64_t number = 0;  // of a market order: known once a result told it
  double amount = 0.0;      // lots
  std::int32_t side = 0;    // operation:: code
  SymbolHandle symbol = no_symbol;
  std::int32_t request_code = 0;
  std::int32_t result_code = 0;  // 0 until a result came
  Outcome outcome = Outcome::none;

  // Nothing more is to come of it.
  bool settled() const { return outcome != Outcome::waiting && outcome != Outcome::pending; }
};

}  // namespace tutti
