#include "core/texts.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace tutti {

std::string_view trim(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

namespace {

// The library's macro adds up bytes in ints.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
// One letter of a UTF-8 text, taken off its front, or the byte that begins none as a negative number.
UChar32 take_letter(std::string_view& text) {
  const char* const bytes = text.data();
  const std::size_t size = text.size();
  std::size_t end = 0;
  UChar32 letter = 0;
  U8_NEXT(bytes, end, size, letter);
  if (letter < 0) {
    letter = -1 - static_cast<unsigned char>(bytes[0]);
    end = 1;
  }
  text.remove_prefix(end);
  return letter;
}
#pragma GCC diagnostic pop

void append(std::string& text, UChar32 letter) {
  if (letter < 0) {
    text += static_cast<char>(-1 - letter);
    return;
  }
  char bytes[U8_MAX_LENGTH];
  std::size_t size = 0;
  U8_APPEND_UNSAFE(bytes, size, letter);
  text.append(bytes, size);
}

UChar32 folded(UChar32 letter) {
  return letter < 0 ? letter : u_foldCase(letter, U_FOLD_CASE_DEFAULT);
}

// `of_letter` is for letters beyond ASCII; a letter may take half as many bytes more than before. The room is
// there at once, so that no part of a password stays in a smaller one.
std::string mapped(std::string_view text, char (*of_ascii)(char), UChar32 (*of_letter)(UChar32)) {
  std::string out;
  out.reserve(text.size() + text.size() / 2);
  while (!text.empty()) {
    if (static_cast<unsigned char>(text.front()) < 0x80) {
      out += of_ascii(text.front());
      text.remove_prefix(1);
    } else {
      append(out, of_letter(take_letter(text)));
    }
  }
  return out;
}

}  // namespace

std::string upper(std::string_view text) {
  return mapped(
      text, [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; },
      [](UChar32 letter) { return letter < 0 ? letter : u_toupper(letter); });
}

std::string folded(std::string_view text) {
  return mapped(
      text, [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }, &folded);
}

bool same_letters(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty())
    if (folded(take_letter(a)) != folded(take_letter(b))) return false;
  return a.empty() && b.empty();
}

bool contains_letters(std::string_view text, std::string_view folded_part) {
  return folded(text).find(folded_part) != std::string::npos;
}

std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> pieces;
  for (auto at = text.find(separator); at != std::string_view::npos; at = text.find(separator)) {
    pieces.push_back(text.substr(0, at));
    text.remove_prefix(at + separator.size());
  }
  pieces.push_back(text);
  return pieces;
}

std::string number_list(const std::vector<std::size_t>& numbers) {
  std::string out;
  for (const std::size_t number : numbers)
    out += (out.empty() ? "" : ", ") + std::to_string(number);
  return out;
}

}  // namespace tutti
