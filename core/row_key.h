#pragma once

#include <cstddef>
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
  constexpr RowKey(char prefix, std::int64_t number) : number_(number), prefix_(prefix) {}

  // Nothing unless the text is one character followed by a decimal number.
  static std::optional<RowKey> parse(std::string_view text);

  constexpr bool empty() const { return prefix_ == '\0'; }
  constexpr char prefix() const { return prefix_; }
  constexpr std::int64_t number() const { return number_; }
  std::string text() const;

  constexpr bool operator==(const RowKey&) const = default;

  struct Hash {
    constexpr std::size_t operator()(const RowKey& key) const {
      return static_cast<std::size_t>(static_cast<std::uint64_t>(key.number_) ^
                                      static_cast<std::uint64_t>(static_cast<unsigned char>(key.prefix_))
                                          << 56);
    }
  };

 private:
  std::int64_t number_ = 0;
  char prefix_ = '\0';
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
