#pragma once

#include <cstddef>
#include <vector>

#include "benchmarks/gui_run.h"

namespace tutti::bench {

// How long events that another thread posts at random moments wait until the GUI thread gets them, in
// nanoseconds, while the heartbeat delivers a load. Sorted.
std::vector<double> probe_latencies(Screen& screen, const GuiLoad& load, std::size_t probes);

}  // namespace tutti::bench
