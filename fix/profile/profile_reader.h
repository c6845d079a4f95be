#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "core/file_error.h"
#include "fix/profile/broker_profile.h"

namespace tutti {

// Reads the text of a profile. The error names the line: a key that nobody knows, a value out of its range,
// one that is missing, or two that can't stand together.
tl::expected<BrokerProfile, std::string> read_broker_profile(std::string_view text);
// The same of a file; paths in it are seen from the file.
tl::expected<BrokerProfile, FileError> load_broker_profile(const std::filesystem::path& file);

}  // namespace tutti
