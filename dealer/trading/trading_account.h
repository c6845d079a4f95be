#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "dealer/config/account_config.h"
#include "dealer/market/market.h"
#include "dealer/market/price_watch.h"
#include "dealer/trading/account_listener.h"
#include "dealer/trading/book_state.h"
#include "pricing/rate_table.h"
#include "sessions/contract/account_summary.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/open_position.h"
#include "sessions/contract/pending_order.h"

namespace tutti {

// One client account at the dealing server: its money, its positions, and what they are worth.
class TradingAccount {
 public:
  struct Position {
    OpenPosition record;
    std::size_t symbol = 0;
    bool moved = false;    // price or profit differ from what the listener was last told
    bool waiting = false;  // the listener has yet to pass that on
  };

  // Keeps references to all four. What waits for a price is told to `watch`.
  TradingAccount(const AccountConfig& config, const Market& market, RateTable& rates, PriceWatch& watch);

  const AccountConfig& config() const { return config_; }
  // Places in the market of the symbols that the account carries.
  const std::vector<std::size_t>& carried() const { return carried_; }
  // The account's own number of a symbol, from 1 without gaps; 0 when it does not carry it.
  std::int32_t symbol_id(std::size_t symbol) const { return ids_[symbol]; }
  std::optional<std::size_t> symbol_of_id(std::int32_t id) const;
  // In order of tickets.
  const std::vector<Position>& positions() const { return positions_; }
  std::vector<Position>& positions() { return positions_; }
  Position* find_position(std::int64_t ticket);
  const Position* find_position(std::int64_t ticket) const;
  bool opposed(std::size_t symbol, Operation side) const;  // holds a position on the other side
  // Points from the market that limits and take profits, and stops and stop losses, must keep at least.
  double limit_distance(std::size_t symbol) const;
  double stop_distance(std::size_t symbol) const;

  // What waits, in order of order numbers: entry orders, SL/TP, and what is in dealing.
  const std::vector<PendingOrder>& orders() const { return orders_; }
  const PendingOrder* find_order(std::int64_t order) const;
  // The same, of one kind only.
  const PendingOrder* find_order(std::int64_t order, OrderKind kind) const;
  // The SL/TP order of a position; nullptr when there is none.
  const PendingOrder* stops_of(std::int64_t ticket) const;
  // `order` carries all but the account and the symbol's number.
  const PendingOrder& add_order(PendingOrder order);
  void remove_order(std::int64_t order);

  // As of the last revalue(). The floating profit has commission and interest in it.
  AccountSummary summary() const;
  // Values all positions at the market's present prices; true when a value changed.
  bool revalue();
  // Free margin that is left once `amount` lots more are open at a price; what they lose at once, and their
  // commission, are taken off.
  double free_margin_with(std::size_t symbol, Operation side, double amount, double price) const;
  // Profit in account currency of `amount` lots between two prices.
  double profit(std::size_t symbol, Operation side, double amount, double from, double to) const;
  // Whether every rate that margin and profit of the symbol need is known.
  bool rates_known(std::size_t symbol) const;

  // The three leave the values to the next revalue(). A position finds its SL/TP order if that is there
  // first.
  void open(OpenPosition position, std::size_t symbol);
  // What closing so many lots of a position at a price books: their profit, and their share of commission and
  // interest.
  Realised realised(const Position& position, double amount, double price) const;
  // Closes `amount` lots of a position and books that; true when nothing is left of it, so that it is gone.
  bool close(Position& position, double amount, double price);
  // Credits or charges interest for so many nights, to every position.
  void roll_over(int nights);
  // Of opening and closing; account currency, above or equal 0.
  double commission(std::size_t symbol, double amount) const;

  BookState::Account state() const;
  // False, and nothing changed, when a position or order is in a symbol that does not exist.
  bool restore(const BookState::Account& state);

  // Whether the account may differ from what the book's files hold of it.
  bool touched() const { return touched_; }
  void touch() { touched_ = true; }
  void note_stored() { touched_ = false; }

  // Who is logged in on this account; nullptr when nobody is.
  AccountListener* listener() const { return listener_; }
  void set_listener(AccountListener* listener) { listener_ = listener; }

 private:
  double margin(std::size_t symbol, double amount) const;

  const AccountConfig& config_;
  const Market& market_;
  const RateTable& rates_;
  PriceWatch& watch_;
  std::size_t currency_;
  double balance_;
  double credit_;
  double floating_ = 0.0;
  double used_margin_ = 0.0;       // above or equal 0
  std::vector<std::int32_t> ids_;  // by place in the market
  std::vector<std::size_t> carried_;
  std::vector<Position> positions_;
  std::vector<PendingOrder> orders_;
  AccountListener* listener_ = nullptr;
  bool touched_ = false;
};

}  // namespace tutti
