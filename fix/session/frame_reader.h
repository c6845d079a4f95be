#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

namespace tutti {

// Cuts a stream of bytes into frames: "8=FIX.4.4", "9=" and the length, the body, "10=" and the checksum.
//
// Whatever is no frame ends the reading for good: behind it nobody knows where the next one begins, and a
// connection that keeps its bytes in order does not bring it by accident.
class FrameReader {
 public:
  static constexpr std::size_t longest_body = 1 << 20;

  void add(std::string_view bytes) { buffer_.append(bytes); }
  // The next frame whole; nothing while it has not come to its end. The error is in the operator's words.
  tl::expected<std::optional<std::string>, std::string> next();

 private:
  tl::expected<std::optional<std::string>, std::string> fail(std::string why);

  std::string buffer_;
  std::string failure_;
};

}  // namespace tutti
