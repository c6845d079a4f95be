#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tutti::ledger_schema {

// Of the tables below. A file with a greater one was made by a newer program.
inline constexpr int version = 1;

// One whose rows are never changed and lie under the hash of their commit. Its first column is `seq`.
struct Table {
  std::string_view name;
  std::string_view columns;  // without seq, with ", " between them
  int count = 0;             // of these columns
};

enum class Chained { account, ticket, request, event, fill };
// In the order in which the hash of a commit takes them.
std::span<const Table> chained();
const Table& table(Chained which);

// Statements that make a new file: tables, indices, and the triggers that keep rows as they are.
std::string_view create();
// What is kept besides for speed, and can be made again from the rest at any time.
std::string_view create_derived();
std::string_view fill_derived();

}  // namespace tutti::ledger_schema
