#include "apps/terminal.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <thread>
#include <utility>

namespace tutti {

namespace {
constexpr std::chrono::milliseconds longest_pause{10};
}

Terminal::Terminal(TerminalOptions options, OperatorPorts ports)
    : options_(std::move(options)), ports_(ports) {}

Terminal::~Terminal() = default;

tl::expected<std::unique_ptr<Terminal>, FileError> Terminal::open(const TerminalOptions& options,
                                                                  OperatorPorts ports) {
  std::unique_ptr<Terminal> terminal{new Terminal(options, ports)};
  if (auto started = terminal->start(); !started) return tl::unexpected(started.error());
  return terminal;
}

tl::expected<void, FileError> Terminal::start() {
  auto lock = HomeLock::take(options_.home);
  if (!lock) return tl::unexpected(lock.error());
  lock_.emplace(std::move(*lock));
  if (!options_.key_file.empty()) {
    // A key the operator named is looked at even where no record needs it yet.
    if (const auto key = KeyFile{options_.key_file}.find(); !key) return tl::unexpected(key.error());
  }
  DealerConfig config = options_.demo ? DealerConfig::demo() : DealerConfig::sample(options_.sample_accounts);
  if (!options_.dealer_file.empty()) {
    auto loaded = DealerConfig::load(options_.dealer_file);
    if (!loaded) return tl::unexpected(loaded.error());
    config = std::move(*loaded);
  }
  server_ = std::make_unique<DealingServer>(std::move(config), clock_);
  const auto notes = server_->keep_book(options_.home, options_.fresh);
  if (!notes) return tl::unexpected(notes.error());
  if (auto written = write_first_list(); !written) return written;

  main_ = std::make_unique<Main>(
      options_.home,
      MachinePorts{clock_, ports_.prompt, ports_.sound, locale_, ports_.file_dialog, options_.key_file},
      ServerSide{[this] { return server_->make_client(); }, *server_, server_->config().endpoint});
  main_->general().outside = [](std::string_view text) { fmt::print(stderr, "{}\n", text); };
  if (!options_.precision.empty()) main_->general().hold_amount_precision(options_.precision);
  if (auto started = main_->start(); !started) return started;
  for (const std::string& note : *notes)
    tell_of_book(note);
  return {};
}

tl::expected<void, FileError> Terminal::write_first_list() {
  const Paths paths{options_.home};
  const TextFile files{paths};
  const SavedLists lists{files, paths};
  for (const std::string& name : {lists.all(), std::string{"\\Manage\\Acountinfo.buf"}}) {
    const auto there = files.exists(name);
    if (!there) return tl::unexpected(there.error());
    if (*there) return {};
  }
  std::vector<SavedLists::Record> records;
  for (const AccountConfig& account : server_->config().accounts) {
    records.push_back({account.user, account.password, account.number});
  }
  return lists.write_all(records);
}

std::size_t Terminal::advance(std::size_t limit) {
  server_->advance();
  const std::size_t delivered = main_->deliver_events(limit);
  watch_book();
  main_->poll_timers();
  return delivered;
}

bool Terminal::run_until(const std::function<bool()>& done) {
  const auto deadline =
      clock_.now() + std::chrono::milliseconds{static_cast<long>(options_.timeout * 1000.0)};
  for (;;) {
    advance();
    if (on_step) on_step();
    if (done()) return true;
    const TimePoint now = clock_.now();
    if (now >= deadline) return false;
    const TimePoint due = next_due().value_or(deadline);
    std::this_thread::sleep_for(std::clamp(due - now, std::chrono::milliseconds{1}, longest_pause));
  }
}

bool Terminal::logins_done(std::size_t& done) const {
  frmMain& accounts = main_->accounts();
  done = 0;
  for (const Row& row : accounts.lvwClients) {
    const bool waiting = row.reads(frmMain::state, "Connecting");
    // A connected account is ready once its data are there and the order window has it, or was found unknown.
    const auto number = static_cast<std::int32_t>(row.cell(frmMain::account).stored_number());
    const bool loading =
        row.reads(frmMain::state, "Connected") && main_->market_order().account_row(number) == nullptr;
    if (!waiting && !loading) ++done;
  }
  return done == accounts.lvwClients.size();
}

void Terminal::log_in() {
  const bool show = isatty(STDERR_FILENO) != 0;
  const std::size_t all = main_->accounts().lvwClients.size();
  run_until([&] {
    std::size_t done = 0;
    const bool over = logins_done(done);
    if (show) fmt::print(stderr, "\rLogging in {}/{}", done, all);
    return over;
  });
  if (show) fmt::print(stderr, "\r\x1b[K");
}

void Terminal::journal_unanswered() {
  for (const auto& session : main_->accounts().sessions().Children())
    session->journal_unanswered();
}

bool Terminal::knows(const std::vector<std::int32_t>& accounts) const {
  for (const std::int32_t account : accounts) {
    if (main_->accounts().sessions().by_account(account) != nullptr) continue;
    fmt::print(stderr, "Account {} is not in the accounts list\n", account);
    return false;
  }
  return true;
}

std::size_t Terminal::tell_unconnected(const std::vector<std::int32_t>& accounts) const {
  std::size_t missing = 0;
  for (const Row& row : main_->accounts().lvwClients) {
    const auto number = static_cast<std::int32_t>(row.cell(frmMain::account).stored_number());
    const bool asked =
        accounts.empty() || std::find(accounts.begin(), accounts.end(), number) != accounts.end();
    if (asked && !row.reads(frmMain::state, "Connected")) ++missing;
  }
  if (missing > 0) {
    fmt::print(stderr, "{} accounts are not connected and not in this result: see tuttictl accounts\n",
               missing);
  }
  return missing;
}

void Terminal::tell_of_book(const std::string& text) {
  main_->general().log(text, -1);
  main_->messages().post({text, "Warning", "Ok", ""});
}

void Terminal::watch_book() {
  const auto& failure = server_->book().failure();
  if (failure.has_value() == book_failed_) return;
  book_failed_ = failure.has_value();
  tell_of_book(book_failed_
                   ? "The dealing server stands still until it can store what happened: " + failure->text()
                   : "The dealing server can store what happens again and goes on");
}

}  // namespace tutti
