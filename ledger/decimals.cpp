#include "ledger/decimals.h"

#include <algorithm>
#include <cmath>

namespace tutti::decimals {
namespace {

constexpr int most_digits = 15;
constexpr double largest = 9e15;  // beyond it not every whole number has a double

// Powers up to this one are exact.
double ten_to(int digits) {
  return std::pow(10.0, digits);
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
