#include "core/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tutti {

tl::expected<Descriptor, FileError> Descriptor::open_to_read(const std::filesystem::path& file) {
  // Opening must not wait for the other end of a pipe.
  Descriptor in{::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
  struct stat status {};
  if (!in.open() || ::fstat(in.get(), &status) != 0) return tl::unexpected(system_failure(file, errno));
  if (!S_ISREG(status.st_mode)) return tl::unexpected(no_regular_file(file));
  return in;
}

bool Descriptor::close() {
  const int fd = std::exchange(fd_, -1);
  return fd < 0 || ::close(fd) == 0;
}

bool Descriptor::write(std::string_view content) const {
  while (!content.empty()) {
    const ssize_t n = ::write(fd_, content.data(), content.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    content.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

std::optional<std::size_t> Descriptor::read(char* out, std::size_t size) const {
  std::size_t taken = 0;
  while (taken < size) {
    const ssize_t n = ::read(fd_, out + taken, size - taken);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return std::nullopt;
    if (n == 0) break;
    taken += static_cast<std::size_t>(n);
  }
  return taken;
}

void Descriptor::sync_folder(const std::filesystem::path& folder) {
  const Descriptor directory{::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (directory.open()) ::fsync(directory.get());
}

FileError no_regular_file(const std::filesystem::path& file) {
  return {file, "is no regular file"};
}

FileError system_failure(const std::filesystem::path& file, int code) {
  return {file, std::strerror(code)};
}

}  // namespace tutti
