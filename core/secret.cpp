#include "core/secret.h"

#include <sodium.h>

#include <algorithm>

namespace tutti {

void wipe(std::string& text) noexcept {
  sodium_memzero(text.data(), text.size());
  text.clear();
}

Secret::Secret(std::string_view text, int)
    : Secret(filled(text.size(), [text](char* out) { std::copy(text.begin(), text.end(), out); })) {}

Secret Secret::joined(std::span<const std::string_view> pieces) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces)
    size += piece.size();
  return filled(size, [pieces](char* out) {
    for (const std::string_view piece : pieces)
      out = std::copy(piece.begin(), piece.end(), out);
  });
}

void Secret::wipe() noexcept {
  if (size_ != 0) sodium_memzero(bytes_.get(), size_);
}

bool Secret::same(const Secret& other) const {
  return size_ == other.size_ && (size_ == 0 || sodium_memcmp(bytes_.get(), other.bytes_.get(), size_) == 0);
}

}  // namespace tutti
