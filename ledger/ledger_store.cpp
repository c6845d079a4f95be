#include "ledger/ledger_store.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "ledger/ledger_start.h"

namespace tutti {
namespace {

constexpr std::uintmax_t reserved = 8u << 20;  // bytes

bool opens(const LedgerStore::Part& part) {
  return std::any_of(part.requests.begin(), part.requests.end(), [](const LedgerRequest& each) {
    return each.kind != RequestKind::close && each.kind != RequestKind::cancel &&
           each.kind != RequestKind::requote;
  });
}

}  // namespace

LedgerStore::LedgerStore(const std::filesystem::path& home, std::string program, const Secret& key)
    : path_(ledger_path(home)),
      program_(std::move(program)),
      key_(key),
      reserve_(home / "ledger-reserve", reserved) {}

tl::expected<void, FileError> LedgerStore::open(TimePoint now) {
  auto opened = LedgerFile::open(path_, key_, now);
  if (!opened) return tl::unexpected(opened.error());
  file_ = std::move(*opened);
  book_ = std::make_unique<LedgerBook>(*file_, program_);
  for (const Known& known : senders_)
    book_->know(known.sender, known.account);
  // A commit that failed may have reached the disk all the same.
  if (doubtful_ > 0 && file_->head() == in_doubt_)
    later_.erase(later_.begin(), later_.begin() + static_cast<std::ptrdiff_t>(doubtful_));
  doubtful_ = 0;
  run_noted_ = run_ != 0 && book_->last_run() >= run_;
  return {};
}

void LedgerStore::begin_run(std::int64_t number, std::string boot, bool noted) {
  run_ = number;
  boot_ = std::move(boot);
  run_noted_ = noted;
}

LedgerStore::Written LedgerStore::write(std::vector<Item> batch) {
  std::erase_if(batch, [this](const Item& item) {
    const auto* known = std::get_if<Known>(&item);
    if (known == nullptr) return false;
    senders_.push_back(*known);
    if (book_) book_->know(known->sender, known->account);
    return true;
  });
  Written out;
  if (short_ && !reserve_.disk_is_full() && reserve_.take()) short_ = false;
  if (short_) give_up(batch, true, out.failed);
  auto written = commit(batch);
  if (!written && no_room_ && reserve_.give_up()) {
    short_ = true;
    const auto opened = open(time_of(batch));
    if (opened && file_->head() == in_doubt_) {
      later_.clear();
      written = {};
    } else if (opened) {
      give_up(batch, true, out.failed);
      written = commit(batch);
    }
  }
  if (written) {
    out.fault = shortage();
    return out;
  }
  give_up(batch, false, out.failed);
  later_.insert(later_.end(), std::make_move_iterator(batch.begin()), std::make_move_iterator(batch.end()));
  // What waited before was in that commit, too. While the file can't be opened that of before is in doubt.
  if (attempted_) doubtful_ = in_doubt_.commit > 0 ? later_.size() : 0;
  out.all_kept = false;
  out.fault = written.error().text();
  return out;
}

tl::expected<void, FileError> LedgerStore::commit(const std::vector<Item>& batch) {
  no_room_ = attempted_ = false;
  if (!file_) {
    if (auto opened = open(time_of(batch)); !opened) return opened;
  }
  if (later_.empty() && batch.empty()) return {};
  in_doubt_ = {};
  attempted_ = true;
  try {
    file_->begin();
    const TimePoint time = time_of(batch.empty() ? later_ : batch);
    if (!run_noted_) book_->add_run(run_, boot_, time);
    for (const std::vector<Item>* items : {&std::as_const(later_), &batch})
      for (const Item& item : *items)
        add(item);
    file_->commit(time);
    run_noted_ = true;
    later_.clear();
    return {};
  } catch (const SQLite::Exception& error) {
    no_room_ = error.getErrorCode() == SQLITE_FULL ||
               (error.getErrorCode() == SQLITE_IOERR && reserve_.disk_is_full());
    if (file_->attempted().commit > file_->head().commit) in_doubt_ = file_->attempted();
    book_.reset();
    file_.reset();
    return tl::unexpected(FileError{path_, error.what()});
  }
}

void LedgerStore::give_up(std::vector<Item>& batch, bool new_orders_alone, std::vector<Ledger::Mark>& marks) {
  std::erase_if(batch, [&](const Item& item) {
    const auto* part = std::get_if<Part>(&item);
    if (part == nullptr || (new_orders_alone && !opens(*part))) return false;
    marks.push_back(part->mark);
    return true;
  });
}

void LedgerStore::add(const Item& item) {
  if (const auto* event = std::get_if<LedgerEvent>(&item)) {
    book_->add_event(*event);
  } else if (const auto* told = std::get_if<Part>(&item)) {
    const Part& part = *told;
    if (part.continues == 0) ticket_ = {part.mark, book_->add_ticket(part.ticket, part.planned, part.time)};
    // The parts of one ticket come one behind the other.
    if (part.continues != 0 && part.continues != ticket_.first)
      throw SQLite::Exception{"a ticket's first part is missing"};
    book_->add_requests(ticket_.second, part.requests);
  } else if (const auto* missing = std::get_if<Missing>(&item)) {
    book_->accept_missing(missing->sender, missing->requests);
  }
}

TimePoint LedgerStore::time_of(const std::vector<Item>& items) {
  TimePoint newest{};
  for (const Item& item : items) {
    if (const auto* event = std::get_if<LedgerEvent>(&item)) newest = std::max(newest, event->time);
    if (const auto* part = std::get_if<Part>(&item)) newest = std::max(newest, part->time);
    if (const auto* missing = std::get_if<Missing>(&item)) newest = std::max(newest, missing->time);
  }
  return newest;
}

std::optional<std::string> LedgerStore::rest() {
  if (!file_) return std::nullopt;
  if (file_->head() != taken_in_) {
    taken_in_ = file_->head();
    try {
      file_->checkpoint();
    } catch (const SQLite::Exception&) {
      // The next commit tells whether the file can be used.
    }
  }
  // Without one a disk that has less room than that is full.
  short_ = !reserve_.take() && reserve_.disk_is_full();
  return shortage();
}

std::string LedgerStore::shortage() {
  if (!short_) return {};
  return fmt::format(
      "{}: the disk is full. Answers, closes and cancels are stored from the reserve, new orders "
      "are not sent: make room on it",
      path_.string());
}

}  // namespace tutti
