#include "core/stop_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>

namespace tutti {

namespace {

constexpr std::array stop_signals{SIGINT, SIGTERM, SIGHUP};

// What a signal handler may touch.
volatile std::sig_atomic_t caught_signal = 0;
volatile std::sig_atomic_t wake_end = -1;

int read_end = -1;
std::array<struct sigaction, stop_signals.size()> before;
struct sigaction pipe_before;

void take(int signal) {
  const int kept = errno;
  if (caught_signal == 0) caught_signal = signal;
  // The pipe is full only when nobody has looked at it for long, who then has enough to read.
  if (wake_end >= 0) (void)!::write(wake_end, "", 1);
  errno = kept;
}

}  // namespace

StopSignals::StopSignals() {
  caught_signal = 0;
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0) {
    read_end = ends[0];
    wake_end = ends[1];
  }
  struct sigaction action {};
  action.sa_handler = take;
  for (std::size_t i = 0; i < stop_signals.size(); ++i) {
    ::sigaction(stop_signals[i], nullptr, &before[i]);
    if (before[i].sa_handler != SIG_IGN) ::sigaction(stop_signals[i], &action, nullptr);
  }
  action.sa_handler = SIG_IGN;
  ::sigaction(SIGPIPE, &action, &pipe_before);
}

StopSignals::~StopSignals() {
  for (std::size_t i = 0; i < stop_signals.size(); ++i)
    ::sigaction(stop_signals[i], &before[i], nullptr);
  ::sigaction(SIGPIPE, &pipe_before, nullptr);
  const int write_end = wake_end;
  wake_end = -1;
  if (write_end >= 0) ::close(write_end);
  if (read_end >= 0) ::close(read_end);
  read_end = -1;
}

int StopSignals::caught() const {
  return caught_signal;
}

int StopSignals::descriptor() const {
  return read_end;
}

}  // namespace tutti
