#include "core/synced_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tutti {

tl::expected<SyncedLog, FileError> SyncedLog::open(const std::filesystem::path& file) {
  Descriptor out{::open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW)};
  struct stat state {};
  if (!out.open() || ::fstat(out.get(), &state) != 0) return tl::unexpected(system_failure(file, errno));
  return SyncedLog{file, std::move(out), static_cast<std::uint64_t>(state.st_size)};
}

tl::expected<void, FileError> SyncedLog::append(std::string_view piece) {
  if (broken_) return tl::unexpected(FileError{file_, "is left unfinished by an earlier failure"});
  if (!out_.write(piece)) {
    const int code = errno;
    broken_ = ::ftruncate(out_.get(), static_cast<off_t>(size_)) != 0;
    return tl::unexpected(system_failure(file_, code));
  }
  // Once a sync has failed, a second one that succeeds says nothing about what the first one lost.
  if (::fdatasync(out_.get()) != 0) {
    broken_ = true;
    return tl::unexpected(system_failure(file_, errno));
  }
  size_ += piece.size();
  return {};
}

}  // namespace tutti
