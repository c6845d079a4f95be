#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tutti {

// What may hold a request back. The first ones are set by the operator, in this order.
enum class Limit : std::uint8_t {
  ticket_lots,
  account_lots,
  equity_lots,
  account_value,
  quote_age,
  price_distance,
  same_ticket,
  tickets_per_minute,
  orders_per_second,
  queue_age,
  odd_shares,
  // Always judged:
  unknown,     // the account has a request of the symbol whose outcome is unknown
  restored,    // the server has taken requests of the account that the ledger lacks
  not_stored,  // the ledger can't store a close or a cancel
};
inline constexpr std::size_t set_limits = static_cast<std::size_t>(Limit::unknown);

// What the operator sets for each: a number from `low` to `high`, or never. Where both are the same there is
// nothing but on and off.
struct LimitField {
  std::string_view key;   // in the file
  std::string_view name;  // on the screen
  std::string_view unit;
  std::optional<double> initially;  // in a new home; nothing: never
  double low = 0.0;
  double high = 0.0;
  bool whole = false;
  std::string_view meaning;  // a comment in the file, a hint on the screen

  bool on_or_off() const { return low == high; }
};
std::span<const LimitField, set_limits> limit_fields();
const LimitField& field_of(Limit limit);

// The limits as they are set; nothing: never.
class Limits {
 public:
  // Those of a new home.
  static Limits of_new_home();

  std::optional<double>& operator[](Limit limit) { return values_[static_cast<std::size_t>(limit)]; }
  const std::optional<double>& operator[](Limit limit) const {
    return values_[static_cast<std::size_t>(limit)];
  }
  bool operator==(const Limits&) const = default;

 private:
  std::array<std::optional<double>, set_limits> values_{};
};

}  // namespace tutti
