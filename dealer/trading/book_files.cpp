#include "dealer/trading/book_files.h"

#include <fmt/format.h>

#include <utility>

namespace tutti {

tl::expected<std::optional<std::string>, FileError> read_if_there(const std::filesystem::path& file) {
  const auto there = file_exists(file);
  if (!there) return tl::unexpected(there.error());
  if (!*there) return std::nullopt;
  auto content = read_file(file);
  if (!content) return tl::unexpected(content.error());
  return std::move(*content);
}

tl::expected<std::string, FileError> keep_damaged(const std::filesystem::path& file,
                                                  const BookReader::Outcome& found, std::string_view text) {
  std::filesystem::path copy = file;
  copy += ".damaged";
  if (auto kept = replace_file(copy, text); !kept) return tl::unexpected(kept.error());
  const std::string lines =
      found.cut == found.cut_end
          ? fmt::format("line {} was damaged and is", found.cut)
          : fmt::format("lines {} to {} were not written whole and are", found.cut, found.cut_end);
  return fmt::format("{}: {} left out; the file as it was is {}", file.string(), lines,
                     copy.filename().string());
}

}  // namespace tutti
