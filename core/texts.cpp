#include "core/texts.h"

#include <algorithm>

namespace tutti {

std::string_view trim(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

namespace {
template <class Map>
std::string mapped(std::string_view text, Map map) {
  std::string out{text};
  std::transform(out.begin(), out.end(), out.begin(), map);
  return out;
}
}  // namespace

std::string upper(std::string_view text) {
  return mapped(text, [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
}

std::string lower(std::string_view text) {
  return mapped(text, [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
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
