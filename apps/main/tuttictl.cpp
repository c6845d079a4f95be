// The terminal without a screen, for scripts and servers.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdio>
#include <string>

#include "apps/commands.h"
#include "apps/terminal.h"
#include "core/core_dumps.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace {

using namespace tutti;

// Reads "N,N,..." into `out`. Throws what is shown as wrong usage.
template <class Number>
void read_numbers(const std::string& option, const std::string& text, std::vector<Number>& out) {
  for (const auto piece : split(text, ",")) {
    Number number = 0;
    const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), number);
    if (error != std::errc{} || end != piece.data() + piece.size()) {
      throw CLI::ValidationError(option + " takes numbers with commas between them, not " + text);
    }
    out.push_back(number);
  }
}

std::string check_amount(const std::string& text) {
  const auto value = parse_number(text);
  const bool keys = text.find_first_not_of("0123456789.") == std::string::npos;
  return value && keys && *value > 0.0 ? std::string{} : "must be a number of lots above 0, such as 12.5";
}

// An unset variable of a script must not come to mean everything.
std::string check_filled(const std::string& text) {
  return text.empty() ? "must not be empty" : std::string{};
}

std::string check_precision(const std::string& text) {
  const auto value = parse_int32(text);
  return value && *value >= 0 && *value <= 15 ? std::string{} : "must be a whole number from 0 to 15";
}

int finish(Terminal& terminal, int status) {
  if (const auto saved = terminal.save_book(); !saved) {
    fmt::print(stderr, "The dealing server's book was not saved: {}\n", saved.error().text());
    return exit_status::unreadable_data;
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
#ifdef NDEBUG
  forbid_core_dumps();
#endif
  CLI::App app{"Trades many client accounts at once, without a screen."};
  app.require_subcommand(1);
  app.fallthrough();

  TerminalOptions options;
  std::error_code error;
  options.home = std::filesystem::canonical("/proc/self/exe", error).parent_path();
  if (error) options.home = std::filesystem::absolute(argv[0]).parent_path();
  app.add_option("--home", options.home, "Application folder, with the folders manage, History and sounds")
      ->check(check_filled);
  app.add_option("--dealer", options.dealer_file, "Configuration of the dealing server (TOML)");
  app.add_option("--key", options.key_file,
                 "File with the key of the account records, outside the application folder");
  app.add_flag("--fresh", options.fresh, "Start the dealing server's book anew");
  app.add_flag("--yes", options.yes, "Answer questions with yes");
  bool json = false;
  bool csv = false;
  app.add_flag("--json", json, "Print for machines");
  app.add_flag("--csv", csv, "Print lists as comma-separated values")->excludes("--json");
  app.add_option("--precision", options.precision, "Decimals of shares, for this run")
      ->check(check_precision);
  app.add_option("--timeout", options.timeout, "Seconds to wait for logins, and again for answers")
      ->check(CLI::Range(0.1, 3600.0));

  CLI::App* accounts = app.add_subcommand("accounts", "Log all accounts in and show them");

  CLI::App* order = app.add_subcommand("order", "Split a market order over accounts and send it");
  OrderArguments order_arguments;
  std::string buy;
  std::string sell;
  std::string wanted = "all";
  auto* side = order->add_option_group("side");
  side->add_option("--buy", buy, "Symbol to buy");
  side->add_option("--sell", sell, "Symbol to sell");
  side->require_option(1);
  order->add_option("--amount", order_arguments.amount, "Total, in lots")->required()->check(check_amount);
  const std::map<std::string, int> rules = {{"equal", 0}, {"margin", 1}, {"equity", 2}};
  order->add_option("--rule", order_arguments.rule, "equal, margin (free margin) or equity")
      ->required()
      ->transform(CLI::CheckedTransformer(rules))
      ->type_name("equal|margin|equity");
  order->add_option("--accounts", wanted, "all, or account numbers with commas between them");
  order->add_flag("--dry-run", order_arguments.dry_run, "Stop after the shares");

  const std::map<std::string, RequoteReply> requotes = {
      {"accept", RequoteReply::accept}, {"reject", RequoteReply::reject}, {"ask", RequoteReply::ask}};
  order->add_option("--requote", order_arguments.requote, "accept, reject (the default) or ask")
      ->transform(CLI::CheckedTransformer(requotes))
      ->type_name("accept|reject|ask");

  CLI::App* positions = app.add_subcommand("positions", "Show the open positions of all accounts");
  CLI::App* orders = app.add_subcommand("orders", "Show the pending orders of all accounts");
  RowsArguments rows;
  std::string numbers;
  CLI::App* close = app.add_subcommand("close", "Close positions at the market price");
  auto* what = close->add_option_group("what");
  what->add_option("--symbol", rows.symbol, "All positions of a symbol")->check(check_filled);
  what->add_option("--ticket", numbers, "Tickets with commas between them")->check(check_filled);
  what->require_option(1);
  close->add_option("--requote", rows.requote, "accept, reject (the default) or ask")
      ->transform(CLI::CheckedTransformer(requotes))
      ->type_name("accept|reject|ask");
  close->add_option("--accounts", wanted, "all, or account numbers with commas between them");
  CLI::App* cancel = app.add_subcommand("cancel", "Cancel pending orders");
  auto* which = cancel->add_option_group("which");
  which->add_option("--symbol", rows.symbol, "All pending orders of a symbol")->check(check_filled);
  which->add_option("--order", numbers, "Order numbers with commas between them")->check(check_filled);
  which->require_option(1);
  cancel->add_option("--accounts", wanted, "all, or account numbers with commas between them");
  CLI::App* verify = app.add_subcommand("verify", "Compare the terminal with the dealing server's own books");

  CLI::App* journal = app.add_subcommand("journal", "Show the history of one account");
  std::int32_t journal_account = 0;
  journal->add_option("account", journal_account, "Account number")->required();

  try {
    app.parse(argc, argv);
    order_arguments.buy = !buy.empty();
    order_arguments.symbol = order_arguments.buy ? buy : sell;
    if (wanted != "all") read_numbers("--accounts", wanted, order_arguments.accounts);
    rows.accounts = order_arguments.accounts;
    if (csv && (order->parsed() || verify->parsed() || journal->parsed())) {
      throw CLI::ValidationError("--csv goes with accounts, positions, orders, close and cancel");
    }
    if (!numbers.empty()) read_numbers(close->parsed() ? "--ticket" : "--order", numbers, rows.numbers);
  } catch (const CLI::ParseError& parse_error) {
    return app.exit(parse_error) == 0 ? 0 : exit_status::usage;
  }
  if (json) options.form = OutputForm::json;
  if (csv) options.form = OutputForm::csv;

  const auto terminal = Terminal::open(options);
  if (!terminal) {
    fmt::print(stderr, "{}\n", terminal.error().text());
    return exit_status::unreadable_data;
  }
  int status = exit_status::all_accepted;
  if (accounts->parsed()) status = accounts_command(**terminal);
  if (order->parsed()) status = order_command(**terminal, order_arguments);
  if (positions->parsed()) status = positions_command(**terminal);
  if (orders->parsed()) status = orders_command(**terminal);
  if (close->parsed()) status = close_command(**terminal, rows);
  if (cancel->parsed()) status = cancel_command(**terminal, rows);
  if (verify->parsed()) status = verify_command(**terminal);
  if (journal->parsed()) status = journal_command(**terminal, journal_account);
  return finish(**terminal, status);
}
