#include "tests/support/unsynced_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

#include "core/file_writer.h"

namespace tutti::testing {

namespace fs = std::filesystem;

namespace {
constexpr std::size_t sector = 512;
// The index of the log is no file to be relied on: who opens the ledger first makes it anew.
constexpr std::array names{"ledger.db", "ledger.db-wal", "left.log"};

fs::path left_of(fs::path file) {
  file += ".left";
  return file;
}
}  // namespace

UnsyncedFiles::UnsyncedFiles(const fs::path& home, unsigned seed) : home_(home), random_(seed) {
  for (const auto& entry : fs::directory_iterator{home}) {
    if (!is_watched(entry.path())) continue;
    struct stat state {};
    ::stat(entry.path().c_str(), &state);
    std::string content = read_file(entry.path()).value_or("");
    const std::size_t size = content.size();
    files_[entry.path().filename()] = {state.st_ino, std::move(content), size, {}};
  }
}

bool UnsyncedFiles::is_watched(const fs::path& file) {
  return std::find(names.begin(), names.end(), file.filename()) != names.end();
}

UnsyncedFiles::File* UnsyncedFiles::of(int descriptor) {
  std::error_code error;
  const fs::path path = fs::read_symlink("/proc/self/fd/" + std::to_string(descriptor), error);
  if (error || path.parent_path() != home_ || !is_watched(path)) return nullptr;
  struct stat state {};
  if (::fstat(descriptor, &state) != 0) return nullptr;
  File& file = files_[path.filename()];
  if (file.number != state.st_ino) file = {state.st_ino, {}, 0, {}};
  if (const auto size = static_cast<std::size_t>(state.st_size); size < file.size) {
    file.since.push_back({size, {}, true});
    file.size = size;
  }
  return &file;
}

void UnsyncedFiles::written(int descriptor, const void* data, std::size_t size, off_t offset) {
  File* file = of(descriptor);
  if (file == nullptr) return;
  const std::size_t at = offset < 0 ? file->size : static_cast<std::size_t>(offset);
  file->since.push_back({at, {static_cast<const char*>(data), size}, false});
  file->size = std::max(file->size, at + size);
}

void UnsyncedFiles::synchronised(int descriptor) {
  File* file = of(descriptor);
  if (file == nullptr) return;
  for (const Write& write : std::exchange(file->since, {}))
    apply(write, file->synced);
}

void UnsyncedFiles::apply(const Write& write, std::string& content) {
  if (write.cuts) {
    content.resize(std::min(content.size(), write.offset));
    return;
  }
  content.resize(std::max(content.size(), write.offset + write.data.size()));
  content.replace(write.offset, write.data.size(), write.data);
}

void UnsyncedFiles::lose() {
  const bool all = drawn();
  for (auto& [name, file] : files_) {
    const fs::path path = home_ / name;
    if (::access(path.c_str(), F_OK) != 0) continue;
    if (!all) {
      std::shuffle(file.since.begin(), file.since.end(), random_);
      for (Write& write : file.since) {
        if (drawn()) continue;
        if (drawn()) write.data.resize(write.data.size() / sector * sector);
        apply(write, file.synced);
      }
    }
    if (file.synced.empty() && drawn()) continue;
    const int out = ::open(left_of(path).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    for (std::size_t done = 0; done < file.synced.size();) {
      const long wrote = ::syscall(SYS_write, out, file.synced.data() + done, file.synced.size() - done);
      if (wrote <= 0) break;
      done += static_cast<std::size_t>(wrote);
    }
    ::close(out);
  }
}

void UnsyncedFiles::take_effect(const fs::path& home) {
  if (!fs::exists(left_of(home / names.front()))) return;
  for (const char* name : names) {
    const fs::path file = home / name;
    fs::exists(left_of(file)) ? fs::rename(left_of(file), file) : void(fs::remove(file));
  }
}

}  // namespace tutti::testing
