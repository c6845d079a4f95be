#include "fix/client/fix_backend.h"

#include <cassert>
#include <utility>

namespace tutti {

FixBackend::FixBackend(BrokerProfile profile, Network& network, const Clock& clock)
    : profile_(std::move(profile)), lines_(network, profile_, dictionary_), hub_(lines_, clock) {
  assert(profile_.unsupported().empty());
}

Endpoint FixBackend::endpoint() const {
  return {profile_.connection.peer.address, profile_.connection.peer.port};
}

}  // namespace tutti
