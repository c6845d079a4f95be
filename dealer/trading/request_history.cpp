#include "dealer/trading/request_history.h"

#include <algorithm>
#include <iterator>

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
  const auto at = records_.find({account, id});
  return at == records_.end() ? nullptr : &at->second;
}

RequestRecord* RequestHistory::change(std::int32_t account, RequestId id) {
  const auto at = records_.find({account, id});
  if (at == records_.end()) return nullptr;
  unstored_.insert(at->first);
  ++revision_;
  return &at->second;
}

void RequestHistory::put(RequestRecord record) {
  const Key key{record.account, record.id};
  if (record.state == RequestState::working && record.answer)
    working_[{record.account, record.answer->report.number}] = record.id;
  records_.insert_or_assign(key, std::move(record));
}

void RequestHistory::add(RequestRecord record) {
  unstored_.emplace(record.account, record.id);
  ++revision_;
  put(std::move(record));
}

void RequestHistory::forget(std::int32_t account, RequestId id) {
  records_.erase({account, id});
  unstored_.erase({account, id});
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

HistoryState RequestHistory::part(const std::set<Key>& keys, std::size_t fills) const {
  HistoryState part;
  for (const Key& key : keys)
    part.requests.push_back(records_.at(key));
  part.fills.assign(fills_.end() - static_cast<std::ptrdiff_t>(std::min(fills, fills_.size())), fills_.end());
  return part;
}

HistoryState RequestHistory::unstored() const {
  return part(unstored_, unstored_fills_);
}

HistoryState RequestHistory::unfiled() const {
  HistoryState stored = part(unfiled_, unfiled_fills_);
  // Of what changed again since it was stored, the file must not know more than book and log.
  std::erase_if(stored.requests, [&](const RequestRecord& record) {
    return unstored_.contains({record.account, record.id});
  });
  stored.fills.resize(stored.fills.size() - std::min(unstored_fills_, stored.fills.size()));
  return stored;
}

HistoryState RequestHistory::all() const {
  HistoryState all;
  for (const auto& [key, record] : records_)
    all.requests.push_back(record);
  all.fills = fills_;
  return all;
}

void RequestHistory::note_stored() {
  unfiled_.merge(unstored_);
  unstored_.clear();
  unstored_fills_ = 0;
}

void RequestHistory::note_filed() {
  unfiled_.clear();
  unfiled_fills_ = unstored_fills_;
}

void RequestHistory::restore(HistoryState filed, HistoryState stored, TimePoint since) {
  records_.clear();
  working_.clear();
  for (RequestRecord& record : filed.requests)
    put(std::move(record));
  for (RequestRecord& record : stored.requests) {
    // A log that was left behind by an earlier book may be older than the file.
    const RequestRecord* known = find(record.account, record.id);
    if (known != nullptr && known->ended()) continue;
    unfiled_.emplace(record.account, record.id);
    put(std::move(record));
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
  std::erase_if(working_, [&](const auto& entry) {
    return find(entry.first.first, entry.second)->state != RequestState::working;
  });
}

void RequestHistory::end_missing(const BookState& book) {
  for (auto& [key, record] : records_) {
    const bool there = record.state == RequestState::waiting   ? waits(book, record)
                       : record.state == RequestState::working ? works(book, record)
                                                               : true;
    if (there) continue;
    if (record.state == RequestState::working && record.answer)
      working_.erase({record.account, record.answer->report.number});
    record.state = RequestState::cancelled;
    record.answer.reset();
    unstored_.insert(key);
    ++revision_;
  }
}

}  // namespace tutti
