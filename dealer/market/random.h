#pragma once

#include <chrono>
#include <cstdint>

namespace tutti {

// A number that looks random and depends on nothing but the two given, so that what it decides for one
// account does not change with what happens on others.
inline std::uint64_t scatter(std::uint64_t seed, std::uint64_t value) {
  std::uint64_t x = seed * 0x9e3779b97f4a7c15ULL + value;
  x = (x ^ (x >> 32)) * 0xd6e8feb86659fd93ULL;
  x = (x ^ (x >> 32)) * 0xd6e8feb86659fd93ULL;
  return x ^ (x >> 32);
}

// Evenly spread in [0, 1).
inline double unit_interval(std::uint64_t bits) {
  return static_cast<double>(bits >> 11) * 0x1p-53;
}

// A latency and up to half of it more.
inline std::chrono::milliseconds with_jitter(std::chrono::milliseconds latency, std::uint64_t bits) {
  return latency + std::chrono::milliseconds{static_cast<std::int64_t>(
                       unit_interval(bits) * static_cast<double>(latency.count()) / 2)};
}

}  // namespace tutti
