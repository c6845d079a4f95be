#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tutti {

// A line of a journal history: the time, a separator, the message. A message that holds a line end or the
// separator is written with a blank in it.
namespace history_line {

using Take = std::function<void(std::string_view time, std::string_view message)>;

// Without an end.
std::string of(std::string_view time, std::string_view message);
// As the message stands in the line.
std::string written(std::string_view message);
void take_apart(std::string_view line, const Take& take);

}  // namespace history_line
}  // namespace tutti
