#include "benchmarks/instructions.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "benchmarks/event_driver.h"
#include "benchmarks/scratch_folder.h"

namespace tutti::bench {
namespace {

constexpr std::size_t sessions = 500;
constexpr std::string_view sink = "tutti::CClientAPIManager::SummariesChanged(*";

// What so many runs of events take, and the making of the sessions.
double instructions_of(int runs) {
  const ScratchFolder folder;
  const std::filesystem::path counted = folder.path() / "counted";
  const std::string command = fmt::format(
      "valgrind --tool=callgrind --collect-atstart=no '--toggle-collect={}' "
      "'--callgrind-out-file={}' '{}' {} {} >'{}' 2>&1",
      sink, counted.string(), std::filesystem::read_symlink("/proc/self/exe").string(), summaries_word, runs,
      (folder.path() / "said").string());
  if (std::system(command.c_str()) != 0) throw std::runtime_error("callgrind, of valgrind, does not run");
  std::ifstream lines{counted};
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with("totals:")) return std::stod(line.substr(line.find(' ')));
  throw std::runtime_error("callgrind has counted nothing");
}

}  // namespace

void run_summaries(int runs) {
  const BenchMarket market;
  EventDriver driver{market, sessions};
  for (int i = 0; i < runs; ++i)
    driver.summaries();
}

double summary_event_instructions() {
  constexpr int more_runs = 2;
  const double counted = instructions_of(1 + more_runs) - instructions_of(1);
  if (counted <= 0.0) throw std::runtime_error("callgrind has seen no summary event");
  return counted / static_cast<double>(more_runs * EventDriver::events_per_run);
}

}  // namespace tutti::bench
