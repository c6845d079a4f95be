#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/line_server.h"
#include "apps/records.h"
#include "ledger/ledger_reads.h"
#include "ledger/ledger_writer.h"
#include "shell/Main.h"

namespace tutti {

// What another program of the same user may ask of a running terminal: a JSON object in a line, with what to
// "do" and the "version" of all this, answered by one with what came of it, or with an "error" and the exit
// "status" of the command line that it stands for. docs/tuttictl.md has them all.
//
// Acts go through the same forms and the same gate as the operator's, each in one step outside of handlers,
// and wait for nobody. While the operator is asked something they are refused, since his action is not over.
class TerminalControl {
 public:
  static constexpr const char* socket_name = "tutti.sock";
  static constexpr int version = 1;

  // `occupied`: whether an action of the operator's waits for his answer. All that is given outlives it.
  TerminalControl(Main& main, LedgerWriter& ledger, LedgerReads& reads, std::function<bool()> occupied)
      : main_(main), ledger_(ledger), reads_(reads), occupied_(std::move(occupied)) {}

  // What answers a question; never throws.
  LineServer::Work take(std::string_view question);

 private:
  using Work = LineServer::Work;
  using Requests = std::vector<TicketRequest>;

  Work work_for(const Json& asked);
  Work settle(const Json& asked);
  Work retry(const Json& asked);
  Work stop(const Json& asked);
  // Carries out once and answers that once it is stored.
  Work act(std::function<std::string()> carry_out);
  // The same with what the ledger has of a ticket, once all that is known is stored.
  Work with_ticket(std::int64_t ticket, std::function<Work(Requests)> next);
  // That answer, once the ledger has stored all up to here; an error when it can't.
  std::optional<std::string> once_stored(std::uint64_t told, const std::string& answer);
  std::string send_again(std::int64_t ticket, const Requests& requests, RetryPart part,
                         const std::string& plan, const std::string& override_reason);
  std::string stop_state();
  void journal(const std::string& what);

  Main& main_;
  LedgerWriter& ledger_;
  LedgerReads& reads_;
  std::function<bool()> occupied_;
};

}  // namespace tutti
