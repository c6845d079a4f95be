#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tutti {

// The one reader: leading blanks are skipped, then sign, digits, "." and exponent from the left, stopping at
// the first foreign character. No number, or one that is not finite, gives 0.
double read_number(std::string_view text);

// The integer part of read_number, held to the range of 32 bits.
std::int32_t read_integer(std::string_view text);

// The value when the whole text, but for blanks around it, is a number; used where input must be numeric.
std::optional<double> parse_number(std::string_view text);
// The value when the whole text is a decimal whole number that fits 32 bits, a sign allowed.
std::optional<std::int32_t> parse_int32(std::string_view text);

// The one writer: up to 15 significant digits, no trailing zeros, "1E-05" for small and "1E+15" for large
// ones, no leading blank, C locale.
std::string number_text(double value);

// What read_number(number_text(value)) gives, mostly without making the text.
double as_text_reads(double value);
// The same for fixed_text.
double as_fixed_reads(double value, int decimals);

// At most two decimals, half to even, no padding, no grouping, never "-0".
std::string summary_text(double value);

// `value` with exactly `decimals` decimals (0 to 15).
std::string fixed_text(double value, int decimals);

// Rounds to `decimals` decimals (0 to 15), an exact half to the even neighbour.
double round_half_even(double value, int decimals);
// A sum of lots without the noise of adding up: to eight decimals, finer than any lot step.
double lots_of_sum(double sum);

}  // namespace tutti
