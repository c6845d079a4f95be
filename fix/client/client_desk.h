#pragma once

#include <cstdint>
#include <string>

#include "core/clock.h"
#include "fix/client/client_event.h"
#include "fix/client/line_login.h"
#include "fix/dialect/wire_request.h"
#include "fix/profile/broker_profile.h"
#include "sessions/contract/symbol.h"

namespace tutti {

// What a client needs of the hub that made it.
class ClientDesk {
 public:
  virtual ~ClientDesk() = default;

  virtual std::uint64_t open_line(FixClient& client, LineLogin login) = 0;
  virtual void send(std::uint64_t line, WireAsk ask) = 0;
  virtual void close_line(std::uint64_t line) = 0;
  virtual void post(ClientEvent event) = 0;
  // Takes back what waits for the client: all, or what does not outlive its connection.
  virtual void forget(const FixClient& client, bool all) = 0;
  // The client goes.
  virtual void leave(const FixClient& client) = 0;
  // Takes up what the lines have told by now.
  virtual void collect() = 0;
  virtual void remark(const FixClient& client, std::string text) = 0;
  // A symbol that some other account of the broker carries; nullptr when none does.
  virtual const Symbol* symbol_of_others(std::string_view name) const = 0;
  virtual const Clock& clock() const = 0;
  virtual const BrokerProfile& profile() const = 0;
};

}  // namespace tutti
