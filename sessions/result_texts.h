#pragma once

#include <cstdint>
#include <string>
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
// Journal lines of the last two. A refusal whose code has no text of its own takes the general one, so that
// it is neither silent nor reads like a success. The first is empty for codes without any text.
std::string update_entry_line(std::int64_t order, std::int32_t code);
std::string new_stops_line(std::int64_t order, std::int32_t code);
// " Buy ", " Sell ", " Buy Stop " or " Sell Stop ", blanks included; " " for any other operation.
std::string_view type_word(std::int32_t operation);

}  // namespace tutti::result_texts
