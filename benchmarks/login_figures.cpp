#include <malloc.h>

#include <vector>

#include "benchmarks/call_counter.h"
#include "benchmarks/figures.h"
#include "benchmarks/interleaved.h"
#include "benchmarks/manual_program.h"

namespace tutti::bench {
namespace {

constexpr int accounts = 500;
constexpr int symbols = 20;

// Nanoseconds per account from start-up to the last account's row in the market order window.
double login_time(int count) {
  ManualProgram program{count, symbols};
  return time_of([&] { program.start(); }) / count;
}

// What lies on the heap, large blocks included, which the system lends one by one.
double heap_in_use() {
  const auto heap = mallinfo2();
  return static_cast<double>(heap.uordblks + heap.hblkhd);
}

// What the heap grows by meanwhile, per account.
double bytes_per_session(int carried) {
  ManualProgram program{accounts, carried};
  const double before = heap_in_use();
  program.start();
  return (heap_in_use() - before) / accounts;
}

// What the dealing server takes in one go when 500 accounts carry 1000 symbols.
double market_step_ms() {
  ManualProgram program{accounts, 1000};
  program.start();
  std::vector<double> runs;
  for (int run = 0; run < 20; ++run) {
    program.deliver_all();
    runs.push_back(time_of([&] { program.step_market(); }) / 1e6);
  }
  return median(std::move(runs));
}

double file_calls() {
  return CallCounter::per_unit([](const CallCounter& counter) {
    ManualProgram program{accounts, symbols};
    counter.begin();
    program.start();
    counter.end();
    return std::size_t{1};
  });
}

}  // namespace

void login_figures() {
  // Measured first, while the heap has no holes.
  figure("bytes_per_session", [] { return bytes_per_session(symbols); });
  figure("bytes_per_session_1000_symbols", [] { return bytes_per_session(1000); });
  figure("login_500_ms", [] {
    std::vector<double> runs;
    for (int run = 0; run < 5; ++run)
      runs.push_back(login_time(accounts) * accounts / 1e6);
    return median(std::move(runs));
  });
  figure("login_500_over_50", [] {
    return interleaved_ratio([] { return login_time(accounts); }, [] { return login_time(50); });
  });
  figure("login_500_file_calls", file_calls);
  figure("market_step_1000_symbols_ms", market_step_ms);
}

}  // namespace tutti::bench
