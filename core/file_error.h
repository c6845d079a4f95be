#pragma once

#include <filesystem>
#include <string>

namespace tutti {

// A file operation that failed: which file, and why in the operator's words.
struct FileError {
  std::filesystem::path file;
  std::string reason;

  std::string text() const { return file.string() + ": " + reason; }
};

}  // namespace tutti
