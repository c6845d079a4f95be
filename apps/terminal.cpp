#include "apps/terminal.h"

#include <fmt/format.h>

#include <utility>
#include <vector>

#include "apps/earlier_request.h"

#include "core/file_writer.h"
#include "core/texts.h"

namespace tutti {

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
  auto lock = HomeLock::take(options_.home, ports_.try_again);
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
  server_ = std::make_unique<DealingServer>(std::move(config), ports_.clock);
  const auto notes = server_->keep_book(options_.home, options_.fresh);
  if (!notes) return tl::unexpected(notes.error());
  if (auto written = write_first_list(); !written) return written;

  main_ = std::make_unique<Main>(
      options_.home,
      MachinePorts{ports_.clock, ports_.prompt, ports_.sound, locale_, ports_.file_dialog, options_.key_file},
      ServerSide{[this] { return server_->make_client(); }, *server_, server_->config().endpoint, true});
  main_->general().outside = ports_.tell;
  if (!options_.precision.empty()) main_->general().hold_amount_precision(options_.precision);
  if (auto started = main_->start(); !started) return started;
  for (const std::string& note : *notes)
    tell_of_book(note);
  return tell_of_another_dealer();
}

tl::expected<void, FileError> Terminal::tell_of_another_dealer() {
  const std::filesystem::path file = options_.home / "dealer-origin.txt";
  const std::string now = options_.dealer_file.empty()
                              ? std::string{"the sample"}
                              : std::filesystem::weakly_canonical(options_.dealer_file).string();
  const auto there = file_exists(file);
  if (!there) return tl::unexpected(there.error());
  if (options_.fresh || !*there) return replace_file(file, now + "\n");
  const auto made_with = read_file(file);
  if (!made_with) return tl::unexpected(made_with.error());
  if (*made_with != now + "\n")
    tell_of_book(fmt::format("The dealing server's book in {} was made with {}, and this run has {}",
                             options_.home.string(), split(*made_with, "\n")[0], now));
  return {};
}

tl::expected<bool, FileError> Terminal::is_new(const std::filesystem::path& home) {
  const Paths paths{home};
  const TextFile files{paths};
  for (const std::string& name : {SavedLists{files, paths}.all(), std::string{"\\Manage\\Acountinfo.buf"}}) {
    const auto there = files.exists(name);
    if (!there) return tl::unexpected(there.error());
    if (*there) return false;
  }
  return true;
}

tl::expected<void, FileError> Terminal::write_first_list() {
  const auto first = is_new(options_.home);
  if (!first) return tl::unexpected(first.error());
  if (!*first || !options_.samples) return {};
  const Paths paths{options_.home};
  const TextFile files{paths};
  std::vector<SavedLists::Record> records;
  for (const AccountConfig& account : server_->config().accounts) {
    records.push_back({account.user, account.password, account.number});
  }
  return SavedLists{files, paths}.write_all(records);
}

std::size_t Terminal::advance(std::size_t limit) {
  server_->advance();
  tell_of_earlier_requests();
  const std::size_t delivered = main_->deliver_events(limit);
  watch_book();
  main_->poll_timers(delivered == limit);
  return delivered;
}

void Terminal::tell_of_book(const std::string& text) {
  main_->general().log(text, -1);
  main_->messages().post({text, "Warning", "Ok", ""});
}

void Terminal::tell_of_earlier_requests() {
  const std::vector<Outcome> ended = server_->take_untold();
  for (const Outcome& outcome : ended)
    main_->general().log(earlier_request_text(outcome), outcome.account);
  if (ended.empty()) return;
  const std::string text =
      ended.size() == 1
          ? earlier_request_text(ended.front())
          : std::to_string(ended.size()) + " requests from the earlier run have ended; the journal says how";
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
