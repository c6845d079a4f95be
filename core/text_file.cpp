#include "core/text_file.h"

#include <filesystem>
#include <system_error>

#include "core/texts.h"

namespace tutti {

namespace fs = std::filesystem;

bool TextFile::exists(std::string_view name) const {
  std::error_code error;
  return fs::exists(paths_.file(name), error);
}

tl::expected<std::vector<std::string>, FileError> TextFile::lines(std::string_view name) const {
  std::vector<std::string> out;
  if (!exists(name)) return out;
  const auto content = read_file(paths_.file(name));
  if (!content) return tl::unexpected(content.error());
  for (std::string_view piece : split(*content, "\n")) {
    if (piece.ends_with('\r')) piece.remove_suffix(1);
    out.emplace_back(piece);
  }
  // What stands behind the last line end is a line only when it holds something.
  if (out.back().empty()) out.pop_back();
  return out;
}

std::string TextFile::line(std::string_view name, std::size_t number) const {
  const auto all = lines(name);
  return all && number >= 1 && number <= all->size() ? (*all)[number - 1] : std::string{};
}

tl::expected<void, FileError> TextFile::write_line(std::string_view name, std::string_view line,
                                                   Mode mode) const {
  const std::string text = std::string{line} + "\n";
  const fs::path file = paths_.file(name);
  return mode == Mode::create ? replace_file(file, text) : append_file(file, text);
}

tl::expected<void, FileError> TextFile::write_lines(std::string_view name,
                                                    const std::vector<std::string>& lines) const {
  std::string text;
  for (const std::string& line : lines)
    text += line + "\n";
  return replace_file(paths_.file(name), text);
}

tl::expected<void, FileError> TextFile::remove(std::string_view name) const {
  std::error_code error;
  const fs::path file = paths_.file(name);
  fs::remove(file, error);
  if (error) return tl::unexpected(FileError{file, error.message()});
  return {};
}

tl::expected<void, FileError> TextFile::copy(std::string_view from, std::string_view to) const {
  const auto content = read_file(paths_.file(from));
  if (!content) return tl::unexpected(content.error());
  return replace_file(paths_.file(to), *content);
}

}  // namespace tutti
