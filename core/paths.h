#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "core/file_error.h"

namespace tutti {

// Finds the program's files below the application folder. Fixed names come with either slash and in any
// letter case ("\Manage\Acountinfo.buf", "/sounds/connect.wav") and always mean one file.
class Paths {
 public:
  explicit Paths(std::filesystem::path application_folder);

  const std::filesystem::path& application_folder() const { return folder_; }
  // Application folder & name, the text callers hand around; nothing is looked up.
  std::string full(std::string_view name) const { return folder_.string() + std::string{name}; }
  // The file behind a full text or a name below the application folder. A name that exists in no letter
  // case stays as written. Fails when a folder on the way can't be read, so that nobody takes a file that is
  // there for missing.
  tl::expected<std::filesystem::path, FileError> find(std::string_view name) const;
  // The same where a failure need not be told: the name as written.
  std::filesystem::path file(std::string_view name) const;

 private:
  static tl::expected<std::filesystem::path, FileError> child(const std::filesystem::path& folder,
                                                              std::string_view name);
  template <class Child>
  tl::expected<std::filesystem::path, FileError> walk(std::string_view name, Child child) const;

  std::filesystem::path folder_;
};

}  // namespace tutti
