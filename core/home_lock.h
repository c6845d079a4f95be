#pragma once

#include <filesystem>
#include <functional>

#include <tl/expected.hpp>

#include "core/descriptor.h"
#include "core/file_writer.h"

namespace tutti {

// Keeps a second terminal off an application folder while this object lives. Two on one folder would
// overwrite each other's files. The folder itself is locked, so that it does not matter what becomes of the
// lock's file, which only tells the process number and stays. The operating system lets go of the lock when
// the process ends, however it ends.
class HomeLock {
 public:
  // Makes the folder when it is missing. The error names the process that has the folder. While one has it,
  // `try_again` is asked whether to try once more; it lets time go by.
  static tl::expected<HomeLock, FileError> take(const std::filesystem::path& home,
                                                const std::function<bool()>& try_again = {});
  // Whether somebody has it now, for who only reads. The folder is locked for that moment only, and who takes
  // it just then tries again.
  static bool taken(const std::filesystem::path& home);

 private:
  HomeLock(Descriptor folder, Descriptor file) : folder_(std::move(folder)), file_(std::move(file)) {}
  // `held` tells that another process has the folder.
  static tl::expected<HomeLock, FileError> take_now(const std::filesystem::path& home, bool& held);

  Descriptor folder_;
  Descriptor file_;
};

}  // namespace tutti
