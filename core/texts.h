#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tutti {

// Blanks off both ends; blanks only, no tabs or line ends.
std::string_view trim(std::string_view text);
// ASCII letters in upper (lower) case; other bytes stay, so UTF-8 survives.
std::string upper(std::string_view text);
std::string lower(std::string_view text);
// Pieces between separators, empty ones kept; the empty text gives one empty piece.
std::vector<std::string_view> split(std::string_view text, std::string_view separator);
// Whole numbers with ", " between them.
std::string number_list(const std::vector<std::size_t>& numbers);

}  // namespace tutti
