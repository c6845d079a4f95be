#include "core/paths.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "core/texts.h"

namespace tutti {

namespace fs = std::filesystem;

namespace {
bool is_slash(char c) {
  return c == '/' || c == '\\';
}
}  // namespace

Paths::Paths(fs::path application_folder) : folder_(std::move(application_folder)) {}

tl::expected<fs::path, FileError> Paths::child(const fs::path& folder, std::string_view name) {
  const fs::path exact = folder / name;
  std::error_code error;
  const bool file_name = name.find('.') != std::string_view::npos;
  // Folders are always looked up among their neighbours, so that "Manage" and "manage" side by side still
  // mean one of the two; a file that is there as written needs no search.
  if (file_name && fs::exists(exact, error)) return exact;
  fs::path best;
  error.clear();
  for (fs::directory_iterator at{folder, error}; !error && at != fs::directory_iterator{};
       at.increment(error)) {
    const fs::path& candidate = at->path();
    if (same_letters(candidate.filename().string(), name) && (best.empty() || candidate > best))
      best = candidate;
  }
  // What is missing, or below what is no folder, shows when it is opened.
  if (error && error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory) {
    return tl::unexpected(FileError{folder, error.message()});
  }
  return best.empty() ? exact : best;
}

template <class Child>
tl::expected<fs::path, FileError> Paths::walk(std::string_view name, Child child) const {
  std::error_code error;
  const std::string prefix = folder_.string();
  // A neighbour whose name merely begins like the folder's is not inside it.
  const bool inside = name.starts_with(prefix) && (name.size() == prefix.size() ||
                                                   is_slash(name[prefix.size()]) || prefix.ends_with('/'));
  if (inside) {
    name.remove_prefix(prefix.size());
  } else if (fs::path given{name};
             given.is_absolute() && (fs::exists(given.parent_path(), error) || error)) {  // or out of reach
    return given;
  }
  fs::path at = folder_;
  while (!name.empty()) {
    const auto end = std::min(name.find_first_of("/\\"), name.size());
    if (const auto piece = name.substr(0, end); !piece.empty()) {
      auto next = child(at, piece);
      if (!next) return next;
      at = std::move(*next);
    }
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  return at;
}

tl::expected<fs::path, FileError> Paths::find(std::string_view name) const {
  return walk(name, &Paths::child);
}

fs::path Paths::file(std::string_view name) const {
  return *walk(name, [](const fs::path& folder, std::string_view piece) -> tl::expected<fs::path, FileError> {
    return child(folder, piece).value_or(folder / piece);
  });
}

}  // namespace tutti
