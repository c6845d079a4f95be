#include "apps/ledger_comparison.h"

#include <fmt/format.h>

#include <cmath>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "books/request_book.h"
#include "core/numbers.h"
#include "ledger/ledger_words.h"
#include "sessions/result_texts.h"

namespace tutti {
namespace {

using Key = std::pair<std::int32_t, RequestId>;  // account and request

// Whether what the ledger says is so at the server; `booked`: nullptr when it does not know the request.
bool agrees(const RequestOutcome& request, const RequestRecord* booked) {
  const RequestState state = booked == nullptr ? RequestState::never_taken : booked->state;
  switch (request.state) {
    case LedgerState::filled:
    case LedgerState::done:
      return state == RequestState::executed;
    case LedgerState::working:
      return state == RequestState::working;
    case LedgerState::part:
      return state == RequestState::partly_executed;
    case LedgerState::part_filled:
      return state == RequestState::partly_executed || state == RequestState::cancelled;
    case LedgerState::cancelled:
      return state == RequestState::cancelled;
    case LedgerState::refused:
      return state == RequestState::refused || state == RequestState::never_taken;
    case LedgerState::hand:
      return (state == RequestState::executed) == (request.reason == hand_filled);
    case LedgerState::never:
    case LedgerState::stored:
    case LedgerState::dropped:
    case LedgerState::refused_here:
      return state == RequestState::never_taken;
    case LedgerState::taken:
    case LedgerState::pending:
      return state == RequestState::waiting;
    case LedgerState::unknown:
    case LedgerState::gone:
      break;
  }
  return false;
}

}  // namespace

bool LedgerComparison::compared(const LedgerAccount& account) const {
  const auto at = compared_.find(account.account);
  return at != compared_.end() && at->second == account;
}

void LedgerComparison::differ(std::int32_t account, const std::string& what) {
  differences_.push_back(fmt::format("Account {}: {}", account, what));
}

void LedgerComparison::compare_requests(const std::vector<RequestOutcome>& requests,
                                        const HistoryState& booked) {
  std::map<Key, const RequestRecord*> server;
  for (const RequestRecord& each : booked.requests)
    server[{each.account, each.id}] = &each;
  std::set<Key> here;
  for (const RequestOutcome& each : requests) {
    if (!compared(each.account)) continue;
    const std::int32_t account = each.account.account;
    here.insert({account, each.id});
    // An answer to a requote is part of what became of its order.
    if (each.kind == RequestKind::requote) continue;
    const auto at = server.find({account, each.id});
    const RequestRecord* record = at == server.end() ? nullptr : at->second;
    if (agrees(each, record)) continue;
    differ(account,
           fmt::format("of request {} the ledger says {}, the server that it {}", each.id,
                       ledger_words::of(each.state),
                       result_texts::told(record == nullptr ? RequestState::never_taken : record->state)));
  }
  for (const auto& [key, record] : server) {
    if (key.second < requests.front().id || here.contains(key) || !compared_.contains(key.first)) continue;
    // Asked about before it came, it is burnt.
    if (record->state == RequestState::never_taken) continue;
    differ(key.first, fmt::format("the server has request {}, and the ledger has not", key.second));
  }
}

void LedgerComparison::compare_fills(const std::vector<FillRecord>& fills, const HistoryState& booked,
                                     const RequestOutcome& first) {
  using Fill = std::tuple<std::int32_t, std::string, std::chrono::sys_days>;
  std::map<Fill, double> open;  // lots at the server that the ledger has not told of yet
  const auto name = [](std::int32_t account, const std::string& execution, TimePoint time) {
    return Fill{account, execution, std::chrono::floor<std::chrono::days>(time)};
  };
  for (const Execution& each : booked.fills) {
    const bool earlier = each.id != 0 ? each.id < first.id : each.time < first.asked;
    if (!earlier && compared_.contains(each.account))
      open[name(each.account, each.execution, each.time)] = each.lots;
  }
  for (const FillRecord& each : fills) {
    const std::int32_t account = each.account.account;
    if (each.request == 0) ++elsewhere_;
    if (!compared(each.account)) continue;
    const auto at = open.find(name(account, each.execution, each.time));
    if (at == open.end()) {
      differ(account, fmt::format("the ledger has fill {} of {} lots, and the server has not", each.execution,
                                  number_text(each.lots)));
      continue;
    }
    if (std::fabs(at->second - each.lots) > RequestBook::same_lots)
      differ(account, fmt::format("fill {} is of {} lots in the ledger, and of {} at the server",
                                  each.execution, number_text(each.lots), number_text(at->second)));
    open.erase(at);
  }
  for (const auto& [fill, lots] : open)
    differ(std::get<0>(fill), fmt::format("the server has fill {} of {} lots, and the ledger has not",
                                          std::get<1>(fill), number_text(lots)));
}

std::vector<std::string> LedgerComparison::run(const std::vector<RequestOutcome>& requests,
                                               const std::vector<FillRecord>& fills) {
  differences_.clear();
  elsewhere_ = 0;
  if (requests.empty()) return {};
  const HistoryState booked = server_.history().all();
  compare_requests(requests, booked);
  compare_fills(fills, booked, requests.front());
  return std::move(differences_);
}

}  // namespace tutti
