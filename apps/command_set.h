#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "apps/command_context.h"
#include "apps/commands.h"

namespace tutti {

// One command of the command line, with its own options.
struct Command {
  enum class Effect : std::uint8_t { reads, sends };

  CLI::App* app = nullptr;
  Effect effect = Effect::reads;  // sends: it may have changed something at the dealing server
  bool logs_in = true;
  // Once the command line is parsed; answers the exit status. `read` needs no terminal; where it answers
  // nothing, or is not there, `run` follows.
  std::function<int(CommandContext&)> run{};
  std::function<std::optional<int>(const HomeContext&)> read{};
};

// Adds all commands. What they parse into lives in the commands.
std::vector<Command> add_commands(CLI::App& app);
// The command that is spelled most like what was typed.
std::string nearest_command(const std::vector<Command>& commands, std::string_view typed);

}  // namespace tutti
