// Whatever stands in a profile, it is one, or a fault with its line.

#include <cstdlib>
#include <string_view>

#include "fix/profile/profile_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tutti;
  const auto profile = read_broker_profile({reinterpret_cast<const char*>(data), size});
  if (!profile && profile.error().empty()) std::abort();
  if (profile && profile->connection.peer.address.empty()) std::abort();
  return 0;
}
