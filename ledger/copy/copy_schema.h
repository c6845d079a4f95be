#pragma once

#include <string>

#include "ledger/ledger_schema.h"

// What the server has: the tables of the ledger, with its id before every key, and views over all terminals.
namespace tutti::copy_schema {

// Of all that lies in the schema there. Raise it with every change of it, those of the ledger's own included.
inline constexpr int version = 1;
static_assert(ledger_schema::version == 2, "the copy's tables are those of the ledger");

// Statements that make what is missing, in one transaction.
std::string create();
// Adds rows, all their values as text: $1 the ledger's id, then an array for each column. Those that are
// there stay as they are.
std::string insert(const ledger_schema::Table& table);
// Adds what a ledger is: the values of its columns as text, bytes that it has none of as none.
std::string insert_ledger();

}  // namespace tutti::copy_schema
