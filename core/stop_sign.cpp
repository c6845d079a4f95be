#include "core/stop_sign.h"

#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "core/descriptor.h"
#include "core/file_writer.h"

namespace tutti {

bool StopFile::stopped() const {
  struct stat found {};
  return held_ || ::lstat(file_.c_str(), &found) == 0 || errno != ENOENT;
}

tl::expected<void, FileError> StopFile::set(std::string_view why) {
  held_ = true;
  auto made = replace_file(file_, std::string{why} + "\n");
  // From now on the file alone counts, so that whoever takes it away ends it.
  if (made) held_ = false;
  return made;
}

tl::expected<void, FileError> StopFile::clear() {
  std::error_code error;
  std::filesystem::remove(file_, error);
  if (error) return tl::unexpected(FileError{file_, error.message()});
  Descriptor::sync_folder(file_.parent_path());
  held_ = false;
  return {};
}

}  // namespace tutti
