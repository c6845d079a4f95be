#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "apps/console.h"
#include "apps/output.h"
#include "apps/sent_lines.h"
#include "apps/terminal.h"
#include "core/clock.h"
#include "dealer/link/dealing_server.h"
#include "ledger/ledger_queries.h"

namespace tutti {

// What the command line has of the machine. It outlives every command.
struct CommandPorts {
  Console& console;
  const Clock& clock;
  std::function<void(std::chrono::milliseconds)> pause;  // lets time go by; a signal may cut it short
  std::function<int()> signal;                           // that asks the program to end; 0: none
};

struct CommandOptions {
  OutputForm form = OutputForm::text;
  std::chrono::milliseconds timeout{40'000};  // for the logins, and again for the answers
};

// What is said of a ticket that is held over a limit and refused.
std::string held_text(const HeldTicket& ticket);

// What a command works with: the terminal, the console it prints to, and the time that goes by while it
// waits.
class CommandContext {
 public:
  CommandContext(Terminal& terminal, const DealingServer& server, const CommandPorts& ports,
                 const CommandOptions& options)
      : terminal_(terminal), server_(server), ports_(ports), options_(options) {}

  Main& main() const { return terminal_.main(); }
  // The server within the program, for what only it can tell.
  const DealingServer& server() const { return server_; }
  Console& console() const { return ports_.console; }
  const Clock& clock() const { return ports_.clock; }
  OutputForm form() const { return options_.form; }
  // The program was asked to end: nothing more is to be sent.
  bool stopped() const { return ports_.signal() != 0; }

  // Prints a report in the form that was asked for; see report_text.
  void print(const std::string& name, const Records& records, const Json& more,
             const std::function<std::string()>& text) const {
    console().print(report_text(form(), name, records, more, text));
  }
  // The same of what was sent, with the totals and the journal of this run.
  void print(const SentLines& lines) const;
  // What a command that sends tells beside its records.
  Json totals_and_journal() const {
    return {{"totals", totals_json(main())}, {"journal", journal_json(main(), clock())}};
  }

  // Runs until the condition holds, the time is over or the program is to end; true when it held.
  bool run_until(const std::function<bool()>& done);
  // Runs with every step of run_until, after events were delivered.
  std::function<void()> on_step;
  // Waits until no account is on its way any more; shows how far it is when somebody watches. False when the
  // program is to end.
  [[nodiscard]] bool log_in();
  // Refuses what is held over a limit, after a message that names it.
  void refuse_held() const;
  // Gives up waiting for results; the journal then names what stays unknown.
  void journal_unanswered();
  // What the ledger has of these requests, once all is stored; nothing of one that it does not have. What
  // goes wrong is told.
  std::map<RequestId, TicketRequest> stored(const std::vector<RequestId>& requests) const;
  // The requests of a ticket, once all is stored; nothing, after a message, when they can't be read.
  std::optional<std::vector<TicketRequest>> requests_of(std::int64_t ticket) const;
  // The ticket of this name, compared with a plan; nothing, after a message, when it can't be read.
  std::optional<std::optional<NamedTicket>> named(const std::string& key, const std::string& plan) const;
  // The ledger, once all is stored, to read more of it; nothing, after a message, when it can't be read.
  std::unique_ptr<LedgerFile> open_ledger() const;
  // False, after a message, when one of these accounts is not in the accounts list.
  bool knows(const std::vector<std::int32_t>& accounts) const;
  // How many of these accounts, or of all when none is named, are not connected; says so when there are any.
  std::size_t tell_unconnected(const std::vector<std::int32_t>& accounts) const;
  // False, after a message that names them, when there are any: then nothing is to be sent.
  bool all_connected(const std::vector<std::int32_t>& accounts) const;

 private:
  bool logins_done(std::size_t& done) const;
  std::vector<std::size_t> unconnected(const std::vector<std::int32_t>& accounts) const;

  Terminal& terminal_;
  const DealingServer& server_;
  const CommandPorts& ports_;
  CommandOptions options_;
};

}  // namespace tutti
