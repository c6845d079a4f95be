#include <fmt/format.h>

#include <cstdio>
#include <exception>

#include "benchmarks/figures.h"

namespace tutti::bench {

void figure(std::string_view name, double value) {
  fmt::print("{} {:.2f}\n", name, value);
  std::fflush(stdout);
}

}  // namespace tutti::bench

int main() {
  try {
    const tutti::bench::BenchMarket market;
    tutti::bench::event_figures(market);
    tutti::bench::order_figures(market);
    tutti::bench::login_figures();
  } catch (const std::exception& error) {
    fmt::print(stderr, "tutti_bench: {}\n", error.what());
    return 1;
  }
  return 0;
}
