#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "tests/support/test_terminal.h"

namespace tutti::testing {

// Runs in a process of its own that ends without a word, as if killed.
void killed(const std::function<void()>& life);
// All rows of a query to the ledger of a home, cells with "|" between them; or what is wrong with it.
Texts ask_ledger(const std::filesystem::path& home, const std::string& sql);

}  // namespace tutti::testing
