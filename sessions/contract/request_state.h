#pragma once

#include <cstdint>

namespace tutti {

// What a dealing server knows of a request that it is asked about by its id.
enum class RequestState : std::uint8_t {
  not_told,         // the broker can't or won't say
  never_taken,      // it has not come, and is refused should it still come
  waiting,          // on its way, or with the dealer
  working,          // an entry order that waits for its price
  partly_executed,  // and the rest still alive
  executed,         // or done, for what opens and closes nothing
  refused,
  cancelled,     // or expired
  another_book,  // unknown, and it was sent to another book than the server has now
};

}  // namespace tutti
