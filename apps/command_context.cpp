#include "apps/command_context.h"

#include <algorithm>

namespace tutti {

namespace {
constexpr std::chrono::milliseconds longest_pause{10};
}

bool CommandContext::run_until(const std::function<bool()>& done) {
  const auto deadline = ports_.clock.elapsed() + options_.timeout;
  for (;;) {
    terminal_.advance();
    if (on_step) on_step();
    if (done()) return true;
    const auto left = deadline - ports_.clock.elapsed();
    if (left <= left.zero() || stopped()) return false;
    const auto due = terminal_.next_due();
    const auto until_due = due ? *due - ports_.clock.now() : left;
    ports_.pause(std::clamp(std::min(until_due, left), std::chrono::milliseconds{1}, longest_pause));
  }
}

bool CommandContext::logins_done(std::size_t& done) const {
  frmMain& accounts = main().accounts();
  done = 0;
  for (const Row& row : accounts.lvwClients) {
    const bool waiting = row.reads(frmMain::state, "Connecting");
    // A connected account is ready once its data are there and the order window has it, or was found unknown.
    const auto number = static_cast<std::int32_t>(row.cell(frmMain::account).stored_number());
    const bool loading =
        row.reads(frmMain::state, "Connected") && main().market_order().account_row(number) == nullptr;
    if (!waiting && !loading) ++done;
  }
  return done == accounts.lvwClients.size();
}

bool CommandContext::log_in() {
  const bool show = console().watched();
  const std::size_t all = main().accounts().lvwClients.size();
  run_until([&] {
    std::size_t done = 0;
    const bool over = logins_done(done);
    if (show) console().tell("\rLogging in {}/{}", done, all);
    return over;
  });
  if (show) console().tell("\r\x1b[K");
  return !stopped();
}

void CommandContext::journal_unanswered() {
  for (const auto& session : main().accounts().sessions().Children())
    session->journal_unanswered();
}

bool CommandContext::knows(const std::vector<std::int32_t>& accounts) const {
  for (const std::int32_t account : accounts) {
    if (main().accounts().sessions().by_account(account) != nullptr) continue;
    console().tell("Account {} is not in the accounts list\n", account);
    return false;
  }
  return true;
}

std::size_t CommandContext::tell_unconnected(const std::vector<std::int32_t>& accounts) const {
  std::size_t missing = 0;
  for (const Row& row : main().accounts().lvwClients) {
    const auto number = static_cast<std::int32_t>(row.cell(frmMain::account).stored_number());
    const bool asked =
        accounts.empty() || std::find(accounts.begin(), accounts.end(), number) != accounts.end();
    if (asked && !row.reads(frmMain::state, "Connected")) ++missing;
  }
  if (missing > 0) {
    console().tell("{} accounts are not connected and not in this result: see tuttictl accounts\n", missing);
  }
  return missing;
}

}  // namespace tutti
