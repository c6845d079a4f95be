#include "core/disk_reserve.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <system_error>

#include "core/descriptor.h"

namespace tutti {

bool DiskReserve::take() {
  if (held_) return true;
  const std::lock_guard lock{mutex_};
  constexpr mode_t private_file = 0600;
  const Descriptor out{::open(file_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, private_file)};
  if (!out.open()) return false;
  held_ = ::posix_fallocate(out.get(), 0, static_cast<off_t>(bytes_)) == 0;
  std::error_code error;
  // A part of it would only take what others need.
  if (!held_) std::filesystem::remove(file_, error);
  return held_;
}

bool DiskReserve::give_up() {
  const std::lock_guard lock{mutex_};
  held_ = false;
  std::error_code error;
  return std::filesystem::remove(file_, error);
}

bool DiskReserve::disk_is_full() const {
  std::error_code error;
  const auto space = std::filesystem::space(file_.parent_path(), error);
  return !error && space.available < bytes_;
}

}  // namespace tutti
