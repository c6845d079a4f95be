#include "sessions/desk.h"

namespace tutti {

void Desk::remove_account(std::int32_t account) {
  market_order->remove_account(account);
  entry_order->remove_account(account);
  close_positions->remove_account(account);
  positions->remove_account(account);
  pending->remove_account(account);
}

}  // namespace tutti
