// The terminal without a screen, for scripts and servers.

#include "apps/tuttictl.h"

#include <unistd.h>

#include <thread>

#include "core/core_dumps.h"
#include "core/standard_streams.h"
#include "core/stop_signals.h"

int main(int argc, char** argv) {
  using namespace tutti;
  open_standard_streams();
#ifdef NDEBUG
  forbid_core_dumps();
#endif
  const StopSignals signals;
  const SystemClock clock;
  Console console{STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO, [&] { return signals.caught() != 0; }};
  return tuttictl(argc, argv,
                  {console, clock, [](auto time) { std::this_thread::sleep_for(time); },
                   [&] { return signals.caught(); }});
}
