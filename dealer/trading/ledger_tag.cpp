#include "dealer/trading/ledger_tag.h"

#include <charconv>

namespace tutti {

LedgerTag ledger_tag(std::string_view id) {
  constexpr std::size_t digits = 16;
  LedgerTag out = 0;
  if (id.size() < digits) return 0;
  const auto [end, error] = std::from_chars(id.data(), id.data() + digits, out, 16);
  return error == std::errc{} && end == id.data() + digits ? out : 0;
}

}  // namespace tutti
