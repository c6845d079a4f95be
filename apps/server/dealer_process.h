#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "apps/server/dealer_options.h"
#include "core/clock.h"
#include "core/home_lock.h"
#include "dealer/link/dealing_server.h"
#include "fix/net/asio_network.h"
#include "fix/server/fix_server.h"

namespace tutti {

// The dealing server as a process of its own: the server, its end of FIX, and the sockets, all on one thread.
// What came in within one turn is stored together, and only then answered.
class DealerProcess {
 public:
  using Tell = std::function<void(std::string_view)>;

  // Takes the folder, reads the book and listens. `tell` gets what is for the log, line by line. The clock
  // outlives it. The error is in the operator's words.
  static tl::expected<std::unique_ptr<DealerProcess>, std::string> open(const DealerOptions& options,
                                                                        const Clock& clock, Tell tell);

  // Serves until `stopped`, which is asked several times a second, says so; then logs everybody out and saves
  // the book. The error is that of the saving.
  tl::expected<void, std::string> run(const std::function<bool()>& stopped);

  std::uint16_t port() const { return port_; }
  // Of the certificate; empty without TLS.
  const std::string& fingerprint() const { return fingerprint_; }

 private:
  DealerProcess(DealerConfig config, const Clock& clock, Tell tell, HomeLock lock);
  tl::expected<void, std::string> begin(const DealerOptions& options);
  // Lets happen what is due, tells it, and comes back when something is due next.
  void turn();
  void turn_soon();
  void turn_later();
  void second();
  // Ends once everybody has gone, or has had time to.
  void leave();
  void tell_news();

  const Clock& clock_;
  const Tell tell_;
  HomeLock lock_;
  DealingServer server_;
  AsioNetwork network_;
  const FixDictionary dictionary_;
  FixServer fix_;
  std::function<bool()> stopped_;
  std::string fingerprint_;
  std::uint16_t port_ = 0;
  std::uint64_t turns_ = 0;  // only the newest of the turns that were planned takes place
  bool turning_soon_ = false;
  bool book_failed_ = false;
  bool closing_ = false;                    // everybody was told to go
  std::chrono::milliseconds closed_at_{0};  // when, by Clock::elapsed
};

}  // namespace tutti
