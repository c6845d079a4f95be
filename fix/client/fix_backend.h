#pragma once

#include <memory>
#include <string>
#include <vector>

#include "fix/client/fix_hub.h"
#include "fix/client/fix_lines.h"
#include "fix/profile/broker_profile.h"
#include "fix/session/fix_dictionary.h"
#include "fix/wire/network.h"
#include "sessions/contract/backend.h"

namespace tutti {

// A broker that is reached by FIX, as what stands behind the trading clients.
class FixBackend final : public Backend {
 public:
  // The network and the clock outlive it; the network has stopped by then. The profile has nothing that is
  // unsupported().
  FixBackend(BrokerProfile profile, Network& network, const Clock& clock);

  // Called on the wire's thread when something has come in, so that whoever runs the terminal may sleep until
  // then. Before the first client.
  void set_wake(std::function<void()> wake) { lines_.inbox().set_wake(std::move(wake)); }
  const BrokerProfile& profile() const { return profile_; }

  std::unique_ptr<ClientAPI> make_client(const LoginData&) override { return hub_.make_client(); }
  std::vector<EventSource*> events() override { return {&hub_}; }
  Endpoint endpoint() const override;
  bool simulated() const override { return false; }
  // Only the operator knows his accounts.
  std::vector<LoginData> samples() const override { return {}; }
  void advance() override { hub_.advance(); }
  std::optional<TimePoint> next_due() const override { return hub_.next_due(); }
  // What was sent is with the wire's thread already.
  void flush() override {}
  std::vector<BackendNotice> take_notices() override { return hub_.take_notices(); }
  tl::expected<void, FileError> close() override { return {}; }
  std::optional<int> credits(std::int32_t account) const override { return hub_.credits(account); }
  // Numbers begin anew with every connection: nothing is asked for again by them.
  void kept(std::uint64_t) override {}
  std::chrono::milliseconds patience() const override { return profile_.orders.late_after; }

 private:
  const BrokerProfile profile_;
  const FixDictionary dictionary_;
  FixLines lines_;
  FixHub hub_;
};

}  // namespace tutti
