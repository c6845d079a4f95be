#pragma once

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace tutti::bench {

// Nanoseconds that a piece of work takes.
template <class Work>
double time_of(Work&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

// What stands in memory counts as used, and as changed, from here on: work before and after is not merged.
inline void memory_barrier() {
  asm volatile("" ::: "memory");
}

inline double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// How many times as long `a` takes as `b`; both do one short run and give its nanoseconds per unit.
//
// The runs of the two take turns, so that whatever else the machine does hits both. A ratio is that of the
// median runs, and the answer the median of five ratios after one that only warms up.
template <class RunA, class RunB>
double interleaved_ratio(RunA&& a, RunB&& b) {
  constexpr int ratios = 5;
  constexpr std::chrono::milliseconds time_per_ratio{300};
  std::vector<double> out;
  for (int i = 0; i <= ratios; ++i) {
    std::vector<double> runs_a;
    std::vector<double> runs_b;
    const auto end = std::chrono::steady_clock::now() + time_per_ratio;
    do {
      runs_a.push_back(a());
      runs_b.push_back(b());
    } while (std::chrono::steady_clock::now() < end);
    if (i == 0) continue;
    out.push_back(median(std::move(runs_a)) / median(std::move(runs_b)));
  }
  return median(std::move(out));
}

}  // namespace tutti::bench
