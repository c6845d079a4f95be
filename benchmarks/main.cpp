#include <fmt/format.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <span>
#include <string_view>

#include "benchmarks/figures.h"
#include "benchmarks/instructions.h"

namespace tutti::bench {
namespace {

void print_names() {
  for (const Group& group : groups()) {
    fmt::print("{}:\n", group.name);
    for (const Figure& figure : group.figures)
      fmt::print("  {}{}\n", figure.name, figure.is_long ? "  (long)" : "");
  }
}

bool run(const Group& group) {
  try {
    group.run();
    for (const std::string_view name : missing(group)) {
      fmt::print(stderr, "tutti_bench: {} was not measured\n", name);
      return false;
    }
    return true;
  } catch (const std::exception& error) {
    fmt::print(stderr, "tutti_bench: {}: {}\n", group.name, error.what());
    return false;
  }
}

// No group finds the memory, or the toolkit, as another left it.
bool run_apart(const Group& group) {
  const pid_t child = ::fork();
  if (child == 0) {
    const bool done = run(group);
    std::fflush(nullptr);
    ::_exit(done ? 0 : 1);
  }
  int status = 1;
  return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace
}  // namespace tutti::bench

// Measures the figures that are named, each by itself or by its group; "short" are those that are soon done,
// "all" every one. --list says which there are.
int main(int argc, char** argv) {
  using namespace tutti::bench;
  const std::span<char* const> words{argv + 1, argv + argc};
  if (words.size() == 1 && words[0] == std::string_view{"--list"}) return print_names(), 0;
  if (words.size() == 2 && words[0] == summaries_word) return run_summaries(std::atoi(words[1])), 0;
  if (words.empty() || !ask_for(words)) {
    fmt::print(stderr, "Figures are named by themselves, by their group, as \"short\" or as \"all\":\n");
    return print_names(), 2;
  }
  bool done = true;
  for (const Group& group : groups())
    if (wanted(group)) done = run_apart(group) && done;
  return done ? 0 : 1;
}
