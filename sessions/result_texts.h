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
// Journal line of an update; empty for codes without a text.
std::string update_entry_line(std::int64_t order, std::int32_t code);
// First journal line of the answer to stops; the text of the code is a line of its own.
std::string new_stops_line(std::int64_t order);
// Of a refused close: the journal's line, the position's row, the message. Empty for codes without a text.
struct CloseTexts {
  std::string line, row, message;
};
CloseTexts close(std::int32_t code, std::int64_t ticket, std::int32_t account);
// "buy" or "sell"
std::string_view buy_or_sell(std::int32_t operation);
// " Buy ", " Sell ", " Buy Stop " or " Sell Stop ", blanks included; " " for any other operation.
std::string_view type_word(std::int32_t operation);

}  // namespace tutti::result_texts
