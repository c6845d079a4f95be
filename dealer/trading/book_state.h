#pragma once

#include <cstdint>
#include <vector>

#include "core/clock.h"
#include "dealer/trading/history_state.h"
#include "dealer/trading/trade_request.h"
#include "sessions/contract/open_position.h"
#include "sessions/contract/pending_order.h"
#include "sessions/contract/request_id.h"

namespace tutti {

// What the dealing server keeps from one run to the next. Prices and floating values are not part of it.
struct BookState {
  struct Account {
    std::int32_t number = 0;
    double balance = 0.0;
    double credit = 0.0;
    std::vector<OpenPosition> positions;
    std::vector<PendingOrder>
        orders;  // entry orders and SL/TP; market requests in dealing are among the requests
  };

  BookEra era = 0;               // 0: none is told
  std::int64_t next_number = 0;  // above every order number and ticket ever given
  TimePoint next_rollover{};     // midnight up to which interest is not charged yet
  std::vector<Account> accounts;
  std::vector<TradeRequest> requests;
  HistoryState history;  // what its own file has not got yet
};

// What became different in the book: one line of its log. Whoever has the book and all entries in their order
// has the state.
struct BookEntry : BookState {     // 0 and the epoch: as before; of the lists what is new or has changed
  std::vector<std::int64_t> gone;  // numbers of positions, orders and requests that are no more

  bool empty() const {
    return era == 0 && history.empty() && next_number == 0 && next_rollover == TimePoint{} &&
           accounts.empty() && requests.empty() && gone.empty();
  }
};

}  // namespace tutti
