#include "ledger/ledger_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <iterator>
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
    : options_(std::move(options)), key_(key.copy()), clock_(clock) {}

tl::expected<std::unique_ptr<LedgerWriter>, FileError> LedgerWriter::open(Options options, const Secret& key,
                                                                          const Clock& clock) {
  std::unique_ptr<LedgerWriter> out{new LedgerWriter{std::move(options), key, clock}};
  if (auto started = out->start(); !started) return tl::unexpected(started.error());
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
  if (auto opened = open_file(clock_.now()); !opened) return opened;
  try {
    if (file_->newer()) {
      fault_ = fmt::format(
          "{} was made by a newer program: this one only reads it, and sends nothing. Start the newer one",
          ledger_path(options_.home).string());
      read_only_ = true;
      unknown_ = LedgerQueries{*file_}.unknown();
      return {};
    }
    known_until_ = LedgerQueries{*file_}.last_commit();
    if (auto begun = begin_run(); !begun) return begun;
    unknown_ = LedgerQueries{*file_}.unknown();
    never_left_ = LedgerQueries{*file_}.never_left();
    working_ = LedgerQueries{*file_}.working();
    recent_ = LedgerQueries{*file_}.recent(clock_.now() - std::chrono::hours{1});
  } catch (const SQLite::Exception& error) {
    return tl::unexpected(FileError{ledger_path(options_.home), error.what()});
  }
  thread_ = std::thread{[this] { run(); }};
  return {};
}

tl::expected<void, FileError> LedgerWriter::begin_run() {
  const std::filesystem::path path = left_log_path(options_.home);
  const auto left = LeftLog::read(path);
  boot_ = boot_id();
  run_ = book_->last_run() + 1;
  const TimePoint now = clock_.now();
  if (const std::string fault = fault_of_end(*file_, left); !fault.empty()) {
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
  std::vector<LedgerEvent> events = unanswered_events(*book_, *file_, left, boot_);
  if (!events.empty()) {
    file_->begin();
    for (LedgerEvent& event : events) {
      event.time = now;
      book_->add_event(event);
    }
    book_->add_run(run_, boot_, now);
    file_->commit(now);
    run_noted_ = true;
  }
  // Only now that the outcome of what had left is on the disk.
  auto log = LeftLog::begin(path, {boot_, file_->id(), run_, file_->head()});
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
  if (!read_only_) put(Known{sender, account}, false);
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
  const bool written = left_->add(request);
  if (written != left_fails_) return written;
  left_fails_ = !written;
  return written;
}

void LedgerWriter::sent(const SentOrder& request) {
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
  std::unique_lock lock{mutex_};
  for (;;) {
    const auto called = [this] { return stop_ || urgent_; };
    if (queue_.empty() && !called()) {
      const bool waited =
          work_.wait_for(lock, later_.empty() ? idle : next_try, [&] { return called() || !queue_.empty(); });
      if (!waited && later_.empty()) {
        lock.unlock();
        take_in_log();
        lock.lock();
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
    std::vector<Mark> marks;
    for (const Item& item : batch)
      if (const auto* part = std::get_if<Part>(&item)) marks.push_back(newest = part->mark);
    const auto written = write(std::move(batch));
    lock.lock();
    done_ = std::max(done_, newest);
    if (written) {
      saved_ = told;
      fault_.clear();
    } else {
      failed_.insert(failed_.end(), marks.begin(), marks.end());
      fault_ = written.error().text();
      ++failures_;
    }
    settled_.notify_all();
    if (last && queue_.empty()) return;
  }
}

tl::expected<void, FileError> LedgerWriter::open_file(TimePoint now) {
  auto opened = LedgerFile::open(ledger_path(options_.home), key_, now);
  if (!opened) return tl::unexpected(opened.error());
  file_ = std::move(*opened);
  book_ = std::make_unique<LedgerBook>(*file_, options_.program);
  for (const Known& known : senders_)
    book_->know(known.sender, known.account);
  // A commit that failed may have reached the disk all the same.
  if (doubtful_ > 0 && file_->head() == in_doubt_)
    later_.erase(later_.begin(), later_.begin() + static_cast<std::ptrdiff_t>(doubtful_));
  run_noted_ = run_ != 0 && book_->last_run() >= run_;
  doubtful_ = 0;
  return {};
}

tl::expected<void, FileError> LedgerWriter::write(std::vector<Item> batch) {
  std::erase_if(batch, [this](const Item& item) {
    const auto* known = std::get_if<Known>(&item);
    if (known == nullptr) return false;
    senders_.push_back(*known);
    if (book_) book_->know(known->sender, known->account);
    return true;
  });
  const auto put_off = [&] {
    std::erase_if(batch, [](const Item& item) { return std::holds_alternative<Part>(item); });
    later_.insert(later_.end(), std::make_move_iterator(batch.begin()), std::make_move_iterator(batch.end()));
  };
  if (!file_) {
    if (auto opened = open_file(time_of(batch)); !opened) {
      put_off();
      return opened;
    }
  }
  if (later_.empty() && batch.empty()) return {};
  auto written = commit(batch);
  if (written) {
    later_.clear();
    return written;
  }
  put_off();
  const bool maybe = file_->attempted().commit > file_->head().commit;
  doubtful_ = maybe ? later_.size() : 0;
  in_doubt_ = file_->attempted();
  book_.reset();
  file_.reset();
  return written;
}

tl::expected<void, FileError> LedgerWriter::commit(const std::vector<Item>& batch) {
  try {
    file_->begin();
    const TimePoint time = time_of(batch.empty() ? later_ : batch);
    if (!run_noted_) book_->add_run(run_, boot_, time);
    for (const std::vector<Item>* items : {&std::as_const(later_), &batch})
      for (const Item& item : *items)
        add(item);
    file_->commit(time);
    run_noted_ = true;
    return {};
  } catch (const SQLite::Exception& error) {
    return tl::unexpected(FileError{ledger_path(options_.home), error.what()});
  }
}

void LedgerWriter::add(const Item& item) {
  if (const auto* event = std::get_if<LedgerEvent>(&item)) {
    book_->add_event(*event);
  } else if (const auto* told = std::get_if<Part>(&item)) {
    const Part& part = *told;
    if (part.continues == 0) ticket_ = {part.mark, book_->add_ticket(part.ticket, part.planned, part.time)};
    // The parts of one ticket come one behind the other.
    if (part.continues != 0 && part.continues != ticket_.first)
      throw SQLite::Exception{"a ticket's first part is missing"};
    book_->add_requests(ticket_.second, part.requests);
  }
}

TimePoint LedgerWriter::time_of(const std::vector<Item>& items) {
  TimePoint newest{};
  for (const Item& item : items) {
    if (const auto* event = std::get_if<LedgerEvent>(&item)) newest = std::max(newest, event->time);
    if (const auto* part = std::get_if<Part>(&item)) newest = std::max(newest, part->time);
  }
  return newest;
}

void LedgerWriter::take_in_log() {
  if (!file_ || file_->head() == taken_in_) return;
  try {
    file_->checkpoint();
    taken_in_ = file_->head();
  } catch (const SQLite::Exception&) {
    // The next commit tells whether the file can be used.
    taken_in_ = file_->head();
  }
}

}  // namespace tutti
