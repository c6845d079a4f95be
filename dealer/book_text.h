#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "dealer/book_state.h"

namespace tutti {

// Book and log have one form: lines of TOML, each with the checksum of what is in front of it as a comment.
// A head says which of the two it is and how they belong together; every other line is an entry.
namespace book_text {

inline constexpr std::int64_t version = 2;
inline constexpr std::string_view checksum_mark = " # ";
inline constexpr std::size_t checksum_size = 16;

// The log that goes with a book has its generation.
std::string book_head(std::int64_t generation, std::size_t entries);
std::string log_head(std::int64_t generation);
std::string entry(const BookEntry& entry);
// A whole book: its head, what is common to all, an entry for each account and each request, and an empty one
// at the end, so that a book that lacks its last line lacks nothing.
std::string book(const BookState& state, std::int64_t generation);

}  // namespace book_text
}  // namespace tutti
