#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include <tl/expected.hpp>

#include "core/key_file.h"
#include "ledger/ledger.h"
#include "ledger/ledger_book.h"
#include "ledger/left_log.h"

namespace tutti {

// The ledger of a home folder. What it is told is queued as plain values and written by a thread of its own,
// which alone has the connection that writes: requests at once, what became of them together with what else
// has come within 20 ms.
//
// When the disk fails the requests of that commit count as not stored; events are kept and tried again with
// every request, and once a second. Its end waits until all is written, or can't be.
class LedgerWriter final : public Ledger {
 public:
  struct Options {
    std::filesystem::path home;
    std::string program;  // that sends, as it stands with each ticket
  };

  // Opens or makes the ledger, notes what became of what the last run left without an answer, and begins a
  // run of its own. A ledger of a newer program is opened all the same, and stores nothing. The clock is
  // asked by the calling thread alone.
  static tl::expected<std::unique_ptr<LedgerWriter>, FileError> open(Options options, const Secret& key,
                                                                     const Clock& clock);
  ~LedgerWriter() override;
  LedgerWriter(const LedgerWriter&) = delete;
  LedgerWriter& operator=(const LedgerWriter&) = delete;

  void know(Sender sender, const LedgerAccount& account) override;
  Mark store(const LedgerTicket& about, Requests ticket, Requests part, Mark continues,
             const Books& books) override;
  // The same of values.
  Mark store(LedgerTicket ticket, std::size_t planned, std::vector<LedgerRequest> requests, Mark continues);
  Stored state(Mark mark) const override;
  Stored wait(Mark mark, std::chrono::milliseconds most) override;
  bool leaves(RequestId request) override;
  void sent(const SentOrder& request) override;
  void note(LedgerEvent event) override;
  std::string fault() const override;
  const std::vector<LedgerUnknown>& unknown() const override { return unknown_; }
  const std::vector<LedgerUnknown>& working() const override { return working_; }
  TimePoint known_until() const override { return known_until_; }
  const std::vector<LedgerUnknown>& never_left() const override { return never_left_; }
  const std::vector<LedgerPastTicket>& recent() const override { return recent_; }

  // What the operator must be told of the last run's end; empty mostly.
  const std::string& notice() const { return notice_; }
  // How much was told, counted over the run, and how much of that is on the disk.
  std::uint64_t told() const;
  std::uint64_t saved() const;
  // Waits until all that was told is on the disk, so long at most; false when it isn't.
  bool flush(std::chrono::milliseconds most);

 private:
  struct Known {
    Sender sender;
    LedgerAccount account;
  };
  struct Part {
    LedgerTicket ticket;
    std::size_t planned;
    std::vector<LedgerRequest> requests;
    Mark mark;
    Mark continues;
    TimePoint time;
  };
  using Item = std::variant<Known, Part, LedgerEvent>;

  LedgerWriter(Options options, const Secret& key, const Clock& clock);
  tl::expected<void, FileError> start();
  // Settles what the last run left, in the first commit of this one, and begins left.log anew.
  tl::expected<void, FileError> begin_run();
  void put(Item item, bool urgent);
  Stored state_of(Mark mark) const;

  // The thread's own, and `start`'s before there is one.
  void run();
  tl::expected<void, FileError> open_file(TimePoint now);
  tl::expected<void, FileError> write(std::vector<Item> batch);
  tl::expected<void, FileError> commit(const std::vector<Item>& batch);
  void add(const Item& item);
  void take_in_log();
  static TimePoint time_of(const std::vector<Item>& items);

  const Options options_;
  const Secret key_;
  const Clock& clock_;
  bool read_only_ = false;
  std::string boot_;
  std::int64_t run_ = 0;    // number of this one
  bool run_noted_ = false;  // in the file; the thread's
  std::string notice_;
  std::vector<LedgerUnknown> unknown_;
  std::vector<LedgerUnknown> never_left_;
  std::vector<LedgerUnknown> working_;
  TimePoint known_until_{};
  std::vector<LedgerPastTicket> recent_;
  std::optional<LeftLog> left_;
  bool left_fails_ = false;
  Mark given_ = 0;

  mutable std::mutex mutex_;
  std::condition_variable work_;     // for the thread
  std::condition_variable settled_;  // for who waits
  std::vector<Item> queue_;
  bool urgent_ = false;
  bool stop_ = false;
  Mark done_ = 0;             // all marks up to this one are settled
  std::vector<Mark> failed_;  // of these those that are not stored
  std::uint64_t told_ = 0;    // items
  std::uint64_t saved_ = 0;
  std::uint64_t failures_ = 0;
  std::string fault_;

  // The thread's.
  std::unique_ptr<LedgerFile> file_;
  std::unique_ptr<LedgerBook> book_;
  std::vector<Known> senders_;            // for a file that is opened again
  std::vector<Item> later_;               // events of commits that failed
  LedgerFile::Head in_doubt_;             // a commit that failed as it was made, of which
  std::size_t doubtful_ = 0;              // so many of `later_` are
  LedgerFile::Head taken_in_;             // up to here the log of the database is in its file
  std::pair<Mark, std::int64_t> ticket_;  // the last one: mark of its first part, and its number
  std::thread thread_;
};

}  // namespace tutti
