#include "apps/command_line.h"

#include <fmt/format.h>

#include "core/numbers.h"
#include "core/version.h"
#include "dealer/trading/book_folder.h"

namespace tutti {

namespace {

std::string check_precision(const std::string& text) {
  const auto value = parse_int32(text);
  return value && *value >= 0 && *value <= 15 ? std::string{} : "must be a whole number from 0 to 15";
}

}  // namespace

std::string check_filled(const std::string& text) {
  return text.empty() ? "must not be empty" : std::string{};
}

void add_terminal_options(CLI::App& app, TerminalOptions& options, const char* program) {
  std::error_code error;
  options.home = std::filesystem::canonical("/proc/self/exe", error).parent_path();
  if (error) options.home = std::filesystem::absolute(program).parent_path();
  app.set_version_flag("--version", std::string{program_version()}, "Name the version and exit");
  app.add_option("--home", options.home, "Application folder, with the folders manage, History and sounds")
      ->envname("TUTTI_HOME")
      ->check(check_filled);
  app.add_flag("--create", options.create, "Make the application folder where there is none");
  app.add_option("--dealer", options.dealer_file, "Configuration of the dealing server (TOML)")
      ->envname("TUTTI_DEALER")
      ->check(check_filled);
  app.add_option("--key", options.key_file,
                 "File with the key of the account records, outside the application folder");
  app.add_flag("--fresh", options.fresh, "Start the dealing server's book anew");
  app.add_flag("--yes", options.yes, "Answer questions with yes");
  app.add_option("--precision", options.precision, "Decimals of shares, for this run")
      ->check(check_precision);
}

std::string unknown_home(const TerminalOptions& options) {
  std::error_code error;
  if (options.create || std::filesystem::is_directory(options.home / "manage", error)) return {};
  return fmt::format("{} is no application folder yet: --create makes one", options.home.string());
}

std::string fresh_question(const TerminalOptions& options) {
  if (!options.fresh || options.yes || !BookFolder::holds_book(options.home)) return {};
  return fmt::format("--fresh throws away all balances, positions and orders of the dealing server in {}.",
                     options.home.string());
}

std::optional<int> ask_for_fresh(const TerminalOptions& options, Console& console) {
  const std::string question = fresh_question(options);
  if (question.empty()) return std::nullopt;
  if (!console.answered()) {
    console.fail("{} Nobody can be asked here: --yes answers yes", question);
    return exit_status::usage;
  }
  const std::string answer = console.ask(question + " Go on? y/N ");
  if (answer.starts_with('y') || answer.starts_with('Y')) return std::nullopt;
  console.tell("Nothing was done");
  return exit_status::some_refused;
}

}  // namespace tutti
