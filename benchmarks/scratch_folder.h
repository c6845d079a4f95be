#pragma once

#include <filesystem>

namespace tutti::bench {

// A folder of its own below another, gone with the object.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::filesystem::path& where = std::filesystem::temp_directory_path());
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tutti::bench
