#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

namespace tutti {

// A file operation that failed: which file, and why in the operator's words.
struct FileError {
  std::filesystem::path file;
  std::string reason;

  std::string text() const { return file.string() + ": " + reason; }
};

// Replaces a whole file so that a crash leaves either the old or the new content: a temporary file with mode
// 0600 in the same folder is written, synced and renamed over it, then the folder is synced. Missing folders
// are made with mode 0700.
tl::expected<void, FileError> replace_file(const std::filesystem::path& file, std::string_view content);

// Appends lines in one write; the file is made with mode 0600 when it is missing. A last line without an end,
// as a crash or an editor leaves it, is ended first. What can't be written whole is taken back.
tl::expected<void, FileError> append_file(const std::filesystem::path& file, std::string_view content);

// Makes a folder and those above it that are missing, each with mode 0700 whatever the mask of the process.
tl::expected<void, FileError> make_private_folder(const std::filesystem::path& folder);

// Takes the rights of others from a file and from its folder, as far as both belong to the operator.
void keep_private(const std::filesystem::path& file);

// Whole content of a file. A missing file is an error.
tl::expected<std::string, FileError> read_file(const std::filesystem::path& file);

}  // namespace tutti
