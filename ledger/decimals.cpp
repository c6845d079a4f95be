#include "ledger/decimals.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tutti::decimals {
namespace {

constexpr int most_digits = 15;
constexpr double largest = 9e15;  // beyond it not every whole number has a double

// All of them are exact.
constexpr std::array<double, most_digits + 1> powers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                     1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
// A file that somebody changed may say any number.
double ten_to(std::int64_t digits) {
  return digits >= 0 && digits <= most_digits ? powers[static_cast<std::size_t>(digits)]
                                              : std::pow(10.0, static_cast<double>(digits));
}

int needed(double value) {
  if (!std::isfinite(value)) return 0;
  for (int digits = 0; digits < most_digits; ++digits) {
    const double scaled = std::nearbyint(value * ten_to(digits));
    if (std::fabs(scaled) >= largest / 10.0 || scaled / ten_to(digits) == value) return digits;
  }
  return most_digits;
}

}  // namespace

int needed(std::initializer_list<double> values) {
  int out = 0;
  for (const double value : values)
    out = std::max(out, needed(value));
  return out;
}

std::optional<std::int64_t> whole(double value, int digits) {
  const double scaled = std::nearbyint(value * ten_to(digits));
  if (!(std::fabs(scaled) < largest * 100.0)) return std::nullopt;
  return static_cast<std::int64_t>(scaled);
}

double number(std::int64_t whole, int digits) {
  return static_cast<double>(whole) / ten_to(digits);
}

}  // namespace tutti::decimals
