#pragma once

#include <cstddef>
#include <string>

namespace tutti {

// How a server behaves towards those who connect.
struct ServerSettings {
  std::string name = "DEALER";     // 56 of whoever means it
  int longest_logon = 15;          // seconds until an account must be logged on
  std::size_t most_seats = 4'000;  // connections at once
  // Bytes that wait for one slow reader: from the first on prices wait, too, and from the second on it is
  // dropped.
  std::size_t slow_from = 256 << 10;
  std::size_t dropped_from = 8 << 20;
};

}  // namespace tutti
