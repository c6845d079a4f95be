#include "apps/command_set.h"

#include <algorithm>
#include <cstdint>
#include <istream>
#include <map>
#include <memory>
#include <numeric>
#include <string>
#include <utility>

#include "apps/command_line.h"
#include "apps/commands.h"
#include "apps/times.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

namespace {

using Effect = Command::Effect;

// "N,N,..." as the library reads it. Its own way to part a list drops empty places: "500100," would mean
// fewer accounts than were typed.
template <class Number>
struct NumberList {
  bool all = false;  // the word instead of numbers
  std::vector<Number> numbers;
};

template <class Number>
std::istream& operator>>(std::istream& in, NumberList<Number>& out) {
  if (std::string word; in.peek() == 'a' && in >> word) {
    out.all = word == "all";
    if (!out.all) in.setstate(std::ios::failbit);
    return in;
  }
  for (Number number{}; in >> number;) {
    out.numbers.push_back(number);
    if (in.eof() || in.peek() != ',') break;
    in.get();
  }
  return in;
}

template <class Number>
CLI::Option* add_numbers(CLI::App& command, const std::string& name, std::vector<Number>& out, bool or_all,
                         const std::string& help) {
  const std::string what =
      std::string{"takes "} + (or_all ? "all, or " : "") + "numbers with commas between them";
  return command
      .add_option_function<NumberList<Number>>(
          name, [&out](const NumberList<Number>& read) { out = read.numbers; }, help)
      ->check([or_all, what](const std::string& text) {
        NumberList<Number> read;
        const bool good = CLI::detail::lexical_cast(text, read) && (or_all || !read.all);
        return good ? std::string{} : what + ", not " + text;
      })
      ->type_name(or_all ? "all|N,N,..." : "N,N,...");
}

void add_id(CLI::App& command, std::string& id) {
  command
      .add_option(
          "--id", id,
          "Your own name for this act: who asks for it again has sent what was not, and nothing twice")
      ->type_name("TEXT")
      ->check(check_filled);
}

void add_accounts(CLI::App& command, AccountArguments& out) {
  add_id(command, out.id);
  command.add_flag("--require-connected", out.require_connected,
                   "Send nothing unless all these accounts are connected");
  add_numbers(command, "--accounts", out.accounts, true, "all, or account numbers with commas between them");
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

// `Reply`: RequoteReply, or optional where it counts whether it was given.
template <class Reply>
void add_requote(CLI::App& command, Reply& out) {
  add_choice<Reply>(
      command, "--requote", out,
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

constexpr auto send_over_limits = "Send what is over a limit all the same, for this reason";
constexpr auto send_unstored = "Send what can't be stored all the same, for this reason";

void add_override(CLI::App& command, std::string& reason, const char* help = send_over_limits) {
  command.add_option("--override", reason, help)->type_name("REASON")->check(check_filled);
}

void add_split_options(CLI::App& command, SplitArguments& arguments) {
  command.add_option("--amount", arguments.amount, "Total, in lots")->required()->check(check_amount);
  add_choice<int>(command, "--rule", arguments.rule, {{"equal", 0}, {"margin", 1}, {"equity", 2}},
                  "Equal parts, by free margin, or by equity")
      ->required();
  add_accounts(command, arguments);
  command.add_flag("--dry-run", arguments.dry_run,
                   "Stop after the shares, and say which are sure to be refused");
  add_override(command, arguments.over_limits);
}

constexpr auto shows_accounts = "0 all accounts are connected, 1 some are not, or a list has skipped lines";
constexpr auto sends_requests =
    "0 all accepted, 1 some refused or left out, 4 the outcome of some is unknown";

// What the help of a command ends with.
void explain(CLI::App& command, const std::string& example, const std::string& statuses) {
  command.footer("Example: " + example + "\n\nExit status: " + statuses +
                 ";\n  2 wrong usage, 3 data that can't be read or written, 128 + N ended by signal N");
}

template <class Arguments>
std::function<int(CommandContext&)> with(int (*command)(CommandContext&, const Arguments&),
                                         std::shared_ptr<Arguments> arguments) {
  return [=](CommandContext& context) { return command(context, *arguments); };
}

Command add_plain(CLI::App& app, const char* name, const char* help, int (*run)(CommandContext&)) {
  Command out{.app = app.add_subcommand(name, help), .run = run};
  explain(*out.app, std::string{"tuttictl --csv "} + name, shows_accounts);
  return out;
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
  explain(command, "tuttictl order --buy EURUSD --amount 12.5 --rule equity --requote accept",
          sends_requests);
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
  explain(command, "tuttictl entry EURUSD --type buy-limit --amount 10 --at 1.0800 --sl 1.0750 --rule equal",
          sends_requests);
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
  add_id(command, arguments->id);
  add_override(command, arguments->over_limits);
  explain(command, "tuttictl modify 10000012 --at 1.0790 --tp none", sends_requests);
  return {.app = &command, .effect = Effect::sends, .run = with(modify_command, arguments)};
}

// Positions or pending orders, all of a symbol or by their numbers.
std::shared_ptr<RowsArguments> add_rows_options(CLI::App& command, const std::string& numbers,
                                                const std::string& all_of, const std::string& these) {
  auto arguments = std::make_shared<RowsArguments>();
  CLI::Option_group& which = *command.add_option_group("which");
  which.add_option("--symbol", arguments->symbol, all_of)->check(check_filled);
  add_numbers(which, numbers, arguments->numbers, false, these);
  which.require_option(1);
  add_accounts(command, *arguments);
  return arguments;
}

Command add_close(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("close", "Close positions at the market price");
  const auto arguments =
      add_rows_options(command, "--ticket", "All positions of a symbol", "Tickets with commas between them");
  add_requote(command, arguments->requote);
  add_override(command, arguments->over_limits, send_unstored);
  explain(command, "tuttictl --yes close --symbol EURUSD --accounts 500100,500102", sends_requests);
  return {.app = &command, .effect = Effect::sends, .run = with(close_command, arguments)};
}

Command add_cancel(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("cancel", "Cancel pending orders");
  const auto arguments = add_rows_options(command, "--order", "All pending orders of a symbol",
                                          "Order numbers with commas between them");
  add_override(command, arguments->over_limits, send_unstored);
  explain(command, "tuttictl --yes cancel --order 10000012,10000013", sends_requests);
  return {.app = &command, .effect = Effect::sends, .run = with(cancel_command, arguments)};
}

Command add_retry(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(
      "retry", "Send again what of a ticket was refused or not sent, with the shares it had");
  auto arguments = std::make_shared<RetryArguments>();
  command.add_option("ticket", arguments->ticket, "Number of the ticket, as tuttictl tickets names it")
      ->required();
  command.add_flag_callback(
      "--settled", [arguments] { arguments->part = RetryPart::settled_by_hand; },
      "Instead: what you settled by hand as not executed");
  add_requote(command, arguments->requote);
  add_override(command, arguments->over_limits);
  explain(command, "tuttictl --yes retry 34",
          "0 all of it was accepted, or there was nothing left, 1 some refused or left out, 4 the outcome of "
          "some "
          "is unknown");
  return {.app = &command,
          .effect = Effect::sends,
          .run = with(retry_command, arguments),
          .read = [arguments](const HomeContext& context) { return retry_beside(context, *arguments); }};
}

Command add_settle(CLI::App& app) {
  CLI::App& command =
      *app.add_subcommand("settle", "Say what became of a request that nobody knows the outcome of");
  auto arguments = std::make_shared<SettleArguments>();
  command.add_option("request", arguments->request, "Its id, as tuttictl unknown names it")->required();
  add_choice<bool>(command, "--as", arguments->executed,
                   {{std::string{hand_filled}, true}, {std::string{hand_not_executed}, false}},
                   "What you have seen at the broker")
      ->required();
  command.add_option("--note", arguments->note, "How you know; kept with it")
      ->required()
      ->check(check_filled);
  explain(command, "tuttictl settle 256354791741335552 --as not-executed --note \"broker by phone\"",
          "0 it is settled");
  return {.app = &command,
          .effect = Effect::sends,
          .logs_in = false,
          .run = with(settle_command, arguments),
          .read = [arguments](const HomeContext& context) { return settle_beside(context, *arguments); }};
}

Command add_tickets(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("tickets", "Show your newest acts and what became of them");
  auto count = std::make_shared<int>(20);
  command.add_option("--last", *count, "How many; 20 when not given")
      ->check(CLI::Range(1, 1'000'000).description(""));
  explain(command, "tuttictl --json tickets --last 100", "0 also when there are none");
  return {.app = &command, .logs_in = false, .read = [count](const HomeContext& context) {
            return tickets_command(context, *count);
          }};
}

Command add_net(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("net", "Show the net positions of all accounts, per symbol");
  auto by_account = std::make_shared<bool>(false);
  add_choice<bool>(command, "--by", *by_account, {{"account", true}}, "Per account and symbol");
  explain(command, "tuttictl --json net --by account", shows_accounts);
  return {.app = &command,
          .run = [by_account](CommandContext& context) { return net_command(context, *by_account); }};
}

Command add_journal(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("journal", "Show the history of one account");
  auto account = std::make_shared<std::int32_t>(0);
  command.add_option("account", *account, "Account number")->required();
  explain(command, "tuttictl --json journal 500102", "0 also when it is empty, 2 no such account");
  return {.app = &command, .logs_in = false, .run = [account](CommandContext& context) {
            return journal_command(context, *account);
          }};
}

Command add_unknown(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("unknown", "Show the requests that nobody knows the outcome of");
  explain(command, "tuttictl --json unknown", "0 there is none, 4 there are some");
  return {.app = &command, .logs_in = false, .read = unknown_command};
}

Command add_fills(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("fills", "Show what was filled, and what the closes have brought");
  auto filter = std::make_shared<FillFilter>();
  const auto add_time = [&](const char* name, std::optional<TimePoint>& out, bool end, const char* help) {
    command
        .add_option_function<std::string>(
            name, [&out, end](const std::string& text) { out = utc_moment(text, end); }, help)
        ->check([](const std::string& text) {
          return utc_moment(text)
                     ? std::string{}
                     : "must be a day or moment in UTC, such as 2026-11-21 or 2026-11-21T05:15:16";
        })
        ->type_name("TIME");
  };
  add_time("--since", filter->since, false, "From this day or moment on, in UTC");
  add_time("--until", filter->until, true, "Up to the end of this day, or to this moment, in UTC");
  add_numbers(command, "--account", filter->accounts, false, "Account numbers with commas between them");
  command.add_option("--symbol", filter->symbol, "Symbol")->check(check_filled);
  command.add_option("--ticket", filter->ticket, "Number of an act of yours, as the ticket board has it")
      ->check(CLI::PositiveNumber.description(""));
  explain(command, "tuttictl --json fills --since 2026-11-20 --symbol EURUSD", "0 also when there are none");
  return {.app = &command, .logs_in = false, .read = [filter](const HomeContext& context) {
            return fills_command(context, *filter);
          }};
}

Command add_verify(CLI::App& app) {
  Command out =
      add_plain(app, "verify", "Compare the terminal with the dealing server's own books", verify_command);
  explain(*out.app, "tuttictl verify", "0 no difference, 1 differences, or skipped lines in a list");
  return out;
}

Command add_stop(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(
      "stop", "Stop trading: nothing leaves any more, from whatever terminal of the folder");
  auto arguments = std::make_shared<StopArguments>();
  command.add_flag("--cancel-orders", arguments->cancel_orders, "Then cancel all entry orders");
  command.add_flag("--close-positions", arguments->close_positions, "Then close all positions");
  command.add_flag("--end", arguments->end, "End the stop: trading goes on")
      ->excludes("--cancel-orders")
      ->excludes("--close-positions");
  add_override(command, arguments->over_limits, send_unstored);
  explain(command, "tuttictl --yes stop --cancel-orders --close-positions",
          "0 it was done, and nothing is open where something was to be closed; 1 something is open, or "
          "nobody could look; 4 what became of something that was sent is unknown");
  return {.app = &command,
          .effect = Effect::sends,
          .run = [arguments](CommandContext& context) { return stop_command(context, *arguments); },
          .read = [arguments](const HomeContext& context) { return stop_at_once(context, *arguments); }};
}

// "ledger" with what there is of it.
void add_ledger(CLI::App& app, std::vector<Command>& out) {
  CLI::App& ledger = *app.add_subcommand("ledger", "The record of all requests that were sent");
  ledger.require_subcommand(1);
  const auto add = [&](const char* name, const char* help, std::function<int(const HomeContext&)> read,
                       const std::string& statuses) -> CLI::App& {
    CLI::App& command = *ledger.add_subcommand(name, help);
    explain(command, std::string{"tuttictl ledger "} + name, statuses);
    out.push_back({.app = &command, .logs_in = false, .read = std::move(read)});
    return command;
  };
  add("check", "Look whether nothing in it was changed, cut off or lost", ledger_check_command,
      "0 nothing is wrong, 1 something is");
  auto to = std::make_shared<std::string>();
  CLI::App& backup = add(
      "backup", "Copy it, also while a terminal runs",
      [to](const HomeContext& context) { return ledger_backup_command(context, *to); }, "0 it was copied");
  backup.add_option("file", *to, "New file")->required()->check(check_filled);
  explain(backup, "tuttictl ledger backup ~/ledger-copy.db", "0 it was copied");
  auto server = std::make_shared<std::string>();
  CLI::App& push = add(
      "push", "Copy what is new of it to a PostgreSQL server",
      [server](const HomeContext& context) { return ledger_push_command(context, *server); }, "");
  push.add_option("--to", *server, "Its URL, without a password")
      ->required()
      ->check(check_filled)
      ->type_name("URL");
  explain(push, "tuttictl ledger push --to postgresql://dealing@db.example.com/trading",
          "0 all of it is there, 1 too, but its copy had gone another way and what came since has a new id");
  add("export", "Print all its rows as JSON, one in a line", ledger_export_command, "0 it was read");
}

// How many letters have to be put in, taken out or changed to make one word of the other.
std::size_t letters_apart(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, changed});
    }
  }
  return row.back();
}

}  // namespace

