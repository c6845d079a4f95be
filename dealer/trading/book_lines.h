#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <toml++/toml.h>
#include <tl/expected.hpp>

#include "dealer/trading/book_text.h"

namespace tutti {

// A line of a book or log that holds something.
struct BookLine {
  std::size_t number = 0;            // in its file, from 1
  std::optional<toml::table> table;  // nothing: the line is damaged
  std::string fault;                 // what is wrong with one that is damaged
  BookPiece piece;
};

// All lines of a file but for comments and empty ones.
std::vector<BookLine> book_lines(std::string_view content);

// How many of the lines from the first one on count: those in front of a damaged last line, or of a last
// piece that is not whole. Its lines may reach the disk in any order, and nobody was told of it. Damage
// anywhere else is an error that names the line.
tl::expected<std::size_t, std::string> lines_that_count(const std::vector<BookLine>& lines);

}  // namespace tutti
