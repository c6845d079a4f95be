#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tutti::ledger_schema {

// Of the tables below. A file with a greater one was made by a newer program.
inline constexpr int version = 2;

// One whose rows are never changed and lie under the hash of their commit. Its first column is `seq`.
struct Table {
  std::string_view name;
  std::string_view columns;  // without seq, with ", " between them
  int count = 0;             // of these columns
  int first_count = 0;       // so many of them the first version had, and its commits have in their hash
  // Those that a file of this version has.
  int count_in(std::int64_t of_version) const { return of_version < 2 ? first_count : count; }
  std::string_view columns_in(std::int64_t of_version) const;
};

enum class Chained { account, ticket, request, event, fill };
// In the order in which the hash of a commit takes them.
std::span<const Table> chained();
const Table& table(Chained which);

// Statements that make a new file: tables, indices, and the triggers that keep rows as they are.
std::string_view create();
// Statements that make a file of the first version one of this.
std::string migrate();
// What is kept besides for speed, and can be made again from the rest at any time.
std::string_view create_derived();
// Names of these tables.
std::span<const std::string_view> derived_tables();
std::string_view fill_derived();

}  // namespace tutti::ledger_schema
