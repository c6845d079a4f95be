#pragma once

#include <cstddef>
#include <filesystem>

#include <tl/expected.hpp>

#include "core/file_writer.h"
#include "core/secret.h"

namespace tutti {

// The key of the encoded account records: 32 random bytes in a file of their own, which only the operator may
// read and which stays outside the application folder, so that a copy of that folder tells no password.
//
// Read when it is first asked for. Refused with a reason: a symbolic link, what is no plain file, a file of
// another user, one that others have rights to, and one of another size.
class KeyFile {
 public:
  static constexpr std::size_t key_size = 32;

  // An empty path means default_path().
  explicit KeyFile(std::filesystem::path file = {});

  // $XDG_STATE_HOME/tutti/key, or ~/.local/state/tutti/key where that is not set. Empty when there is no
  // home.
  static std::filesystem::path default_path();

  const std::filesystem::path& path() const { return path_; }

  // The key, valid as long as this object; nullptr when the file is missing.
  tl::expected<const Secret*, FileError> find();
  // Makes the file with a new key unless there is one meanwhile; the whole file appears at once. Whoever
  // calls has made sure that nothing needs an older key.
  tl::expected<const Secret*, FileError> find_or_create();

 private:
  tl::expected<Secret, FileError> read() const;
  tl::expected<void, FileError> create() const;

  std::filesystem::path path_;
  Secret key_;
};

}  // namespace tutti
