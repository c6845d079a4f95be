#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

#include <tl/expected.hpp>

#include "core/file_error.h"

namespace tutti {

// Hands out the lines of a text file one after another, in order and without their ends, holding no more of
// it than the longest line; so it may be of any size. A byte order mark is dropped. Fails, maybe after some
// lines, for what is missing or no regular file.
tl::expected<void, FileError> read_lines(const std::filesystem::path& file,
                                         const std::function<void(std::string_view line)>& take);

// A line without the carriage return that stands before its end in files of other systems.
inline std::string_view without_return(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace tutti
