#include "core/numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

#include "core/texts.h"

namespace tutti {
namespace {

// All that a double holds exactly.
constexpr std::array<double, 23> powers_of_ten = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Reads a number at the start of `text`; `used` receives how many characters it took, 0 when there is none.
double scan(std::string_view text, std::size_t& used) {
  used = 0;
  const std::string_view body = text.substr(std::min(text.find_first_not_of(' '), text.size()));
  std::string_view digits = body;
  const bool plus = !digits.empty() && digits.front() == '+';
  if (plus) digits.remove_prefix(1);
  // Words such as "inf" and "nan" are no numbers to an operator.
  const auto first = digits.find_first_not_of(plus ? "" : "-");
  if (first == std::string_view::npos || first > 1) return 0.0;
  if (digits[first] != '.' && (digits[first] < '0' || digits[first] > '9')) return 0.0;
  double value = 0.0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error == std::errc::invalid_argument) return 0.0;
  used = static_cast<std::size_t>(end - text.data());
  if (error != std::errc{} || !std::isfinite(value)) return 0.0;
  return value;
}

double nearest_even(double value) {
  return std::nearbyint(value);
}

}  // namespace

double read_number(std::string_view text) {
  std::size_t used = 0;
  return scan(text, used);
}

std::int32_t read_integer(std::string_view text) {
  constexpr double low = std::numeric_limits<std::int32_t>::min();
  constexpr double high = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(std::trunc(read_number(text)), low, high));
}

std::optional<double> parse_number(std::string_view text) {
  const std::string_view body = trim(text);
  std::size_t used = 0;
  const double value = scan(body, used);
  if (body.empty() || used != body.size()) return std::nullopt;
  return value;
}

std::optional<std::int32_t> parse_int32(std::string_view text) {
  std::string_view body = trim(text);
  // A second sign is no number.
  if (body.size() > 1 && body.front() == '+' && body[1] != '-') body.remove_prefix(1);
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(body.data(), body.data() + body.size(), value);
  if (error != std::errc{} || end != body.data() + body.size()) return std::nullopt;
  return value;
}

std::string number_text(double value) {
  if (!std::isfinite(value) || value == 0.0) return "0";
  std::array<char, 32> text;
  constexpr int digits = 15;
  const auto written =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, digits);
  std::replace(text.data(), written.ptr, 'e', 'E');
  return {text.data(), written.ptr};
}

double as_text_reads(double value) {
  constexpr double smallest = 1e-7;
  constexpr double fifteen_digits = 1e15;
  const double size = std::fabs(value);
  // 0 and what is no number are read too.
  if (!(size >= smallest && size < fifteen_digits)) return read_number(number_text(value));
  // The power of ten that puts fifteen digits in front of the point. It goes by the power of two, times the
  // logarithm of two, so the product may still have a digit more.
  const int exponent = static_cast<int>(std::bit_cast<std::uint64_t>(size) >> 52) - 1023;
  auto power = static_cast<std::size_t>(14 - (exponent * 1233 >> 12));
  if (size * powers_of_ten[power] >= fifteen_digits) --power;
  const double scale = powers_of_ten[power];
  const double product = size * scale;
  constexpr double no_fraction = 4503599627370496.0;  // 2^52, to which no fraction can be added
  double digits = (product + no_fraction) - no_fraction;
  // Halfway, it is what the product has rounded off that decides.
  if (const double rest = product - digits; std::fabs(rest) == 0.5) {
    const double lost = std::fma(size, scale, -product);
    if (rest > 0.0 && lost > 0.0) digits += 1.0;
    if (rest < 0.0 && lost < 0.0) digits -= 1.0;
  }
  // Both are exact, so the quotient is the double nearest to the decimal number.
  return std::copysign(digits / scale, value);
}

std::string summary_text(double value) {
  if (!std::isfinite(value)) return "0";
  const double rounded = round_half_even(value, 2);
  std::string text = fmt::format("{:.2f}", rounded);
  while (text.back() == '0')
    text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

std::string fixed_text(double value, int decimals) {
  std::string text = fmt::format("{:.{}f}", std::isfinite(value) ? value : 0.0, std::clamp(decimals, 0, 15));
  // What rounds to 0 has no sign.
  if (text.front() == '-' && text.find_first_not_of("-0.") == std::string::npos) text.erase(0, 1);
  return text;
}

double as_fixed_reads(double value, int decimals) {
  return read_number(fixed_text(value, decimals));
}

double round_half_even(double value, int decimals) {
  const double scale = powers_of_ten[static_cast<std::size_t>(std::clamp(decimals, 0, 15))];
  const double scaled = value * scale;
  // Beyond 2^52 there are no decimals left to round, and scaling might overflow.
  if (!(std::fabs(scaled) < 4503599627370496.0)) return value;
  return nearest_even(scaled) / scale;
}

double lots_of_sum(double sum) {
  return round_half_even(sum, 8);
}

}  // namespace tutti
