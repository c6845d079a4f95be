#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "fix/wire/peer.h"

namespace tutti {

// How a broker tells prices, where he does it otherwise than a server of ours.
struct QuoteProfile {
  std::optional<Peer> peer{};  // a session of its own for quotes; the same one where it is nothing
  std::string sender{}, target{}, sender_sub{}, target_sub{};
  bool shared = false;  // one feed for all accounts
  int depth = 1;        // 0: all
  enum class Update : std::uint8_t { full, incremental } update = Update::full;
  bool one_symbol_per_request = false;
  bool high_low = true;
};

}  // namespace tutti
