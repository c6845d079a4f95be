#include "ledger/ledger_value.h"

#include <sodium.h>

namespace tutti {

LedgerValue value_of(const SQLite::Column& column) {
  if (column.isNull()) return {};
  if (column.isInteger()) return column.getInt64();
  if (!column.isBlob()) return column.getString();
  const auto* first = static_cast<const unsigned char*>(column.getBlob());
  return LedgerBytes(first, first + column.getBytes());
}

void bind_value(SQLite::Statement& statement, int place, const LedgerValue& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    statement.bind(place, *number);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    statement.bind(place, *text);
  } else if (const auto* blob = std::get_if<LedgerBytes>(&value)) {
    statement.bind(place, blob->data(), static_cast<int>(blob->size()));
  } else {
    statement.bind(place);
  }
}

LedgerBytes digest_of_plan(std::string_view plan) {
  LedgerBytes out(16);
  ::crypto_generichash(out.data(), out.size(), reinterpret_cast<const unsigned char*>(plan.data()),
                       plan.size(), nullptr, 0);
  return out;
}

}  // namespace tutti
