#include "dealer/trading/request_history.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

namespace tutti {
namespace {

constexpr std::size_t kept_fills = 100'000;  // at least the last so many

bool waits(const BookState& book, const RequestRecord& record) {
  return std::any_of(book.requests.begin(), book.requests.end(), [&](const TradeRequest& request) {
    return request.id == record.id && request.account == record.account;
  });
}

bool works(const BookState& book, const RequestRecord& record) {
  return std::any_of(book.accounts.begin(), book.accounts.end(), [&](const BookState::Account& account) {
    return account.number == record.account &&
           std::any_of(account.orders.begin(), account.orders.end(), [&](const PendingOrder& order) {
             return order.kind == OrderKind::entry && record.answer &&
                    order.order == record.answer->report.number;
           });
  });
}

}  // namespace

const RequestRecord* RequestHistory::find(std::int32_t account, RequestId id) const {
  const auto at = by_id_.find({account, id});
  return at == by_id_.end() ? nullptr : &at->second->record;
}

void RequestHistory::outdate(Entry& entry) {
  ++revision_;
  if (!std::exchange(entry.unstored, true)) unstored_.push_back(&entry);
}

RequestRecord* RequestHistory::change(std::int32_t account, RequestId id) {
  const auto at = by_id_.find({account, id});
  if (at == by_id_.end()) return nullptr;
  outdate(*at->second);
  return &at->second->record;
}

RequestHistory::Entry& RequestHistory::put(RequestRecord record) {
  if (record.state == RequestState::working && record.answer)
    working_[{record.account, record.answer->report.number}] = record.id;
  auto [at, is_new] = by_id_.try_emplace({record.account, record.id}, nullptr);
  if (is_new) at.value() = &entries_.emplace_back();
  if (is_new) count(record, 1);
  at->second->record = std::move(record);
  return *at->second;
}

void RequestHistory::count(const RequestRecord& record, std::int64_t step) {
  if (record.ledger != 0) known_[{record.account, static_cast<std::int64_t>(record.ledger)}] += step;
}

std::int64_t RequestHistory::known(std::int32_t account, LedgerTag ledger) const {
  const auto at = known_.find({account, static_cast<std::int64_t>(ledger)});
  return at == known_.end() ? 0 : at->second;
}

void RequestHistory::add(RequestRecord record) {
  outdate(put(std::move(record)));
}

void RequestHistory::forget(std::int32_t account, RequestId id) {
  const auto at = by_id_.find({account, id});
  if (at == by_id_.end()) return;
  count(at->second->record, -1);
  at->second->record.id = 0;
  by_id_.erase(at);
}

void RequestHistory::set_code(std::int32_t account, RequestId id, RequestCode code) {
  if (RequestRecord* record = change(account, id)) record->code = code;
}

void RequestHistory::set_state(std::int32_t account, RequestId id, RequestState state) {
  if (RequestRecord* record = change(account, id)) record->state = state;
}

void RequestHistory::answer(const AnswerNews& answer, RequestState state) {
  const OrderReport& report = answer.report;
  RequestRecord* record = change(report.account, report.id);
  if (record == nullptr) return;
  record->answer = answer;
  record->state = state;
  if (state == RequestState::working)
    working_[{report.account, report.number}] = report.id;
  else if (placed_by(report.account, report.number) == report.id)
    working_.erase({report.account, report.number});
}

void RequestHistory::cancel_working(std::int32_t account, std::int64_t order) {
  RequestRecord* record = change(account, placed_by(account, order));
  if (record == nullptr) return;
  record->answer.reset();
  record->state = RequestState::cancelled;
  working_.erase({account, order});
}

RequestId RequestHistory::placed_by(std::int32_t account, std::int64_t order) const {
  const auto at = working_.find({account, order});
  return at == working_.end() ? 0 : at->second;
}

void RequestHistory::add_fill(Execution fill) {
  if (fills_.size() >= 2 * kept_fills) {
    const auto end = fills_.end() - kept_fills;
    fills_since_ = std::prev(end)->time + std::chrono::milliseconds{1};
    fills_.erase(fills_.begin(), end);
  }
  fills_.push_back(std::move(fill));
  ++unstored_fills_;
  ++unfiled_fills_;
  ++revision_;
}

std::vector<Execution> RequestHistory::fills(std::int32_t account, TimePoint since) const {
  const auto begin = std::find_if(fills_.rbegin(), fills_.rend(), [&](const Execution& fill) {
                       return fill.time < since;
                     }).base();
  std::vector<Execution> found;
  std::copy_if(begin, fills_.end(), std::back_inserter(found),
               [&](const Execution& fill) { return fill.account == account; });
  return found;
}

HistoryState RequestHistory::part(const Entries& entries, bool Entry::*meant, std::size_t fills) const {
  HistoryState part;
  for (const Entry* entry : entries)
    if (entry->*meant && entry->record.id != 0) part.requests.push_back(entry->record);
  part.fills.assign(fills_.end() - static_cast<std::ptrdiff_t>(std::min(fills, fills_.size())), fills_.end());
  return part;
}

HistoryState RequestHistory::unstored() const {
  return part(unstored_, &Entry::unstored, unstored_fills_);
}

HistoryState RequestHistory::unfiled() const {
  // Of what changed again since it was stored, the file must not know more than book and log.
  Entries stored;
  std::copy_if(unfiled_.begin(), unfiled_.end(), std::back_inserter(stored),
               [](const Entry* entry) { return !entry->unstored; });
  HistoryState out = part(stored, &Entry::unfiled, unfiled_fills_);
  out.fills.resize(out.fills.size() - std::min(unstored_fills_, out.fills.size()));
  return out;
}

HistoryState RequestHistory::all() const {
  HistoryState all;
  for (const Entry& entry : entries_)
    if (entry.record.id != 0) all.requests.push_back(entry.record);
  all.fills = fills_;
  return all;
}

void RequestHistory::note_stored() {
  for (Entry* entry : unstored_) {
    entry->unstored = false;
    if (!std::exchange(entry->unfiled, true)) unfiled_.push_back(entry);
  }
  unstored_.clear();
  unstored_fills_ = 0;
}

void RequestHistory::note_filed() {
  for (Entry* entry : unfiled_)
    entry->unfiled = false;
  unfiled_.clear();
  unfiled_fills_ = unstored_fills_;
}

void RequestHistory::restore(HistoryState filed, HistoryState stored, TimePoint since) {
  entries_.clear();
  by_id_.clear();
  working_.clear();
  known_.clear();
  unstored_.clear();
  unfiled_.clear();
  for (RequestRecord& record : filed.requests)
    put(std::move(record));
  for (RequestRecord& record : stored.requests) {
    // A log that was left behind by an earlier book may be older than the file.
    const RequestRecord* known = find(record.account, record.id);
    if (known != nullptr && known->ended()) continue;
    Entry& entry = put(std::move(record));
    if (!std::exchange(entry.unfiled, true)) unfiled_.push_back(&entry);
  }
  fills_since_ = since;
  fills_.clear();
  std::set<std::pair<std::int32_t, std::string>> known;
  // A line that could not be synchronised may have been written twice.
  for (Execution& fill : filed.fills)
    if (known.emplace(fill.account, fill.execution).second) fills_.push_back(std::move(fill));
  for (Execution& fill : stored.fills) {
    if (!known.emplace(fill.account, fill.execution).second) continue;
    fills_.push_back(std::move(fill));
    ++unfiled_fills_;
  }
  for (auto at = working_.begin(); at != working_.end();)
    at = find(at->first.first, at->second)->state == RequestState::working ? std::next(at)
                                                                           : working_.erase(at);
}

void RequestHistory::end_missing(const BookState& book) {
  for (Entry& entry : entries_) {
    RequestRecord& record = entry.record;
    const bool there = record.state == RequestState::waiting   ? waits(book, record)
                       : record.state == RequestState::working ? works(book, record)
                                                               : true;
    if (there) continue;
    if (record.state == RequestState::working && record.answer)
      working_.erase({record.account, record.answer->report.number});
    record.state = RequestState::cancelled;
    record.answer.reset();
    outdate(entry);
  }
}

}  // namespace tutti
