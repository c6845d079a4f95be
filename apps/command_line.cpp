#include "apps/command_line.h"

#include "core/numbers.h"

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
  app.add_option("--home", options.home, "Application folder, with the folders manage, History and sounds")
      ->check(check_filled);
  app.add_option("--dealer", options.dealer_file, "Configuration of the dealing server (TOML)");
  app.add_option("--key", options.key_file,
                 "File with the key of the account records, outside the application folder");
  app.add_flag("--fresh", options.fresh, "Start the dealing server's book anew");
  app.add_option("--precision", options.precision, "Decimals of shares, for this run")
      ->check(check_precision);
}

}  // namespace tutti
