// The terminal without a screen, for scripts and servers.

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdio>
#include <string>

#include "apps/command_line.h"
#include "apps/commands.h"
#include "apps/console_prompt.h"
#include "apps/terminal.h"
#include "core/core_dumps.h"
#include "core/numbers.h"
#include "core/standard_streams.h"
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

// What the boxes take as it is typed: digits and one ".".
bool typable(const std::string& text) {
  const auto value = parse_number(text);
  return value && *value > 0.0 && text.find_first_not_of("0123456789.") == std::string::npos;
}

std::string check_amount(const std::string& text) {
  return typable(text) ? std::string{} : "must be a number of lots above 0, such as 12.5";
}

std::string check_price(const std::string& text) {
  return typable(text) ? std::string{} : "must be a price above 0, such as 1.0845";
}

std::string check_new_price(const std::string& text) {
  return typable(text) || text == "none" ? std::string{} : "must be a price above 0, or none";
}

void add_split_options(CLI::App& command, SplitArguments& arguments, std::string& wanted) {
  static const std::map<std::string, int> rules = {{"equal", 0}, {"margin", 1}, {"equity", 2}};
  command.add_option("--amount", arguments.amount, "Total, in lots")->required()->check(check_amount);
  command.add_option("--rule", arguments.rule, "equal, margin (free margin) or equity")
      ->required()
      ->transform(CLI::CheckedTransformer(rules))
      ->type_name("equal|margin|equity");
  command.add_option("--accounts", wanted, "all, or account numbers with commas between them");
  command.add_flag("--dry-run", arguments.dry_run, "Stop after the shares");
}

void show_messages(Terminal& terminal, ConsolePrompt& prompt) {
  MessageQueue& messages = terminal.main().messages();
  for (; messages.current() != nullptr; messages.dismiss()) {
    prompt.system_box(messages.current()->text, messages.current()->caption);
  }
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
  open_standard_streams();
#ifdef NDEBUG
  forbid_core_dumps();
#endif
  CLI::App app{"Trades many client accounts at once, without a screen."};
  app.require_subcommand(1);
  app.fallthrough();

  TerminalOptions options;
  add_terminal_options(app, options, argv[0]);
  bool json = false;
  bool csv = false;
  app.add_flag("--json", json, "Print for machines");
  app.add_flag("--csv", csv, "Print lists as comma-separated values")->excludes("--json");
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
  add_split_options(*order, order_arguments, wanted);
  const std::map<std::string, RequoteReply> requotes = {
      {"accept", RequoteReply::accept}, {"reject", RequoteReply::reject}, {"ask", RequoteReply::ask}};
  order->add_option("--requote", order_arguments.requote, "accept, reject (the default) or ask")
      ->transform(CLI::CheckedTransformer(requotes))
      ->type_name("accept|reject|ask");

  CLI::App* entry = app.add_subcommand("entry", "Split an entry order over accounts and send it");
  EntryArguments entry_arguments;
  const std::map<std::string, int> types = {
      {"buy-limit", 0}, {"sell-limit", 1}, {"buy-stop", 2}, {"sell-stop", 3}};
  entry->add_option("--type", entry_arguments.type, "buy-limit, sell-limit, buy-stop or sell-stop")
      ->required()
      ->transform(CLI::CheckedTransformer(types))
      ->type_name("buy-limit|sell-limit|buy-stop|sell-stop");
  entry->add_option("symbol", entry_arguments.symbol, "Symbol")->required()->check(check_filled);
  entry->add_option("--at", entry_arguments.price, "Price")->required()->check(check_price);
  entry->add_option("--sl", entry_arguments.stop_loss, "Stop loss")->check(check_price);
  entry->add_option("--tp", entry_arguments.take_profit, "Take profit")->check(check_price);
  add_split_options(*entry, entry_arguments, wanted);

  CLI::App* modify =
      app.add_subcommand("modify", "Change the prices of an entry order or the SL/TP of a position");
  ModifyArguments modify_arguments;
  modify->add_option("number", modify_arguments.number, "Order number or ticket")->required();
  auto* prices = modify->add_option_group("prices");
  prices->add_option("--at", modify_arguments.price, "Price of an entry order")->check(check_price);
  prices->add_option("--sl", modify_arguments.stop_loss, "Stop loss, or none")->check(check_new_price);
  prices->add_option("--tp", modify_arguments.take_profit, "Take profit, or none")->check(check_new_price);
  prices->require_option(1, 3);

  CLI::App* positions = app.add_subcommand("positions", "Show the open positions of all accounts");
  CLI::App* orders = app.add_subcommand("orders", "Show the pending orders of all accounts");
  CLI::App* net = app.add_subcommand("net", "Show the net positions of all accounts, per symbol");
  std::string net_by;
  net->add_option("--by", net_by, "account: per account and symbol")->check(CLI::IsMember({"account"}));
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
    entry_arguments.accounts = order_arguments.accounts;
    rows.accounts = order_arguments.accounts;
    if (csv && (order->parsed() || entry->parsed() || verify->parsed() || journal->parsed())) {
      throw CLI::ValidationError(
          "--csv goes with accounts, positions, orders, net, close, cancel and modify");
    }
    if (!numbers.empty()) read_numbers(close->parsed() ? "--ticket" : "--order", numbers, rows.numbers);
  } catch (const CLI::ParseError& parse_error) {
    return app.exit(parse_error) == 0 ? 0 : exit_status::usage;
  }
  if (json) options.form = OutputForm::json;
  if (csv) options.form = OutputForm::csv;

  if (const auto refused = ask_for_fresh(options, STDIN_FILENO)) return *refused;
  ConsolePrompt prompt{options.yes};
  SilentSound sound;
  NoFileDialog file_dialog;
  const auto terminal = Terminal::open(options, {prompt, sound, file_dialog});
  if (!terminal) {
    fmt::print(stderr, "{}\n", terminal.error().text());
    return exit_status::unreadable_data;
  }
  (*terminal)->on_step = [&] { show_messages(**terminal, prompt); };
  int status = exit_status::all_accepted;
  if (accounts->parsed()) status = accounts_command(**terminal);
  if (order->parsed()) status = order_command(**terminal, order_arguments);
  if (entry->parsed()) status = entry_command(**terminal, entry_arguments);
  if (modify->parsed()) status = modify_command(**terminal, modify_arguments);
  if (positions->parsed()) status = positions_command(**terminal);
  if (orders->parsed()) status = orders_command(**terminal);
  if (net->parsed()) status = net_command(**terminal, !net_by.empty());
  if (close->parsed()) status = close_command(**terminal, rows);
  if (cancel->parsed()) status = cancel_command(**terminal, rows);
  if (verify->parsed()) status = verify_command(**terminal);
  if (journal->parsed()) status = journal_command(**terminal, options.form, journal_account);
  show_messages(**terminal, prompt);
  return finish(**terminal, status);
}
