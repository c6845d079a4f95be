#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <utility>

#include <tl/expected.hpp>

#include "core/descriptor.h"
#include "core/file_error.h"

namespace tutti {

// A text file that lines are added to at its end, kept open between them.
class AppendedFile {
 public:
  // Makes the file with mode 0600 when it is missing, and its folder. What is no regular file is refused.
  static tl::expected<AppendedFile, FileError> open(const std::filesystem::path& file);

  // Appends lines in one write. A last line without an end, as a crash or an editor leaves it, is ended
  // first. What can't be written whole is taken back. One that was removed or replaced meanwhile is opened
  // anew.
  tl::expected<void, FileError> append(std::string_view lines);
  // What the system tells only now.
  tl::expected<void, FileError> close();

 private:
  AppendedFile(std::filesystem::path file, Descriptor out, dev_t device, ino_t inode)
      : file_(std::move(file)), out_(std::move(out)), device_(device), inode_(inode) {}

  std::filesystem::path file_;
  Descriptor out_;
  dev_t device_;
  ino_t inode_;
  std::int64_t ended_at_ = 0;  // size at which the last line is known to have an end
};

}  // namespace tutti
