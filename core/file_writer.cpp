#include "core/file_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

namespace tutti {
namespace {

namespace fs = std::filesystem;

constexpr mode_t private_file = 0600;

FileError failure(const fs::path& file, int code) {
  return {file, std::strerror(code)};
}

// Owns one descriptor. Closing may report a late write error, so the owner closes by hand where it matters.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool open() const { return fd_ >= 0; }
  int get() const { return fd_; }
  bool close() {
    const int fd = fd_;
    fd_ = -1;
    return ::close(fd) == 0;
  }

 private:
  int fd_;
};

bool write_all(int fd, std::string_view content) {
  while (!content.empty()) {
    const ssize_t n = ::write(fd, content.data(), content.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    content.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

tl::expected<void, FileError> make_folder(const fs::path& folder) {
  std::error_code error;
  if (folder.empty() || fs::is_directory(folder, error)) return {};
  if (auto parent = make_folder(folder.parent_path()); !parent) return parent;
  if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) return tl::unexpected(failure(folder, errno));
  return {};
}

}  // namespace

tl::expected<void, FileError> replace_file(const fs::path& file, std::string_view content) {
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path{"."};
  if (auto made = make_folder(folder); !made) return made;
  fs::path temporary = file;
  temporary += ".new";
  Descriptor out{
      ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, private_file)};
  if (!out.open()) return tl::unexpected(failure(temporary, errno));
  // A temporary file left behind by a crash may carry another mode.
  if (::fchmod(out.get(), private_file) != 0 || !write_all(out.get(), content) || ::fsync(out.get()) != 0 ||
      !out.close() || ::rename(temporary.c_str(), file.c_str()) != 0) {
    const int code = errno;
    ::unlink(temporary.c_str());
    return tl::unexpected(failure(file, code));
  }
  Descriptor directory{::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (directory.open()) ::fsync(directory.get());
  return {};
}

tl::expected<void, FileError> append_file(const fs::path& file, std::string_view content) {
  if (auto made = make_folder(file.parent_path()); !made) return made;
  Descriptor out{::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, private_file)};
  if (!out.open()) return tl::unexpected(failure(file, errno));
  if (!write_all(out.get(), content) || !out.close()) return tl::unexpected(failure(file, errno));
  return {};
}

tl::expected<std::string, FileError> read_file(const fs::path& file) {
  std::error_code error;
  if (fs::is_directory(file, error)) return tl::unexpected(failure(file, EISDIR));
  std::ifstream in(file, std::ios::binary);
  if (!in) return tl::unexpected(failure(file, errno != 0 ? errno : ENOENT));
  std::string content{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) return tl::unexpected(failure(file, EIO));
  return content;
}

}  // namespace tutti
