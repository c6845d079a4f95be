#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string_view>

#include "benchmarks/figures.h"

namespace tutti::bench {

void figure(std::string_view name, double value) {
  fmt::print("{} {:.2f}\n", name, value);
  std::fflush(stdout);
}

}  // namespace tutti::bench

// Runs the groups of figures that are named - events, positions, orders, login, gui - or all when none is.
int main(int argc, char** argv) {
  const auto wanted = [&](std::string_view group) {
    return argc < 2 || std::find(argv + 1, argv + argc, group) != argv + argc;
  };
  try {
    const tutti::bench::BenchMarket market;
    if (wanted("events")) tutti::bench::event_figures(market);
    if (wanted("positions")) tutti::bench::position_figures(market);
    if (wanted("orders")) tutti::bench::order_figures(market);
    if (wanted("login")) tutti::bench::login_figures();
    if (wanted("gui")) tutti::bench::gui_figures(market);
  } catch (const std::exception& error) {
    fmt::print(stderr, "tutti_bench: {}\n", error.what());
    return 1;
  }
  return 0;
}
