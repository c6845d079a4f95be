#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <tl/expected.hpp>

#include "fix/net/certificate.h"
#include "fix/wire/listener.h"
#include "fix/wire/network.h"

namespace tutti {

// Connections over TCP and TLS, carried by one thread.
class AsioNetwork final : public Network {
 public:
  AsioNetwork();
  // Stops, and waits for its thread.
  ~AsioNetwork() override;

  // Carries on a thread of its own from now on.
  void start();
  // Carries on the calling thread until `stop` is called, by whatever thread.
  void run();
  void stop();

  void post(std::function<void()> task) override;
  void post_after(std::chrono::milliseconds wait, std::function<void()> task) override;
  std::unique_ptr<ByteStream> connect(const Peer& peer, ByteReceiver& receiver) override;

  // Takes connections at an address, with TLS when there is a certificate; before the network runs. The
  // listener outlives the network's run. Answers the port, which is chosen where 0 is given; the error is in
  // the operator's words.
  tl::expected<std::uint16_t, std::string> listen(const std::string& address, std::uint16_t port,
                                                  const Certificate* certificate, Listener& listener);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace tutti
