#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <tsl/robin_map.h>
#include <tsl/robin_set.h>

#include "sessions/contract/open_position.h"
#include "sessions/contract/pending_order.h"

namespace tutti {

inline std::int64_t number_of(const OpenPosition& position) {
  return position.ticket;
}
inline std::int64_t number_of(const PendingOrder& order) {
  return order.order;
}

// Numbers of positions or orders of one account.
using Numbers = tsl::robin_set<std::int64_t>;

// What the accounts hold of one kind, open positions or pending orders: a record each, by number and account,
// since two accounts may be given the same number. Sessions write; everybody reads.
//
// Records lie side by side under dense numbers, so that an event costs one look-up and whoever shows records
// may keep what belongs to one under its number. Every change raises the stamp of the record and of the book.
// Pointers to records are good until the book is written next.
template <class Item>
class RecordBook {
 public:
  // 0 and up; that of a record that went is given to one that comes later.
  using Slot = std::uint32_t;
  struct Place {
    Slot slot = 0;
    int digits = 5;           // decimals of its prices
    std::uint64_t stamp = 0;  // of its last change
  };
  // What each price of a position reads and writes comes first and fills one line of the processor's cache.
  struct alignas(64) Record : Place, Item {
    std::uint64_t written = 0;  // stamp of the last change that was not one of its worth alone
    std::uint64_t arrival = 0;  // ascends in the order in which the records came
  };

  // Whoever shows the records is told of each change when it is done. Nobody writes the book from here.
  class Observer {
   public:
    virtual ~Observer() = default;
    // A record that is new, or that has other values.
    virtual void changed(const Record&) {}
    // Only price, costs and profit of a position are others.
    virtual void worth_changed(const Record&) {}
    // One that is no more in the book. Its slot is not given away yet.
    virtual void removed(const Record&) {}
    // Those of an account that are no more in the book, in the order in which they came; there may be none.
    virtual void account_left(std::int32_t /*account*/, std::span<const Record> /*gone*/) {}
  };

  RecordBook() = default;
  RecordBook(const RecordBook&) = delete;
  RecordBook& operator=(const RecordBook&) = delete;

  // In the order in which they are told. An observer stays until the last write.
  void observe(Observer& observer) { observers_.push_back(&observer); }

  // Takes a record in, or gives it other values. `digits`: decimals of its prices.
  void write(const Item& item, int digits);
  // One that is not there is ignored.
  void remove(std::int64_t number, std::int32_t account);
  // Removes all of an account but those.
  void keep_only(std::int32_t account, const Numbers& kept);

  // nullptr when there is none.
  const Record* find(std::int64_t number, std::int32_t account) const {
    const auto at = index_.find(Key{number, account});
    return at == index_.end() ? nullptr : &records_[*at];
  }
  // In the order in which they came.
  std::vector<const Record*> all() const;
  std::vector<const Record*> of_account(std::int32_t account) const;
  std::vector<const Record*> of_symbol(const std::string& symbol) const;
  // The same without their order, for who only looks.
  template <class Take>
  void each_of_account(std::int32_t account, Take&& take) const {
    const auto at = by_account_.find(account);
    if (at == by_account_.end()) return;
    for (const Slot slot : at->second)
      take(records_[slot]);
  }
  std::size_t size() const { return index_.size(); }
  std::uint64_t stamp() const { return stamp_; }

 protected:
  Record* find_to_write(std::int64_t number, std::int32_t account) {
    const auto at = index_.find(Key{number, account});
    return at == index_.end() ? nullptr : &records_[*at];
  }
  std::uint64_t next_stamp() { return ++stamp_; }
  const std::vector<Observer*>& observers() const { return observers_; }

 private:
  struct Key {
    std::int64_t number = 0;
    std::int32_t account = 0;
    bool operator==(const Key&) const = default;
  };
  static Key key_of(const Record& record) { return {number_of(record), record.account}; }
  // The index holds slots alone, so that it stays in the cache however many records there are.
  struct Hash {
    const std::vector<Record>* records;
    std::size_t operator()(const Key& key) const {
      // Odd and large, so that accounts next to each other with the same numbers are spread.
      constexpr std::uint64_t spread = 0x9E37'79B9'7F4A'7C15;
      return static_cast<std::size_t>(static_cast<std::uint64_t>(key.number) ^
                                      static_cast<std::uint64_t>(key.account) * spread);
    }
    std::size_t operator()(Slot slot) const { return (*this)(key_of((*records)[slot])); }
  };
  struct Equal {
    using is_transparent = void;
    const std::vector<Record>* records;
    bool operator()(const Key& key, Slot slot) const { return key == key_of((*records)[slot]); }
    bool operator()(Slot slot, const Key& key) const { return (*this)(key, slot); }
    bool operator()(Slot a, Slot b) const { return a == b; }
  };
  static constexpr bool keeps_hashes = true;
  using Index = tsl::robin_set<Slot, Hash, Equal, std::allocator<Slot>, keeps_hashes>;
  using Slots = tsl::robin_set<Slot>;

  Slot free_slot();
  Record take_out(Slot slot);
  template <class SlotsOf>
  std::vector<const Record*> records_at(const SlotsOf& slots) const;

  std::vector<Record> records_;  // by slot
  std::vector<Slot> free_;
  Index index_{0, Hash{&records_}, Equal{&records_}};
  tsl::robin_map<std::int32_t, Slots> by_account_;
  tsl::robin_map<std::string, Slots> by_symbol_;
  std::vector<Observer*> observers_;
  std::uint64_t arrivals_ = 0;
  std::uint64_t stamp_ = 0;
};

}  // namespace tutti
