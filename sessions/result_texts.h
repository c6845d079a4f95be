#pragma once

#include <cstdint>
#include <string_view>

// Texts of result codes, as the general table has them and as single handlers spell them in their own way.
// For a code without a text of its own `general` and `delete_entry` have a common one, the others an empty
// one.
namespace tutti::result_texts {

std::string_view general(std::int32_t code);
std::string_view new_order(std::int32_t code);
std::string_view delete_entry(std::int32_t code);
std::string_view new_entry(std::int32_t code);
std::string_view update_entry(std::int32_t code);
std::string_view new_stops(std::int32_t code);
// " Buy ", " Sell ", " Buy Stop " or " Sell Stop ", blanks included; " " for any other operation.
std::string_view type_word(std::int32_t operation);

}  // namespace tutti::result_texts
