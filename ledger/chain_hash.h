#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/secret.h"
#include "ledger/ledger_value.h"

namespace tutti {

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
  // The same of one as it lies in the file.
  void add(const SQLite::Column& column);
  void add(std::string_view text);
  Bytes end(std::int64_t number, std::int64_t first, std::int64_t last, std::int64_t time);

 private:
  void add_number(std::int64_t number);

  Secret key_;
  std::string encoded_;
};

}  // namespace tutti
