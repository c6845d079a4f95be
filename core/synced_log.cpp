#include "core/synced_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tutti {

namespace {
constexpr mode_t private_file = 0600;
}  // namespace

tl::expected<SyncedLog, FileError> SyncedLog::open(const std::filesystem::path& file) {
  Descriptor out{::open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW)};
  struct stat state {};
  if (!out.open() || ::fstat(out.get(), &state) != 0) return tl::unexpected(system_failure(file, errno));
  return SyncedLog{file, std::move(out), static_cast<std::uint64_t>(state.st_size)};
}

tl::expected<SyncedLog, FileError> SyncedLog::begin(const std::filesystem::path& file) {
  Descriptor out{
      ::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, private_file)};
  if (!out.open()) return tl::unexpected(system_failure(file, errno));
  return SyncedLog{file, std::move(out), 0};
}

tl::expected<void, FileError> SyncedLog::write(std::string_view piece) {
  if (broken_) return tl::unexpected(FileError{file_, "is left unfinished by an earlier failure"});
  if (!out_.write(piece)) {
    const int code = errno;
    broken_ = ::ftruncate(out_.get(), static_cast<off_t>(size_)) != 0;
    return tl::unexpected(system_failure(file_, code));
  }
  size_ += piece.size();
  return {};
}

tl::expected<void, FileError> SyncedLog::append(std::string_view piece) {
  if (auto written = write(piece); !written) return written;
  // Once a sync has failed, a second one that succeeds says nothing about what the first one lost.
  if (::fdatasync(out_.get()) != 0) {
    broken_ = true;
    return tl::unexpected(system_failure(file_, errno));
  }
  return {};
}

}  // namespace tutti
