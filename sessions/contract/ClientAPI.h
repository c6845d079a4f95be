#pragma once

#include <functional>
#include <memory>

#include "sessions/contract/account_client.h"
#include "sessions/contract/order_operations.h"

namespace tutti {

// Trading client: one account's connection to a dealing server. One object per account session, which asks
// through one half of it; the other half sends.
class ClientAPI : public AccountClient, public OrderOperations {};

// Makes the trading client of a new session. What it will log in with says which broker it is for; the client
// gets it by SetLoginData.
using ClientFactory = std::function<std::unique_ptr<ClientAPI>(const LoginData&)>;

}  // namespace tutti
