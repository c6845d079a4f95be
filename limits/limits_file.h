#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include <tl/expected.hpp>

#include "core/file_error.h"
#include "limits/limits.h"

namespace tutti {

// The file of the limits in the home folder, which the operator may write in: `limits.toml`, a line for each
// limit with a comment above it. A limit that has no line is as in a new home.
class LimitsFile {
 public:
  static constexpr std::string_view name = "limits.toml";

  explicit LimitsFile(const std::filesystem::path& home) : file_(home / name) {}

  const std::filesystem::path& path() const { return file_; }
  // Makes the file where there is none. What can't be read, what is out of bounds and what is not known is an
  // error that names the line, and nothing is written.
  tl::expected<Limits, FileError> open() const;
  // Writes the values into their lines; whatever else stands in the file stays as it is.
  tl::expected<void, FileError> save(const Limits& limits) const;

 private:
  static tl::expected<Limits, std::string> parse(std::string_view text);

  std::filesystem::path file_;
};

}  // namespace tutti
