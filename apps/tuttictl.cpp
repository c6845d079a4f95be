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
#include "apps/open_backend.h"
#include "apps/terminal_link.h"
#include "core/numbers.h"

namespace tutti {

namespace {

struct CommonOptions {
  TerminalOptions terminal;
  CommandOptions command;
  std::chrono::milliseconds wait_for_home{0};
  bool json = false;
  bool csv = false;
};

// A number of seconds of at least `least`.
std::function<std::string(const std::string&)> check_seconds(double least) {
  return [least](const std::string& text) {
    const auto seconds = parse_number(text);
    return seconds && *seconds >= least && *seconds <= 3600.0
               ? std::string{}
               : fmt::format("must be a number of seconds from {} to 3600", number_text(least));
  };
}

void add_seconds(CLI::App& app, const std::string& name, double least, std::chrono::milliseconds& out,
                 const std::string& help) {
  app.add_option_function<std::string>(
         name,
         [&out](const std::string& text) {
           out = std::chrono::milliseconds{std::llround(read_number(text) * 1000.0)};
         },
         help)
      ->check(check_seconds(least))
      ->type_name("SECONDS");
}

void add_common_options(CLI::App& app, CommonOptions& options, const char* program) {
  add_terminal_options(app, options.terminal, program);
  app.add_flag("--json", options.json, "Print for machines");
  app.add_flag("--csv", options.csv, "Print the records as comma-separated values")->excludes("--json");
  add_seconds(app, "--timeout", 0.1, options.command.timeout,
              "How long to wait for logins, and again for answers; 40 when not given");
  add_seconds(app, "--wait", 0.0, options.wait_for_home,
              "How long to wait while another terminal has the application folder");
}

// Fills the options in and answers the command that is wanted. Throws wrong usage.
const Command& parse(CLI::App& app, CommonOptions& options, const std::vector<Command>& commands, int argc,
                     const char* const* argv) {
  app.parse(argc, argv);
  const Command& command =
      *std::find_if(commands.begin(), commands.end(), [](const Command& c) { return c.app->parsed(); });
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
    context.console().fail("The command was broken off: {}", error.what());
    return exit_status::unreadable_data;
  }
}

// A report that can't be written costs a command that changed something its exit status. One that only reads
// ends in silence: its reader wanted no more.
int finish_report(const Command& command, Console& console, int status) {
  if (console.flush() || console.fault() == EINTR) return status;
  if (command.effect == Command::Effect::reads)
    return console.fault() == EPIPE ? status : exit_status::unreadable_data;
  console.fail("The command was carried out and saved, but its report can't be written: {}",
               std::strerror(console.fault()));
  return exit_status::unreadable_data;
}

// Has the terminal that has the folder, if one has, store what it knows; false, after a message, when it
// doesn't.
bool all_is_stored(const TerminalLink& link, Console& console) {
  const auto stored = link.ask({{"do", "flush"}});
  if (stored || stored.error().nobody) return true;
  console.fail("The newest may be missing. {}", stored.error().text);
  return false;
}

int run(const Command& command, const CommonOptions& options, const CommandPorts& ports) {
  Console& console = ports.console;
  if (const std::string unknown = unknown_home(options.terminal); !unknown.empty()) {
    console.fail(unknown);
    return exit_status::usage;
  }
  if (command.read) {
    const TerminalLink link{options.terminal.home, ports, options.command.timeout};
    // What only reads finds all that a terminal knows which has the folder.
    const bool all_there = command.effect == Command::Effect::sends || all_is_stored(link, console);
    if (const auto status =
            command.read({console, options.terminal, ports.clock, ports.signal, options.command.form, link}))
      return finish_report(command, console, all_there ? *status : exit_status::unreadable_data);
  }
  if (const auto refused = ask_for_fresh(options.terminal, console)) return *refused;
  ConsolePrompt prompt{console, options.terminal.yes};
  SilentSound sound;
  NoFileDialog file_dialog;
  int status = exit_status::unreadable_data;
  {
    TerminalOptions opened = options.terminal;
    // A folder that is there keeps the list it has, be it empty.
    opened.samples = opened.create;
    const auto began = ports.clock.elapsed();
    const auto try_again = [&] {
      ports.pause(std::chrono::milliseconds{50});
      return ports.signal() == 0 && ports.clock.elapsed() - began <= options.wait_for_home;
    };
    const DealingServer* server = nullptr;  // the terminal's
    const auto terminal =
        Terminal::open(opened,
                       {prompt, sound, file_dialog, ports.clock,
                        [&](std::string_view text) { console.tell(text); }, "tuttictl", try_again},
                       [&](const TerminalOptions& home) { return open_backend(home, ports.clock, &server); });
    if (!terminal) {
      console.fail(terminal.error().text());
      return status;
    }
    CommandContext context{**terminal, *server, ports, options.command};
    context.on_step = [&] { show_messages(context.main(), prompt); };
    status = carry_out(command, context);
    context.journal_unanswered();
    show_messages(context.main(), prompt);
    if (const auto saved = (*terminal)->close(); !saved) {
      console.fail("Not everything was saved: {}", saved.error().text());
      status = exit_status::unreadable_data;
    }
  }
  // Nobody who is slow to read keeps the home folder from others.
  return finish_report(command, console, status);
}

// Prints help or the version, or says what is wrong; answers the exit status.
int answer_parser(const CLI::App& app, const CLI::ParseError& wrong, const std::vector<Command>& commands,
                  Console& console) {
  std::ostringstream said;
  std::ostringstream complained;
  const bool good = app.exit(wrong, said, complained) == 0;
  console.print(said.str());
  console.flush();
  if (good) return exit_status::all_accepted;
  std::string message = wrong.what();
  const auto parsed = app.get_subcommands();
  if (parsed.empty()) {
    const auto words = app.remaining();
    const auto word =
        std::find_if(words.begin(), words.end(), [](const std::string& w) { return !w.starts_with('-'); });
    message = word == words.end() ? "A command is required" + std::string{": --help names them"}
                                  : fmt::format("There is no command {}; the nearest one is {}", *word,
                                                nearest_command(commands, *word));
  } else {
    message += fmt::format("; see tuttictl {} --help", parsed.front()->get_name());
  }
  console.fail(message);
  return exit_status::usage;
}

}  // namespace

int tuttictl(int argc, const char* const* argv, const CommandPorts& ports) {
  Console& console = ports.console;
  // Wrong usage is told in this form as well.
  if (std::find(argv, argv + argc, std::string_view{"--json"}) != argv + argc) console.speak_json();
  int status = exit_status::unreadable_data;
  try {
    CLI::App app{"Trades many client accounts at once, without a screen."};
    app.require_subcommand(1);
    app.fallthrough();
    CommonOptions options;
    add_common_options(app, options, argv[0]);
    const std::vector<Command> commands = add_commands(app);
    try {
      const Command& command = parse(app, options, commands, argc, argv);
      status = run(command, options, ports);
    } catch (const CLI::ParseError& wrong) {
      status = answer_parser(app, wrong, commands, console);
    }
  } catch (const std::exception& error) {
    console.fail("{}", error.what());
  }
  const int signal = ports.signal();
  return signal == 0 ? status : exit_status::signalled + signal;
}

}  // namespace tutti
