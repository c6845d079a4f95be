#include "fix/session/frame_reader.h"

#include <fmt/format.h>

#include <algorithm>

namespace tutti {
namespace {

constexpr std::string_view head =
    "8=FIX.4.4\x01"
    "9=";
constexpr std::size_t length_digits = 9;  // it may be padded with zeros
constexpr std::size_t trailer_size = 7;   // "10=" three digits and the end of the field

bool is_digit(char character) {
  return character >= '0' && character <= '9';
}

int checksum_of(std::string_view bytes) {
  unsigned sum = 0;
  for (const char byte : bytes)
    sum += static_cast<unsigned char>(byte);
  return static_cast<int>(sum % 256);
}

}  // namespace

tl::expected<std::optional<std::string>, std::string> FrameReader::fail(std::string why) {
  failure_ = std::move(why);
  buffer_.clear();
  return tl::unexpected(failure_);
}

tl::expected<std::optional<std::string>, std::string> FrameReader::next() {
  if (!failure_.empty()) return tl::unexpected(failure_);
  const std::size_t known = std::min(head.size(), buffer_.size());
  if (buffer_.compare(0, known, head.substr(0, known)) != 0)
    return fail("The bytes that came do not begin a FIX 4.4 message");
  std::size_t at = head.size();
  std::size_t length = 0;
  while (at < buffer_.size() && is_digit(buffer_[at]) && at < head.size() + length_digits)
    length = length * 10 + static_cast<std::size_t>(buffer_[at++] - '0');
  if (at >= buffer_.size()) return std::nullopt;
  if (buffer_[at] != '\x01' || at == head.size())
    return fail("A message came with a length that is no number");
  if (length > longest_body) return fail(fmt::format("A message of {} bytes was announced", length));
  const std::size_t trailer = at + 1 + length;
  if (buffer_.size() < trailer + trailer_size) return std::nullopt;

  const std::string_view end{buffer_.data() + trailer, trailer_size};
  const bool formed = end.substr(0, 3) == "10=" && is_digit(end[3]) && is_digit(end[4]) && is_digit(end[5]) &&
                      end[6] == '\x01' && (length == 0 || buffer_[trailer - 1] == '\x01');
  if (!formed) return fail("A message came whose length is wrong");
  const int told = (end[3] - '0') * 100 + (end[4] - '0') * 10 + (end[5] - '0');
  if (told != checksum_of(std::string_view{buffer_}.substr(0, trailer)))
    return fail("A message came whose checksum is wrong");
  std::string frame = buffer_.substr(0, trailer + trailer_size);
  buffer_.erase(0, frame.size());
  return frame;
}

}  // namespace tutti
