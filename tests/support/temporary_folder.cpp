#include "tests/support/temporary_folder.h"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include "core/file_writer.h"

namespace tutti::testing {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::string name = (fs::temp_directory_path() / "tutti-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder: " + name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  fs::remove_all(path_, error);
  fs::remove(key_file(), error);
}

void TemporaryFolder::write(const std::string& name, const std::string& content) const {
  if (const auto written = replace_file(path_ / name, content); !written) {
    throw std::runtime_error(written.error().text());
  }
}

std::string TemporaryFolder::read(const std::string& name) const {
  return read_file(path_ / name).value_or("");
}

}  // namespace tutti::testing
