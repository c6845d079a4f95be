#include "apps/open_backend.h"

#include "apps/embedded_dealer.h"

namespace tutti {

tl::expected<std::unique_ptr<Backend>, FileError> open_backend(const TerminalOptions& options,
                                                               const Clock& clock,
                                                               const DealingServer** server) {
  auto dealer = EmbeddedDealer::open(options, clock);
  if (!dealer) return tl::unexpected(dealer.error());
  if (server != nullptr) *server = &(*dealer)->server();
  return std::move(*dealer);
}

}  // namespace tutti
