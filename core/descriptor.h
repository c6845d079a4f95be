#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>

#include <tl/expected.hpp>

#include "core/file_error.h"

namespace tutti {

// Owns one open file of the operating system; for the file routines of this folder only. Closing may report a
// late write error, so the owner closes by hand where it matters.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { close(); }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }

  // Opens a file for reading; what is no regular file is refused, and waits for nobody.
  static tl::expected<Descriptor, FileError> open_to_read(const std::filesystem::path& file);

  bool open() const { return fd_ >= 0; }
  int get() const { return fd_; }
  bool close();
  // Writes everything; false leaves the reason in errno.
  bool write(std::string_view content) const;
  // Reads up to `size` bytes, fewer only at the end of the file; nothing leaves the reason in errno.
  std::optional<std::size_t> read(char* out, std::size_t size) const;
  // Makes the names of a folder last through a power failure, as far as its file system can.
  static void sync_folder(const std::filesystem::path& folder);

 private:
  int fd_;
};

FileError no_regular_file(const std::filesystem::path& file);
// The error of the operating system with this number.
FileError system_failure(const std::filesystem::path& file, int code);

}  // namespace tutti
