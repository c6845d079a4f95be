#include "core/key_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <pwd.h>
#include <sodium.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <utility>

#include "core/descriptor.h"

namespace tutti {
namespace {

namespace fs = std::filesystem;

constexpr mode_t private_file = 0600;
constexpr mode_t rights_of_others = 0077;

fs::path home_folder() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
  const passwd* user = ::getpwuid(::geteuid());
  return user != nullptr && user->pw_dir != nullptr ? fs::path{user->pw_dir} : fs::path{};
}

// Why an open file can't be the key; empty when it can.
std::string fault_of(const struct stat& file) {
  if (!S_ISREG(file.st_mode)) return "is no plain file";
  if (file.st_uid != ::geteuid()) return fmt::format("belongs to another user (number {})", file.st_uid);
  if ((file.st_mode & rights_of_others) != 0) {
    return fmt::format("others have rights to it (mode {:04o}); it must have mode 0600",
                       file.st_mode & 07777U);
  }
  if (file.st_size != KeyFile::key_size) {
    return fmt::format("holds {} bytes instead of {}", file.st_size, KeyFile::key_size);
  }
  return {};
}

}  // namespace

KeyFile::KeyFile(fs::path file) : path_(file.empty() ? default_path() : std::move(file)) {}

fs::path KeyFile::default_path() {
  const fs::path below = fs::path{"tutti"} / "key";
  // A relative folder would mean another one from every place the program is started at.
  if (const char* state = std::getenv("XDG_STATE_HOME"); state != nullptr && fs::path{state}.is_absolute()) {
    return state / below;
  }
  const fs::path home = home_folder();
  return home.empty() ? fs::path{} : home / ".local" / "state" / below;
}

tl::expected<const Secret*, FileError> KeyFile::find() {
  if (key_.empty()) {
    auto read_key = read();
    if (!read_key) return tl::unexpected(read_key.error());
    key_ = std::move(*read_key);
  }
  return key_.empty() ? nullptr : &key_;
}

tl::expected<const Secret*, FileError> KeyFile::find_or_create() {
  if (auto found = find(); !found || *found != nullptr) return found;
  if (auto created = create(); !created) return tl::unexpected(created.error());
  return find();
}

// An empty secret when the file is missing.
tl::expected<Secret, FileError> KeyFile::read() const {
  const auto refused = [this](const std::string& reason) {
    return tl::unexpected(FileError{path_, "this key of the account records is refused: " + reason});
  };
  if (path_.empty()) return Secret{};
  // Every use of a key begins with its reading.
  if (::sodium_init() < 0) return refused("there is no source of random numbers");
  // Opening must not wait for the other end of a pipe.
  const Descriptor in{::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)};
  if (!in.open()) {
    if (errno == ENOENT) return Secret{};
    if (errno == ELOOP) return refused("it is a symbolic link");
    return refused(system_failure(path_, errno).reason);
  }
  struct stat status {};
  if (::fstat(in.get(), &status) != 0) return refused(system_failure(path_, errno).reason);
  if (const std::string fault = fault_of(status); !fault.empty()) return refused(fault);
  ssize_t taken = 0;
  Secret key = Secret::filled(key_size, [&](char* out) { taken = ::read(in.get(), out, key_size); });
  if (taken != static_cast<ssize_t>(key_size)) return refused("it can't be read whole");
  return key;
}

tl::expected<void, FileError> KeyFile::create() const {
  if (path_.empty()) {
    return tl::unexpected(
        FileError{"key", "there is no place for the key of the account records: no home folder is known"});
  }
  const fs::path folder = path_.has_parent_path() ? path_.parent_path() : fs::path{"."};
  if (auto made = make_private_folder(folder); !made) return made;

  const Secret key = Secret::filled(key_size, [](char* out) { ::randombytes_buf(out, key_size); });
  // The new file gets the key's name only when it is whole, and only where nothing has that name.
  std::string temporary = path_.string() + ".XXXXXX";
  Descriptor out{::mkostemp(temporary.data(), O_CLOEXEC)};
  if (!out.open()) return tl::unexpected(system_failure(temporary, errno));
  const bool linked = ::fchmod(out.get(), private_file) == 0 && out.write(key.reveal()) &&
                      ::fsync(out.get()) == 0 && out.close() &&
                      (::link(temporary.c_str(), path_.c_str()) == 0 || errno == EEXIST);
  const int code = errno;
  ::unlink(temporary.c_str());
  if (!linked) return tl::unexpected(system_failure(path_, code));
  Descriptor::sync_folder(folder);
  return {};
}

}  // namespace tutti
