#pragma once

#include <filesystem>
#include <string>

#include <tl/expected.hpp>

#include "core/file_writer.h"
#include "dealer/book_state.h"

namespace tutti {

// Reads a book file. Anything that is missing, out of range, not finite or given twice is an error that names
// the line. Whether accounts and symbols exist is for the caller to judge.
tl::expected<BookState, FileError> read_book(const std::filesystem::path& file);

// The content of a book file; read_book gives the same state back, to the last bit.
std::string book_text(const BookState& book);

}  // namespace tutti
