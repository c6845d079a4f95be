#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace tutti {

// What the fault script does to one login or order.
struct Mishap {
  bool refuse_login = false;
  bool unreachable = false;
  bool silent = false;
  bool swallow = false;
  bool twice = false;
  bool unknown_ticket = false;
  std::int32_t refuse = 0;  // request code; 0: as it deserves
  std::int32_t reject = 0;  // result code; 0: as it deserves
  std::chrono::milliseconds delay{0};
  std::chrono::milliseconds late{0};
  std::optional<std::chrono::milliseconds> pending;
  std::int16_t requote_seconds = 0;  // 0: no requote
  double requote_points = 0.0;
};

}  // namespace tutti
