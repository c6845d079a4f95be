#include "views/history_line.h"

#include <algorithm>

namespace tutti::history_line {
namespace {

constexpr std::string_view separator = "*,%$";

// One entry is one line of the file, and has one separator.
void mask(std::string& line, std::size_t from) {
  std::replace(line.begin() + static_cast<std::ptrdiff_t>(from), line.end(), '\n', ' ');
  for (auto at = line.find(separator, from); at != std::string::npos; at = line.find(separator, at))
    line.insert(at + 2, 1, ' ');
}

}  // namespace

std::string written(std::string_view message) {
  std::string out{message};
  mask(out, 0);
  return out;
}

std::string of(std::string_view time, std::string_view message) {
  std::string line;
  line.reserve(time.size() + separator.size() + message.size() + 1);
  line.append(time).append(separator);
  const std::size_t behind = line.size();
  line += message;
  mask(line, behind);
  return line;
}

void take_apart(std::string_view line, const Take& take) {
  const auto end = line.find(separator);
  if (end == std::string_view::npos) return take(line, "");
  const std::string_view rest = line.substr(end + separator.size());
  take(line.substr(0, end), rest.substr(0, rest.find(separator)));
}

}  // namespace tutti::history_line
