#pragma once

#include <string>
#include <string_view>

namespace tutti {

// Sixteen hexadecimal digits that tell a damaged text from a whole one. Not a protection against intent.
std::string checksum(std::string_view text);

}  // namespace tutti
