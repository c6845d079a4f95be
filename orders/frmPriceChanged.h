#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "core/MGeneral.h"
#include "core/button.h"
#include "core/displayable.h"
#include "core/label.h"
#include "orders/frmorder.h"
#include "sessions/contract/codes.h"
#include "sessions/desk.h"
#include "views/frmPending.h"

namespace tutti {

// Requote dialog ("Re-quoting screen"): offers the dealing server's new price for a market request, with a
// countdown the server drives. Unanswered, the requote is rejected when its time is over.
class frmPriceChanged final : public RequoteDesk, public Displayable {
 public:
  frmPriceChanged(MGeneral& general, frmorder& market_order, frmPending& pending, const OrderBook& orders);

  Label framOriginal{"Original Order"};
  Label lblOrder;
  Label framNew{"New Price"};
  Label lblNewPrice;
  Button cmdAccept{"Accept"};
  Button cmdReject{"Reject"};

  // "9 / 10" while a requote counts down.
  const std::string& caption() const { return caption_; }

  // Of the order on show.
  std::int64_t order() const { return order_; }
  std::int32_t account() const { return account_; }

  // One tick of the countdown. `side` 1 is buy, any other sell; amount in lots.
  void SetData(CClientAPIManager& session, std::int64_t order, std::int32_t account, Operation side,
               double amount, std::string_view symbol, double price, double new_price,
               std::int16_t seconds_left, std::int16_t seconds_all);
  void cmdAccept_Click();
  void cmdReject_Click();
  // The dialog was closed by its frame, which is a rejection.
  void close_by_frame() { cmdReject_Click(); }
  // True during the dead time: a click, and closing by the frame, does nothing, and the window greys the
  // buttons.
  bool buttons_dead() const;

  // Takes a requote over that isn't answered yet: called with every tick of its countdown, before it comes on
  // show. True keeps it from the screen; the taker then answers with `answer`. For terminals without one.
  std::function<bool(CClientAPIManager& session, const Requote& requote)> take_over;
  // Accepts or rejects a requote, on show or not, and writes what the buttons write. The order's further
  // ticks are ignored.
  void answer(CClientAPIManager& session, std::int64_t order, std::int32_t account, bool accept);

  // The session's events, passed on to the pending orders view.
  void API_MarketOrderAccepted(std::int64_t order, std::int32_t account);
  void API_MarketOrderRejected(std::int64_t order, std::int32_t account);

  // RequoteDesk
  void tick(CClientAPIManager& session, const Requote& requote) override;
  void order_accepted(std::int64_t order, std::int32_t account) override {
    API_MarketOrderAccepted(order, account);
  }
  void order_rejected(std::int64_t order, std::int32_t account) override {
    API_MarketOrderRejected(order, account);
  }
  void session_gone(const CClientAPIManager& session) override;

 private:
  using Id = std::pair<const CClientAPIManager*, std::int64_t>;

  void answer_shown(bool accept);
  // False for the ticks of an order that was answered, until it is offered anew.
  bool to_be_answered(const CClientAPIManager& session, std::int64_t order, bool first_tick);
  // Settles the order's rows; true when the account's row in the market order window was written.
  bool settle(std::int64_t order, std::int32_t account, std::string_view word);
  void hide();
  void forget_if_held(std::int64_t order, std::int32_t account);
  // Takes its text from the account's row, unless another requote's stands there.
  void end_requote(std::int64_t order, std::int32_t account);

  MGeneral& general_;
  frmorder& market_order_;
  frmPending& pending_;
  const OrderBook& orders_;
  std::string caption_ = "Re-quoting screen";
  CClientAPIManager* session_ = nullptr;  // of the order on show
  std::int64_t order_ = 0;
  std::int32_t account_ = 0;
  std::chrono::milliseconds shown_since_{0};  // by the clock's elapsed time
  std::map<std::int32_t, Id> in_rows_;        // whose text stands in the row of an account
  std::set<Id> answered_;                     // their further ticks are ignored
};

}  // namespace tutti
