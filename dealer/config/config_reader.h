#pragma once

#include <filesystem>

#include <tl/expected.hpp>

#include "core/file_writer.h"
#include "dealer/config/dealer_config.h"

namespace tutti {

// Reads the dealing server's configuration from a TOML file; an error names the line. The replay file it
// names is read along.
tl::expected<DealerConfig, FileError> load_dealer_config(const std::filesystem::path& file);

}  // namespace tutti
