#include "core/checksum.h"

#include <fmt/format.h>
#include <sodium.h>

#include <cstdint>
#include <iterator>

namespace tutti {

std::string checksum(std::string_view text) {
  constexpr unsigned char key[crypto_shorthash_KEYBYTES] = {};
  unsigned char hash[crypto_shorthash_BYTES];
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
  crypto_shorthash(std::begin(hash), bytes, text.size(), std::begin(key));
  std::string digits;
  for (const unsigned char byte : hash)
    fmt::format_to(std::back_inserter(digits), "{:02x}", byte);
  return digits;
}

}  // namespace tutti
