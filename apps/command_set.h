#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <CLI/CLI.hpp>

#include "apps/command_context.h"

namespace tutti {

// One command of the command line, with its own options.
struct Command {
  enum class Effect : std::uint8_t { reads, sends };

  const CLI::App* app = nullptr;
  Effect effect = Effect::reads;  // sends: it may have changed something at the dealing server
  bool csv = false;               // prints a list
  bool logs_in = true;
  std::function<int(CommandContext&)> run;  // once the command line is parsed; answers the exit status
};

// Adds all commands. What they parse into lives in the commands.
std::vector<Command> add_commands(CLI::App& app);

}  // namespace tutti
