#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fix/client/fix_hub.h"
#include "fix/client/fix_lines.h"
#include "fix/profile/broker_profile.h"
#include "fix/server/fix_server.h"
#include "fix/wire/memory_network.h"
#include "tests/dealer_rig.h"

namespace tutti {

// A dealing server behind FIX, and clients that reach it by a network in memory; all on one clock that is
// turned by hand.
struct FixRig {
  using Seat = DealerRig::Seat;

  explicit FixRig(DealerConfig config, TimePoint start = ManualClock{}.now())
      : clock(start), server(std::move(config), clock) {
    network.set_listener(&fix);
  }

  void settle() {
    for (bool moved = true; moved;) {
      moved = network.run();
      server.advance();
      while (server.deliver_next())
        moved = true;
      hub.advance();
      while (hub.deliver_next())
        moved = true;
    }
  }
  // Time goes by in small steps, and all that comes of it is delivered.
  void run(std::int64_t milliseconds) {
    for (settle(); milliseconds > 0; milliseconds -= 10) {
      clock.advance(std::chrono::milliseconds{10});
      network.advance(std::chrono::milliseconds{10});
      if ((passed += 10) % 1'000 == 0) fix.tick();
      settle();
    }
  }
  Words heard(const Seat& seat, std::int64_t milliseconds) {
    run(milliseconds);
    return std::exchange(seat.seen->events, {});
  }
  Seat seat(const LoginData& data) {
    Seat seat;
    seat.client = hub.make_client();
    seat.client->set_sink(seat.seen.get());
    seat.client->SetLoginData(data);
    seat.client->Login();
    return seat;
  }
  Seat trader(std::size_t account) {
    const AccountConfig& config = server.config().accounts[account];
    Seat result = seat({config.user, config.password, config.number, {}});
    run(300);
    *result.seen = {};
    return result;
  }
  // The texts for the journal since the last call.
  Words notices() {
    Words texts;
    for (const BackendNotice& notice : hub.take_notices())
      texts.push_back(notice.text);
    return texts;
  }

  ManualClock clock;
  DealingServer server;
  MemoryNetwork network;
  // Reading it takes longer than most tests.
  static const FixDictionary& shared_dictionary() {
    static const FixDictionary shared;
    return shared;
  }
  const FixDictionary& dictionary = shared_dictionary();
  FixServer fix{dictionary, {}, [this] { return server.make_client(); }};
  BrokerProfile profile;
  FixLines lines{network, profile, dictionary};
  FixHub hub{lines, clock};
  std::int64_t passed = 0;
};

}  // namespace tutti
