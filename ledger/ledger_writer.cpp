#include "ledger/ledger_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "core/boot_id.h"
#include "core/network_folder.h"
#include "ledger/ledger_queries.h"
#include "ledger/ledger_start.h"
#include "ledger/stored_form.h"

namespace tutti {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds gathering = 20ms;  // of events into one commit
constexpr std::chrono::milliseconds next_try = 1000ms;
constexpr std::chrono::milliseconds idle = 1000ms;  // then the log of the database is taken into its file

}  // namespace

LedgerWriter::LedgerWriter(Options options, const Secret& key, const Clock& clock)
    : options_(std::move(options)),
      key_(key.copy()),
      clock_(clock),
      store_(options_.home, options_.program, key_) {}

tl::expected<std::unique_ptr<LedgerWriter>, FileError> LedgerWriter::open(Options options, const Secret& key,
                                                                          const Clock& clock) {
  std::unique_ptr<LedgerWriter> out{new LedgerWriter{std::move(options), key, clock}};
  auto started = out->start();
  // The last run's reserve may be what a full disk needs.
  if (!started && out->store_.make_room()) started = out->start();
  if (!started) return tl::unexpected(started.error());
  return out;
}

LedgerWriter::~LedgerWriter() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock{mutex_};
    stop_ = true;
  }
  work_.notify_one();
  thread_.join();
}

tl::expected<void, FileError> LedgerWriter::start() {
  if (const auto network = network_file_system(options_.home); !network.empty()) {
    return tl::unexpected(FileError{
        ledger_path(options_.home),
        fmt::format("lies on a network file system ({}), where nobody can rely on what is stored: move "
                    "the application folder to a disk of this machine",
                    network)});
  }
  if (auto opened = store_.open(clock_.now()); !opened) return opened;
  LedgerFile& file = store_.file();
  try {
    if (file.newer()) {
      fault_ = fmt::format(
          "{} was made by a newer program: this one only reads it, and sends nothing. Start the newer one",
          ledger_path(options_.home).string());
      read_only_ = true;
      unknown_ = LedgerQueries{file}.unknown();
      return {};
    }
    id_ = file.id();
    known_until_ = LedgerQueries{file}.last_commit();
    if (auto begun = begin_run(); !begun) return begun;
    unknown_ = LedgerQueries{file}.unknown();
    never_left_ = LedgerQueries{file}.never_left();
    working_ = LedgerQueries{file}.working();
    counts_.begin(LedgerQueries{file}.left());
    recent_ = LedgerQueries{file}.recent(clock_.now() - std::chrono::hours{1});
  } catch (const SQLite::Exception& error) {
    return tl::unexpected(FileError{ledger_path(options_.home), error.what()});
  }
  thread_ = std::thread{[this] { run(); }};
  return {};
}

tl::expected<void, FileError> LedgerWriter::begin_run() {
  const std::filesystem::path path = left_log_path(options_.home);
  const auto left = LeftLog::read(path);
  const std::string boot = boot_id();
  LedgerFile& file = store_.file();
  LedgerBook& book = store_.book();
  const std::int64_t run = book.last_run() + 1;
  const TimePoint now = clock_.now();
  if (const std::string fault = fault_of_end(file, left); !fault.empty()) {
    const std::filesystem::path kept =
        options_.home / fmt::format("left-{}.log", now.time_since_epoch().count());
    std::error_code error;
    std::filesystem::rename(path, kept, error);
    notice_ = fmt::format(
        "The ledger lost its end, or is an older copy: {}. Compare positions and fills with the broker's "
        "before "
        "you send anything; what had left is kept in {}",
        fault, kept.filename().string());
  }
  std::vector<LedgerEvent> events = unanswered_events(book, file, left, boot);
  if (!events.empty()) {
    file.begin();
    for (LedgerEvent& event : events) {
      event.time = now;
      book.add_event(event);
    }
    book.add_run(run, boot, now);
    file.commit(now);
  }
  store_.begin_run(run, boot, !events.empty());
  // Only now that the outcome of what had left is on the disk.
  auto log = LeftLog::begin(path, {boot, file.id(), run, file.head()});
  if (!log) return tl::unexpected(log.error());
  left_ = std::move(*log);
  return {};
}

void LedgerWriter::put(Item item, bool urgent) {
  bool wake = false;
  {
    const std::lock_guard lock{mutex_};
    wake = queue_.empty() || (urgent && !urgent_);
    queue_.push_back(std::move(item));
    urgent_ = urgent_ || urgent;
    ++told_;
  }
  if (wake) work_.notify_one();
}

