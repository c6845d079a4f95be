#include "benchmarks/scratch_folder.h"

#include <random>
#include <stdexcept>
#include <string>

namespace tutti::bench {

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder(const fs::path& where) {
  std::random_device random;
  path_ = where / ("tutti-bench-" + std::to_string(random()));
  if (!fs::create_directory(path_)) throw std::runtime_error("no scratch folder: " + path_.string());
}

ScratchFolder::~ScratchFolder() {
  std::error_code error;
  fs::remove_all(path_, error);
}

}  // namespace tutti::bench
