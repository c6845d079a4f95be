#include "core/home_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "core/texts.h"

namespace tutti {

namespace fs = std::filesystem;

namespace {

// What the holder wrote: its process number. Empty in the moment between its lock and its text.
std::string holder_of(const fs::path& lock) {
  const auto text = read_file(lock);
  return text ? std::string{split(*text, "\n")[0]} : std::string{};
}

}  // namespace

tl::expected<HomeLock, FileError> HomeLock::take(const fs::path& home) {
  if (auto made = make_private_folder(home); !made) return tl::unexpected(made.error());
  const fs::path lock = home / "tutti.lock";
  Descriptor file{::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)};
  if (!file.open()) return tl::unexpected(system_failure(lock, errno));
  if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK) return tl::unexpected(system_failure(lock, errno));
    const std::string holder = holder_of(lock);
    return tl::unexpected(
        FileError{home, "another terminal is using this folder: process " +
                            (holder.empty() ? std::string{"unknown, it is just starting"} : holder)});
  }
  const std::string text = std::to_string(::getpid()) + "\n";
  if (::fchmod(file.get(), 0600) != 0 || ::ftruncate(file.get(), 0) != 0 || !file.write(text)) {
    return tl::unexpected(system_failure(lock, errno));
  }
  return HomeLock{std::move(file)};
}

}  // namespace tutti
