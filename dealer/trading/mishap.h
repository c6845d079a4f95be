#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "sessions/contract/codes.h"

namespace tutti {

// What the fault script does to one login or order.
struct Mishap {
  bool refuse_login = false;
  bool unreachable = false;
  bool silent = false;
  bool swallow = false;
  bool twice = false;
  bool unknown_ticket = false;
  RequestCode refuse{};  // none: as it deserves
  ResultCode reject{};   // none: as it deserves
  std::chrono::milliseconds delay{0};
  std::chrono::milliseconds late{0};
  std::optional<std::chrono::milliseconds> pending;
  std::int16_t requote_seconds = 0;  // 0: no requote
  double requote_points = 0.0;
};

}  // namespace tutti
