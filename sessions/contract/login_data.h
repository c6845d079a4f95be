#pragma once

#include <cstdint>
#include <string>

#include "core/secret.h"

namespace tutti {

// Address of a dealing server. An empty address means the server the program brings along.
struct Endpoint {
  std::string address;
  std::int32_t port = 0;

  bool operator==(const Endpoint&) const = default;
};

// The four values a session logs in with.
struct LoginData {
  std::string user;
  Secret password;
  std::int32_t account = 0;
  Endpoint server;
  // The ledger that this terminal's requests are stored in: 32 hexadecimal digits, empty without one. Whoever
  // can counts them by it; see AccountClient::RequestsKnown.
  std::string ledger{};

  LoginData copy() const { return {user, password.copy(), account, server, ledger}; }
};

}  // namespace tutti
