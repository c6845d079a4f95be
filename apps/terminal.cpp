#include "apps/terminal.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "apps/copy_setting.h"
#include "apps/journal_anchor.h"
#include "apps/missing_lines.h"
#include "core/time_texts.h"
#include "ledger/ledger_reader.h"
#include "sessions/account_records.h"
#include "views/history_files.h"
#include "views/history_line.h"

namespace tutti {

Terminal::Terminal(TerminalOptions options, OperatorPorts ports)
    : options_(std::move(options)), ports_(std::move(ports)) {}

Terminal::~Terminal() {
  listens_.reset();
  control_.reset();
  if (main_ == nullptr) return;
  // What the sessions say as they end comes before.
  whole_ = whole_ && main_->journal().complete();
  main_.reset();
  end_journal();
}

tl::expected<std::unique_ptr<Terminal>, FileError> Terminal::open(const TerminalOptions& options,
                                                                  OperatorPorts ports, const Opener& opener) {
  std::unique_ptr<Terminal> terminal{new Terminal(options, std::move(ports))};
  if (auto started = terminal->start(opener); !started) return tl::unexpected(started.error());
  return terminal;
}

tl::expected<void, FileError> Terminal::start(const Opener& opener) {
  auto lock = HomeLock::take(options_.home, ports_.try_again);
  if (!lock) return tl::unexpected(lock.error());
  lock_.emplace(std::move(*lock));
  if (!options_.key_file.empty()) {
    // A key the operator named is looked at even where no record needs it yet.
    if (const auto key = KeyFile{options_.key_file}.find(); !key) return tl::unexpected(key.error());
  }
  auto backend = opener(options_);
  if (!backend) return tl::unexpected(backend.error());
  backend_ = std::move(*backend);
  if (auto written = write_first_list(); !written) return written;
  auto copy_to = copy_setting(options_.home);
  if (!copy_to) return tl::unexpected(copy_to.error());
  if (auto opened = open_ledger(); !opened) return opened;
  if (*copy_to)
    copier_ = std::make_unique<LedgerCopier>(options_.home, options_.key_file, std::move(**copy_to));
  stop_ = std::make_unique<StopFile>(options_.home);

  auto started =
      Main::start(options_.home,
                  MachinePorts{ports_.clock, ports_.prompt, ports_.sound, locale_, ports_.file_dialog,
                               *ledger_, *stop_, options_.key_file, ports_.tell, &reads_},
                  ServerSide{[this](const LoginData& login) { return backend_->make_client(login); },
                             backend_->events(), backend_->endpoint(), backend_->simulated()});
  if (!started) return tl::unexpected(started.error());
  main_ = std::move(*started);
  main_->sessions().set_patience(backend_->patience());
  if (!options_.precision.empty()) main_->general().precision.hold(options_.precision);
  begin_journal();
  tell_notices();
  for (const std::string& text : {ledger_->notice(), ledger_->fault()}) {
    if (text.empty()) continue;
    main_->general().log(text, -1);
    main_->messages().post({text, "Warning", "Ok", ""});
  }
  return {};
}

tl::expected<void, FileError> Terminal::open_ledger() {
  const Paths paths{options_.home};
  const TextFile files{paths};
  KeyFile key_file{options_.key_file};
  auto key = key_file.find();
  if (key && *key == nullptr) {
    // A new key would make records that need the old one look damaged.
    const std::string records = "\\Manage\\Acountinfo.buf";
    const auto there = files.exists(records);
    if (!there) return tl::unexpected(there.error());
    if (*there) {
      const auto lines = files.lines(records);
      if (!lines) return tl::unexpected(lines.error());
      if (hold_records(*lines)) return tl::unexpected(key_missing(paths.file(records), key_file));
    }
    key = key_file.find_or_create();
  }
  if (!key) return tl::unexpected(key.error());
  auto opened = LedgerWriter::open({options_.home, ports_.program}, **key, ports_.clock);
  if (!opened) return tl::unexpected(opened.error());
  ledger_ = std::move(*opened);
  return {};
}

void Terminal::begin_journal() {
  anchored_ = std::chrono::floor<std::chrono::days>(ports_.clock.now());
  const auto file = LedgerReader{options_.home, options_.key_file}.open();
  const auto tell = [this](const std::string& why) {
    main_->general().log("The journal was not compared with the ledger: " + why, -1);
    whole_ = false;
  };
  if (!file) return tell(file.error().text());
  try {
    const auto added = add_missing_lines(main_->journal(), Paths{options_.home}, ports_.clock, **file);
    if (!added) return tell(added.error().text());
    anchor_journal(**file);
  } catch (const SQLite::Exception& error) {
    tell(error.what());
  }
}

void Terminal::anchor_journal(LedgerFile& file) {
  const JournalAnchor anchor = JournalAnchor::newest(file);
  // The lines that tell of what is stored stand before it: where one is missing the next start looks for it.
  main_->journal().flush();
  if (!whole_ || !main_->journal().complete()) return;
  main_->journal().note(anchor.text());
  main_->journal().flush();
}

void Terminal::anchor_new_day() {
  const auto day = std::chrono::floor<std::chrono::days>(ports_.clock.now());
  if (day == anchored_) return;
  anchored_ = day;
  const auto file = LedgerReader{options_.home, options_.key_file}.open();
  if (!file) return;
  try {
    anchor_journal(**file);
  } catch (const SQLite::Exception&) {
    return;  // the run's end says it
  }
}

void Terminal::end_journal() {
  constexpr std::chrono::seconds short_enough{1};
  if (!whole_ || !ledger_->flush(short_enough)) return;
  const auto file = LedgerReader{options_.home, options_.key_file}.open();
  if (!file) return;
  const Paths paths{options_.home};
  HistoryFiles files{paths};
  try {
    files.add(no_account, history_line::of(now_text(ports_.clock), JournalAnchor::newest(**file).text()));
  } catch (const SQLite::Exception&) {
    return;
  }
  (void)files.close_all();
}

tl::expected<void, FileError> Terminal::keep() {
  constexpr std::chrono::seconds long_enough{10};
  if (ledger_->flush(long_enough)) return {};
  return tl::unexpected(
      FileError{"ledger", "what became of the last requests is not stored: " + ledger_->fault()});
}

tl::expected<void, FileError> Terminal::close() {
  const auto kept = keep();
  // What is missing there is copied by the next run.
  constexpr std::chrono::milliseconds short_enough{1000};
  if (copier_) (void)copier_->flush(short_enough);
  copier_.reset();
  if (auto closed = backend_->close(); !closed) return closed;
  return kept;
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
  const std::vector<LoginData> samples = backend_->samples();
  if (samples.empty()) return {};
  const Paths paths{options_.home};
  const TextFile files{paths};
  std::vector<SavedLists::Record> records;
  for (const LoginData& sample : samples)
    records.push_back({sample.user, sample.password.copy(), sample.account});
  return SavedLists{files, paths}.write_all(records);
}

tl::expected<void, FileError> Terminal::listen(std::function<bool()> occupied) {
  auto listener = LocalListener::open(options_.home, TerminalControl::socket_name);
  if (!listener) return tl::unexpected(listener.error());
  control_.emplace(*main_, *ledger_, reads_, std::move(occupied));
  listens_.emplace(std::move(*listener), ports_.clock,
                   [this](std::string_view question) { return control_->take(question); });
  return {};
}

std::size_t Terminal::advance(std::size_t limit) {
  backend_->advance();
  tell_notices();
  const std::size_t delivered = main_->deliver_events(limit);
  backend_->flush();
  if (const std::uint64_t saved = ledger_->saved(); saved != kept_) {
    backend_->kept(kept_ = saved);
    if (copier_) copier_->wake();
  }
  tell_notices();
  main_->poll_timers(delivered == limit);
  if (listens_) listens_->poll();
  anchor_new_day();
  return delivered;
}

std::optional<TimePoint> Terminal::next_due() const {
  std::optional<TimePoint> due = backend_->next_due();
  if (const auto turn = main_->sessions().next_turn()) {
    const TimePoint at = ports_.clock.now() + (*turn - ports_.clock.elapsed());
    due = due ? std::min(*due, at) : at;
  }
  // Who asks waits for the next step.
  constexpr std::chrono::milliseconds soon{10};
  if (listens_ && listens_->connections() > 0) {
    const TimePoint at = ports_.clock.now() + soon;
    due = due ? std::min(*due, at) : at;
  }
  return due;
}

void Terminal::tell_notices() {
  for (const BackendNotice& notice : backend_->take_notices()) {
    if (notice.journaled) main_->general().log(notice.text, notice.account);
    if (notice.shown) main_->messages().post({notice.text, "Warning", "Ok", ""});
  }
  if (!copier_) return;
  for (const std::string& text : copier_->take_notices()) {
    main_->general().log(text, -1);
    main_->messages().post({text, "Warning", "Ok", ""});
  }
}

}  // namespace tutti
