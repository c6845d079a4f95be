#include "core/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tutti {

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

void Descriptor::sync_folder(const std::filesystem::path& folder) {
  const Descriptor directory{::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (directory.open()) ::fsync(directory.get());
}

FileError system_failure(const std::filesystem::path& file, int code) {
  return {file, std::strerror(code)};
}

}  // namespace tutti
