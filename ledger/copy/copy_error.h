#pragma once

#include <cstdint>
#include <string>

namespace tutti {

// Why nothing, or not all, was copied.
struct CopyError {
  enum class Kind : std::uint8_t {
    failed,
    again,   // the connection was lost, or another one was in the way: to be tried once more
    forked,  // the server has rows of this ledger that this home does not have
  };

  Kind kind = Kind::failed;
  std::string text{};       // in the operator's words
  std::int64_t common = 0;  // when forked: both have the rows up to this seq
};

}  // namespace tutti
