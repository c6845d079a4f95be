#include "views/history_files.h"

#include <sys/resource.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "core/texts.h"

namespace tutti {
namespace fs = std::filesystem;
namespace {

std::string file_name(std::int32_t id) {
  return "JN" + std::to_string(id) + ".his";
}

}  // namespace

HistoryFiles::HistoryFiles(const Paths& paths) : paths_(paths) {
  // Every account's at once, but no more than a quarter of what the process may have open.
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) == 0)
    most_open_ = static_cast<std::size_t>(std::clamp<rlim_t>(limit.rlim_cur / 4, 8, most_open_));
}

std::string HistoryFiles::name(std::int32_t id) const {
  return paths_.full("\\History\\JN" + std::to_string(id) + ".his");
}

void HistoryFiles::add(std::int32_t id, std::string_view line) {
  std::string& waiting = histories_[id].waiting;
  if (waiting.empty()) waiting_.push_back(id);
  waiting += line;
  waiting += '\n';
}

tl::expected<void, FileError> HistoryFiles::flush() {
  tl::expected<void, FileError> out = std::exchange(closed_, {});
  if (waiting_.empty()) return out;
  ++flushes_;
  for (const std::int32_t id : std::exchange(waiting_, {})) {
    History& history = histories_[id];
    auto written = write(id, history);
    history.waiting.clear();
    if (!written && out) out = std::move(written);
  }
  return out;
}

tl::expected<void, FileError> HistoryFiles::write(std::int32_t id, History& history) {
  history.used = flushes_;
  if (!history.file) {
    const auto path = file_of(id);
    if (!path) return tl::unexpected(path.error());
    if (open_ >= most_open_) close_oldest();
    auto file = AppendedFile::open(*path);
    if (!file) return tl::unexpected(file.error());
    history.file = std::move(*file);
    ++open_;
  }
  auto written = history.file->append(history.waiting);
  // What is behind the file may be back with the next line, but not behind a descriptor that has failed.
  if (!written) {
    history.file.reset();
    --open_;
  }
  return written;
}

// A file is found whatever the letter case of its name. The folder is listed once, since the operator adds no
// history under another name while the terminal runs.
tl::expected<fs::path, FileError> HistoryFiles::file_of(std::int32_t id) {
  if (!folder_) {
    auto folder = paths_.find("\\History");
    if (!folder) return tl::unexpected(folder.error());
    std::error_code error;
    for (fs::directory_iterator at{*folder, error}; !error && at != fs::directory_iterator{};
         at.increment(error)) {
      fs::path& best = there_[folded(at->path().filename().string())];
      if (best.empty() || at->path() > best) best = at->path();
    }
    if (error && error != std::errc::no_such_file_or_directory)
      return tl::unexpected(FileError{*folder, error.message()});
    folder_ = std::move(*folder);
  }
  const std::string exact = file_name(id);
  const auto at = there_.find(folded(exact));
  std::error_code error;
  if (at == there_.end() || fs::exists(*folder_ / exact, error)) return *folder_ / exact;
  return at->second;
}

// Those of half the files, so that it does not come to this with every line.
void HistoryFiles::close_oldest() {
  std::vector<std::uint64_t> used;
  for (const auto& [id, history] : histories_)
    if (history.file) used.push_back(history.used);
  const auto middle = used.begin() + static_cast<std::ptrdiff_t>(used.size() / 2);
  std::nth_element(used.begin(), middle, used.end());
  for (auto at = histories_.begin(); at != histories_.end(); ++at) {
    History& history = at.value();
    if (open_ > most_open_ / 2 && history.file && history.used <= *middle) close(history);
  }
}

void HistoryFiles::close(History& history) {
  auto closed = history.file->close();
  if (!closed && closed_) closed_ = std::move(closed);
  history.file.reset();
  --open_;
}

tl::expected<void, FileError> HistoryFiles::close_all() {
  auto out = flush();
  for (auto at = histories_.begin(); at != histories_.end(); ++at)
    if (at->second.file) close(at.value());
  return out ? std::exchange(closed_, {}) : out;
}

tl::expected<void, FileError> HistoryFiles::remove(std::int32_t id) {
  if (const auto at = histories_.find(id); at != histories_.end()) {
    if (at->second.file) --open_;
    histories_.erase(at);
    std::erase(waiting_, id);
  }
  const auto path = file_of(id);
  if (!path) return tl::unexpected(path.error());
  std::error_code error;
  fs::remove(*path, error);
  if (error) return tl::unexpected(FileError{*path, error.message()});
  return {};
}

}  // namespace tutti