std::string nearest_command(const std::vector<Command>& commands, std::string_view typed) {
  const auto name = [](const Command& command) {
    const CLI::App* above = command.app->get_parent();
    const bool nested = above != nullptr && above->get_parent() != nullptr;
    return (nested ? above : command.app)->get_name();
  };
  return name(*std::min_element(commands.begin(), commands.end(), [&](const Command& a, const Command& b) {
    return letters_apart(name(a), typed) < letters_apart(name(b), typed);
  }));
}

std::vector<Command> add_commands(CLI::App& app) {
  std::vector<Command> out;
  out.push_back(add_plain(app, "accounts", "Log all accounts in and show them", accounts_command));
  out.push_back(add_order(app));
  out.push_back(add_entry(app));
  out.push_back(add_modify(app));
  out.push_back(add_plain(app, "positions", "Show the open positions of all accounts", positions_command));
  out.push_back(add_plain(app, "orders", "Show the pending orders of all accounts", orders_command));
  out.push_back(add_net(app));
  out.push_back(add_close(app));
  out.push_back(add_cancel(app));
  out.push_back(add_retry(app));
  out.push_back(add_verify(app));
  out.push_back(add_journal(app));
  out.push_back(add_tickets(app));
  out.push_back(add_fills(app));
  out.push_back(add_unknown(app));
  out.push_back(add_stop(app));
  out.push_back(add_settle(app));
  add_ledger(app, out);
  return out;
}

}  // namespace tutti
