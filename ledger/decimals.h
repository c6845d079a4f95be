#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>

namespace tutti {

// Decimals of money, which has no column that says them.
inline constexpr int money_digits = 6;

// Numbers as files keep them: whole ones, with how many decimals they have.
namespace decimals {

// As many decimals as all of these need, at most 15, so that a whole number of 15 digits says each.
int needed(std::initializer_list<double> values);
// The value as a whole number with so many decimals; nothing for what is no number or has no place in one.
std::optional<std::int64_t> whole(double value, int digits);
double number(std::int64_t whole, int digits);

}  // namespace decimals
}  // namespace tutti
