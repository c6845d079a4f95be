#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "fix/client/line_news.h"
#include "fix/dialect/wire_request.h"

namespace tutti {

// Collects what a login brings: symbols, then prices, positions, pending orders and the summary. What happens
// meanwhile is kept and told behind it, since a list may be older.
class LoginGathering {
 public:
  // Whether the server tells symbols, else they are taken up before anything is asked, and pending orders.
  LoginGathering(bool tells_symbols, bool tells_orders)
      : tells_orders_(tells_orders), asked_symbols_(!tells_symbols), orders_(!tells_orders) {}

  // What to ask for next; empty while answers are awaited.
  std::vector<WireAsk> take_asks();
  // Takes up what came; false when it belongs to the time behind the login.
  bool take(const WireNews& news);
  bool complete() const;
  // The whole, and what happened meanwhile.
  line::Ready take_ready() { return std::move(ready_); }
  std::vector<WireNews> take_later() { return std::move(later_); }
  // For a text that says what a server does not answer.
  std::string missing() const;

 private:
  bool add(const news::Symbols& symbols);
  bool add(const news::Price& price);
  bool add(const news::PositionList& list);
  bool add(const news::Position& position);
  bool add(const news::Order& order);
  bool add(const news::Summary& summary);
  template <class Other>
  bool add(const Other&) {
    return false;
  }

  line::Ready ready_;
  std::vector<WireNews> later_;
  bool tells_orders_;
  bool asked_symbols_;
  bool asked_rest_ = false;
  bool symbols_ = false;
  std::optional<std::int64_t> positions_left_;
  bool orders_;
  bool summary_ = false;
};

}  // namespace tutti
