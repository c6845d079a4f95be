#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/secret.h"
#include "sessions/contract/codes.h"

namespace tutti {

// One client account as configured. Balance and credit are where it starts; the book goes on from there.
struct AccountConfig {
  AccountConfig() = default;
  AccountConfig(const AccountConfig&) = default;
  AccountConfig& operator=(const AccountConfig&) = default;
  ~AccountConfig() { wipe(password); }

  std::string user;      // compared without case; one user may own several accounts
  std::string password;  // compared without case; its bytes are overwritten in the end
  std::int32_t number = 0;
  std::string name;  // holder
  std::string currency = "USD";
  double balance = 0.0;
  double credit = 0.0;
  double leverage = 100.0;
  std::vector<std::string> hidden_symbols;  // names of symbols the account does not carry
  bool privilege = true;                    // may trade
  bool hedging = true;                      // may hold opposite positions in one symbol
  // Points, in place of every symbol's own.
  std::optional<double> limit_distance;
  std::optional<double> stop_distance;
  // Codes that every market order (close) is refused or ends with; 0: as it deserves. A result is the
  // dealer's last word: an order that is taken into dealing becomes pending first.
  RequestCode reply_request{};
  ResultCode reply_result{};
  RequestCode reply_close_request{};
  ResultCode reply_close_result{};
  std::chrono::milliseconds dealing{0};  // how long market orders and closes are pending; 0: not at all
};

}  // namespace tutti
