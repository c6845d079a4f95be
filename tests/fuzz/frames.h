#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/texts.h"

namespace tutti {

// The lines of an input as the bodies of messages, with "|" for the end of a field. A line that begins with
// "!" goes over the wire as it is.
inline std::vector<std::string> bodies_of(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> out;
  const std::string_view text{reinterpret_cast<const char*>(data), size};
  for (const std::string_view line : split(text, "\n")) {
    std::string body{line};
    for (char& character : body)
      if (character == '|') character = '\x01';
    out.push_back(std::move(body));
  }
  return out;
}

// A frame that any session takes, so that what is in it gets further: `type` stands before the first field.
inline std::string frame_of(std::string_view body, int number, std::string_view sender,
                            std::string_view target, std::string_view time) {
  if (body.starts_with('!')) return std::string{body.substr(1)};
  const auto end = body.find('\x01');
  const std::string_view type = body.substr(0, end);
  const std::string_view rest = end == body.npos ? std::string_view{} : body.substr(end + 1);
  const std::string inner = fmt::format(
      "35={}\x01"
      "34={}\x01"
      "49={}\x01"
      "52={}\x01"
      "56={}\x01{}",
      type, number, sender, time, target, rest);
  std::string frame = fmt::format(
      "8=FIX.4.4\x01"
      "9={}\x01{}",
      inner.size(), inner);
  unsigned sum = 0;
  for (const char byte : frame)
    sum += static_cast<unsigned char>(byte);
  return frame + fmt::format("10={:03}\x01", sum % 256);
}

}  // namespace tutti
