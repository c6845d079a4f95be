#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

#include <tsl/robin_map.h>

#include "core/clock.h"
#include "dealer/trading/book_state.h"
#include "dealer/trading/history_state.h"
#include "sessions/contract/codes.h"

namespace tutti {

// Every request that ever came with an id, and the fills of late, with or without one. Requests without an id
// leave no trace but their fills.
//
// What changes here is stored twice: at once with what it did to the account, and later for good, in a file
// that outlives the book.
class RequestHistory {
 public:
  // The log of fills begins at `start`.
  explicit RequestHistory(TimePoint start) : fills_since_(start) {}

  // nullptr for one that is not known.
  const RequestRecord* find(std::int32_t account, RequestId id) const;
  // A request that was not known before.
  void add(RequestRecord record);
  // It got lost, and was never here.
  void forget(std::int32_t account, RequestId id);
  // What follows does nothing for requests that are not known.
  void set_code(std::int32_t account, RequestId id, RequestCode code);
  void set_state(std::int32_t account, RequestId id, RequestState state);
  void answer(const AnswerNews& answer, RequestState state);
  // The entry order has gone without an event of its own.
  void cancel_working(std::int32_t account, std::int64_t order);
  // The request that placed an entry order which still waits; 0 when none did.
  RequestId placed_by(std::int32_t account, std::int64_t order) const;

  void add_fill(Execution fill);
  // Oldest first.
  std::vector<Execution> fills(std::int32_t account, TimePoint since) const;
  TimePoint fills_since() const { return fills_since_; }

  // How many it has ever taken for the account from the terminal with this ledger.
  std::int64_t known(std::int32_t account, LedgerTag ledger) const;

  std::size_t size() const { return by_id_.size(); }
  // Grows with every change.
  std::uint64_t revision() const { return revision_; }

  // What changed since it was last stored; goes into every store.
  HistoryState unstored() const;
  // What was stored with a book, or its log, only.
  HistoryState unfiled() const;
  HistoryState all() const;
  void note_stored();
  void note_filed();
  // Takes up what the file has, and on top of it what the book and its log have. The file's log of fills
  // begins at `since`.
  void restore(HistoryState filed, HistoryState stored, TimePoint since);
  // Ends what neither flies nor waits any more: a book that was thrown away has taken it along.
  void end_missing(const BookState& book);

 private:
  using Key = std::pair<std::int32_t, std::int64_t>;  // account, and id or order
  struct KeyHash {
    std::size_t operator()(const Key& key) const {
      return std::hash<std::int64_t>{}(key.second) * 31 + static_cast<std::size_t>(key.first);
    }
  };
  struct Entry {
    RequestRecord record;  // its id is 0 when it was forgotten
    bool unstored = false;
    bool unfiled = false;
  };
  using Entries = std::vector<Entry*>;

  // The record, to be changed; nullptr when it is not known.
  RequestRecord* change(std::int32_t account, RequestId id);
  Entry& put(RequestRecord record);
  void outdate(Entry& entry);
  // Counts it for its terminal, or no more.
  void count(const RequestRecord& record, std::int64_t step);
  HistoryState part(const Entries& entries, bool Entry::*meant, std::size_t fills) const;

  std::deque<Entry> entries_;  // in the order in which they came
  tsl::robin_map<Key, Entry*, KeyHash> by_id_;
  tsl::robin_map<Key, RequestId, KeyHash> working_;   // by account and order
  tsl::robin_map<Key, std::int64_t, KeyHash> known_;  // by account and ledger
  std::vector<Execution> fills_;                      // in order of time
  TimePoint fills_since_;
  Entries unstored_, unfiled_;
  // So many fills at the end are stored nowhere, or in the file not yet; the latter count the former.
  std::size_t unstored_fills_ = 0, unfiled_fills_ = 0;
  std::uint64_t revision_ = 0;
};

}  // namespace tutti
