#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <tl/expected.hpp>

#include "core/key_file.h"
#include "ledger/ledger.h"
#include "ledger/ledger_store.h"
#include "ledger/left_counts.h"
#include "ledger/left_log.h"

namespace tutti {

// The ledger of a home folder. What it is told is queued as plain values and written by a thread of its own,
// which alone has the connection that writes: requests at once, what became of them together with what else
// has come within 20 ms.
//
// When the disk fails the requests of that commit count as not stored; events are kept and tried again with
// every request, and once a second. What a full disk leaves room for, LedgerStore says. Its end waits until
// all is written, or can't be.
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
  std::string id() const override { return id_; }
  std::int64_t left(Sender sender) const override { return counts_.of(sender); }
  void accept_missing(Sender sender, std::int64_t requests) override;
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
  using Part = LedgerStore::Part;
  using Item = LedgerStore::Item;

  LedgerWriter(Options options, const Secret& key, const Clock& clock);
  tl::expected<void, FileError> start();
  // Settles what the last run left, in the first commit of this one, and begins left.log anew.
  tl::expected<void, FileError> begin_run();
  void put(Item item, bool urgent);
  Stored state_of(Mark mark) const;

  // Of the thread.
  void run();

  const Options options_;
  const Secret key_;
  const Clock& clock_;
  bool read_only_ = false;
  std::string notice_;
  std::vector<LedgerUnknown> unknown_;
  std::vector<LedgerUnknown> never_left_;
  std::vector<LedgerUnknown> working_;
  TimePoint known_until_{};
  std::string id_;
  LeftCounts counts_;
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

  LedgerStore store_;  // the thread's, and `start`'s before there is one
  std::thread thread_;
};

}  // namespace tutti
