#include "sessions/account_windows.h"

#include "sessions/CClientAPIManagers.h"

namespace tutti {

AccountWindows::Sessions AccountWindows::others(const CClientAPIManager& gone) const {
  Sessions out;
  for (const auto& session : sessions_.Children()) {
    const bool same = session->account() == gone.account() && session.get() != &gone;
    if (same && session->lists_account() && session->ClientAPIF().LoggedIn()) out.push_back(session.get());
  }
  return out;
}

void AccountWindows::keep_positions(std::int32_t account, const Sessions& of) const {
  Numbers kept;
  for (const CClientAPIManager* session : of) {
    const AccountClient& client = session->ClientAPIF();
    for (int index = 1; index <= client.OpenPositionCount(); ++index) {
      if (const OpenPosition* position = client.OpenPositionItem(index)) kept.insert(position->ticket);
    }
  }
  books_.positions.keep_only(account, kept);
}

void AccountWindows::keep_orders(std::int32_t account, const Sessions& of) const {
  Numbers kept;
  for (const CClientAPIManager* session : of) {
    const AccountClient& client = session->ClientAPIF();
    for (int index = 1; index <= client.PendingOrderCount(); ++index) {
      if (const PendingOrder* order = client.PendingOrderItem(index)) kept.insert(order->order);
    }
  }
  books_.orders.keep_only(account, kept);
}

void AccountWindows::leave(const CClientAPIManager& gone) const {
  const Sessions left = others(gone);
  // One that has brought nothing leaves nothing behind.
  if (!left.empty() && !gone.lists_account()) return;
  const std::int32_t account = gone.account();
  if (left.empty()) {
    desk_.market_order->remove_account(account);
    desk_.entry_order->remove_account(account);
  }
  keep_positions(account, left);
  keep_orders(account, left);
  // It goes by the open positions that are left.
  desk_.close_positions->remove_account(account);
}

void AccountWindows::leave_pending(const CClientAPIManager& gone) const {
  const Sessions left = others(gone);
  if (left.empty() || gone.lists_account()) keep_orders(gone.account(), left);
}

void AccountWindows::leave_market_order(const CClientAPIManager& gone) const {
  if (others(gone).empty()) desk_.market_order->remove_account(gone.account());
}

void AccountWindows::read_again(CClientAPIManager& session) const {
  if (!session.ClientAPIF().LoggedIn()) return;
  session.OpenPositionsLoaded();
  session.PendingOrdersLoaded();
  Sessions having = others(session);
  having.push_back(&session);
  keep_positions(session.account(), having);
  keep_orders(session.account(), having);
  desk_.close_positions->remove_account(session.account());
}

}  // namespace tutti
