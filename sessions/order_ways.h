#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "books/sent_order.h"
#include "sessions/contract/account_client.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/order_operations.h"

namespace tutti {

// What sends for each sender: the one place where a request becomes a call of an account's own connection.
// The gate's alone.
class OrderWays {
 public:
  // A new sender of this account.
  Sender add(std::int32_t account, OrderOperations& operations, const AccountClient& client);
  // Nothing is sent for it from now on.
  void close(Sender sender) { way(sender).operations = nullptr; }
  bool open(Sender sender) const { return way(sender).operations != nullptr; }

  std::int32_t account(Sender sender) const { return way(sender).account; }
  const AccountClient& client(Sender sender) const { return *way(sender).client; }

  // Sends it under its id, and answers with the code of the call; request::invalid_account when the way is
  // closed.
  RequestCode call(const SentOrder& request) const;

 private:
  struct Way {
    std::int32_t account = 0;
    OrderOperations* operations = nullptr;
    const AccountClient* client = nullptr;
  };
  Way& way(Sender sender) { return ways_[sender - 1]; }
  const Way& way(Sender sender) const { return ways_[sender - 1]; }

  std::vector<Way> ways_;  // sender n at n - 1
};

}  // namespace tutti
