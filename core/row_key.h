#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tutti {

// Unique key of a row: a one-letter prefix and a number ("C7", "T81200340"). Text is made only when asked
// for.
class RowKey {
 public:
  constexpr RowKey() = default;
  // `number` may be negative; its magnitude stays below 2^55.
  constexpr RowKey(char prefix, std::int64_t number)
      : packed_(static_cast<std::uint64_t>(static_cast<unsigned char>(prefix)) << 56 |
                (static_cast<std::uint64_t>(number) & number_mask)) {}

  // Nothing unless the text is one character followed by a decimal number.
  static std::optional<RowKey> parse(std::string_view text);

  constexpr bool empty() const { return packed_ == 0; }
  constexpr char prefix() const { return static_cast<char>(packed_ >> 56); }
  constexpr std::int64_t number() const { return static_cast<std::int64_t>(packed_ << 8) >> 8; }
  constexpr std::uint64_t packed() const { return packed_; }
  std::string text() const;

  constexpr bool operator==(const RowKey&) const = default;

 private:
  static constexpr std::uint64_t number_mask = (std::uint64_t{1} << 56) - 1;
  std::uint64_t packed_ = 0;
};

// Accounts: the session number in the accounts list, the account number in the order windows.
constexpr RowKey client_key(std::int64_t number) {
  return {'C', number};
}
constexpr RowKey ticket_key(std::int64_t ticket) {
  return {'T', ticket};
}
constexpr RowKey order_key(std::int64_t order) {
  return {'P', order};
}

}  // namespace tutti
