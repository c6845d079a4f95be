#pragma once

#include <cstdint>
#include <string_view>

namespace tutti {

// Account number of journal lines that belong to no account.
inline constexpr std::int32_t no_account = -1;

// Where everyone logs: one call is one row of the journal and one line of the account's history.
class Journal {
 public:
  virtual ~Journal() = default;
  virtual void log(std::string_view message, std::int32_t account) = 0;
};

}  // namespace tutti
