#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/secret.h"

namespace tutti {

// A value of a row as it lies in the file: none, a whole number, a text, or bytes.
using LedgerBytes = std::vector<unsigned char>;
using LedgerValue = std::variant<std::monostate, std::int64_t, std::string, LedgerBytes>;

// What tells one plan of an act from another.
LedgerBytes digest_of_plan(std::string_view plan);

// The hash of one commit: keyed, over the hash of the commit before and all rows that it adds, each value
// with its type and length, numbers with the lowest byte first.
class ChainHash {
 public:
  // Of the encoding, and of the columns that a row has in it; commits of older ones stay as they are.
  static constexpr std::int64_t format = 2;
  using Bytes = std::array<unsigned char, 32>;

  // `key`: that of the account records, from which the ledger's own is derived.
  explicit ChainHash(const Secret& key);

  void begin(const Bytes& before, std::int64_t of_format = format);
  void add(std::string_view table, std::int64_t seq);
  void add(const LedgerValue& value);
  void add(std::string_view text);
  Bytes end(std::int64_t number, std::int64_t first, std::int64_t last, std::int64_t time);

 private:
  void add_number(std::int64_t number);

  Secret key_;
  std::string encoded_;
};

}  // namespace tutti
