#pragma once

#include <memory>

#include <tl/expected.hpp>

#include "apps/terminal.h"
#include "dealer/link/dealing_server.h"
#include "sessions/contract/backend.h"

namespace tutti {

// Opens what stands behind the clients of every program, for Terminal::open; the one place that says which
// that is. `clock` outlives it. `server` is told the dealing server within the program, which lives as long,
// for what only it can tell. Fails, naming file and line, when a file can't be read.
tl::expected<std::unique_ptr<Backend>, FileError> open_backend(const TerminalOptions& options,
                                                               const Clock& clock,
                                                               const DealingServer** server = nullptr);

}  // namespace tutti
