#pragma once

#include <cstdint>

#include "sessions/session_scope.h"

namespace tutti {

// The positions and waiting orders of an account session, from the library's lists into the books.
class SessionRecords {
 public:
  explicit SessionRecords(SessionScope& scope) : scope_(scope) {}

  // The lists show what this session told of the account; they may show what another user name of the
  // account number told as well.
  bool lists_account() const { return lists_account_; }
  void lists_account(bool lists) {
    lists_account_ = lists;
    if (!lists) has_positions_ = false;
  }
  // All that the account held at the login is in the book: what comes from now on is new.
  bool has_positions() const { return has_positions_; }

  // As the library has them; nullptr when it has none with this number. Valid until its next event.
  const PendingOrder* pending_order(std::int64_t order) const;
  const OpenPosition* open_position(std::int64_t ticket) const;
  // The SL/TP order of a position; 0 when it has none.
  std::int64_t stops_order_of(std::int64_t ticket) const;
  // Brings one of them, or all, to what the library has now.
  void refresh_pending(std::int64_t number);
  void refresh_position(std::int64_t ticket);

  void positions_loaded();
  void position(const OpenPosition& position);
  void position_gone(const OpenPosition& position);
  void floating_changed(const OpenPosition& position);
  void orders_loaded();
  void order(const PendingOrder& order);
  void order_gone(const PendingOrder& order);
  // Lists an order that the library has not told of yet.
  void list(const PendingOrder& order);

 private:
  SessionScope& scope_;
  bool lists_account_ = false;
  bool has_positions_ = false;
};

}  // namespace tutti
