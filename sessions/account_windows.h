#pragma once

#include <cstdint>
#include <vector>

#include "books/books.h"
#include "sessions/desk.h"

namespace tutti {

class CClientAPIManagers;

// What the books and windows have of an account number, kept right as its sessions come and go.
//
// One number may stand in several rows of the accounts list, under different user names. What a session
// leaves behind stays as far as another session of the number that is logged in has it as well.
class AccountWindows {
 public:
  AccountWindows(Desk& desk, Books& books, const CClientAPIManagers& sessions)
      : desk_(desk), books_(books), sessions_(sessions) {}

  // The session has ended: it leaves everything that lists connected accounts or what they hold.
  void leave(const CClientAPIManager& gone) const;
  // The same for single windows.
  void leave_pending(const CClientAPIManager& gone) const;
  void leave_market_order(const CClientAPIManager& gone) const;
  // Brings positions and pending orders to what the session's client has now. Only for one that is logged in.
  void read_again(CClientAPIManager& session) const;

 private:
  using Sessions = std::vector<const CClientAPIManager*>;

  Sessions others(const CClientAPIManager& gone) const;
  void keep_positions(std::int32_t account, const Sessions& of) const;
  void keep_orders(std::int32_t account, const Sessions& of) const;

  Desk& desk_;
  Books& books_;
  const CClientAPIManagers& sessions_;
};

}  // namespace tutti
