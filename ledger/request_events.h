#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/clock.h"
#include "ledger/entries.h"
#include "ledger/ledger_file.h"

namespace tutti {

// One thing that became of a request, with what the request was.
struct RequestEvent {
  std::int64_t seq = 0;
  RequestId request = 0;
  std::int32_t account = 0;
  RequestKind kind = RequestKind::open;
  std::string symbol{};
  Operation side{};
  double lots = 0.0;
  double price = 0.0;          // asked for, 0 without
  std::int64_t reference = 0;  // order or position that it is about
  LedgerState state = LedgerState::stored;
  LedgerState before = LedgerState::stored;  // what was known of it until then
  bool dealt = false;                        // it was with the dealer before
  bool sent_again = false;                   // a retry, or one that did not leave at first
  bool filled_at_once = false;               // what filled it was heard of in the same moment
  LedgerEvidence evidence = LedgerEvidence::answer;
  std::string reason{};
  std::int32_t code = 0;
  std::int64_t order = 0;  // 0 when not told
  std::string note{};
  TimePoint time{};  // here
};

// Hands out every event behind `after`, in the order of their seq. Throws as the file does.
void each_request_event(LedgerFile& file, std::int64_t after,
                        const std::function<void(const RequestEvent&)>& take);
// Whether requests of this kind from the event's account, other than its own, were told of with the number
// of the order that it is about. Looks at all that the account has.
bool order_is_of(LedgerFile& file, const RequestEvent& event, RequestKind kind);

}  // namespace tutti
