#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "core/file_writer.h"
#include "dealer/trading/book_reader.h"

namespace tutti {

// Nothing when there is no such file.
tl::expected<std::optional<std::string>, FileError> read_if_there(const std::filesystem::path& file);

// Keeps a copy of a file of which lines were left out as they were damaged; the text that tells so.
tl::expected<std::string, FileError> keep_damaged(const std::filesystem::path& file,
                                                  const BookReader::Outcome& found, std::string_view text);

}  // namespace tutti
