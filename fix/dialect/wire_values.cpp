#include "fix/dialect/wire_values.h"

#include <fmt/format.h>

#include <array>
#include <cassert>
#include <charconv>
#include <cmath>
#include <limits>

namespace tutti {
namespace {

constexpr std::size_t longest_number = 32;
constexpr double largest_number = 1e15;
constexpr std::size_t id_length = 13;
constexpr std::uint64_t id_base = 36;

// Exactly so many digits.
std::optional<int> digits(std::string_view text) {
  int value = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') return std::nullopt;
    value = value * 10 + (digit - '0');
  }
  return value;
}

std::optional<int> milliseconds(std::string_view fraction) {
  if (fraction.empty()) return 0;
  if (fraction[0] != '.' || fraction.size() < 2 || fraction.size() > 10) return std::nullopt;
  if (!digits(fraction.substr(1))) return std::nullopt;
  const std::string padded = std::string{fraction.substr(1)} + "00";
  return digits(padded.substr(0, 3));
}

}  // namespace

std::string wire_number(double value) {
  assert(std::isfinite(value));
  std::array<char, 400> text{};
  const auto [end, error] =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  return error == std::errc{} ? std::string{text.data(), end} : std::string{"0"};
}

std::optional<double> read_wire_number(std::string_view text) {
  // The library's reader also knows words for what is no number.
  if (text.empty() || text.size() > longest_number) return std::nullopt;
  if (text.find_first_not_of("0123456789.-") != text.npos) return std::nullopt;
  double value = 0.0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  if (std::fabs(value) > largest_number) return std::nullopt;
  return value;
}

std::optional<std::int64_t> read_wire_integer(std::string_view text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string wire_time(TimePoint time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{time - day};
  return fmt::format("{:04}{:02}{:02}-{:02}:{:02}:{:02}.{:03}", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                     clock.hours().count(), clock.minutes().count(), clock.seconds().count(),
                     clock.subseconds().count());
}

std::optional<TimePoint> read_wire_time(std::string_view text) {
  if (text.size() < 17 || text[8] != '-' || text[11] != ':' || text[14] != ':') return std::nullopt;
  const auto year = digits(text.substr(0, 4)), month = digits(text.substr(4, 2)),
             day = digits(text.substr(6, 2)), hour = digits(text.substr(9, 2)),
             minute = digits(text.substr(12, 2)), second = digits(text.substr(15, 2)),
             part = milliseconds(text.substr(17));
  if (!year || !month || !day || !hour || !minute || !second || !part) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year{*year},
                                         std::chrono::month{static_cast<unsigned>(*month)},
                                         std::chrono::day{static_cast<unsigned>(*day)}};
  // A second may be a leap second, which nothing here counts.
  if (!date.ok() || *hour > 23 || *minute > 59 || *second > 60) return std::nullopt;
  return TimePoint{std::chrono::sys_days{date}} + std::chrono::hours{*hour} + std::chrono::minutes{*minute} +
         std::chrono::seconds{*second} + std::chrono::milliseconds{*part};
}

std::string wire_id(RequestId id) {
  assert(id > 0);
  std::string text(id_length, '0');
  auto rest = static_cast<std::uint64_t>(id);
  for (std::size_t i = id_length; i-- > 0; rest /= id_base) {
    const auto digit = static_cast<char>(rest % id_base);
    text[i] = static_cast<char>(digit < 10 ? '0' + digit : 'A' + digit - 10);
  }
  return text;
}

std::optional<RequestId> read_wire_id(std::string_view text) {
  if (text.size() != id_length) return std::nullopt;
  constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<RequestId>::max());
  std::uint64_t value = 0;
  for (const char character : text) {
    const bool digit = character >= '0' && character <= '9';
    if (!digit && (character < 'A' || character > 'Z')) return std::nullopt;
    const auto worth = static_cast<std::uint64_t>(digit ? character - '0' : character - 'A' + 10);
    if (value > (largest - worth) / id_base) return std::nullopt;
    value = value * id_base + worth;
  }
  return value > 0 ? std::optional{static_cast<RequestId>(value)} : std::nullopt;
}

}  // namespace tutti
