#pragma once

#include <cstdint>
#include <string>

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
  std::string password;
  std::int32_t account = 0;
  Endpoint server;
};

}  // namespace tutti
