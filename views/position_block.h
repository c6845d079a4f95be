#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tutti {

// The positions of one symbol in some accounts, as the operator picks them to be closed.
struct PositionBlock {
  std::string symbol;
  std::vector<std::int32_t> accounts;
};

}  // namespace tutti
