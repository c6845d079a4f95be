#include "apps/console.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>

#include "apps/records.h"

namespace tutti {

namespace {
// Between two looks at whether to stop.
constexpr int longest_wait_ms = 100;
}  // namespace

int Console::write(int descriptor, std::string_view text) const {
  while (!text.empty()) {
    pollfd output{descriptor, POLLOUT, 0};
    if (::poll(&output, 1, longest_wait_ms) <= 0) {
      if (stopped_()) return EINTR;
      continue;
    }
    // A pipe that is ready takes this much without waiting.
    const ssize_t written = ::write(descriptor, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR && errno != EAGAIN) {
      return errno;
    }
  }
  return 0;
}

bool Console::flush() {
  const std::string report = std::exchange(report_, {});
  if (fault_ == 0) fault_ = write(out_, report);
  return fault_ == 0;
}

void Console::say(std::string_view kind, std::string_view text) const {
  // One write each, so that the lines of two programs don't mix.
  write(err_, json_ ? fmt::format("{{\"{}\": {}}}\n", kind, json_quoted(text)) : fmt::format("{}\n", text));
}

void Console::progress(std::string_view text) {
  if (json_ || isatty(err_) == 0) return;
  write(err_, fmt::format("\r\x1b[K{}", text));
}

bool Console::answered() const {
  return isatty(in_) != 0;
}

std::string Console::ask(std::string_view question) {
  write(err_, question);
  std::string answer;
  for (char typed = 0; ::read(in_, &typed, 1) == 1 && typed != '\n';)
    answer += typed;
  return answer;
}

std::string Console::typed_line() {
  pollfd input{in_, POLLIN, 0};
  char c = 0;
  while (poll(&input, 1, 0) > 0 && read(in_, &c, 1) == 1) {
    if (c == '\n') return std::exchange(typed_, {});
    typed_ += c;
  }
  return {};
}

void Console::forget_typed() {
  if (answered()) tcflush(in_, TCIFLUSH);
  typed_.clear();
}

}  // namespace tutti
