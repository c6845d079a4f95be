#pragma once

#include <cstdint>
#include <string>

namespace tutti {

// What the server tells about an account of the logged-in user.
struct AccountInfo {
  std::int32_t number = 0;
  std::string name;      // holder
  std::string currency;  // "USD"
  double leverage = 0.0;
};

}  // namespace tutti
