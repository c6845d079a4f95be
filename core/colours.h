#pragma once

#include <cstdint>

namespace tutti {

struct Rgb {
  std::uint8_t red = 0, green = 0, blue = 0;
  constexpr bool operator==(const Rgb&) const = default;
};

// What a text colour means. The theme decides `plain`; the others are the exact colours behind them.
enum class Ink : std::uint8_t { plain, white, green, red };

constexpr Rgb rgb(Ink ink) {
  switch (ink) {
    case Ink::green:
      return {0, 200, 0};
    case Ink::red:
      return {255, 0, 0};
    default:
      return {255, 255, 255};
  }
}

// Colour value in the platform's blue-green-red order, as 0xBBGGRR.
constexpr Rgb from_bgr(std::uint32_t bgr) {
  return {static_cast<std::uint8_t>(bgr), static_cast<std::uint8_t>(bgr >> 8),
          static_cast<std::uint8_t>(bgr >> 16)};
}

}  // namespace tutti
