#pragma once

#include <string>
#include <vector>

#include "fix/wire/peer.h"

namespace tutti {

// How to reach a broker, and in what his FIX differs from ours.
struct BrokerProfile {
  Peer peer;
  std::string sender{};  // 49; the account's number where it is empty
  std::string target = "DEALER";
  std::string sender_sub{}, target_sub{};
  int heartbeat = 30;  // seconds
  int time_digits = 3;
  std::vector<std::string> refused_password = {"BAD_PASSWORD"};  // one of them is in the refusal's text
};

}  // namespace tutti
