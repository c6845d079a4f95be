#include "core/text_file.h"

#include <filesystem>
#include <system_error>

#include "core/line_reader.h"
#include "core/texts.h"

namespace tutti {

namespace fs = std::filesystem;

tl::expected<bool, FileError> TextFile::exists(std::string_view name) const {
  return paths_.find(name).and_then(file_exists);
}

tl::expected<Secret, FileError> TextFile::content(std::string_view name) const {
  const auto there = exists(name);
  if (!there) return tl::unexpected(there.error());
  return *there ? read_secret_file(paths_.file(name)) : Secret{};
}

tl::expected<Secret, FileError> TextFile::read(std::string_view name) const {
  return paths_.find(name).and_then(read_secret_file);
}

std::vector<std::string_view> TextFile::lines_of(std::string_view content) {
  auto lines = split(content, "\n");
  for (std::string_view& line : lines)
    line = without_return(line);
  // What stands behind the last line end is a line only when it holds something.
  if (lines.back().empty()) lines.pop_back();
  return lines;
}

tl::expected<std::vector<std::string>, FileError> TextFile::lines(std::string_view name) const {
  const auto text = content(name);
  if (!text) return tl::unexpected(text.error());
  const auto found = lines_of(text->reveal());
  return std::vector<std::string>(found.begin(), found.end());
}

std::string TextFile::line(std::string_view name, std::size_t number) const {
  const auto all = lines(name);
  return all && number >= 1 && number <= all->size() ? (*all)[number - 1] : std::string{};
}

tl::expected<void, FileError> TextFile::write_line(std::string_view name, std::string_view line,
                                                   Mode mode) const {
  const auto file = paths_.find(name);
  if (!file) return tl::unexpected(file.error());
  const Secret text = Secret::joined({line, "\n"});
  return mode == Mode::create ? replace_file(*file, text.reveal()) : append_file(*file, text.reveal());
}

tl::expected<void, FileError> TextFile::write_lines(std::string_view name,
                                                    const std::vector<std::string_view>& lines) const {
  std::vector<std::string_view> pieces;
  for (const std::string_view line : lines)
    pieces.insert(pieces.end(), {line, "\n"});
  return write(name, Secret::joined(pieces).reveal());
}

tl::expected<void, FileError> TextFile::write(std::string_view name, std::string_view content) const {
  const auto file = paths_.find(name);
  return file ? replace_file(*file, content) : tl::unexpected(file.error());
}

tl::expected<void, FileError> TextFile::remove(std::string_view name) const {
  const auto file = paths_.find(name);
  if (!file) return tl::unexpected(file.error());
  std::error_code error;
  fs::remove(*file, error);
  if (error) return tl::unexpected(FileError{*file, error.message()});
  return {};
}

tl::expected<void, FileError> TextFile::copy(std::string_view from, std::string_view to) const {
  const auto text = read(from);
  return text ? write(to, text->reveal()) : tl::unexpected(text.error());
}

}  // namespace tutti
