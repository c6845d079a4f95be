#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <tl/expected.hpp>

#include "core/disk_reserve.h"
#include "ledger/ledger.h"
#include "ledger/ledger_book.h"

namespace tutti {

// What the ledger's thread alone has: the file, and what it could not write yet. One call is one commit.
//
// Of a commit that fails requests are given up; events are kept, and go into the next one. When the disk is
// full a reserve of 8 MB makes room for events, closes and cancels; new orders are given up until the disk
// has room for the reserve again.
class LedgerStore {
 public:
  struct Known {
    Sender sender;
    LedgerAccount account;
  };
  struct Part {
    LedgerTicket ticket;
    std::size_t planned;
    std::vector<LedgerRequest> requests;
    Ledger::Mark mark;
    Ledger::Mark continues;
    TimePoint time;
  };
  // The operator goes on although so many requests are missing.
  struct Missing {
    Sender sender;
    std::int64_t requests;
    TimePoint time;
  };
  using Item = std::variant<Known, Part, LedgerEvent, Missing>;

  // `program`: that sends, as it stands with each ticket.
  LedgerStore(const std::filesystem::path& home, std::string program, const Secret& key);

  tl::expected<void, FileError> open(TimePoint now);
  // Of what is open.
  LedgerFile& file() { return *file_; }
  LedgerBook& book() { return *book_; }
  // Notes the run with its first commit, unless it is in the file already.
  void begin_run(std::int64_t number, std::string boot, bool noted);

  struct Written {
    bool all_kept = true;              // but for requests that were given up
    std::vector<Ledger::Mark> failed;  // these
    std::string fault;                 // why what comes next may fail; empty when it won't
  };
  Written write(std::vector<Item> batch);
  // Events of commits that failed wait.
  bool waits() const { return !later_.empty(); }
  // To be called when there is nothing to write: takes the log of the database into its file, and what room
  // the reserve needs. Answers the fault as `write` does.
  // Nothing while the file can't be used.
  std::optional<std::string> rest();
  // Gives up the reserve, for what else must be written in the home; false when there was none. New orders
  // are given up from then on, as ever. Any thread may call.
  bool make_room() {
    const bool room = reserve_.give_up();
    if (room) short_ = true;
    return room;
  }

 private:
  tl::expected<void, FileError> commit(const std::vector<Item>& batch);
  void add(const Item& item);
  // Takes parts out, with their marks: of all, or of new orders alone.
  static void give_up(std::vector<Item>& batch, bool new_orders_alone, std::vector<Ledger::Mark>& marks);
  static TimePoint time_of(const std::vector<Item>& items);
  std::string shortage();

  const std::filesystem::path path_;
  const std::string program_;
  const Secret& key_;
  std::unique_ptr<LedgerFile> file_;
  std::unique_ptr<LedgerBook> book_;
  std::vector<Known> senders_;                    // for a file that is opened again
  std::vector<Item> later_;                       // events of commits that failed
  LedgerFile::Head in_doubt_;                     // a commit that failed as it was made
  std::size_t doubtful_ = 0;                      // so many of `later_` are of it
  LedgerFile::Head taken_in_;                     // up to here the log of the database is in its file
  std::pair<Ledger::Mark, std::int64_t> ticket_;  // the last one: mark of its first part, and its number
  std::int64_t run_ = 0;
  std::string boot_;
  bool run_noted_ = false;
  DiskReserve reserve_;
  bool no_room_ = false;            // as the last commit said that failed
  bool attempted_ = false;          // the last one came as far as the file
  std::atomic<bool> short_{false};  // the reserve was needed, and is not back yet
};

}  // namespace tutti
