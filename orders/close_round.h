#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tsl/robin_map.h>
#include <tsl/robin_set.h>

#include "orders/order_answer.h"
#include "sessions/CClientAPIManagers.h"
#include "views/frmTrade.h"

namespace tutti {

// What the close positions window sent, and what becomes of it: of every position the last request, and
// together those of the last close. Positions are named by the keys of their rows.
class CloseRound {
 public:
  // Keeps a reference.
  explicit CloseRound(const CClientAPIManagers& sessions) : sessions_(sessions) {}

  // A close begins: what follows belongs to it.
  void begin();
  // What is known of an earlier request for this position counts no more.
  void renew(const frmTrade::Close& position);
  // Its request was sent, or was not even that.
  void add(const frmTrade::Close& position, bool was_sent);
  // What the server said of it.
  void result(RowKey position, std::string_view text);
  // It is gone.
  void forget(RowKey position) { texts_.erase(position); }

  OrderAnswer answer_of(RowKey position) const;
  // What the server said of a request that was refused or is in dealing.
  std::string_view text_of(RowKey position) const;
  // Of all requests of the close. Counts those on their way, so whoever shows it may ask once a frame.
  OrderAnswers answers();

 private:
  const SentOrder* request_for(RowKey position) const;
  bool not_sent(RowKey position, const SentOrder* sent) const;

  const CClientAPIManagers& sessions_;
  std::vector<frmTrade::Close> sent_;                        // with the last close and not settled yet
  OrderAnswers settled_;                                     // the others of the last close
  tsl::robin_set<RowKey, RowKey::Hash> unsent_;              // whose last close was not even sent
  tsl::robin_map<RowKey, std::string, RowKey::Hash> texts_;  // last results of closes
};

}  // namespace tutti
