#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tutti {

// Blanks off both ends; blanks only, no tabs or line ends.
std::string_view trim(std::string_view text);
// Every letter of a UTF-8 text in upper case, one for one whatever the language; bytes that are no UTF-8
// stay.
std::string upper(std::string_view text);
// What two texts that differ only in letter case have in common; for searching and sorting.
std::string folded(std::string_view text);
// True when two texts differ in letter case at most. Makes no copy of what may be a password.
bool same_letters(std::string_view a, std::string_view b);
// True when a text holds, in whatever letter case, what was folded before.
bool contains_letters(std::string_view text, std::string_view folded_part);
// Pieces between separators, empty ones kept; the empty text gives one empty piece.
std::vector<std::string_view> split(std::string_view text, std::string_view separator);
// Whole numbers with ", " between them.
std::string number_list(const std::vector<std::size_t>& numbers);

}  // namespace tutti
