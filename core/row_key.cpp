#include "core/row_key.h"

#include <charconv>

namespace tutti {

std::optional<RowKey> RowKey::parse(std::string_view text) {
  if (text.size() < 2) return std::nullopt;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return RowKey{text.front(), number};
}

std::string RowKey::text() const {
  if (empty()) return {};
  return prefix() + std::to_string(number());
}

}  // namespace tutti
