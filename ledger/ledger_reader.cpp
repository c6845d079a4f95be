#include "ledger/ledger_reader.h"

#include <fmt/format.h>

#include "core/boot_id.h"
#include "core/file_writer.h"
#include "core/home_lock.h"
#include "core/synced_log.h"
#include "ledger/ledger_lines.h"
#include "ledger/ledger_start.h"

namespace tutti {

tl::expected<std::unique_ptr<LedgerFile>, FileError> LedgerReader::open() {
  const std::filesystem::path file = ledger_path(home_);
  const auto there = file_exists(file);
  if (!there) return tl::unexpected(there.error());
  if (!*there) return tl::unexpected(FileError{file, "there is no ledger in this folder yet"});
  const auto key = key_.find();
  if (!key) return tl::unexpected(key.error());
  if (*key == nullptr)
    return tl::unexpected(
        FileError{file, "its key is missing: " + key_.path().string() + ". Put the key back"});
  return LedgerFile::open_to_read(file, **key);
}

template <class Work>
auto LedgerReader::with_file(Work&& work)
    -> tl::expected<decltype(work(std::declval<LedgerFile&>())), FileError> {
  const auto file = open();
  if (!file) return tl::unexpected(file.error());
  try {
    return work(**file);
  } catch (const SQLite::Exception& error) {
    return tl::unexpected(FileError{ledger_path(home_), error.what()});
  }
}

tl::expected<std::vector<std::string>, FileError> LedgerReader::check() {
  return with_file([](LedgerFile& file) {
    std::vector<std::string> faults = file.check();
    for (std::string& fault : faults_of_lines(file))
      faults.push_back(std::move(fault));
    return faults;
  });
}

tl::expected<void, FileError> LedgerReader::back_up(const std::filesystem::path& to) {
  const auto there = file_exists(to);
  if (!there) return tl::unexpected(there.error());
  if (*there) return tl::unexpected(FileError{to, "is there already; name a new file"});
  // With the rights that the program gives its files.
  if (auto made = SyncedLog::begin(to); !made) return tl::unexpected(made.error());
  const auto done = with_file([&](LedgerFile& file) {
    file.back_up(to);
    return true;
  });
  if (done) return {};
  std::error_code error;
  std::filesystem::remove(to, error);
  return tl::unexpected(done.error());
}

tl::expected<std::vector<FillRecord>, FileError> LedgerReader::fills(const FillFilter& filter) {
  return with_file([&](LedgerFile& file) { return LedgerQueries{file}.fills(filter); });
}

tl::expected<std::vector<TicketRecord>, FileError> LedgerReader::newest_tickets(int count) {
  return with_file([&](LedgerFile& file) { return LedgerQueries{file}.newest_tickets(count); });
}

tl::expected<std::vector<TicketRequest>, FileError> LedgerReader::requests_of(std::int64_t ticket) {
  return with_file([&](LedgerFile& file) { return LedgerQueries{file}.requests_of(ticket); });
}

tl::expected<std::vector<TicketRequest>, FileError> LedgerReader::with_tickets_of(
    std::span<const RequestId> requests) {
  return with_file([&](LedgerFile& file) { return LedgerQueries{file}.with_tickets_of(requests); });
}

tl::expected<std::optional<NamedTicket>, FileError> LedgerReader::named(const std::string& key,
                                                                        const std::string& plan) {
  return with_file([&](LedgerFile& file) { return LedgerQueries{file}.named(key, plan); });
}

tl::expected<LedgerReader::Unknown, FileError> LedgerReader::unknown() {
  // Whoever comes or goes meanwhile has settled, or begun, what is read here.
  const bool used = HomeLock::taken(home_);
  const auto left = LeftLog::read(left_log_path(home_));
  return with_file([&](LedgerFile& file) {
    // One state of the file for all of it.
    SQLite::Transaction all{file.connection()};
    LedgerQueries queries{file};
    if (used || HomeLock::taken(home_)) return Unknown{queries.unknown(), {}};
    LedgerBook book{file, {}};
    return Unknown{queries.unknown(unanswered_events(book, file, left, boot_id())), fault_of_end(file, left)};
  });
}

tl::expected<void, FileError> LedgerReader::each_row(const Row& take) {
  const auto done = with_file([&](LedgerFile& file) {
    file.each_row(take);
    return true;
  });
  if (done) return {};
  return tl::unexpected(done.error());
}

}  // namespace tutti
