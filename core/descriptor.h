#pragma once

#include <filesystem>
#include <string_view>
#include <utility>

#include "core/file_writer.h"

namespace tutti {

// Owns one open file of the operating system; for the file routines of this folder only. Closing may report a
// late write error, so the owner closes by hand where it matters.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { close(); }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;

  bool open() const { return fd_ >= 0; }
  int get() const { return fd_; }
  bool close();
  // Writes everything; false leaves the reason in errno.
  bool write(std::string_view content) const;
  // Makes the names of a folder last through a power failure, as far as its file system can.
  static void sync_folder(const std::filesystem::path& folder);

 private:
  int fd_;
};

// The error of the operating system with this number.
FileError system_failure(const std::filesystem::path& file, int code);

}  // namespace tutti
