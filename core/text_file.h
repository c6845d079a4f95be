#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tl/expected.hpp>

#include "core/file_writer.h"
#include "core/paths.h"

namespace tutti {

// Line-oriented text files of the data folder. Lines end with "\n"; a "\r" before it is dropped on reading.
// File names are those Paths takes; lines are counted from 1. A missing file has no lines and is no error;
// one that can't be looked at is.
class TextFile {
 public:
  enum class Mode { create, append };

  explicit TextFile(const Paths& paths) : paths_(paths) {}

  tl::expected<bool, FileError> exists(std::string_view name) const;
  // The whole text in a buffer that is wiped, for files with passwords. Of a missing file content() is empty,
  // while read() fails.
  tl::expected<Secret, FileError> content(std::string_view name) const;
  tl::expected<Secret, FileError> read(std::string_view name) const;
  tl::expected<std::vector<std::string>, FileError> lines(std::string_view name) const;
  // The lines of a text, for as long as it lives.
  static std::vector<std::string_view> lines_of(std::string_view content);
  // Empty beyond the last line, and when the file is missing or unreadable.
  std::string line(std::string_view name, std::size_t number) const;

  // Create replaces the whole file by the one line.
  tl::expected<void, FileError> write_line(std::string_view name, std::string_view line, Mode mode) const;
  tl::expected<void, FileError> write_lines(std::string_view name,
                                            const std::vector<std::string_view>& lines) const;
  // Replaces the whole file by this text.
  tl::expected<void, FileError> write(std::string_view name, std::string_view content) const;
  // Takes the rights of others from the file and from its folder.
  void keep_private(std::string_view name) const { tutti::keep_private(paths_.file(name)); }
  tl::expected<void, FileError> remove(std::string_view name) const;
  // A missing source is an error.
  tl::expected<void, FileError> copy(std::string_view from, std::string_view to) const;

 private:
  const Paths& paths_;
};

}  // namespace tutti
