#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace tutti {

// The network file system that a folder lies on; empty for a local one, and where nobody can say. There
// locks and what is synchronised can't be relied on.
std::string_view network_file_system(const std::filesystem::path& folder);
// By the number that the system knows it by.
std::string_view network_file_system(std::int64_t kind);

}  // namespace tutti