void LedgerWriter::know(Sender sender, const LedgerAccount& account) {
  counts_.know(sender, account);
  if (!read_only_) put(LedgerStore::Known{sender, account}, false);
}

Ledger::Mark LedgerWriter::store(const LedgerTicket& about, Requests ticket, Requests part, Mark continues,
                                 const Books& books) {
  std::vector<LedgerRequest> requests = stored_form(part, books);
  LedgerTicket whole = about;
  if (continues == 0)
    whole = ticket_of(about, ticket.size() == part.size() ? requests : stored_form(ticket, books));
  return store(std::move(whole), ticket.size(), std::move(requests), continues);
}

Ledger::Mark LedgerWriter::store(LedgerTicket ticket, std::size_t planned,
                                 std::vector<LedgerRequest> requests, Mark continues) {
  const Mark mark = ++given_;
  if (!read_only_)
    put(Part{std::move(ticket), planned, std::move(requests), mark, continues, clock_.now()}, true);
  return mark;
}

Ledger::Stored LedgerWriter::state(Mark mark) const {
  if (read_only_) return Stored::no;
  const std::lock_guard lock{mutex_};
  return state_of(mark);
}

Ledger::Stored LedgerWriter::state_of(Mark mark) const {
  if (mark > done_) return Stored::waiting;
  return std::find(failed_.begin(), failed_.end(), mark) == failed_.end() ? Stored::yes : Stored::no;
}

Ledger::Stored LedgerWriter::wait(Mark mark, std::chrono::milliseconds most) {
  if (read_only_) return Stored::no;
  std::unique_lock lock{mutex_};
  settled_.wait_for(lock, most, [&] { return mark <= done_; });
  return state_of(mark);
}

bool LedgerWriter::leaves(RequestId request) {
  if (!left_) return false;
  const bool written = left_->add(request) || (store_.make_room() && left_->add(request));
  left_fails_ = !written;
  return written;
}

void LedgerWriter::accept_missing(Sender sender, std::int64_t requests) {
  counts_.add(sender, requests);
  if (!read_only_) put(LedgerStore::Missing{sender, requests, clock_.now()}, false);
}

void LedgerWriter::sent(const SentOrder& request) {
  if (request.kind != RequestKind::requote) counts_.add(request.sender, 1);
  note(answer_of(request));
}

void LedgerWriter::note(LedgerEvent event) {
  if (read_only_) return;
  event.time = clock_.now();
  put(std::move(event), false);
}

std::string LedgerWriter::fault() const {
  const std::lock_guard lock{mutex_};
  if (fault_.empty() && left_fails_) return left_log_path(options_.home).string() + ": can't be written";
  return fault_;
}

std::uint64_t LedgerWriter::told() const {
  const std::lock_guard lock{mutex_};
  return told_;
}

std::uint64_t LedgerWriter::saved() const {
  const std::lock_guard lock{mutex_};
  return saved_;
}

bool LedgerWriter::flush(std::chrono::milliseconds most) {
  std::unique_lock lock{mutex_};
  if (told_ == saved_) return true;
  if (!thread_.joinable()) return false;
  const std::uint64_t target = told_;
  const std::uint64_t failures = failures_;
  urgent_ = true;
  work_.notify_one();
  settled_.wait_for(lock, most, [&] { return saved_ >= target || failures_ > failures; });
  return saved_ >= target;
}

void LedgerWriter::run() {
  (void)store_.rest();
  std::unique_lock lock{mutex_};
  for (;;) {
    const auto called = [this] { return stop_ || urgent_; };
    if (queue_.empty() && !called()) {
      const bool waited =
          work_.wait_for(lock, store_.waits() ? next_try : idle, [&] { return called() || !queue_.empty(); });
      if (!waited && !store_.waits()) {
        lock.unlock();
        std::optional<std::string> fault = store_.rest();
        lock.lock();
        if (fault) fault_ = std::move(*fault);
        continue;
      }
    }
    work_.wait_for(lock, gathering, called);
    const bool last = stop_;
    std::vector<Item> batch = std::exchange(queue_, {});
    urgent_ = false;
    const std::uint64_t told = told_;
    lock.unlock();
    Mark newest = 0;
    for (const Item& item : batch)
      if (const auto* part = std::get_if<Part>(&item)) newest = part->mark;
    LedgerStore::Written written = store_.write(std::move(batch));
    lock.lock();
    done_ = std::max(done_, newest);
    failed_.insert(failed_.end(), written.failed.begin(), written.failed.end());
    fault_ = std::move(written.fault);
    if (written.all_kept)
      saved_ = told;
    else
      ++failures_;
    settled_.notify_all();
    if (last && queue_.empty()) return;
  }
}

}  // namespace tutti
