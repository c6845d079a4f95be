#include "apps/tuttictl.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <exception>
#include <sstream>

#include "apps/command_line.h"
#include "apps/command_set.h"
#include "apps/console_prompt.h"
#include "core/numbers.h"

namespace tutti {

namespace {

struct CommonOptions {
  TerminalOptions terminal;
  CommandOptions command;
  bool json = false;
  bool csv = false;
};

std::string check_timeout(const std::string& text) {
  const auto seconds = parse_number(text);
  return seconds && *seconds >= 0.1 && *seconds <= 3600.0 ? std::string{}
                                                          : "must be a number of seconds from 0.1 to 3600";
}

void add_common_options(CLI::App& app, CommonOptions& options, const char* program) {
  add_terminal_options(app, options.terminal, program);
  app.add_flag("--json", options.json, "Print for machines");
  app.add_flag("--csv", options.csv, "Print lists as comma-separated values")->excludes("--json");
  app.add_option_function<std::string>(
         "--timeout",
         [&options](const std::string& text) {
           options.command.timeout = std::chrono::milliseconds{std::llround(read_number(text) * 1000.0)};
         },
         "Seconds to wait for logins, and again for answers")
      ->check(check_timeout)
      ->type_name("SECONDS");
}

// Fills the options in and answers the command that is wanted. Throws wrong usage.
const Command& parse(CLI::App& app, CommonOptions& options, const std::vector<Command>& commands, int argc,
                     const char* const* argv) {
  app.parse(argc, argv);
  const Command& command =
      *std::find_if(commands.begin(), commands.end(), [](const Command& c) { return c.app->parsed(); });
  if (options.csv && !command.csv) {
    throw CLI::ValidationError("--csv goes with accounts, positions, orders, net, close, cancel and modify");
  }
  if (options.json) options.command.form = OutputForm::json;
  if (options.csv) options.command.form = OutputForm::csv;
  return command;
}

void show_messages(Main& main, ConsolePrompt& prompt) {
  MessageQueue& messages = main.messages();
  for (; messages.current() != nullptr; messages.dismiss()) {
    prompt.system_box(messages.current()->text, messages.current()->caption);
  }
}

int carry_out(const Command& command, CommandContext& context) {
  try {
    if (command.logs_in && !context.log_in()) return exit_status::some_refused;
    return command.run(context);
  } catch (const std::exception& error) {
    // What was sent is on its way: it is journaled and saved like any other.
    context.console().tell("The command was broken off: {}\n", error.what());
    return exit_status::unreadable_data;
  }
}

// A report that can't be written costs a command that changed something its exit status. One that only reads
// ends in silence: its reader wanted no more.
int finish_report(const Command& command, Console& console, int status) {
  if (console.flush() || console.fault() == EINTR) return status;
  if (command.effect == Command::Effect::reads)
    return console.fault() == EPIPE ? status : exit_status::unreadable_data;
  console.tell("The command was carried out and saved, but its report can't be written: {}\n",
               std::strerror(console.fault()));
  return exit_status::unreadable_data;
}

int run(const Command& command, const CommonOptions& options, const CommandPorts& ports) {
  Console& console = ports.console;
  if (const auto refused = ask_for_fresh(options.terminal, console)) return *refused;
  ConsolePrompt prompt{console, options.terminal.yes};
  SilentSound sound;
  NoFileDialog file_dialog;
  int status = exit_status::unreadable_data;
  {
    const auto terminal = Terminal::open(options.terminal, {prompt, sound, file_dialog, ports.clock});
    if (!terminal) {
      console.tell("{}\n", terminal.error().text());
      return status;
    }
    CommandContext context{**terminal, ports, options.command};
    context.on_step = [&] { show_messages(context.main(), prompt); };
    status = carry_out(command, context);
    context.journal_unanswered();
    show_messages(context.main(), prompt);
    if (const auto saved = (*terminal)->save_book(); !saved) {
      console.tell("The dealing server's book was not saved: {}\n", saved.error().text());
      status = exit_status::unreadable_data;
    }
  }
  // Nobody who is slow to read keeps the home folder from others.
  return finish_report(command, console, status);
}

}  // namespace

int tuttictl(int argc, const char* const* argv, const CommandPorts& ports) {
  Console& console = ports.console;
  int status = exit_status::unreadable_data;
  try {
    CLI::App app{"Trades many client accounts at once, without a screen."};
    app.require_subcommand(1);
    app.fallthrough();
    CommonOptions options;
    add_common_options(app, options, argv[0]);
    const std::vector<Command> commands = add_commands(app);
    try {
      status = run(parse(app, options, commands, argc, argv), options, ports);
    } catch (const CLI::ParseError& wrong) {
      std::ostringstream said;
      std::ostringstream complained;
      status = app.exit(wrong, said, complained) == 0 ? 0 : exit_status::usage;
      console.print(said.str());
      console.tell(complained.str());
      console.flush();
    }
  } catch (const std::exception& error) {
    console.tell("{}\n", error.what());
  }
  const int signal = ports.signal();
  return signal == 0 ? status : exit_status::signalled + signal;
}

}  // namespace tutti
