#include "apps/command_set.h"

#include <charconv>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "apps/command_line.h"
#include "apps/commands.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

namespace {

using Effect = Command::Effect;

// Reads "N,N,...". Throws what is shown as wrong usage.
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

template <class Number>
CLI::Option* add_numbers(CLI::App& command, const std::string& name, std::vector<Number>& out,
                         const std::string& help) {
  return command
      .add_option_function<std::string>(
          name, [&out, name](const std::string& text) { read_numbers(name, text, out); }, help)
      ->type_name("N,N,...");
}

void add_accounts(CLI::App& command, std::vector<std::int32_t>& out) {
  command
      .add_option_function<std::string>(
          "--accounts",
          [&out](const std::string& text) {
            if (text != "all") read_numbers("--accounts", text, out);
          },
          "all, or account numbers with commas between them")
      ->type_name("all|N,N,...");
}

// An option that takes one of these names and nothing else.
template <class Value>
CLI::Option* add_choice(CLI::App& command, const std::string& name, Value& out,
                        const std::vector<std::pair<std::string, Value>>& choices, const std::string& help) {
  std::string names;
  std::vector<std::string> allowed;
  for (const auto& [choice, value] : choices) {
    names += (names.empty() ? "" : "|") + choice;
    allowed.push_back(choice);
  }
  return command
      .add_option_function<std::string>(
          name,
          [&out, choices](const std::string& chosen) {
            for (const auto& [choice, value] : choices)
              if (choice == chosen) out = value;
          },
          help)
      ->check(CLI::IsMember(allowed).description(""))
      ->type_name(names);
}

void add_requote(CLI::App& command, RequoteReply& out) {
  add_choice(command, "--requote", out,
             {{"accept", RequoteReply::accept}, {"reject", RequoteReply::reject}, {"ask", RequoteReply::ask}},
             "What to answer when the dealer offers another price; reject when not given");
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

void add_split_options(CLI::App& command, SplitArguments& arguments) {
  command.add_option("--amount", arguments.amount, "Total, in lots")->required()->check(check_amount);
  add_choice<int>(command, "--rule", arguments.rule, {{"equal", 0}, {"margin", 1}, {"equity", 2}},
                  "Equal parts, by free margin, or by equity")
      ->required();
  add_accounts(command, arguments.accounts);
  command.add_flag("--dry-run", arguments.dry_run, "Stop after the shares");
}

template <class Arguments>
std::function<int(CommandContext&)> with(int (*command)(CommandContext&, const Arguments&),
                                         std::shared_ptr<Arguments> arguments) {
  return [=](CommandContext& context) { return command(context, *arguments); };
}

Command add_order(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("order", "Split a market order over accounts and send it");
  auto arguments = std::make_shared<OrderArguments>();
  CLI::Option_group& side = *command.add_option_group("side");
  const auto take = [arguments](bool buy) {
    return [arguments, buy](const std::string& symbol) {
      arguments->buy = buy;
      arguments->symbol = symbol;
    };
  };
  side.add_option_function<std::string>("--buy", take(true), "Symbol to buy")->check(check_filled);
  side.add_option_function<std::string>("--sell", take(false), "Symbol to sell")->check(check_filled);
  side.require_option(1);
  add_split_options(command, *arguments);
  add_requote(command, arguments->requote);
  return {.app = &command, .effect = Effect::sends, .run = with(order_command, arguments)};
}

Command add_entry(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("entry", "Split an entry order over accounts and send it");
  auto arguments = std::make_shared<EntryArguments>();
  add_choice<int>(command, "--type", arguments->type,
                  {{"buy-limit", 0}, {"sell-limit", 1}, {"buy-stop", 2}, {"sell-stop", 3}},
                  "What the order does when the market comes to its price")
      ->required();
  command.add_option("symbol", arguments->symbol, "Symbol")->required()->check(check_filled);
  command.add_option("--at", arguments->price, "Price")->required()->check(check_price);
  command.add_option("--sl", arguments->stop_loss, "Stop loss")->check(check_price);
  command.add_option("--tp", arguments->take_profit, "Take profit")->check(check_price);
  add_split_options(command, *arguments);
  return {.app = &command, .effect = Effect::sends, .run = with(entry_command, arguments)};
}

Command add_modify(CLI::App& app) {
  CLI::App& command =
      *app.add_subcommand("modify", "Change the prices of an entry order or the SL/TP of a position");
  auto arguments = std::make_shared<ModifyArguments>();
  command.add_option("number", arguments->number, "Order number or ticket")->required();
  CLI::Option_group& prices = *command.add_option_group("prices");
  prices.add_option("--at", arguments->price, "Price of an entry order")->check(check_price);
  prices.add_option("--sl", arguments->stop_loss, "Stop loss, or none")->check(check_new_price);
  prices.add_option("--tp", arguments->take_profit, "Take profit, or none")->check(check_new_price);
  prices.require_option(1, 3);
  return {.app = &command, .effect = Effect::sends, .csv = true, .run = with(modify_command, arguments)};
}

// Positions or pending orders, all of a symbol or by their numbers.
std::shared_ptr<RowsArguments> add_rows_options(CLI::App& command, const std::string& numbers,
                                                const std::string& all_of, const std::string& these) {
  auto arguments = std::make_shared<RowsArguments>();
  CLI::Option_group& which = *command.add_option_group("which");
  which.add_option("--symbol", arguments->symbol, all_of)->check(check_filled);
  add_numbers(which, numbers, arguments->numbers, these);
  which.require_option(1);
  add_accounts(command, arguments->accounts);
  return arguments;
}

Command add_close(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("close", "Close positions at the market price");
  const auto arguments =
      add_rows_options(command, "--ticket", "All positions of a symbol", "Tickets with commas between them");
  add_requote(command, arguments->requote);
  return {.app = &command, .effect = Effect::sends, .csv = true, .run = with(close_command, arguments)};
}

Command add_cancel(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("cancel", "Cancel pending orders");
  const auto arguments = add_rows_options(command, "--order", "All pending orders of a symbol",
                                          "Order numbers with commas between them");
  return {.app = &command, .effect = Effect::sends, .csv = true, .run = with(cancel_command, arguments)};
}

Command add_net(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("net", "Show the net positions of all accounts, per symbol");
  auto by_account = std::make_shared<bool>(false);
  add_choice<bool>(command, "--by", *by_account, {{"account", true}}, "Per account and symbol");
  return {.app = &command, .csv = true, .run = [by_account](CommandContext& context) {
            return net_command(context, *by_account);
          }};
}

Command add_journal(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("journal", "Show the history of one account");
  auto account = std::make_shared<std::int32_t>(0);
  command.add_option("account", *account, "Account number")->required();
  return {.app = &command, .logs_in = false, .run = [account](CommandContext& context) {
            return journal_command(context, *account);
          }};
}

}  // namespace

std::vector<Command> add_commands(CLI::App& app) {
  const auto plain = [&app](const char* name, const char* help, int (*run)(CommandContext&),
                            bool csv = true) {
    return Command{.app = app.add_subcommand(name, help), .csv = csv, .run = run};
  };
  std::vector<Command> out;
  out.push_back(plain("accounts", "Log all accounts in and show them", accounts_command));
  out.push_back(add_order(app));
  out.push_back(add_entry(app));
  out.push_back(add_modify(app));
  out.push_back(plain("positions", "Show the open positions of all accounts", positions_command));
  out.push_back(plain("orders", "Show the pending orders of all accounts", orders_command));
  out.push_back(add_net(app));
  out.push_back(add_close(app));
  out.push_back(add_cancel(app));
  out.push_back(
      plain("verify", "Compare the terminal with the dealing server's own books", verify_command, false));
  out.push_back(add_journal(app));
  return out;
}

}  // namespace tutti
