#include "apps/command_context.h"

#include <algorithm>

#include "core/texts.h"
#include "ledger/ledger_reader.h"

namespace tutti {

namespace {
constexpr std::chrono::milliseconds longest_pause{10};
}

std::string held_text(const HeldTicket& ticket) {
  std::string why;
  for (const limits::Breach& each : ticket.breaches)
    why += "\n  " + limits::text(each);
  return fmt::format("Not sent, {} requests; --override REASON sends them all the same:{}",
                     ticket.asked.size(), why);
}

bool CommandContext::run_until(const std::function<bool()>& done) {
  const auto deadline = ports_.clock.elapsed() + options_.timeout;
  for (;;) {
    terminal_.advance();
    if (on_step) on_step();
    if (done()) return true;
    const auto left = deadline - ports_.clock.elapsed();
    if (left <= left.zero() || stopped()) return false;
    main().sessions().wait_for_stored();
    const auto due = terminal_.next_due();
    const auto until_due = due ? *due - ports_.clock.now() : left;
    ports_.pause(std::clamp(std::min(until_due, left), std::chrono::milliseconds{1}, longest_pause));
  }
}

bool CommandContext::logins_done(std::size_t& done) const {
  const auto& accounts = main().account_book().listed();
  done = 0;
  for (const AccountEntry* each : accounts) {
    const bool waiting = each->shown.state == AccountState::connecting;
    // A connected account is ready once its data are there and the order window has it, or was found unknown.
    const bool loading = each->connected() && main().market_order().account_row(each->account) == nullptr;
    if (waiting || loading) continue;
    // What is unknown of it is asked for.
    const CClientAPIManager* session = main().sessions().logged_in(each->account);
    if (session == nullptr || session->asked() == 0) ++done;
  }
  return done == accounts.size();
}

bool CommandContext::log_in() {
  const std::size_t all = main().account_book().listed().size();
  run_until([&] {
    std::size_t done = 0;
    const bool over = logins_done(done);
    console().progress(fmt::format("Logging in {}/{}", done, all));
    return over;
  });
  console().progress("");
  return !stopped();
}

void CommandContext::refuse_held() const {
  Admission& admission = main().sessions().admission();
  while (!admission.held().empty()) {
    const HeldTicket& ticket = admission.held().front();
    console().fail(held_text(ticket));
    admission.refuse(ticket.number);
  }
}

void CommandContext::journal_unanswered() {
  for (const auto& session : main().sessions().Children())
    session->journal_unanswered("late");
}

void CommandContext::print(const SentLines& lines) const {
  console().print(lines.report(form(), totals_and_journal(), [this] {
    return fmt::format("{}\n\n{}", main().window().totals_pane(), journal_text(main()));
  }));
}

std::map<RequestId, TicketRequest> CommandContext::stored(const std::vector<RequestId>& requests) const {
  std::map<RequestId, TicketRequest> out;
  if (requests.empty()) return out;
  // One that can't be written is told of at the end.
  (void)terminal_.keep();
  const TerminalOptions& options = terminal_.options();
  auto found = LedgerReader{options.home, options.key_file}.with_tickets_of(requests);
  if (!found) {
    console().fail("Orders and prices can't be told: {}", found.error().text());
    return out;
  }
  for (TicketRequest& each : *found)
    out.emplace(each.id, std::move(each));
  return out;
}

std::optional<std::vector<TicketRequest>> CommandContext::requests_of(std::int64_t ticket) const {
  const auto kept = terminal_.keep();
  const TerminalOptions& options = terminal_.options();
  auto found = LedgerReader{options.home, options.key_file}.requests_of(ticket);
  if (kept && found) return std::move(*found);
  console().fail("Nothing was sent: {}", (kept ? found.error() : kept.error()).text());
  return std::nullopt;
}

std::optional<std::optional<NamedTicket>> CommandContext::named(const std::string& key,
                                                                const std::string& plan) const {
  const TerminalOptions& options = terminal_.options();
  auto found = LedgerReader{options.home, options.key_file}.named(key, plan);
  if (found) return *found;
  console().fail("Nothing was sent: {}", found.error().text());
  return std::nullopt;
}

std::unique_ptr<LedgerFile> CommandContext::open_ledger() const {
  const auto kept = terminal_.keep();
  const TerminalOptions& options = terminal_.options();
  auto file = LedgerReader{options.home, options.key_file}.open();
  if (kept && file) return std::move(*file);
  console().fail("The ledger can't be read: {}", (kept ? file.error() : kept.error()).text());
  return nullptr;
}

bool CommandContext::knows(const std::vector<std::int32_t>& accounts) const {
  for (const std::int32_t account : accounts) {
    if (main().sessions().by_account(account) != nullptr) continue;
    console().fail("Account {} is not in the accounts list", account);
    return false;
  }
  return true;
}

std::vector<std::size_t> CommandContext::unconnected(const std::vector<std::int32_t>& accounts) const {
  std::vector<std::size_t> out;
  const AccountBook& book = main().account_book();
  for (const AccountEntry* each : book.listed()) {
    const bool asked =
        accounts.empty() || std::find(accounts.begin(), accounts.end(), each->account) != accounts.end();
    // A number may stand in two rows: any of them will do, and it counts once.
    const auto number = static_cast<std::size_t>(each->account);
    const bool counted = std::find(out.begin(), out.end(), number) != out.end();
    if (asked && !counted && !book.connected(each->account)) out.push_back(number);
  }
  return out;
}

std::size_t CommandContext::tell_unconnected(const std::vector<std::int32_t>& accounts) const {
  const std::size_t missing = unconnected(accounts).size();
  if (missing > 0)
    console().fail("{} accounts are not connected and not in this result: see tuttictl accounts", missing);
  return missing;
}

bool CommandContext::all_connected(const std::vector<std::int32_t>& accounts) const {
  const auto missing = unconnected(accounts);
  if (!missing.empty()) console().fail("Nothing was sent; not connected: {}", number_list(missing));
  return missing.empty();
}

}  // namespace tutti
