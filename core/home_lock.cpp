#include "core/home_lock.h"

#include <fcntl.h>
#include <poll.h>
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

constexpr const char* lock_name = "tutti.lock";

// What the holder wrote: its process number. Empty in the moment between its lock and its text.
std::string holder_of(const fs::path& lock) {
  const auto text = read_file(lock);
  return text ? std::string{split(*text, "\n")[0]} : std::string{};
}

// Somebody who looks whether the folder is taken holds it for a moment.
bool lock_now(int descriptor) {
  for (int tries = 5; tries > 0; --tries) {
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) return true;
    if (errno != EWOULDBLOCK || tries == 1) break;
    ::poll(nullptr, 0, 1);
    errno = EWOULDBLOCK;
  }
  return false;
}

// Locks one of the two. A file system that can't lock a folder, as over a network, leaves it to the file.
tl::expected<void, FileError> take_one(const Descriptor& what, const fs::path& home, bool is_folder,
                                       bool& held) {
  if (lock_now(what.get())) return {};
  const fs::path lock = home / lock_name;
  if (errno != EWOULDBLOCK) {
    if (is_folder) return {};
    return tl::unexpected(system_failure(lock, errno));
  }
  held = true;
  const std::string holder = holder_of(lock);
  return tl::unexpected(FileError{home, "another terminal is using this folder: process " +
                                            (holder.empty() ? std::string{"unknown"} : holder)});
}

}  // namespace

tl::expected<HomeLock, FileError> HomeLock::take(const fs::path& home,
                                                 const std::function<bool()>& try_again) {
  for (;;) {
    bool held = false;
    auto lock = take_now(home, held);
    if (lock || !held || !try_again || !try_again()) return lock;
  }
}

bool HomeLock::taken(const fs::path& home) {
  for (const fs::path& what : {home, home / lock_name}) {
    const Descriptor opened{::open(what.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)};
    if (opened.open() && ::flock(opened.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK) return true;
  }
  return false;
}

tl::expected<HomeLock, FileError> HomeLock::take_now(const fs::path& home, bool& held) {
  if (auto made = make_private_folder(home); !made) return tl::unexpected(made.error());
  Descriptor folder{::open(home.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (!folder.open()) return tl::unexpected(system_failure(home, errno));
  if (auto taken = take_one(folder, home, true, held); !taken) return tl::unexpected(taken.error());
  const fs::path lock = home / lock_name;
  Descriptor file{::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600)};
  if (!file.open()) return tl::unexpected(system_failure(lock, errno));
  if (auto taken = take_one(file, home, false, held); !taken) return tl::unexpected(taken.error());
  const std::string text = std::to_string(::getpid()) + "\n";
  if (::fchmod(file.get(), 0600) != 0 || ::ftruncate(file.get(), 0) != 0 || !file.write(text)) {
    return tl::unexpected(system_failure(lock, errno));
  }
  return HomeLock{std::move(folder), std::move(file)};
}

}  // namespace tutti
