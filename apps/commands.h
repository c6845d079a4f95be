#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/command_context.h"
#include "apps/terminal_link.h"
#include "ledger/ledger_queries.h"

// The commands of the command line. Each prints to standard output and answers the exit status.
namespace tutti {

// What to answer when the dealer offers another price.
enum class RequoteReply { accept, reject, ask };

// Which accounts are meant.
struct AccountArguments {
  std::string id;                      // the script's own name of the act; empty: it has none
  std::vector<std::int32_t> accounts;  // empty: all
  bool require_connected = false;      // send nothing unless all of them are connected
};

// An amount that is split over accounts.
struct SplitArguments : AccountArguments {
  std::string symbol;
  std::string amount;       // lots, as typed
  int rule = 0;             // index of the rule list: 0 equal, 1 margin, 2 equity
  bool dry_run = false;     // stop after the shares
  std::string over_limits;  // why what is over a limit is sent all the same; empty: it is not
};

struct OrderArguments : SplitArguments {
  bool buy = true;
  RequoteReply requote = RequoteReply::reject;
};

struct EntryArguments : SplitArguments {
  int type = 0;  // index of the order type list
  std::string price;
  std::string stop_loss;  // empty: none
  std::string take_profit;
};

// New prices of an entry order, or of a position's SL/TP. What is not given stays, "none" takes away.
struct ModifyArguments {
  std::string id;           // as in AccountArguments
  std::int64_t number = 0;  // order or ticket
  std::optional<std::string> price;
  std::optional<std::string> stop_loss;
  std::optional<std::string> take_profit;
  std::string over_limits;  // as in SplitArguments
};

// What follows when trading is stopped, or that it goes on.
struct StopArguments {
  bool cancel_orders = false;
  bool close_positions = false;
  bool end = false;
  std::string over_limits;  // as in SplitArguments
};

// Which rows of a list are meant; what is empty does not narrow.
struct RowsArguments : AccountArguments {
  std::string symbol;
  std::vector<std::int64_t> numbers;  // tickets or order numbers
  RequoteReply requote = RequoteReply::reject;
  std::string over_limits;  // as in SplitArguments
};

// The rest of an act, to be sent again.
struct RetryArguments {
  std::int64_t ticket = 0;
  std::optional<RequoteReply> requote;
  std::string over_limits;  // as in SplitArguments
  RetryPart part = RetryPart::no_effect;
};

// The operator's word on a request whose outcome nobody knows.
struct SettleArguments {
  RequestId request = 0;
  bool executed = false;
  std::string note;  // why he is sure
};

// What a command works with that needs no terminal: it may run beside one that has the folder.
struct HomeContext {
  Console& console;
  const TerminalOptions& terminal;
  const Clock& clock;
  std::function<int()> signal;  // that asks the program to end; 0: none
  OutputForm form = OutputForm::text;
  const TerminalLink& link;  // to the terminal that has the folder, if one has
};

// The ledger: what is wrong with it; a copy of it; all its rows as JSON, one in a line.
int ledger_check_command(const HomeContext& context);
int ledger_backup_command(const HomeContext& context, const std::filesystem::path& to);
int ledger_export_command(const HomeContext& context);
// Copies what is new of it to a PostgreSQL server; no terminal may have the folder.
int ledger_push_command(const HomeContext& context, const std::string& to);
// Requests whose outcome nobody knows.
int unknown_command(const HomeContext& context);
// The newest acts, and what became of them.
int tickets_command(const HomeContext& context, int count);
// What was filled, and what it brought.
int fills_command(const HomeContext& context, const FillFilter& filter);

void tell_settled(Console& console, const SettleArguments& arguments);
// Stops trading before anything else, whoever has the folder. What follows the terminal does that has it;
// nothing: none has, and it needs one.
std::optional<int> stop_at_once(const HomeContext& context, const StopArguments& arguments);
// What these two come to in a folder that a terminal has, which carries them out; nothing: none has it.
std::optional<int> settle_beside(const HomeContext& context, const SettleArguments& arguments);
std::optional<int> retry_beside(const HomeContext& context, const RetryArguments& arguments);
int stop_command(CommandContext& context, const StopArguments& arguments);
int accounts_command(CommandContext& context);
int order_command(CommandContext& context, const OrderArguments& arguments);
int entry_command(CommandContext& context, const EntryArguments& arguments);
int modify_command(CommandContext& context, const ModifyArguments& arguments);
int settle_command(CommandContext& context, const SettleArguments& arguments);
int retry_command(CommandContext& context, const RetryArguments& arguments);
// Oldest first, without holding it: a history may be of any size.
int journal_command(CommandContext& context, std::int32_t account);
int positions_command(CommandContext& context);
int orders_command(CommandContext& context);
// Per symbol over all accounts, or per account and symbol.
int net_command(CommandContext& context, bool by_account);
int close_command(CommandContext& context, const RowsArguments& arguments);
int cancel_command(CommandContext& context, const RowsArguments& arguments);
// Prints every difference between what the terminal shows and the dealing server's own books.
int verify_command(CommandContext& context);

}  // namespace tutti
