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

fs::path Paths::child(const fs::path& folder, std::string_view name) const {
  const fs::path exact = folder / name;
  std::error_code error;
  const bool file_name = name.find('.') != std::string_view::npos;
  // Folders are always looked up among their neighbours, so that "Manage" and "manage" side by side still
  // mean one of the two; a file that is there as written needs no search.
  if (file_name && fs::exists(exact, error)) return exact;
  const std::string wanted = folded(name);
  fs::path best;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    const fs::path& candidate = entry.path();
    if (folded(candidate.filename().string()) == wanted && (best.empty() || candidate > best))
      best = candidate;
  }
  return best.empty() ? exact : best;
}

fs::path Paths::file(std::string_view name) const {
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
    if (const auto piece = name.substr(0, end); !piece.empty()) at = child(at, piece);
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  return at;
}

}  // namespace tutti
