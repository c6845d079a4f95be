#include "books/record_book.h"

#include <algorithm>
#include <utility>

#include "books/order_book.h"
#include "books/position_book.h"

namespace tutti {

template <class Item>
void RecordBook<Item>::write(const Item& item, int digits) {
  Record* const there = find_to_write(number_of(item), item.account);
  const bool is_new = there == nullptr;
  const Slot slot = is_new ? free_slot() : there->slot;
  Record& record = records_[slot];
  const bool new_symbol = is_new || record.symbol != item.symbol;
  if (new_symbol && !is_new) by_symbol_[record.symbol].erase(slot);
  static_cast<Item&>(record) = item;
  record.digits = digits;
  record.stamp = record.written = ++stamp_;
  if (is_new) {
    record.slot = slot;
    index_.insert(slot);
    record.arrival = ++arrivals_;
    by_account_[item.account].insert(slot);
  }
  if (new_symbol) by_symbol_[item.symbol].insert(slot);
  for (Observer* observer : observers_)
    observer->changed(record);
}

template <class Item>
void RecordBook<Item>::remove(std::int64_t number, std::int32_t account) {
  const Record* there = find(number, account);
  if (there == nullptr) return;
  const Record gone = take_out(there->slot);
  for (Observer* observer : observers_)
    observer->removed(gone);
  free_.push_back(gone.slot);
}

template <class Item>
void RecordBook<Item>::keep_only(std::int32_t account, const Numbers& kept) {
  std::vector<Record> gone;
  for (const Record* record : of_account(account))
    if (!kept.contains(number_of(*record))) gone.push_back(take_out(record->slot));
  for (Observer* observer : observers_)
    observer->account_left(account, gone);
  for (const Record& record : gone)
    free_.push_back(record.slot);
}

template <class Item>
std::vector<const typename RecordBook<Item>::Record*> RecordBook<Item>::all() const {
  return records_at(index_);
}

template <class Item>
std::vector<const typename RecordBook<Item>::Record*> RecordBook<Item>::of_account(
    std::int32_t account) const {
  const auto at = by_account_.find(account);
  return at == by_account_.end() ? std::vector<const Record*>{} : records_at(at->second);
}

template <class Item>
std::vector<const typename RecordBook<Item>::Record*> RecordBook<Item>::of_symbol(
    const std::string& symbol) const {
  const auto at = by_symbol_.find(symbol);
  return at == by_symbol_.end() ? std::vector<const Record*>{} : records_at(at->second);
}

template <class Item>
typename RecordBook<Item>::Slot RecordBook<Item>::free_slot() {
  if (free_.empty()) {
    records_.emplace_back();
    return static_cast<Slot>(records_.size() - 1);
  }
  const Slot slot = free_.back();
  free_.pop_back();
  return slot;
}

template <class Item>
typename RecordBook<Item>::Record RecordBook<Item>::take_out(Slot slot) {
  Record& record = records_[slot];
  by_account_[record.account].erase(slot);
  by_symbol_[record.symbol].erase(slot);
  index_.erase(slot);
  ++stamp_;
  return std::exchange(record, Record{});
}

template <class Item>
template <class SlotsOf>
std::vector<const typename RecordBook<Item>::Record*> RecordBook<Item>::records_at(
    const SlotsOf& slots) const {
  std::vector<const Record*> out;
  out.reserve(slots.size());
  for (const Slot slot : slots)
    out.push_back(&records_[slot]);
  std::sort(out.begin(), out.end(), [](const Record* a, const Record* b) { return a->arrival < b->arrival; });
  return out;
}

template class RecordBook<OpenPosition>;
template class RecordBook<PendingOrder>;

}  // namespace tutti
