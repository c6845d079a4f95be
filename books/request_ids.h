#pragma once

#include <cstdint>
#include <functional>

#include "core/clock.h"
#include "sessions/contract/request_id.h"

namespace tutti {

// Gives requests their ids: seconds since the start of 2025 (31 bits), a random number per block (22 bits)
// and a place in the block (10 bits). They ascend, whatever the clock does, so that storing them stays cheap;
// that no other terminal gives the same one is the random number's business.
class RequestIds {
 public:
  // `random` gives any 32 bits; the machine's own source when empty.
  explicit RequestIds(const Clock& clock, std::function<std::uint32_t()> random = {});

  RequestId next();
  // What was given before, by an earlier run: all that come are greater.
  void go_on_after(RequestId id);

 private:
  void begin_block(std::int64_t now);

  const Clock& clock_;
  std::function<std::uint32_t()> random_;
  std::int64_t second_ = 0;    // of the block
  std::int64_t block_ = 0;     // its random number
  std::int64_t place_ = 1024;  // the next one in it; none is left before the first block
};

}  // namespace tutti
