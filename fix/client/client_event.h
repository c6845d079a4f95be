#pragma once

#include <cstdint>
#include <functional>

#include "sessions/contract/CLAPICLASS.h"

namespace tutti {

class FixClient;

// One event on its way to the sink of a client. Frequent ones only name what moved, and are read when they
// are delivered; rare ones bring what they tell along.
struct ClientEvent {
  enum class Kind : std::uint8_t { call, price, high_low, floating, summary, time };

  FixClient* client = nullptr;  // nullptr once the client wants it no more
  Kind kind = Kind::call;
  bool outlives = false;   // the end of the connection, as answers do
  std::int64_t which = 0;  // place of the symbol, or ticket
  std::function<void(CLAPICLASS&)> call{};
};

}  // namespace tutti
