#include "sessions/earlier_requests.h"

#include <algorithm>
#include <vector>

namespace tutti::earlier_requests {
namespace {

SentOrder record(const LedgerUnknown& from, SentOrder::Outcome outcome) {
  return {.number = from.number,
          .amount = from.lots,
          .price = from.price,
          .id = from.id,
          .era = from.era,
          .side = from.side,
          .request_code = request::taken,
          .account = from.account.account,
          .kind = from.kind,
          .outcome = outcome};
}

}  // namespace

void restore(const Ledger& ledger, RequestBook& book, RequestIds& ids) {
  std::vector<SentOrder> all;
  for (const LedgerUnknown& each : ledger.unknown())
    all.push_back(record(each, SentOrder::Outcome::unknown));
  for (const LedgerUnknown& each : ledger.never_left())
    all.push_back(record(each, SentOrder::Outcome::none));
  for (const LedgerUnknown& each : ledger.working()) {
    all.push_back(record(each, SentOrder::Outcome::accepted));
    all.back().working = true;
  }
  std::sort(all.begin(), all.end(), [](const SentOrder& a, const SentOrder& b) { return a.id < b.id; });
  for (const SentOrder& each : all) {
    book.restore(each);
    ids.go_on_after(each.id);
  }
}

void hand_over(const Ledger& ledger, RequestBook& book, const LedgerAccount& account, Sender sender) {
  for (const auto* list : {&ledger.unknown(), &ledger.working()})
    for (const LedgerUnknown& each : *list)
      if (each.account == account) book.hand_over(each.id, sender);
}

}  // namespace tutti::earlier_requests
