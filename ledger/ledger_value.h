#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>

namespace tutti {

// A value of a row as it lies in the file: none, a whole number, a text, or bytes.
using LedgerBytes = std::vector<unsigned char>;
using LedgerValue = std::variant<std::monostate, std::int64_t, std::string, LedgerBytes>;

LedgerValue value_of(const SQLite::Column& column);
void bind_value(SQLite::Statement& statement, int place, const LedgerValue& value);

// What tells one plan of an act from another.
LedgerBytes digest_of_plan(std::string_view plan);

}  // namespace tutti
