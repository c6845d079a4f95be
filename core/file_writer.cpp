#include "core/file_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "core/appended_file.h"
#include "core/descriptor.h"

namespace tutti {
namespace {

namespace fs = std::filesystem;

constexpr mode_t private_file = 0600;
constexpr mode_t private_folder = 0700;
constexpr mode_t rights_of_others = 0077;

void take_from_others(const fs::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || (status.st_mode & rights_of_others) == 0) return;
  (void)::chmod(path.c_str(), status.st_mode & 07777 & ~rights_of_others);
}

// The mode that a file gets when it is replaced.
tl::expected<mode_t, FileError> mode_after(const fs::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) {
    if (errno == ENOENT) return private_file;
    return tl::unexpected(system_failure(file, errno));
  }
  if (!S_ISREG(status.st_mode)) return tl::unexpected(no_regular_file(file));
  return status.st_mode & private_folder;
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
  take_from_others(file);
  take_from_others(file.parent_path());
}

tl::expected<void, FileError> replace_file(const fs::path& file, std::string_view content) {
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path{"."};
  if (auto made = make_private_folder(folder); !made) return made;
  const auto mode = mode_after(file);
  if (!mode) return tl::unexpected(mode.error());
  fs::path temporary = file;
  temporary += ".new";
  Descriptor out{::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                        private_file)};
  if (!out.open()) return tl::unexpected(system_failure(temporary, errno));
  // A temporary file left behind by a crash may carry another mode.
  if (::fchmod(out.get(), *mode) != 0 || !out.write(content) || ::fsync(out.get()) != 0 || !out.close() ||
      ::rename(temporary.c_str(), file.c_str()) != 0) {
    const int code = errno;
    ::unlink(temporary.c_str());
    return tl::unexpected(system_failure(file, code));
  }
  Descriptor::sync_folder(folder);
  return {};
}

tl::expected<void, FileError> append_file(const fs::path& file, std::string_view content) {
  auto out = AppendedFile::open(file);
  if (!out) return tl::unexpected(out.error());
  return out->append(content).and_then([&] { return out->close(); });
}

tl::expected<bool, FileError> file_exists(const fs::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) == 0) return true;
  if (errno != ENOENT) return tl::unexpected(system_failure(file, errno));
  if (::lstat(file.c_str(), &status) == 0)
    return tl::unexpected(FileError{file, "is a link that leads nowhere"});
  return false;
}

tl::expected<Secret, FileError> read_secret_file(const fs::path& file) {
  const auto in = Descriptor::open_to_read(file);
  if (!in) return tl::unexpected(in.error());
  struct stat status {};
  if (::fstat(in->get(), &status) != 0) return tl::unexpected(system_failure(file, errno));
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > largest_file) {
    return tl::unexpected(FileError{file, "holds more than " + std::to_string(largest_file >> 20) + " MB"});
  }
  std::optional<std::size_t> taken;
  Secret content = Secret::filled(size, [&](char* out) { taken = in->read(out, size); });
  if (!taken) return tl::unexpected(system_failure(file, errno));
  std::string_view text = content.reveal().substr(0, *taken);
  if (text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
  return text.size() == size ? std::move(content) : Secret{text};
}

tl::expected<std::string, FileError> read_file(const fs::path& file) {
  auto content = read_secret_file(file);
  if (!content) return tl::unexpected(content.error());
  return std::string{content->reveal()};
}

}  // namespace tutti
