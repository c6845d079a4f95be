#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "dealer/trading/book_state.h"

namespace tutti {

// Where a line stands in a log: lines that are written in one piece count together or not at all.
struct BookPiece {
  std::int64_t number = 0;  // of the piece in its log, from 1; 0: the line is a piece of its own
  std::int64_t line = 1;    // of the piece, from 1
  std::int64_t lines = 1;   // that the piece has
};

// Book and log have one form: lines of TOML, each with the checksum of what is in front of it as a comment.
// A head says which of the two it is and how they belong together; every other line is an entry.
namespace book_text {

inline constexpr std::int64_t version = 2;
inline constexpr std::string_view checksum_mark = " # ";
inline constexpr std::size_t checksum_size = 16;

// The log that goes with a book has its generation.
std::string book_head(std::int64_t generation, std::size_t entries);
std::string log_head(std::int64_t generation);
// Of the file of requests and fills; the fills are there from `since` on.
std::string history_head(TimePoint since);
std::string entry(const BookEntry& entry, const BookPiece& piece = {});
// A whole book: its head, what is common to all, an entry for each account and each request, and an empty one
// at the end, so that a book that lacks its last line lacks nothing.
std::string book(const BookState& state, std::int64_t generation);

}  // namespace book_text
}  // namespace tutti
