#include "core/appended_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/file_writer.h"
#include "core/secret.h"

namespace tutti {
namespace {

namespace fs = std::filesystem;

// A new one is the operator's whatever the mask of the process.
int open_to_append(const fs::path& file) {
  constexpr int how = O_RDWR | O_APPEND | O_CLOEXEC | O_NONBLOCK;
  constexpr mode_t private_file = 0600;
  for (;;) {
    const int there = ::open(file.c_str(), how);
    if (there >= 0 || errno != ENOENT) return there;
    const int made = ::open(file.c_str(), how | O_CREAT | O_EXCL, private_file);
    if (made >= 0) (void)::fchmod(made, private_file);
    if (made >= 0 || errno != EEXIST) return made;
  }
}

// True when what is appended would go on with the last line of a file of `size` bytes.
bool ends_within_a_line(const Descriptor& file, off_t size) {
  char last = '\n';
  return size > 0 && ::pread(file.get(), &last, 1, size - 1) == 1 && last != '\n';
}

}  // namespace

tl::expected<AppendedFile, FileError> AppendedFile::open(const fs::path& file) {
  int fd = open_to_append(file);
  if (fd < 0 && errno == ENOENT) {
    if (auto made = make_private_folder(file.parent_path()); !made) return tl::unexpected(made.error());
    fd = open_to_append(file);
  }
  if (fd < 0) return tl::unexpected(system_failure(file, errno));
  Descriptor out{fd};
  struct stat status {};
  if (::fstat(fd, &status) != 0) return tl::unexpected(system_failure(file, errno));
  if (!S_ISREG(status.st_mode)) return tl::unexpected(no_regular_file(file));
  return AppendedFile{file, std::move(out), status.st_dev, status.st_ino};
}

// One look at the name tells both whether it still is this file and how long that is.
tl::expected<void, FileError> AppendedFile::append(std::string_view lines) {
  struct stat named {};
  if (::stat(file_.c_str(), &named) != 0 || named.st_ino != inode_ || named.st_dev != device_) {
    auto again = open(file_);
    if (!again) return tl::unexpected(again.error());
    *this = std::move(*again);
    if (::fstat(out_.get(), &named) != 0) return tl::unexpected(system_failure(file_, errno));
  }
  const bool end_first = named.st_size != ended_at_ && ends_within_a_line(out_, named.st_size);
  if (end_first ? out_.write(Secret::joined({"\n", lines}).reveal()) : out_.write(lines)) {
    ended_at_ = named.st_size + static_cast<off_t>(lines.size()) + (end_first ? 1 : 0);
    return {};
  }
  const int code = errno;
  (void)!::ftruncate(out_.get(), named.st_size);
  return tl::unexpected(system_failure(file_, code));
}

tl::expected<void, FileError> AppendedFile::close() {
  if (!out_.close()) return tl::unexpected(system_failure(file_, errno));
  return {};
}

}  // namespace tutti
