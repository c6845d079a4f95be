#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <variant>

#include "dealer/trading/account_listener.h"
#include "dealer/trading/answer_news.h"
#include "dealer/trading/told_news.h"
#include "sessions/contract/account_summary.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/open_position.h"
#include "sessions/contract/pending_order.h"
#include "sessions/contract/requote.h"

namespace tutti {

class DealerSession;

// What a session is told. Frequent news are small and name only what moved, so that the values are read when
// they are delivered; rare ones carry their record as it was.
enum class Signal : std::uint8_t {
  all_loaded,
  invalid_login,
  orders_loaded,
  positions_loaded,
  session_closed,
  symbols_loaded,
};
struct WaitingNews {
  ConnectionMode mode{};
};
struct ConnectionNews {
  bool connected = false;
};
// All symbols that moved since they were last told, one after the other. It stays in front until it is told
// whole: a step of the market costs each session one event, however many symbols there are.
struct PricesNews {};
struct FloatingNews {
  std::int64_t ticket = 0;
};
struct SummaryNews {};
struct TimeNews {};
struct PositionNews {
  PositionChange change = PositionChange::opened;
  OpenPosition position;
};
struct OrderNews {
  bool gone = false;
  PendingOrder order;
};
// A spoilt copy of what comes right behind.
struct SpoiltFloating {
  OpenPosition position;
};
struct SpoiltSummary {
  AccountSummary summary;
};
using News =
    std::variant<Signal, WaitingNews, ConnectionNews, PricesNews, FloatingNews, SummaryNews, TimeNews,
                 std::unique_ptr<PositionNews>, std::unique_ptr<OrderNews>, std::unique_ptr<AnswerNews>,
                 std::unique_ptr<Requote>, std::unique_ptr<RequestTold>, std::unique_ptr<FillsTold>,
                 std::unique_ptr<SpoiltFloating>, std::unique_ptr<SpoiltSummary>>;

struct Event {
  DealerSession* session = nullptr;  // nullptr once the session wants it no more
  News news;
};

// The one queue of the server, first in, first out over all sessions.
class EventQueue {
 public:
  void push(DealerSession& session, News news);
  // The oldest event; nullptr when none is left. Good until the next call.
  const Event* front() const { return events_.empty() ? nullptr : &events_.front(); }
  // Moves the oldest event out; there is one.
  Event pop();
  // How many events were ever pushed, and how many of them have been popped.
  std::uint64_t pushed() const { return popped_ + events_.size(); }
  std::uint64_t popped() const { return popped_; }
  // Takes back everything that waits for a session.
  void forget(const DealerSession& session);
  // The same, but for order results, connection states and waiting modes, which outlive a connection.
  void forget_connection(const DealerSession& session);

 private:
  std::deque<Event> events_;
  std::uint64_t popped_ = 0;
};

}  // namespace tutti
