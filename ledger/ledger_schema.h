#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tutti::ledger_schema {

// Of the tables below. A file with a greater one was made by a newer program.
inline constexpr int version = 2;

struct Column {
  std::string_view name;
  std::string_view type;    // INTEGER, TEXT or BLOB
  std::string_view rule{};  // of the column alone, such as NOT NULL
};

// One whose rows are only added. Its first column numbers them.
struct Table {
  std::string_view name;
  std::span<const Column> columns;
  std::size_t first_count =
      0;  // so many behind `seq` the first version had, and its commits have in their hash
  std::string_view unique{};  // columns that are so together
  // Those behind `seq` that a file of this version has.
  std::size_t count_in(std::int64_t of_version) const {
    return of_version < 2 ? first_count : columns.size() - 1;
  }
  std::string names_in(std::int64_t of_version) const { return names(1, 1 + count_in(of_version)); }
  // From this column to before that one, with ", " between them.
  std::string names(std::size_t from, std::size_t to) const;
};

// As a name stands in a statement, whatever other meaning it has there.
std::string quoted(std::string_view name);

enum class Chained { account, ticket, request, event, fill };
// Those whose rows are numbered together by `seq` and lie under the hash of their commit, in the order in
// which it takes them.
std::span<const Table> chained();
const Table& table(Chained which);
// The log of the commits, and which ledger it is.
const Table& commits();
const Table& ledgers();

// Statements that make a new file: tables, indices, and the triggers that keep rows as they are.
std::string_view create();
// The statement that makes the table of what the operator accepted to be missing, where there is none.
std::string_view create_missing();
// Statements that make a file of the first version one of this.
std::string migrate();
// What is kept besides for speed, and can be made again from the rest at any time.
std::string_view create_derived();
// Names of these tables.
std::span<const std::string_view> derived_tables();
std::string_view fill_derived();

}  // namespace tutti::ledger_schema
