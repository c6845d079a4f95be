#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tutti {

// Unique key of a row: a one-letter prefix and a number ("C7", "T81200340"). Where the number is unique
// within an account only, the account number belongs to the key as well, though its text does not show it.
// Text is made only when asked for.
class RowKey {
 public:
  constexpr RowKey() = default;
  constexpr RowKey(char prefix, std::int64_t number, std::int32_t account = 0)
      : number_(number), account_(account), prefix_(prefix) {}

  // Nothing unless the text is one character followed by a decimal number.
  static std::optional<RowKey> parse(std::string_view text);

  constexpr bool empty() const { return prefix_ == '\0'; }
  constexpr char prefix() const { return prefix_; }
  constexpr std::int64_t number() const { return number_; }
  // 0 where the number alone is unique.
  constexpr std::int32_t account() const { return account_; }
  std::string text() const;

  constexpr bool operator==(const RowKey&) const = default;

  struct Hash {
    constexpr std::size_t operator()(const RowKey& key) const {
      // Odd and large, so that accounts next to each other with the same numbers are spread.
      constexpr std::uint64_t spread = 0x9E37'79B9'7F4A'7C15;
      return static_cast<std::size_t>(
          static_cast<std::uint64_t>(key.number_) ^ static_cast<std::uint64_t>(key.account_) * spread ^
          static_cast<std::uint64_t>(static_cast<unsigned char>(key.prefix_)) << 56);
    }
  };

 private:
  std::int64_t number_ = 0;
  std::int32_t account_ = 0;
  char prefix_ = '\0';
};

// Accounts: the session number in the accounts list, the account number in the order windows.
constexpr RowKey client_key(std::int64_t number) {
  return {'C', number};
}
// Positions and pending orders: a server may give two accounts the same number.
constexpr RowKey ticket_key(std::int64_t ticket, std::int32_t account) {
  return {'T', ticket, account};
}
constexpr RowKey order_key(std::int64_t order, std::int32_t account) {
  return {'P', order, account};
}

}  // namespace tutti
