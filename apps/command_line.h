#pragma once

#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "apps/console.h"
#include "apps/terminal.h"

namespace tutti {

// The options that every program of the terminal takes. `program` is what it was started as; the application
// folder is the one beside it unless --home names another.
void add_terminal_options(CLI::App& app, TerminalOptions& options, const char* program);

// Why the application folder is not to be used, empty when it is: an unknown one is made with --create only,
// so that a slip of the pen is no new folder without accounts.
std::string unknown_home(const TerminalOptions& options);

// Asks, when --fresh has a book to throw away and --yes is not given. Nothing: go on. Else the exit status:
// nobody could be asked, or the answer was no.
std::optional<int> ask_for_fresh(const TerminalOptions& options, Console& console);
// The question, empty when there is nothing to ask.
std::string fresh_question(const TerminalOptions& options);

// Checks of option values: the fault in words, empty when there is none. An unset variable of a script must
// not come to mean everything.
std::string check_filled(const std::string& text);

}  // namespace tutti
