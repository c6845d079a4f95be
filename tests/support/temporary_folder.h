#pragma once

#include <filesystem>
#include <string>

namespace tutti::testing {

// A folder of its own for one test, gone with it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // A place beside the folder for the key of a terminal that has the folder as its home; goes with the
  // folder.
  std::filesystem::path key_file() const { return path_.string() + ".key"; }
  void write(const std::string& name, const std::string& content) const;
  std::string read(const std::string& name) const;  // empty when missing

 private:
  std::filesystem::path path_;
};

}  // namespace tutti::testing
