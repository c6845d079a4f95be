#include "benchmarks/gui_run.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <ctime>

namespace tutti::bench {

double cpu_time() {
  std::timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

Heartbeat::Source source_of(const GuiLoad& load, std::size_t* delivered) {
  QElapsedTimer since_start;
  since_start.start();
  return {[load, since_start, delivered, done = std::size_t{0}](std::size_t limit) mutable {
            if (load.per_second > 0.0) {
              const double due = static_cast<double>(since_start.nsecsElapsed()) * 1e-9 * load.per_second;
              limit = std::min(limit, static_cast<std::size_t>(due) - done);
            }
            load.deliver(limit);
            done += limit;
            if (delivered != nullptr) *delivered = done;
            return limit;
          },
          [] { return std::chrono::milliseconds{0}; }};
}

GuiRun run_gui(Screen& screen, const PaintCount& paints, const GuiLoad& load) {
  constexpr std::chrono::milliseconds wall{330};
  std::size_t events = 0;
  const SystemClock clock;
  Heartbeat heartbeat{screen, clock, source_of(load, &events)};
  QEventLoop loop;
  QTimer::singleShot(wall, &loop, &QEventLoop::quit);
  QElapsedTimer timer;
  const int paints_before = paints.paints();
  const double cpu_before = cpu_time();
  timer.start();
  heartbeat.start();
  loop.exec();
  const double cpu = cpu_time() - cpu_before;
  const double seconds = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
  return {cpu / static_cast<double>(events), cpu / seconds, (paints.paints() - paints_before) / seconds};
}

}  // namespace tutti::bench
