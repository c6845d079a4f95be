#include "core/file_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>

#include "core/descriptor.h"

namespace tutti {
namespace {

namespace fs = std::filesystem;

constexpr mode_t private_file = 0600;
constexpr mode_t private_folder = 0700;

// True when what is appended would go on with the last line of a file of `size` bytes.
bool ends_within_a_line(const Descriptor& file, off_t size) {
  char last = '\n';
  return size > 0 && ::pread(file.get(), &last, 1, size - 1) == 1 && last != '\n';
}

}  // namespace

tl::expected<void, FileError> make_private_folder(const fs::path& folder) {
  std::error_code error;
  if (folder.empty() || fs::is_directory(folder, error)) return {};
  if (auto parent = make_private_folder(folder.parent_path()); !parent) return parent;
  // The mask of the process may have taken the owner's own rights away.
  if (::mkdir(folder.c_str(), private_folder) != 0 ? errno != EEXIST
                                                   : ::chmod(folder.c_str(), private_folder) != 0) {
    return tl::unexpected(system_failure(folder, errno));
  }
  return {};
}

void keep_private(const fs::path& file) {
  (void)::chmod(file.c_str(), private_file);
  (void)::chmod(file.parent_path().c_str(), private_folder);
}

tl::expected<void, FileError> replace_file(const fs::path& file, std::string_view content) {
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path{"."};
  if (auto made = make_private_folder(folder); !made) return made;
  fs::path temporary = file;
  temporary += ".new";
  Descriptor out{
      ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, private_file)};
  if (!out.open()) return tl::unexpected(system_failure(temporary, errno));
  // A temporary file left behind by a crash may carry another mode.
  if (::fchmod(out.get(), private_file) != 0 || !out.write(content) || ::fsync(out.get()) != 0 ||
      !out.close() || ::rename(temporary.c_str(), file.c_str()) != 0) {
    const int code = errno;
    ::unlink(temporary.c_str());
    return tl::unexpected(system_failure(file, code));
  }
  Descriptor::sync_folder(folder);
  return {};
}

tl::expected<void, FileError> append_file(const fs::path& file, std::string_view content) {
  if (auto made = make_private_folder(file.parent_path()); !made) return made;
  Descriptor out{::open(file.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, private_file)};
  struct stat before {};
  if (!out.open() || ::fstat(out.get(), &before) != 0) return tl::unexpected(system_failure(file, errno));
  if (before.st_size == 0) (void)::fchmod(out.get(), private_file);  // new: whatever the mask of the process
  const bool written =
      ends_within_a_line(out, before.st_size) ? out.write("\n" + std::string{content}) : out.write(content);
  if (!written) {
    const int code = errno;
    (void)::ftruncate(out.get(), before.st_size);
    return tl::unexpected(system_failure(file, code));
  }
  if (!out.close()) return tl::unexpected(system_failure(file, errno));
  return {};
}

tl::expected<std::string, FileError> read_file(const fs::path& file) {
  std::error_code error;
  if (fs::is_directory(file, error)) return tl::unexpected(system_failure(file, EISDIR));
  std::ifstream in(file, std::ios::binary);
  if (!in) return tl::unexpected(system_failure(file, errno != 0 ? errno : ENOENT));
  std::string content{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) return tl::unexpected(system_failure(file, EIO));
  return content;
}

}  // namespace tutti
