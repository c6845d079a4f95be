#pragma once

#include <cstdint>
#include <string_view>

// Texts that single result handlers spell in their own way. Each answers an empty text for a code it has
// none for.
namespace tutti::result_texts {

std::string_view general(std::int32_t code);
std::string_view new_order(std::int32_t code);
std::string_view delete_entry(std::int32_t code);
std::string_view new_entry(std::int32_t code);
std::string_view update_entry(std::int32_t code);
std::string_view new_stops(std::int32_t code);
// " Buy ", " Sell ", " Buy Stop " or " Sell Stop ", blanks included.
std::string_view type_word(std::int32_t operation);

}  // namespace tutti::result_texts
