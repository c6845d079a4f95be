#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "core/file_error.h"
#include "core/secret.h"

namespace tutti {

// Larger files are no data of this program's.
inline constexpr std::size_t largest_file = 256u << 20;  // bytes

inline constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

// Replaces a whole file so that a crash leaves either the old or the new content: a temporary file in the
// same folder is written, synced and renamed over it, then the folder is synced. A new file has mode 0600; a
// replaced one keeps its mode without the rights of others. Missing folders are made with mode 0700.
tl::expected<void, FileError> replace_file(const std::filesystem::path& file, std::string_view content);

// Appends lines as AppendedFile does, and closes the file.
tl::expected<void, FileError> append_file(const std::filesystem::path& file, std::string_view content);

// Makes a folder and those above it that are missing, each with mode 0700 whatever the mask of the process.
tl::expected<void, FileError> make_private_folder(const std::filesystem::path& folder);

// Takes the rights of others from a file and from its folder, as far as both belong to the operator. Nobody
// gains any.
void keep_private(const std::filesystem::path& file);

// False only where there is no such file. Whatever else keeps it from being looked at is an error, as is a
// link that leads nowhere: it may lead to a disk that is not there yet.
tl::expected<bool, FileError> file_exists(const std::filesystem::path& file);

// Whole content of a file without its byte order mark, in a buffer that is wiped. A missing file is an error,
// as is one that is no regular file or larger than largest_file.
tl::expected<Secret, FileError> read_secret_file(const std::filesystem::path& file);
// The same for what tells no password.
tl::expected<std::string, FileError> read_file(const std::filesystem::path& file);

}  // namespace tutti
