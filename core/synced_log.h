#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include <tl/expected.hpp>

#include "core/descriptor.h"
#include "core/file_writer.h"

namespace tutti {

// A file that only grows, by pieces that are on the disk once append() has returned.
class SyncedLog {
 public:
  // Opens an existing file to go on at its end.
  static tl::expected<SyncedLog, FileError> open(const std::filesystem::path& file);

  // Makes the file, or empties it; nothing of that is waited for.
  static tl::expected<SyncedLog, FileError> begin(const std::filesystem::path& file);

  // Writes a piece and waits until the disk has it. What can't be written whole is taken back.
  tl::expected<void, FileError> append(std::string_view piece);
  // The same without waiting for the disk: the piece outlives the program, and may not outlive the machine.
  tl::expected<void, FileError> write(std::string_view piece);
  // After a failure that leaves open what the file holds: it takes no more and must be replaced.
  bool broken() const { return broken_; }
  std::uint64_t size() const { return size_; }  // bytes

 private:
  SyncedLog(std::filesystem::path file, Descriptor out, std::uint64_t size)
      : file_(std::move(file)), out_(std::move(out)), size_(size) {}

  std::filesystem::path file_;
  Descriptor out_;
  std::uint64_t size_;
  bool broken_ = false;
};

}  // namespace tutti
