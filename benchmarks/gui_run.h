#pragma once

#include <cstddef>
#include <functional>

#include "benchmarks/gui_windows.h"
#include "gui/kit/heartbeat.h"

namespace tutti::bench {

// Nanoseconds of processor time that this process has used.
double cpu_time();

// Events that a heartbeat delivers.
struct GuiLoad {
  std::function<void(std::size_t count)> deliver;
  double per_second = 0.0;  // falling due evenly; 0: there are always more
};

// The load from now on; `delivered`, if any, counts its events.
Heartbeat::Source source_of(const GuiLoad& load, std::size_t* delivered = nullptr);

struct GuiRun {
  double cpu_per_event = 0.0;   // nanoseconds
  double cpu_per_second = 0.0;  // nanoseconds per second of wall time
  double paints_per_second = 0.0;
};

// The program's heartbeat for a third of a second of wall time, windows painted meanwhile.
GuiRun run_gui(Screen& screen, const PaintCount& paints, const GuiLoad& load);

}  // namespace tutti::bench
